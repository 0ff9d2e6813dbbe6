#pragma once

#include "clibrarystore.h"
#include "crunningoptions.h"

class ILayerHost;

// The module-wide context shared by the module, the layer manager, the unit
// conversions and the library: the host's pointers, the display unit mode,
// then the library store with the per-colour running options.
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

    CLibraryStore &Store() { return m_store; }
    const CLibraryStore &Store() const { return m_store; }

    const RunningOptionList &RunningOptions() const { return m_store.RunningOptions(); }
    // First entry of that colour, or null.
    const CRunningOptions *FindRunningOption(quint32 color) const
    {
        return m_store.FindRunningOption(color);
    }
    // Replaces the first entry of the colour, or appends one.
    void SetRunningOption(quint32 color, const CRunningOptions &options)
    {
        m_store.SetRunningOption(color, options);
    }
    // Drops the first entry of the colour.
    void RemoveRunningOption(quint32 color) { m_store.RemoveRunningOption(color); }
    QString RunningOptionsJson() const { return m_store.RunningOptionsJson(); }
    bool SetRunningOptionsJson(const QString &text) { return m_store.SetRunningOptionsJson(text); }

    // Back to the state of a freshly loaded plug-in.
    void Reset();

private:
    CLibraryStore m_store;
};

extern CLayerContext g_LayerContext;
