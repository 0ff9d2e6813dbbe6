#pragma once

#include <QWidget>

class QLineEdit;

// The "Speed" and "Power" cells: a centred line edit that takes only numbers
// inside its range; on Return or leaving, a number outside it is corrected
// to the nearest bound and anything else gives back the text shown before.
// A right press makes the row's layer the current one.
class CLayerLineEditWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CLayerLineEditWidget(QWidget *parent = nullptr);
    ~CLayerLineEditWidget() override;

    // language is a QLocale::Language; the panel passes QLocale::C so the
    // decimal separator is always a point.
    void SetRange(double min, double max, int decimals, int language);
    // Numbers are shown with the editor's decimals; anything else ("/") as is.
    void SetText(const QString &text);
    // What SetText shows for text on an editor with that many decimals.
    static QString ShownText(const QString &text, int decimals);
    // -1 before a range was set.
    int Decimals() const;
    QString Text() const;
    // 0 when the text is not a number.
    double Value() const;
    void SetDisabled(bool disabled);
    bool IsDisabled() const;

signals:
    void editingFinished();
    void rightButtonClicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    class RangeValidator;

    void onReturnPressed();

    QLineEdit *m_edit;
    RangeValidator *m_validator = nullptr;
};
