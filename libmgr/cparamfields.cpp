#include "cparamfields.h"

#include "support/units.h"
#include "support/validator.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

#include <cmath>

namespace {

constexpr char kWordingProperty[] = "wordingKey";
constexpr int kWordingRole = Qt::UserRole + 1;

int validatorKind(int kind)
{
    switch (kind) {
    case CParamFields::KIND_SPEED:
        return Validator::VALUE_SPEED;
    case CParamFields::KIND_LENGTH:
        return Validator::VALUE_LENGTH;
    default:
        return Validator::VALUE_PLAIN;
    }
}

// Fixed point with at most the given decimals, without trailing zeros.
QString trimmedNumber(double value, int decimals)
{
    QString text = QString::number(value, 'f', decimals);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    if (text == QLatin1String("-0"))
        text = QStringLiteral("0");
    return text;
}

} // namespace

CParamAccess BlowField()
{
    return {[](const CLayerParam &layer, int) { return layer.BLOW ? 1.0 : 0.0; },
            [](CLayerParam &layer, int, double value) { layer.BLOW = value != 0.0; }};
}

struct CParamFields::Field
{
    QPointer<QWidget> widget;
    QLineEdit *edit = nullptr;
    QAbstractButton *button = nullptr;
    QComboBox *combo = nullptr;
    QDoubleSpinBox *spin = nullptr;
    int kind = KIND_NUMBER;
    double min = 0.0;
    double max = 0.0;
    int decimals = 0;
    CParamAccess access;
    std::unique_ptr<Validator> validator;
    // What the last load put there: the widget's state and the stored value.
    QString loadedText;
    int loadedIndex = -1;
    double loadedDisplay = 0.0;
    double loadedValue = 0.0;
};

CParamFields::CParamFields(int unitMode, QObject *parent)
    : QObject(parent)
    , m_unitMode(unitMode)
{}

CParamFields::~CParamFields() = default;

void CParamFields::AddEdit(QLineEdit *edit, int kind, double min, double max, int decimals,
                           CParamAccess access, QLabel *unitLabel)
{
    auto field = std::make_unique<Field>();
    field->widget = edit;
    field->edit = edit;
    field->kind = kind;
    field->min = min;
    field->max = max;
    field->decimals = kind == KIND_INTEGER ? 0 : decimals;
    field->access = std::move(access);
    if (kind == KIND_INTEGER)
        field->validator = std::make_unique<Validator>(
            edit, int(min), int(max), validatorKind(kind), int(Validator::CHECK_INT_RANGE));
    else
        field->validator = std::make_unique<Validator>(
            edit, min, max, decimals, validatorKind(kind), int(Validator::CHECK_DOUBLE_RANGE));
    edit->setValidator(field->validator.get());
    if (unitLabel && kind == KIND_SPEED && *SpeedUnitLabel(m_unitMode))
        unitLabel->setText(QString::fromLatin1(SpeedUnitLabel(m_unitMode)));
    if (unitLabel && kind == KIND_LENGTH && *LengthUnitLabel(m_unitMode))
        unitLabel->setText(QString::fromLatin1(LengthUnitLabel(m_unitMode)));

    connect(edit, &QLineEdit::textEdited, this, &CParamFields::Edited);
    connect(edit, &QLineEdit::editingFinished, this, [this, edit] {
        if (!edit->isModified())
            return;
        edit->setModified(false);
        logChange(edit, "changed");
    });
    m_fields.push_back(std::move(field));
}

void CParamFields::AddCheck(QAbstractButton *button, CParamAccess access)
{
    auto field = std::make_unique<Field>();
    field->widget = button;
    field->button = button;
    field->access = std::move(access);
    connect(button, &QAbstractButton::clicked, this, [this, button] {
        logChange(button, "clicked");
        emit Edited();
    });
    m_fields.push_back(std::move(field));
}

void CParamFields::AddCombo(QComboBox *combo, CParamAccess access)
{
    auto field = std::make_unique<Field>();
    field->widget = combo;
    field->combo = combo;
    field->access = std::move(access);
    connect(combo, &QComboBox::activated, this, [this, combo] {
        logChange(combo, "changed");
        emit Edited();
    });
    m_fields.push_back(std::move(field));
}

