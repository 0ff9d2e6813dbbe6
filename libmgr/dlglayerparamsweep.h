#pragma once

#include "clayerparameditor.h"

#include "library/libraryrecords.h"

#include <memory>

namespace Ui {
class DlgLayerParamSweep;
}

// Editor of the fill processes (shallow and deep engraving): speed, powers,
// air assist and passes first; pulse settings, scan mode, direction and
// resolution, slope, relief, offset engraving and focus on the advanced
// pages. Deep mode adds the minimum power and the slope pattern.
class DlgLayerParamSweep : public CLayerParamEditor
{
    Q_OBJECT

public:
    explicit DlgLayerParamSweep(QWidget *parent = nullptr);
    ~DlgLayerParamSweep() override;

    // Deep mode follows the set's craft.
    void LoadSet(const CLibSweepSet &set);
    // Key and note of the set stay; deep-only values follow its craft.
    void ReadSet(CLibSweepSet &set) const;
    // The layer's fill block and air assist.
    void LoadLayer(const CLayerParam &layer);
    void ReadLayer(CLayerParam &layer) const;

    void SetDeepMode(bool deep);
    bool IsDeepMode() const { return m_deep; }

    double SpeedLimit() const { return m_speedLimit; }

private slots:
    void on_comboBox_direction_activated(int index);

private:
    void addFields();

    std::unique_ptr<Ui::DlgLayerParamSweep> ui;
    double m_speedLimit = 1000.0;
    bool m_deep = false;
};
