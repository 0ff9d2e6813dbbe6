#include "clayernumberwidget.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace {

QString romanNumeral(int value)
{
    static const struct
    {
        int value;
        const char *text;
    } kDigits[] = {{1000, "M"}, {900, "CM"}, {500, "D"}, {400, "CD"}, {100, "C"},
                   {90, "XC"},  {50, "L"},   {40, "XL"}, {10, "X"},   {9, "IX"},
                   {5, "V"},    {4, "IV"},   {1, "I"}};
    QString text;
    for (const auto &digit : kDigits) {
        while (value >= digit.value) {
            text += QLatin1String(digit.text);
            value -= digit.value;
        }
    }
    return text;
}

// Numbers come from layer files; a broken one must not turn into a string of
// a million M's.
constexpr int kLargestRoman = 9999;

} // namespace

CLayerNumberWidget::CLayerNumberWidget(QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(this))
    , m_button(new QPushButton(this))
{
    m_label->setObjectName(QStringLiteral("label_craftColor"));
    m_label->setAlignment(Qt::AlignCenter);
    m_button->setObjectName(QStringLiteral("pushButton_layerColor"));
    m_button->setAttribute(Qt::WA_StyledBackground);
    // A style sheet drops the button's padding; keep room for "XXXVIII".
    m_button->setMinimumWidth(m_button->fontMetrics().horizontalAdvance(QLatin1Char('W')) + 8);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(3);
    layout->addWidget(m_label);
    layout->addWidget(m_button);
    layout->addStretch();
    m_button->installEventFilter(this);
}

void CLayerNumberWidget::SetColor(int red, int green, int blue, const QString &text, int number)
{
    if (m_label->text() != text)
        m_label->setText(text);
    m_label->setToolTip(text);
    const QString letter = NumberText(number);
    if (m_button->text() != letter)
        m_button->setText(letter);
    const QColor ink = TextColor(number);
    const QString sheet = QStringLiteral("QPushButton{background-color:rgb(%1,%2,%3);color:rgb(%4,%5,%6)}")
                              .arg(red)
                              .arg(green)
                              .arg(blue)
                              .arg(ink.red())
                              .arg(ink.green())
                              .arg(ink.blue());
    // Re-applying an unchanged sheet costs a full re-polish of the button.
    if (m_button->styleSheet() != sheet)
        m_button->setStyleSheet(sheet);
    m_button->setToolTip(text);
}

QString CLayerNumberWidget::ButtonText() const
{
    return m_button->text();
}

QString CLayerNumberWidget::NumberText(int number)
{
    if (number >= 1 && number <= 26)
        return QString(QChar(u'A' + (number - 1)));
    if (number >= 27 && number <= 52)
        return QString(QChar(u'a' + (number - 27)));
    if (number > 52) {
        const int value = number - 52;
        return value <= kLargestRoman ? romanNumeral(value) : QString::number(value);
    }
    return QString();
}

QColor CLayerNumberWidget::TextColor(int number)
{
    const bool dark = (number >= 5 && number <= 11) || (number >= 13 && number <= 16);
    return dark ? QColor(0, 0, 0) : QColor(255, 255, 255);
}

bool CLayerNumberWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_button && event->type() == QEvent::MouseButtonDblClick) {
        emit ButtonDoubleClicked();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
