#pragma once

#include "module/clayerparam.h"

#include <QMultiHash>
#include <QObject>
#include <QPointer>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

class QAbstractButton;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QWidget;
class Validator;

// Where one editor value lives in a layer record. The laser argument (1 or 2)
// picks the laser sub-block for the values that have one. Every value travels
// as a double: booleans as 0 and 1, integers exactly.
struct CParamAccess
{
    std::function<double(const CLayerParam &, int laser)> get;
    std::function<void(CLayerParam &, int laser, double value)> set;
};

template <typename T> T ParamFromDouble(double value)
{
    if constexpr (std::is_same_v<T, bool>) {
        return value != 0.0;
    } else if constexpr (std::is_integral_v<T>) {
        // Out of range or NaN must not reach the integer conversion.
        if (!(value == value))
            return T(0);
        const double low = double(std::numeric_limits<T>::min());
        const double high = double(std::numeric_limits<T>::max());
        return T(std::clamp(value, low, high));
    } else {
        return T(value);
    }
}

template <typename Block, typename T>
CParamAccess BlockField(Block CLayerParam::*block, T Block::*field)
{
    return {[=](const CLayerParam &layer, int) { return double(layer.*block.*field); },
            [=](CLayerParam &layer, int, double value) {
                layer.*block.*field = ParamFromDouble<T>(value);
            }};
}

template <typename Block, typename T>
CParamAccess LaserField(Block CLayerParam::*block, T LaserParam::*field)
{
    return {[=](const CLayerParam &layer, int laser) {
                const Block &b = layer.*block;
                return double((laser == 2 ? b.LASER2 : b.LASER1).*field);
            },
            [=](CLayerParam &layer, int laser, double value) {
                Block &b = layer.*block;
                // Through a named reference: GCC 12 assigns to a copy when the
                // member pointer is applied to the conditional directly.
                LaserParam &target = laser == 2 ? b.LASER2 : b.LASER1;
                target.*field = ParamFromDouble<T>(value);
            }};
}

template <typename Block, typename T>
CParamAccess PenField(Block CLayerParam::*block, T PenParam::*field)
{
    return {[=](const CLayerParam &layer, int) { return double((layer.*block).PEN.*field); },
            [=](CLayerParam &layer, int, double value) {
                (layer.*block).PEN.*field = ParamFromDouble<T>(value);
            }};
}

CParamAccess BlowField();

// The editable values of a parameter editor, each bound to its place in a
// layer record. One table serves the library sets (through a scratch layer)
// and the layer blocks alike. Lengths and speeds show in the display unit and
// come back in millimetres; a field the user left alone gives back the exact
// value it was loaded with, so rounding for display never changes a record.
class CParamFields : public QObject
{
    Q_OBJECT

public:
    enum EKIND {
        KIND_SPEED = 0,
        KIND_LENGTH = 1,
        KIND_NUMBER = 2,
        KIND_INTEGER = 3,
    };

    explicit CParamFields(int unitMode, QObject *parent = nullptr);
    ~CParamFields() override;

    // Bounds in stored units (mm, mm/s); a Validator guards the edit. A unit
    // label of a speed or length shows the display unit.
    void AddEdit(QLineEdit *edit, int kind, double min, double max, int decimals,
                 CParamAccess access, QLabel *unitLabel = nullptr);
    void AddCheck(QAbstractButton *button, CParamAccess access);
    // The items carry their stored value as item data.
    void AddCombo(QComboBox *combo, CParamAccess access);
    // A length in a spin box, 0 to maxMm.
    void AddHeight(QDoubleSpinBox *spin, double maxMm, CParamAccess access, QLabel *unitLabel);

    void Show(const CLayerParam &layer, int laser);
    void Collect(CLayerParam &layer, int laser) const;

    // The widget is usable only while the box is checked (and usable).
    void AddDependency(QAbstractButton *toggle, std::initializer_list<QWidget *> dependents);

    // Read only keeps the values visible and selectable; locked disables.
    void SetState(bool editable, bool locked);

    int UnitMode() const { return m_unitMode; }

    // Every text of the form under root is a wording key: remembered once,
    // then translated on each call of Translate.
    static void RememberWordings(QWidget *root);
    static void Translate(QWidget *root);
    static QString Wording(const QString &english);

signals:
    // A user edit of one of the fields (never a load).
    void Edited();

private:
    struct Field;

    QString displayText(const Field &field, double stored) const;
    double storedValue(const Field &field) const;
    void logChange(QObject *sender, const char *what) const;
    bool togglesAllow(const QWidget *widget) const;
    void updateEnabled();

    int m_unitMode = 1;
    bool m_loading = false;
    bool m_editable = true;
    bool m_locked = false;
    std::vector<std::unique_ptr<Field>> m_fields;
    QMultiHash<const QWidget *, QAbstractButton *> m_toggles;
};
