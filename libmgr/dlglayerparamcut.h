#pragma once

#include "clayerparameditor.h"

#include "library/libraryrecords.h"

#include <memory>

namespace Ui {
class DlgLayerParamCut;
}

// Editor of the line processes (cutting, scoring): speed and powers of the
// chosen laser, air assist and passes on the first page; pulse settings,
// dwell, tabs, leads, seal length, focus and kerf compensation on the
// advanced pages.
class DlgLayerParamCut : public CLayerParamEditor
{
    Q_OBJECT

public:
    explicit DlgLayerParamCut(QWidget *parent = nullptr);
    ~DlgLayerParamCut() override;

    void LoadSet(const CLibCutSet &set);
    // Key and note of the set stay.
    void ReadSet(CLibCutSet &set) const;
    // The layer's line block and air assist.
    void LoadLayer(const CLayerParam &layer);
    void ReadLayer(CLayerParam &layer) const;

    // Upper bound of the speed, mm/s.
    double SpeedLimit() const { return m_speedLimit; }

private:
    void addFields();

    std::unique_ptr<Ui::DlgLayerParamCut> ui;
    double m_speedLimit = 200.0;
};
