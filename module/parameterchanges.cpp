#include "parameterchanges.h"

#include "ctranslator.h"

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

const CLibLaser &libLaser(const CLibCutSet &set, int laser)
{
    return laser == 1 ? set.laser1 : set.laser2;
}

const CLibLaser &libLaser(const CLibSweepSet &set, int laser)
{
    return laser == 1 ? set.laser1 : set.laser2;
}

void comparePen(ChangeRows &rows, const CLibPen &a, const CLibPen &b)
{
    rows.OnOff("Enable Dynamic Focus", a.enableUpDown, b.enableUpDown);
    rows.Number("Processing Focus", a.downHeight, b.downHeight);
    rows.Number("Safety Focus", a.upHeight, b.upHeight);
}

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

} // namespace

QString ChangeNumberText(double value)
{
    return QString::number(value, 'g', 6);
}

QString ChangeOnOffText(bool on)
{
    // "Close" is the program's own word for off.
    return wording(on ? "On" : "Close");
}

QString ChangeResolutionText(qint32 index)
{
    static const char *const kResolutions[] = {
        "50",  "70",  "100",  "150",  "200",  "250",  "300",  "350",  "400",  "500",
        "600", "800", "1000", "1500", "2000", "2500", "3000", "3500", "4000",
    };
    constexpr qint32 count = qint32(sizeof(kResolutions) / sizeof(kResolutions[0]));
    return QString::fromLatin1(index >= 0 && index < count ? kResolutions[index] : "9999");
}

QList<QStringList> CutSetChanges(const CLibCutSet &a, const CLibCutSet &b, bool dualLaser)
{
    ChangeRows rows(dualLaser);
    rows.Number("Speed", a.speed, b.speed);
    rows.Air(a.blowing, b.blowing);
    rows.Number("Seal length", a.sealLength, b.sealLength);
    // "Processing Times": a cut set keeps no pass count, so it never differs.
    for (int n = 1; n <= rows.LaserCount(); ++n) {
        rows.Number("Max Power", libLaser(a, n).power, libLaser(b, n).power, n);
        rows.Number("Corner Power", libLaser(a, n).turnPower, libLaser(b, n).turnPower, n);
    }
    for (int n = 1; n <= rows.LaserCount(); ++n) {
        const CLibLaser &o = libLaser(a, n);
        const CLibLaser &m = libLaser(b, n);
        rows.Number("Jump Delay", o.jumpDelay, m.jumpDelay, n);
        rows.Number("Corner Delay", o.cornerDelay, m.cornerDelay, n);
        rows.OnOff("Use laser dwell mode", o.dwellMode, m.dwellMode, n);
        rows.OnOff("Laser ON", o.dwellOn, m.dwellOn, n);
        // The second laser's two captions are in title case; users know them so.
        rows.Number(n == 1 ? "Start dwell time" : "Start Dwell Time", o.startDwellTime,
                    m.startDwellTime, n);
        rows.Number(n == 1 ? "End dwell time" : "End Dwell Time", o.endDwellTime, m.endDwellTime,
                    n);
        rows.Number("Laser Power", o.dwellPower, m.dwellPower, n);
    }
    rows.OnOff("Use Tabs", a.bridges, b.bridges);
    rows.Number("Nozzle Size", a.bridgesLength, b.bridgesLength);
    rows.Number("Nozzle Distance", a.bridgesSpace, b.bridgesSpace);
    rows.OnOff("Using Cutting Leads", a.useGuideLine, b.useGuideLine);
    rows.Number("Lead-In", a.guideInLen, b.guideInLen);
    rows.Number("Lead-Out", a.guideOutLen, b.guideOutLen);
    comparePen(rows, a.pen, b.pen);
    rows.OnOff("Use laser compensation", a.useCompensate, b.useCompensate);
    rows.Number("Compensation size", a.compensateSize, b.compensateSize);
    return rows.Take();
}

QList<QStringList> SweepSetChanges(const CLibSweepSet &a, const CLibSweepSet &b, bool dualLaser)
{
    ChangeRows rows(dualLaser);
    rows.Number("Speed", a.speed, b.speed);
    for (int n = 1; n <= rows.LaserCount(); ++n) {
        rows.Number("Max Power", libLaser(a, n).power, libLaser(b, n).power, n);
        // The only minimum a sweep set keeps is the first laser's ramp start.
        if (n == 1)
            rows.Number("Min Power", a.minPower, b.minPower, n);
    }
    for (int n = 1; n <= rows.LaserCount(); ++n) {
        rows.Number("Jump Delay", libLaser(a, n).jumpDelay, libLaser(b, n).jumpDelay, n);
        rows.Number("Corner Delay", libLaser(a, n).cornerDelay, libLaser(b, n).cornerDelay, n);
    }
    rows.Air(a.blowing, b.blowing);
    rows.Number("Processing Times", a.carvingNumber, b.carvingNumber);
    comparePen(rows, a.pen, b.pen);
    rows.OnOff("Slope pattern", a.isRamp, b.isRamp);
    rows.Number("Ramp Length", a.rampLength, b.rampLength);
    rows.OnOff("3D Relief", a.is3DRelief, b.is3DRelief);
    rows.Choice("Mode", a.mode, b.mode, "HoriZontal bidirectional", "HoriZontal one-way");
    // The scan direction is the layer's, not the set's: no row here.
    rows.OnOff("Offset engraving", a.offsetEngraving, b.offsetEngraving);
    rows.Choice("Engraving direction", a.offsetType, b.offsetType, "Inside out", "Outside in");
    rows.Resolution("Resolution", a.dpi, b.dpi);
    return rows.Take();
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