void CParamFields::AddHeight(QDoubleSpinBox *spin, double maxMm, CParamAccess access,
                             QLabel *unitLabel)
{
    auto field = std::make_unique<Field>();
    field->widget = spin;
    field->spin = spin;
    field->kind = KIND_LENGTH;
    field->max = maxMm;
    field->access = std::move(access);
    spin->setDecimals(IsInchUnit(m_unitMode) ? 3 : 2);
    spin->setRange(0.0, LengthToDisplay(maxMm, m_unitMode));
    if (unitLabel && *LengthUnitLabel(m_unitMode))
        unitLabel->setText(QString::fromLatin1(LengthUnitLabel(m_unitMode)));
    connect(spin, &QDoubleSpinBox::valueChanged, this, [this, spin] {
        if (m_loading)
            return;
        logChange(spin, "changed");
        emit Edited();
    });
    m_fields.push_back(std::move(field));
}

QString CParamFields::displayText(const Field &field, double stored) const
{
    switch (field.kind) {
    case KIND_SPEED:
        return trimmedNumber(SpeedToDisplay(stored, m_unitMode), field.decimals);
    case KIND_LENGTH:
        return trimmedNumber(LengthToDisplay(stored, m_unitMode), field.decimals);
    case KIND_INTEGER:
        return QString::number(qint64(stored));
    default:
        return trimmedNumber(stored, field.decimals);
    }
}

double CParamFields::storedValue(const Field &field) const
{
    QString text = field.edit->text().trimmed();
    text.remove(QLatin1Char('%'));
    bool ok = false;
    const double typed = field.kind == KIND_INTEGER ? double(text.toInt(&ok)) : text.toDouble(&ok);
    if (!ok || !std::isfinite(typed))
        return field.loadedValue;
    double value = typed;
    if (field.kind == KIND_SPEED)
        value = SpeedFromDisplay(typed, m_unitMode);
    else if (field.kind == KIND_LENGTH)
        value = LengthFromDisplay(typed, m_unitMode);
    // The validator corrects on leaving the field; a value read while the
    // field still has the focus must not slip past it.
    return std::clamp(value, field.min, field.max);
}

void CParamFields::Show(const CLayerParam &layer, int laser)
{
    m_loading = true;
    for (const auto &field : m_fields) {
        if (!field->widget)
            continue;
        const double value = field->access.get(layer, laser);
        field->loadedValue = value;
        if (field->edit) {
            field->loadedText = displayText(*field, value);
            field->edit->setText(field->loadedText);
            field->edit->setModified(false);
        } else if (field->button) {
            field->button->setChecked(value != 0.0);
        } else if (field->combo) {
            // An unknown value shows the first item but stays as loaded until
            // the user picks one.
            const int index = field->combo->findData(int(value));
            field->loadedIndex = std::max(index, 0);
            field->combo->setCurrentIndex(field->loadedIndex);
        } else if (field->spin) {
            field->spin->setValue(LengthToDisplay(value, m_unitMode));
            field->loadedDisplay = field->spin->value();
        }
    }
    m_loading = false;
    updateEnabled();
}

void CParamFields::Collect(CLayerParam &layer, int laser) const
{
    for (const auto &field : m_fields) {
        if (!field->widget)
            continue;
        double value = field->loadedValue;
        if (field->edit) {
            if (field->edit->text() != field->loadedText)
                value = storedValue(*field);
        } else if (field->button) {
            // Flags stored as integers keep their value while the box shows it.
            if (field->button->isChecked() != (field->loadedValue != 0.0))
                value = field->button->isChecked() ? 1.0 : 0.0;
        } else if (field->combo) {
            if (field->combo->currentIndex() != field->loadedIndex)
                value = field->combo->currentData().toDouble();
        } else if (field->spin) {
            if (field->spin->value() != field->loadedDisplay)
                value = std::clamp(LengthFromDisplay(field->spin->value(), m_unitMode), 0.0,
                                   field->max);
        }
        field->access.set(layer, laser, value);
    }
}

