#pragma once

#include <QWidget>

class QComboBox;

// The "Mode" cell: a combo of work types. Layers locked to filling (bitmaps)
// offer only the two engraving modes.
class CLayerModeWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CLayerModeWidget(QWidget *parent = nullptr);
    ~CLayerModeWidget() override;

    void BuildList(bool fillOnly);
    bool FillOnly() const { return m_fillOnly; }
    // The work type of a combo index in the current list.
    int WorkTypeAt(int index) const;
    // A text that is not in the list shows as it is, with no item chosen.
    void SetCurrentText(const QString &text);
    QString CurrentText() const;
    int CurrentIndex() const;
    int Count() const;

    // The English names by work type; "Unknow" for anything else.
    static QString WorkTypeName(int workType);

signals:
    void currentIndexChanged(int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QComboBox *m_combo;
    bool m_fillOnly = false;
};
