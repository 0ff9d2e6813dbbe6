#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

class QLabel;
class QPushButton;

// The "Num" cell: the row number and a button in the layer's colour that
// carries the layer's letter. Double-clicking the button opens the layer.
class CLayerNumberWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CLayerNumberWidget(QWidget *parent = nullptr);

    void SetColor(int red, int green, int blue, const QString &text, int number);
    QString ButtonText() const;

    // 1..26 'A'..'Z', 27..52 'a'..'z', above 52 the Roman numeral of n - 52.
    static QString NumberText(int number);
    // Black on the light palette entries, white elsewhere (12 stays white).
    static QColor TextColor(int number);

signals:
    void ButtonDoubleClicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLabel *m_label;
    QPushButton *m_button;
};
