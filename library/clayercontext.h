#pragma once

#include "crunningoptions.h"

class ILayerHost;

// The module-wide context shared by the module, the layer manager, the unit
// conversions and the library: the host's pointers, the display unit mode,
// and the per-colour running options.
class CLayerContext
{
public:
    ILayerHost *m_pHost = nullptr;
    void *m_pHostData = nullptr;
    qint32 m_unitMode = 0;

    double LengthToDisplay(double mm) const;
    double LengthFromDisplay(double value) const;
    double SpeedToDisplay(double mmPerSecond) const;
    double SpeedFromDisplay(double value) const;

    const RunningOptionList &RunningOptions() const { return m_runningOptions; }
    // First entry of that colour, or null.
    const CRunningOptions *FindRunningOption(quint32 color) const;
    // Replaces the first entry of the colour, or appends one.
    void SetRunningOption(quint32 color, const CRunningOptions &options);
    // Drops the first entry of the colour.
    void RemoveRunningOption(quint32 color);
    QString RunningOptionsJson() const;
    bool SetRunningOptionsJson(const QString &text);

    // Back to the state of a freshly loaded plug-in.
    void Reset();

private:
    RunningOptionList m_runningOptions;
};

extern CLayerContext g_LayerContext;
