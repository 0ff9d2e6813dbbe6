#include "parameterchanges.h"

#include "ctranslator.h"
#include "library/librarymerge.h"

namespace {

QString wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromLatin1(english));
}

// Collects rows for one comparison; captions are plain English until added.
class ChangeRows
{
public:
    explicit ChangeRows(bool dualLaser)
        : m_dual(dualLaser)
    {}

    int LaserCount() const { return m_dual ? 2 : 1; }

    void Number(const char *caption, double oldValue, double newValue, int laser = 0)
    {
        if (oldValue != newValue)
            add(caption, laser, ChangeNumberText(oldValue), ChangeNumberText(newValue));
    }
    void OnOff(const char *caption, bool oldValue, bool newValue, int laser = 0)
    {
        if (oldValue != newValue)
            add(caption, laser, ChangeOnOffText(oldValue), ChangeOnOffText(newValue));
    }
    // Two value texts: `zero` for 0, `other` for anything else.
    void Choice(const char *caption, qint32 oldValue, qint32 newValue, const char *zero,
                const char *other)
    {
        if (oldValue != newValue)
            add(caption, 0, wording(oldValue == 0 ? zero : other),
                wording(newValue == 0 ? zero : other));
    }
    void Resolution(const char *caption, qint32 oldValue, qint32 newValue)
    {
        if (oldValue != newValue)
            add(caption, 0, ChangeResolutionText(oldValue), ChangeResolutionText(newValue));
    }
    void Air(bool oldValue, bool newValue)
    {
        Choice("Air Assist", oldValue ? 1 : 0, newValue ? 1 : 0, "Low", "High");
    }

    QList<QStringList> Take() { return std::move(m_rows); }

private:
    void add(const char *caption, int laser, const QString &oldText, const QString &newText)
    {
        QString text = wording(caption);
        if (laser > 0 && m_dual)
            text += QLatin1Char('-') + wording("Laser") + QString::number(laser);
        m_rows.append({text, oldText, newText});
    }

    bool m_dual;
    QList<QStringList> m_rows;
};

void comparePen(ChangeRows &rows, const PenParam &a, const PenParam &b)
{
    rows.OnOff("Enable Dynamic Focus", a.ENABLE_PEN_UP_DOWN, b.ENABLE_PEN_UP_DOWN);
    rows.Number("Processing Focus", a.PEN_DOWN_HRIGHT, b.PEN_DOWN_HRIGHT);
    rows.Number("Safety Focus", a.PEN_UP_HRIGHT, b.PEN_UP_HRIGHT);
}

// "Laser tube" and the block every layer kind shares, per laser.
void compareLayerLasers(ChangeRows &rows, const LaserParam (&a)[2], const LaserParam (&b)[2])
{
    for (int n = 1; n <= rows.LaserCount(); ++n)
        rows.OnOff("Laser tube", a[n - 1].ENABLE, b[n - 1].ENABLE, n);
    for (int n = 1; n <= rows.LaserCount(); ++n) {
        const LaserParam &o = a[n - 1];
        const LaserParam &m = b[n - 1];
        rows.Number("Max Power", o.POWER_MAX, m.POWER_MAX, n);
        rows.Number("Corner Power", o.POWER_MIN, m.POWER_MIN, n);
        rows.Number("Frequency", o.FREQ, m.FREQ, n);
        rows.Number("Pulse Width", o.PULSE_WIDTH, m.PULSE_WIDTH, n);
        rows.Number("Jump Delay", o.JUMP_DELAY, m.JUMP_DELAY, n);
        rows.Number("Corner Delay", o.CORNER_DELAY, m.CORNER_DELAY, n);
    }
}

// The summary's rows of a set: one laser's fields unless dual, and captions
// without the laser then.
template<typename Set>
QList<QStringList> setChanges(const std::vector<CLibSetField<Set>> &fields, const Set &a,
                              const Set &b, bool dualLaser)
{
    QList<QStringList> rows;
    for (const CLibSetField<Set> &field : fields) {
        if (!field.summary || field.laser > (dualLaser ? 2 : 1) || field.same(a, b))
            continue;
        rows.append({field.Caption(dualLaser), field.Text(a), field.Text(b)});
    }
    return rows;
}

} // namespace

QString ChangeNumberText(double value)
{
    return LibNumberText(value);
}

