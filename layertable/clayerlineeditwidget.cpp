#include "clayerlineeditwidget.h"

#include "cellhelpers.h"

#include <QDoubleValidator>
#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>

// Typing is checked by QDoubleValidator; on Return or leaving the field the
// line edit asks fixup() for a text it can accept. A number outside the
// range is corrected to the nearest bound, anything else gives back the text
// last shown, so the field never shows what the layer does not hold.
class CLayerLineEditWidget::RangeValidator : public QDoubleValidator
{
public:
    using QDoubleValidator::QDoubleValidator;

    void fixup(QString &input) const override
    {
        if (input == shown)
            return;
        bool isNumber = false;
        const double value = locale().toDouble(input.trimmed(), &isNumber);
        if (!isNumber || !std::isfinite(value)) {
            input = shown;
            return;
        }
        const double clamped = std::clamp(value, bottom(), top());
        input = ShownText(QString::number(clamped, 'f', std::max(decimals(), 0)), decimals());
    }

    QString shown;
};

CLayerLineEditWidget::CLayerLineEditWidget(QWidget *parent)
    : QWidget(parent)
    , m_edit(new QLineEdit(this))
{
    m_edit->setObjectName(QStringLiteral("lineEdit_value"));
    m_edit->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    // Policy value 5 across: Preferred, so the edit keeps a width between the
    // stretches (Ignored would squeeze it to nothing).
    m_edit->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    m_edit->setContextMenuPolicy(Qt::NoContextMenu);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    layout->addWidget(m_edit);
    layout->addStretch();
    setFocusProxy(m_edit);
    m_edit->installEventFilter(this);
    connect(m_edit, &QLineEdit::editingFinished, this, [this] {
        if (m_validator)
            m_validator->shown = m_edit->text();
        emit editingFinished();
    });
    connect(m_edit, &QLineEdit::returnPressed, this, &CLayerLineEditWidget::onReturnPressed);
}

// The line edit is deleted after this part of the object, and a focused edit
// still reports its editing as finished when it goes.
CLayerLineEditWidget::~CLayerLineEditWidget()
{
    m_edit->disconnect(this);
    m_edit->removeEventFilter(this);
}

void CLayerLineEditWidget::SetRange(double min, double max, int decimals, int language)
{
    if (!m_validator) {
        m_validator = new RangeValidator(this);
        m_validator->setNotation(QDoubleValidator::StandardNotation);
        m_edit->setValidator(m_validator);
    }
    m_validator->setRange(min, max, decimals);
    m_validator->setLocale(QLocale(QLocale::Language(language)));
}

QString CLayerLineEditWidget::ShownText(const QString &text, int decimals)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber)
        return text;
    if (decimals >= 1)
        return QString::number(value, 'f', decimals);
    // qRound64 overflows on values no layer can hold; print those as they are.
    return std::abs(value) < 1e15 ? QString::number(qRound64(value)) : QString::number(value, 'f', 0);
}

void CLayerLineEditWidget::SetText(const QString &text)
{
    const QString shown = m_validator ? ShownText(text, m_validator->decimals()) : text;
    if (m_validator)
        m_validator->shown = shown;
    if (m_edit->text() != shown)
        m_edit->setText(shown);
}

int CLayerLineEditWidget::Decimals() const
{
    return m_validator ? m_validator->decimals() : -1;
}

QString CLayerLineEditWidget::Text() const
{
    return m_edit->text();
}

double CLayerLineEditWidget::Value() const
{
    return m_edit->text().toDouble();
}

void CLayerLineEditWidget::SetDisabled(bool disabled)
{
    m_edit->setDisabled(disabled);
}

bool CLayerLineEditWidget::IsDisabled() const
{
    return !m_edit->isEnabled();
}

void CLayerLineEditWidget::onReturnPressed()
{
    // The value is taken; leave the field so the next key goes to the table.
    m_edit->clearFocus();
}

bool CLayerLineEditWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_edit && event->type() == QEvent::MouseButtonPress) {
        if (static_cast<QMouseEvent *>(event)->button() == Qt::RightButton)
            emit rightButtonClicked();
        SelectRowOfCell(this);
    }
    return QWidget::eventFilter(watched, event);
}