void CParamFields::AddDependency(QAbstractButton *toggle,
                                 std::initializer_list<QWidget *> dependents)
{
    for (QWidget *widget : dependents)
        m_toggles.insert(widget, toggle);
    connect(toggle, &QAbstractButton::toggled, this, &CParamFields::updateEnabled,
            Qt::UniqueConnection);
}

void CParamFields::SetState(bool editable, bool locked)
{
    m_editable = editable;
    m_locked = locked;
    updateEnabled();
}

bool CParamFields::togglesAllow(const QWidget *widget) const
{
    for (auto it = m_toggles.constFind(widget); it != m_toggles.cend() && it.key() == widget;
         ++it) {
        if (!it.value()->isChecked() || !togglesAllow(it.value()))
            return false;
    }
    return true;
}

void CParamFields::updateEnabled()
{
    for (const auto &field : m_fields) {
        if (!field->widget)
            continue;
        const bool allowed = !m_locked && togglesAllow(field->widget);
        if (field->edit) {
            // Read-only text can still be selected and copied.
            field->edit->setReadOnly(!m_editable);
            field->edit->setEnabled(allowed);
        } else {
            field->widget->setEnabled(m_editable && allowed);
        }
    }
}

void CParamFields::logChange(QObject *sender, const char *what) const
{
    const QByteArray name = sender->objectName().toUtf8();
    ILog_WriteLogF(0, "%s was %s.", name.constData(), what);
}

QString CParamFields::Wording(const QString &english)
{
    return CTranslator::GetInstance()->GetWording(english);
}

void CParamFields::RememberWordings(QWidget *root)
{
    const auto remember = [](QObject *object, const QString &text) {
        if (!text.isEmpty() && !object->property(kWordingProperty).isValid())
            object->setProperty(kWordingProperty, text);
    };
    for (QLabel *label : root->findChildren<QLabel *>()) {
        // Unit labels are set from the unit mode, not translated.
        if (!label->objectName().endsWith(QLatin1String("Unit")))
            remember(label, label->text());
    }
    for (QAbstractButton *button : root->findChildren<QAbstractButton *>())
        remember(button, button->text());
    for (QGroupBox *group : root->findChildren<QGroupBox *>())
        remember(group, group->title());
    for (QTabWidget *tabs : root->findChildren<QTabWidget *>()) {
        for (int i = 0; i < tabs->count(); ++i)
            remember(tabs->widget(i), tabs->tabText(i));
    }
    for (QComboBox *combo : root->findChildren<QComboBox *>()) {
        for (int i = 0; i < combo->count(); ++i) {
            if (!combo->itemData(i, kWordingRole).isValid())
                combo->setItemData(i, combo->itemText(i), kWordingRole);
        }
    }
}

void CParamFields::Translate(QWidget *root)
{
    const auto key = [](const QObject *object) {
        return object->property(kWordingProperty).toString();
    };
    for (QLabel *label : root->findChildren<QLabel *>()) {
        if (!key(label).isEmpty())
            label->setText(Wording(key(label)));
    }
    for (QAbstractButton *button : root->findChildren<QAbstractButton *>()) {
        if (!key(button).isEmpty())
            button->setText(Wording(key(button)));
    }
    for (QGroupBox *group : root->findChildren<QGroupBox *>()) {
        if (!key(group).isEmpty())
            group->setTitle(Wording(key(group)));
    }
    for (QTabWidget *tabs : root->findChildren<QTabWidget *>()) {
        for (int i = 0; i < tabs->count(); ++i) {
            if (!key(tabs->widget(i)).isEmpty())
                tabs->setTabText(i, Wording(key(tabs->widget(i))));
        }
    }
    for (QComboBox *combo : root->findChildren<QComboBox *>()) {
        for (int i = 0; i < combo->count(); ++i) {
            const QString english = combo->itemData(i, kWordingRole).toString();
            // Numbers (resolutions) stay as they are.
            if (!english.isEmpty())
                combo->setItemText(i, Wording(english));
        }
    }
}
