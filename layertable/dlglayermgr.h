#pragma once

#include "module/clayerparam.h"
#include "module/ilayerpanel.h"

#include <QIcon>
#include <QList>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>
#include <set>
#include <vector>

class CLayerMgrIns;
class ILayerHost;
class IResolution;
class QTableWidgetItem;

namespace Ui {
class DlgLayerMgr;
}

// What the library manager dialog gets when a row is double-clicked.
struct LayerLibraryRequest
{
    QWidget *parent = nullptr;
    CLayerParam *layer = nullptr;
    ILayerHost *host = nullptr;
    QStringList numberTexts;
    CLayerMgrIns *manager = nullptr;
    int row = -1;
};

// The table of the document's layers that the module puts into the host's
// window: one row per layer with its number and colour, mode, speed, power,
// laser source, air assist and output switch. Common fields are edited in
// place; rows are dragged into a new processing order.
class DlgLayerMgr : public QWidget, public ILayerPanel
{
    Q_OBJECT

public:
    // Runs the library manager dialog modally; true when the user accepted.
    using LibraryDialogOpener = std::function<bool(const LayerLibraryRequest &request)>;

    explicit DlgLayerMgr(QWidget *parent = nullptr);
    ~DlgLayerMgr() override;

    void SetDualLaser(bool dualLaser) override;
    void RefreshSpeeds() override;
    void SyncLayers(CLayerMgrIns *manager, bool force) override;
    void AddPendingColor(quint32 color) override;
    void SelectPendingColors() override;
    quint32 CurrentLayerColor() const override;
    void SetPanelData(void *data) override;
    void *GetPanelData() const override;

    // Without an opener a double click only makes the row current.
    void SetLibraryDialogOpener(LibraryDialogOpener opener);

    int CurrentRow() const { return m_currentRow; }
    // The row's layer as it was before the last in-place edit.
    const CLayerParam &ScratchLayer() const { return *m_scratchLayer; }
    bool DualLaser() const { return m_dualLaser; }
    // Rows carry their cell widgets only while near the view.
    bool HasRowWidgets(int row) const;
    bool TypeToggle() const { return m_typeToggle; }

    // Item data role of the column-1 item that carries the row's layer.
    static constexpr int kLayerRole = Qt::UserRole + 1;

public slots:
    void HorzHeaderClickedSlot(int column);
    void MoveLayerSlot(int from, int to);
    void OutputButtonClickedSlot(bool checked);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct LaserNames;
    class UniqueNumbers;

    void initialise();
    int rowHeight() const;
    void translateHeaders();
    void createRows(int count);
    void attachRowWidgets(int row);
    void detachRowWidgets(int row);
    void updateWidgetWindow();
    void refill();
    void fillRow(int row, CLayerParam *layer, const LaserNames &names, UniqueNumbers *numbers);
    void fillValues(int row, const CLayerParam &layer, const LaserNames &names);
    CLayerParam *layerOfRow(int row) const;
    void copyLayers(CLayerMgrIns *manager);
    void fitColumns();
    void selectRowOnce(int row);
    QString speedText(const CLayerParam &layer) const;

    void outputClicked(QWidget *button);
    void onCellClicked(int row, int column);
    void onItemDoubleClicked(QTableWidgetItem *item);
    void onModeChanged(int row, int index);
    void onValueEdited(int row);
    void onAirChanged(int row, int index);
    void activateRow(int row);

    std::unique_ptr<Ui::DlgLayerMgr> ui;
    // Context of every connection into the panel; it goes first when the
    // panel goes, so no signal reaches a half-destroyed panel.
    std::unique_ptr<QObject> m_receiver;
    CLayerMgrIns *m_manager = nullptr;
    std::vector<CLayerParam> m_layers;
    QList<quint32> m_pendingColors;
    int m_currentRow = 0;
    IResolution *m_resolution = nullptr;
    std::unique_ptr<CLayerParam> m_scratchLayer;
    bool m_rebuildPending = false;
    bool m_dualLaser = false;
    bool m_typeToggle = true;
    bool m_initialised = false;

    void *m_panelData = nullptr;
    LibraryDialogOpener m_libraryOpener;
    QIcon m_eyeOpen;
    QIcon m_eyeClosed;
    // Rows that showed a layer at the last refill; the rest are spare.
    int m_shownRows = 0;
    // Rows that carry cell widgets at the moment: those near the view.
    std::set<int> m_widgetRows;
};