QString ChangeOnOffText(bool on)
{
    return LibFieldText(ELibFieldFormat::OnOff, on ? 1 : 0);
}

QString ChangeResolutionText(qint32 index)
{
    return LibFieldText(ELibFieldFormat::Resolution, index);
}

QList<QStringList> CutSetChanges(const CLibCutSet &a, const CLibCutSet &b, bool dualLaser)
{
    return setChanges(CutSetFields(), a, b, dualLaser);
}

QList<QStringList> SweepSetChanges(const CLibSweepSet &a, const CLibSweepSet &b, bool dualLaser)
{
    return setChanges(SweepSetFields(), a, b, dualLaser);
}

QList<QStringList> LayerChanges(const CLayerParam &a, const CLayerParam &b, bool dualLaser)
{
    ChangeRows rows(dualLaser);
    rows.Air(a.BLOW, b.BLOW);
    if (b.IsLineProcess()) {
        const CutParam &o = a.CUT;
        const CutParam &m = b.CUT;
        rows.Number("Speed", o.CUT_SPEED, m.CUT_SPEED);
        compareLayerLasers(rows, {o.LASER1, o.LASER2}, {m.LASER1, m.LASER2});
        rows.Number("Seal length", o.CUT_JOINT_LEN, m.CUT_JOINT_LEN);
        rows.OnOff("Use Tabs", o.CUT_BRIDGES, m.CUT_BRIDGES);
        rows.Number("Nozzle Size", o.CUT_BRIDGES_LEN, m.CUT_BRIDGES_LEN);
        rows.Number("Nozzle Distance", o.CUT_BRIDGES_SPACE, m.CUT_BRIDGES_SPACE);
        rows.Number("Processing Times", o.CUTTING_NUMBER, m.CUTTING_NUMBER);
        rows.OnOff("Using Cutting Leads", o.USE_GUIDE_LINE, m.USE_GUIDE_LINE);
        rows.Number("Lead-In", o.GUIDE_IN_LEN, m.GUIDE_IN_LEN);
        rows.Number("Lead-Out", o.GUIDE_OUT_LEN, m.GUIDE_OUT_LEN);
        comparePen(rows, o.PEN, m.PEN);
        rows.OnOff("Use laser compensation", o.CUT_COMPENSATE_ENABLE, m.CUT_COMPENSATE_ENABLE);
        rows.Number("Compensation size", o.CUT_COMPENSATE_SIZE, m.CUT_COMPENSATE_SIZE);
    } else if (b.WORK_TYPE == WORK_SHALLOW_ENGRAVE || b.WORK_TYPE == WORK_DEEP_ENGRAVE) {
        const SweepParam &o = a.SWEEP;
        const SweepParam &m = b.SWEEP;
        rows.Number("Speed", o.SWEEP_SPEED, m.SWEEP_SPEED);
        compareLayerLasers(rows, {o.LASER1, o.LASER2}, {m.LASER1, m.LASER2});
        rows.Choice("Mode", o.SWEEP_TYPE, m.SWEEP_TYPE, "HoriZontal bidirectional",
                    "HoriZontal one-way");
        rows.Choice("Engraving direction", o.SWEEP_VERT_TYPE, m.SWEEP_VERT_TYPE, "Top to bottom",
                    "Bottom to top");
        rows.OnOff("Slope pattern", o.SWEEP_ISRAMP, m.SWEEP_ISRAMP);
        rows.Number("Ramp Length", o.SWEEP_INCLINE_LEN, m.SWEEP_INCLINE_LEN);
        rows.OnOff("3D Relief", o.SWEEP_IS3DRELIEF, m.SWEEP_IS3DRELIEF);
        rows.Number("Processing Times", o.CARVING_NUMBER, m.CARVING_NUMBER);
        rows.OnOff("Offset engraving", o.SWEEP_OFFSET_ENGRAVING, m.SWEEP_OFFSET_ENGRAVING);
        // Title case here, unlike the library comparison.
        rows.Choice("Offset Type", o.SWEEP_OFFSET_TYPE, m.SWEEP_OFFSET_TYPE, "Inside Out",
                    "Outside In");
        comparePen(rows, o.PEN, m.PEN);
        rows.Resolution("Resolution", o.SWEEP_DPI, m.SWEEP_DPI);
    }
    return rows.Take();
}
