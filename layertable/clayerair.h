#pragma once

#include <QWidget>

class QComboBox;

// The "Blowing" cell: air assist "High" (index 0) or "Low" (index 1).
class CLayerAir : public QWidget
{
    Q_OBJECT

public:
    explicit CLayerAir(QWidget *parent = nullptr);
    ~CLayerAir() override;

    void SetCurrentText(const QString &text);
    QString CurrentText() const;
    int CurrentIndex() const;

signals:
    void currentIndexChanged(int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void buildList();

    QComboBox *m_combo;
};
