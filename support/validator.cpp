#include "validator.h"

#include "settings.h"
#include "units.h"

#include "ctranslator.h"

#include <QEvent>
#include <QLineEdit>
#include <QToolTip>

#include <cmath>
#include <limits>

namespace {

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

int decimalsTyped(const QString &text)
{
    const qsizetype dot = text.indexOf(QLatin1Char('.'));
    if (dot < 0)
        return 0;
    int count = 0;
    for (qsizetype i = dot + 1; i < text.size() && text.at(i).isDigit(); ++i)
        ++count;
    return count;
}

QString numberText(const QString &input)
{
    QString text = input.trimmed();
    text.remove(QLatin1Char('%'));
    return text;
}

} // namespace

Validator::Validator(QLineEdit *edit, int maxLength, int checkKind)
    : m_edit(edit)
    , m_maxLength(maxLength)
    , m_checkKind(checkKind)
    , m_valueKind(VALUE_PLAIN)
    , m_unitCode(1)
{
    if (edit)
        edit->installEventFilter(this);
}

Validator::Validator(QLineEdit *edit, int min, int max, int valueKind, int checkKind)
    : m_edit(edit)
    , m_checkKind(checkKind)
    , m_intMin(min)
    , m_intMax(max)
    , m_valueKind(valueKind)
{
    readUnitCode();
    if (edit)
        edit->installEventFilter(this);
}

Validator::Validator(QLineEdit *edit, double min, double max, int decimals, int valueKind,
                     int checkKind, double resetValue)
    : m_edit(edit)
    , m_checkKind(checkKind)
    , m_decimals(decimals)
    , m_min(min)
    , m_max(max)
    , m_resetValue(resetValue == std::numeric_limits<double>::infinity() ? min : resetValue)
    , m_valueKind(valueKind)
{
    setRange(min, max, decimals);
    readUnitCode();
    if (edit)
        edit->installEventFilter(this);
}

Validator::~Validator() = default;

void Validator::readUnitCode()
{
    m_unitCode = ReadIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 1,
                            CfgIniPath());
}

Validator *Validator::SetTipOffset(const QPoint &offset)
{
    m_tipOffset = offset;
    return this;
}

int Validator::ConvertInt(int storedValue) const
{
    switch (m_valueKind) {
    case VALUE_LENGTH: {
        double value = storedValue;
        if (IsInchUnit(m_unitCode))
            value = TruncateToInt(value / kMmPerInch);
        return TruncateToInt(Round2(value));
    }
    case VALUE_SPEED:
        switch (m_unitCode) {
        case 0:
            return TruncateToInt(storedValue / kMmPerInch);
        case 2:
            return TruncateToInt(storedValue / kMmPerInch * kSecondsPerMinute);
        case 3:
            return TruncateToInt(double(storedValue) * 60.0);
        default:
            return storedValue;
        }
    default:
        return storedValue;
    }
}

double Validator::ConvertDouble(double storedValue) const
{
    switch (m_valueKind) {
    case VALUE_LENGTH:
        return IsInchUnit(m_unitCode) ? Round2(storedValue / kMmPerInch) : Round2(storedValue);
    case VALUE_SPEED:
        switch (m_unitCode) {
        case 0:
            return storedValue / kMmPerInch;
        case 2:
            return storedValue / kMmPerInch * kSecondsPerMinute;
        case 3:
            return storedValue * kSecondsPerMinute;
        default:
            return storedValue;
        }
    default:
        return storedValue;
    }
}

bool Validator::eventFilter(QObject *object, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (object && object == m_edit && (type == QEvent::Leave || type == QEvent::FocusOut)
        && qstrcmp(object->metaObject()->className(), "QLineEdit") == 0) {
        if (auto *edit = qobject_cast<QLineEdit *>(object))
            correctOnLeave(edit);
    }
    return QDoubleValidator::eventFilter(object, event);
}

void Validator::correctOnLeave(QLineEdit *edit) const
{
    if (m_checkKind == CHECK_INT_RANGE) {
        bool ok = false;
        const int value = edit->text().toInt(&ok, 10);
        const int min = ConvertInt(m_intMin);
        // Only the lower bound is enforced here: a value above the maximum
        // stays for the dialog to judge.
        if (!ok || value < min) {
            m_correctedText = QString::number(min);
            edit->setText(m_correctedText);
            showMessage(rangeMessage());
        }
        return;
    }
    if (m_checkKind != CHECK_DOUBLE_RANGE)
        return;
    bool ok = false;
    const double value = numberText(edit->text()).toDouble(&ok);
    if (!ok)
        return;
    // The upper test uses the stored maximum while the lower one uses the
    // converted minimum; hosts rely on that asymmetry.
    if (ConvertDouble(m_min) > value || value > m_max || !std::isfinite(value)) {
        m_correctedText = QString::number(ConvertDouble(m_resetValue), 'g', 6);
        edit->setText(m_correctedText);
        showMessage(rangeMessage());
    }
}

QValidator::State Validator::validate(QString &input, int &pos) const
{
    switch (m_checkKind) {
    case CHECK_TEXT_LENGTH:
        if (pos <= m_maxLength) {
            hideMessage();
            return Intermediate;
        }
        showMessage(wording("Maximum text length exceeded: %1").arg(m_maxLength));
        return Invalid;
    case CHECK_INT_RANGE:
        return validateInt(input);
    case CHECK_DOUBLE_RANGE:
        return validateDouble(input);
    default:
        return Intermediate;
    }
}

QValidator::State Validator::validateInt(const QString &input) const
{
    const QString text = input.trimmed();
    if (text.isEmpty() || text == QLatin1String("-") || text == QLatin1String("+"))
        return Intermediate;
    bool ok = false;
    const int value = text.toInt(&ok, 10);
    if (!ok)
        return Invalid;
    if (value >= ConvertInt(m_intMin) && value <= ConvertInt(m_intMax)) {
        passed(input);
        return Acceptable;
    }
    showMessage(rangeMessage());
    return Intermediate;
}

QValidator::State Validator::validateDouble(const QString &input) const
{
    const QString text = numberText(input);
    if (text.isEmpty() || text == QLatin1String("-") || text == QLatin1String(".")
        || text == QLatin1String("-."))
        return Intermediate;
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return Invalid;
    if (decimalsTyped(text) > m_decimals) {
        showMessage(rangeMessage());
        return Invalid;
    }
    if (value >= ConvertDouble(m_min) && value <= ConvertDouble(m_max)) {
        passed(input);
        return Acceptable;
    }
    showMessage(rangeMessage());
    return Intermediate;
}

QString Validator::rangeMessage() const
{
    if (m_checkKind == CHECK_INT_RANGE)
        return wording("Input range %1 to %2").arg(ConvertInt(m_intMin)).arg(ConvertInt(m_intMax));
    return wording("Input range %1 to %2 ,%3 decimal places")
        .arg(ConvertDouble(m_min))
        .arg(ConvertDouble(m_max))
        .arg(m_decimals);
}

void Validator::showMessage(const QString &text) const
{
    if (!m_edit)
        return;
    m_lastMessage = text;
    QToolTip::showText(m_edit->mapToGlobal(m_tipOffset + QPoint(0, 8)), text, nullptr, QRect(), -1);
}

void Validator::passed(const QString &input) const
{
    if (input == m_correctedText)
        return;
    m_correctedText.clear();
    hideMessage();
}

void Validator::hideMessage() const
{
    if (!m_edit)
        return;
    m_lastMessage.clear();
    QToolTip::hideText();
}
