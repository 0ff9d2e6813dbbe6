#include "dlglayermgr.h"
#include "ui_DlgLayerMgr.h"

#include "clayerair.h"
#include "clayerlineeditwidget.h"
#include "clayermodewidget.h"
#include "clayernumberwidget.h"
#include "combocell.h"
#include "ctablewidgetupdown.h"

#include "library/clayercontext.h"
#include "module/clayermgrins.h"
#include "module/layercolors.h"
#include "resolution/iresolution.h"
#include "support/directories.h"
#include "support/moduleloader.h"
#include "support/settings.h"
#include "support/units.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QEvent>
#include <QHash>
#include <QHeaderView>
#include <QLocale>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

enum ECOLUMN {
    COL_NUM = 0,
    COL_MODE = 1,
    COL_SPEED = 2,
    COL_POWER = 3,
    COL_TYPE = 4,
    COL_AIR = 5,
    COL_OUTPUT = 6,
    COLUMN_COUNT = 7,
};

constexpr int kInitialRows = 10;
constexpr char kRowProperty[] = "layerRow";
constexpr double kRowGrowth = 1.3;
constexpr double kDesignRowHeight = 40.0;
constexpr int kFirstUniqueNumber = 37;
constexpr int kItemNullLine = 787;
constexpr int kEventLaserSelection = 0;
constexpr int kEventWorkType = 2;
constexpr int kEventLayersMoved = 3;

QString wording(const QString &english)
{
    return CTranslator::GetInstance()->GetWording(english);
}

QString laserTypeName(int type)
{
    switch (type) {
    case 1:
    case 2:
        return wording(QStringLiteral("RF"));
    case 3:
        return wording(QStringLiteral("Fiber"));
    case 4:
        return wording(QStringLiteral("Semiconductor laser"));
    default:
        return wording(QStringLiteral("Glass"));
    }
}

// Black has number 1, the standard colours their number plus one; 0 for the
// rest, which get unique numbers.
int paletteNumber(quint32 color)
{
    if (color == 0 || color == 0x010101u)
        return 1;
    const quint32 standard = StandardLayerNumber(color);
    return standard ? int(standard) + 1 : 0;
}

template<typename T>
T *cellWidget(QTableWidget *table, int row, int column)
{
    return qobject_cast<T *>(table->cellWidget(row, column));
}

// Items under cell widgets must not open editors of their own, whatever the
// edit triggers say.
QTableWidgetItem *newItem()
{
    auto *item = new QTableWidgetItem;
    item->setFlags(item->flags() & ~Qt::ItemIsEditable);
    return item;
}

} // namespace

struct DlgLayerMgr::LaserNames
{
    QString laser1;
    QString laser2;

    static LaserNames Read()
    {
        const LaserTypeCodes types = ReadLaserTypes();
        return {laserTypeName(types.laser1), laserTypeName(types.laser2)};
    }
};

// Hands out numbers from 37 upward to layers whose colour is not in the
// palette. While the list is rebuilt a layer keeps its stored number unless
// another layer holds it too; otherwise stored numbers stay. A layer without
// a number of 37 or more (one that was never shown, a special layer held back
// at the last synchronisation) takes the smallest number no layer holds.
class DlgLayerMgr::UniqueNumbers
{
public:
    UniqueNumbers(CLayerMgrIns &manager, bool renumberShared)
        : m_renumberShared(renumberShared)
    {
        const quint32 count = quint32(manager.GetLayerCount());
        m_held.reserve(qsizetype(count));
        for (quint32 i = 0; i < count; ++i) {
            const CLayerParam *layer = manager.GetLayerAt(i);
            if (layer && paletteNumber(layer->COLOR) == 0 && layer->AUX_INDEX >= kFirstUniqueNumber)
                ++m_held[layer->AUX_INDEX];
        }
    }

    int Take(const CLayerParam &layer)
    {
        const int stored = layer.AUX_INDEX;
        if (stored >= kFirstUniqueNumber) {
            if (!m_renumberShared || m_held.value(stored) == 1)
                return stored;
            // Shared with another layer: this one moves on.
            --m_held[stored];
        }
        int number = m_lowestFree;
        while (m_held.contains(number))
            ++number;
        m_held.insert(number, 1);
        m_lowestFree = number + 1;
        return number;
    }

private:
    bool m_renumberShared;
    QHash<int, int> m_held;
    // Every number from 37 below this one is held.
    int m_lowestFree = kFirstUniqueNumber;
};

DlgLayerMgr::DlgLayerMgr(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui::DlgLayerMgr)
    , m_receiver(std::make_unique<QObject>())
{
    m_layers.clear();
    m_pendingColors.clear();
    m_currentRow = 0;
    m_dualLaser = false;
    m_typeToggle = true;
    ui->setupUi(this);
    translateHeaders();
    initialise();
}

DlgLayerMgr::~DlgLayerMgr()
{
    // The cell widgets outlive this part of the object while QWidget deletes
    // its children, and a line edit losing focus then still reports an edit.
    m_receiver.reset();
    ui->tableWidget->viewport()->removeEventFilter(this);
    if (g_pLayerPanel == this)
        g_pLayerPanel = nullptr;
    if (m_resolution)
        ReleaseModule(m_resolution);
}

void DlgLayerMgr::initialise()
{
    // Without the display-scale module the rows keep their design height.
    m_resolution = static_cast<IResolution *>(LoadModule(QStringLiteral("Resolution"), false));
    m_scratchLayer = std::make_unique<CLayerParam>();
    m_layers.clear();

    const QString icons = AppResourceDir() + QStringLiteral("/Res/Icon/");
    m_eyeOpen = QIcon(icons + QStringLiteral("LayerEye.svg"));
    m_eyeClosed = QIcon(icons + QStringLiteral("LayerCloseEye.svg"));

    CTableWidgetUpDown *table = ui->tableWidget;
    table->horizontalHeader()->setHighlightSections(false);
    table->verticalHeader()->setDefaultSectionSize(rowHeight());
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setShowGrid(false);
    table->setEditTriggers(QAbstractItemView::CurrentChanged);
    table->setStyleSheet(QStringLiteral("border:none;"));
    // The cells' combos are drawn in Fusion; the cells take it from the
    // viewport, one style for all of them.
    if (QStyle *style = ComboCell::SharedStyle())
        table->viewport()->setStyle(style);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    QObject *receiver = m_receiver.get();
    connect(table, &CTableWidgetUpDown::MoveLayerSignal, receiver,
            [this](int from, int to) { MoveLayerSlot(from, to); });
    connect(table->horizontalHeader(), &QHeaderView::sectionClicked, receiver,
            [this](int column) { HorzHeaderClickedSlot(column); });
    connect(table, &QTableWidget::cellClicked, receiver,
            [this](int row, int column) { onCellClicked(row, column); });
    connect(table, &QTableWidget::itemDoubleClicked, receiver,
            [this](QTableWidgetItem *item) { onItemDoubleClicked(item); });
    createRows(kInitialRows);
    connect(table->verticalScrollBar(), &QScrollBar::valueChanged, receiver,
            [this] { updateWidgetWindow(); });
    table->viewport()->installEventFilter(this);
    m_initialised = true;
}

int DlgLayerMgr::rowHeight() const
{
    const double scaled = m_resolution ? m_resolution->Scale(kDesignRowHeight) : kDesignRowHeight;
    // A scale module answering nonsense must not collapse or explode the rows.
    if (!std::isfinite(scaled) || scaled < 1.0 || scaled > 10 * kDesignRowHeight)
        return int(kDesignRowHeight);
    return int(scaled);
}

void DlgLayerMgr::translateHeaders()
{
    QTableWidget *table = ui->tableWidget;
    if (table->columnCount() < COLUMN_COUNT)
        table->setColumnCount(COLUMN_COUNT);
    const QString keys[COLUMN_COUNT] = {
        QStringLiteral("Num"),
        QStringLiteral("Mode"),
        QStringLiteral("Speed"),
        QStringLiteral("Power"),
        m_dualLaser ? QStringLiteral("Type\u296E") : QStringLiteral("Type"),
        QStringLiteral("Blowing"),
        QStringLiteral("Output"),
    };
    for (int column = 0; column < COLUMN_COUNT; ++column) {
        QTableWidgetItem *header = table->horizontalHeaderItem(column);
        if (!header) {
            header = new QTableWidgetItem;
            table->setHorizontalHeaderItem(column, header);
        }
        const QString text = wording(keys[column]);
        header->setText(text);
        header->setToolTip(text);
    }
}

void DlgLayerMgr::createRows(int count)
{
    CTableWidgetUpDown *table = ui->tableWidget;
    const int first = table->rowCount();
    if (count <= first)
        return;
    // One model change for the whole batch, and hiding after all rows are
    // built: both keep a long layer list from costing quadratic time.
    table->setRowCount(count);
    for (int row = first; row < count; ++row) {
        table->setItem(row, COL_NUM, newItem());
        table->setItem(row, COL_MODE, newItem());
        table->setItem(row, COL_AIR, newItem());
        QTableWidgetItem *type = newItem();
        type->setTextAlignment(Qt::AlignCenter);
        table->setItem(row, COL_TYPE, type);
    }
    for (int row = first; row < count; ++row)
        table->setRowHidden(row, true);
}

void DlgLayerMgr::attachRowWidgets(int row)
{
    CTableWidgetUpDown *table = ui->tableWidget;
    QTableWidgetItem *numberItem = table->item(row, COL_NUM);
    // Made inside the viewport they take the table's style sheet once, as
    // they are built, instead of once more when they move into their cell.
    QWidget *cells = table->viewport();
    auto *number = new CLayerNumberWidget(cells);
    table->setCellWidget(row, COL_NUM, number);
    QObject *receiver = m_receiver.get();
    connect(number, &CLayerNumberWidget::ButtonDoubleClicked, receiver, [this, numberItem] {
        // The button swallows the clicks, so its row is made current here.
        ui->tableWidget->selectRow(numberItem->row());
        onItemDoubleClicked(numberItem);
    });

    auto *mode = new CLayerModeWidget(cells);
    table->setCellWidget(row, COL_MODE, mode);
    connect(mode, &CLayerModeWidget::currentIndexChanged, receiver,
            [this, row](int index) { onModeChanged(row, index); });

    auto *speed = new CLayerLineEditWidget(cells);
    speed->SetRange(0.0, 3000.0, 0, QLocale::C);
    speed->SetText(QStringLiteral("1"));
    auto *power = new CLayerLineEditWidget(cells);
    power->SetRange(0.1, 100.0, 1, QLocale::C);
    power->SetText(QStringLiteral("1"));
    for (CLayerLineEditWidget *value : {speed, power}) {
        connect(value, &CLayerLineEditWidget::editingFinished, receiver,
                [this, row] { onValueEdited(row); });
        connect(value, &CLayerLineEditWidget::rightButtonClicked, receiver,
                [this, row] { activateRow(row); });
    }
    table->setCellWidget(row, COL_SPEED, speed);
    table->setCellWidget(row, COL_POWER, power);

    auto *air = new CLayerAir(cells);
    table->setCellWidget(row, COL_AIR, air);
    connect(air, &CLayerAir::currentIndexChanged, receiver,
            [this, row](int index) { onAirChanged(row, index); });

    auto *output = new QPushButton(cells);
    output->setObjectName(QStringLiteral("pushButton_layerEye"));
    output->setCheckable(true);
    output->setChecked(true);
    output->setIcon(m_eyeOpen);
    output->setProperty(kRowProperty, row);
    connect(output, &QPushButton::clicked, receiver, [this, output] { outputClicked(output); });
    table->setCellWidget(row, COL_OUTPUT, output);
}

void DlgLayerMgr::detachRowWidgets(int row)
{
    QTableWidget *table = ui->tableWidget;
    for (int column : {COL_NUM, COL_MODE, COL_SPEED, COL_POWER, COL_AIR, COL_OUTPUT})
        table->removeCellWidget(row, column);
}

bool DlgLayerMgr::HasRowWidgets(int row) const
{
    return ui->tableWidget->cellWidget(row, COL_NUM) != nullptr;
}

void DlgLayerMgr::updateWidgetWindow()
{
    CTableWidgetUpDown *table = ui->tableWidget;
    // Rows get their cell widgets only while they are near the visible part
    // of the table: making a row's widgets costs far more than filling it,
    // and thousands of sibling widgets make every layout and scroll step of
    // the view quadratic.
    int first = table->rowAt(0);
    int last = table->rowAt(table->viewport()->height() - 1);
    if (first < 0)
        first = 0;
    // The rows end above the bottom, or the view is not laid out yet (a
    // hidden panel must not build widgets for every row).
    if (last < 0)
        last = std::min(m_shownRows - 1, first + table->viewport()->height() / rowHeight() + 1);
    // Half a page above and below: a wheel step or a drag near the edge
    // shows filled rows, and the rows made at once stay few.
    const int margin = std::max(4, (last - first + 2) / 2);
    const int low = std::max(0, first - margin);
    const int high = std::min(m_shownRows - 1, last + margin);

    for (auto it = m_widgetRows.begin(); it != m_widgetRows.end();) {
        if (*it < low || *it > high) {
            detachRowWidgets(*it);
            it = m_widgetRows.erase(it);
        } else {
            ++it;
        }
    }
    if (low > high || !m_manager)
        return;
    std::optional<LaserNames> names;
    for (int row = low; row <= high; ++row) {
        if (HasRowWidgets(row))
            continue;
        attachRowWidgets(row);
        m_widgetRows.insert(row);
        if (!names)
            names = LaserNames::Read();
        if (CLayerParam *layer = layerOfRow(row))
            fillRow(row, layer, *names, nullptr);
    }
}

CLayerParam *DlgLayerMgr::layerOfRow(int row) const
{
    QTableWidgetItem *item = ui->tableWidget->item(row, COL_MODE);
    if (!item) {
        ILog_WriteLogF(3, "%d item null !!!", kItemNullLine);
        return nullptr;
    }
    return static_cast<CLayerParam *>(item->data(kLayerRole).value<void *>());
}

void DlgLayerMgr::copyLayers(CLayerMgrIns *manager)
{
    m_manager = manager;
    const quint32 count = quint32(manager->GetLayerCount());
    m_layers.clear();
    m_layers.reserve(count);
    for (quint32 i = 0; i < count; ++i)
        m_layers.push_back(*manager->GetLayerAt(i));
}

void DlgLayerMgr::SyncLayers(CLayerMgrIns *manager, bool force)
{
    if (!manager)
        return;
    if (!m_manager || force) {
        if (!m_manager)
            m_rebuildPending = true;
        copyLayers(manager);
        refill();
        m_rebuildPending = false;
    } else {
        const quint64 count = manager->GetLayerCount();
        bool differ = count != m_layers.size();
        if (differ) {
            if (count > m_layers.size())
                m_rebuildPending = true;
        } else {
            for (size_t i = 0; i < m_layers.size(); ++i) {
                if (*manager->GetLayerAt(quint32(i)) != m_layers[i]) {
                    differ = true;
                    break;
                }
            }
        }
        if (differ) {
            copyLayers(manager);
            refill();
            m_rebuildPending = false;
        }
    }
    if (!m_pendingColors.isEmpty())
        m_pendingColors.clear();
    fitColumns();
}

void DlgLayerMgr::refill()
{
    if (!m_manager)
        return;
    CTableWidgetUpDown *table = ui->tableWidget;
    const int count = int(m_manager->GetLayerCount());
    table->setUpdatesEnabled(false);
    if (table->rowCount() < count)
        createRows(int(count * kRowGrowth));

    const LaserNames names = LaserNames::Read();
    UniqueNumbers numbers(*m_manager, m_rebuildPending);
    for (int row = 0; row < count; ++row)
        fillRow(row, m_manager->GetLayerAt(quint32(row)), names, &numbers);

    // Spare rows stay hidden for later growth; they must not keep pointers to
    // layers that may be gone.
    const int rows = table->rowCount();
    for (int row = count; row < rows; ++row) {
        if (row < m_shownRows) {
            if (QTableWidgetItem *item = table->item(row, COL_MODE))
                item->setData(kLayerRole, QVariant());
        }
        if (!table->isRowHidden(row))
            table->setRowHidden(row, true);
    }
    m_shownRows = count;
    updateWidgetWindow();

    QTableWidgetItem *current = table->item(m_currentRow, COL_MODE);
    if (current && !current->isSelected())
        table->selectRow(m_currentRow);
    table->setUpdatesEnabled(true);
}

QString DlgLayerMgr::speedText(const CLayerParam &layer) const
{
    if (layer.WORK_TYPE == WORK_MARK)
        return QStringLiteral("/");
    const double speed = layer.IsLineProcess() ? layer.CUT.CUT_SPEED : layer.SWEEP.SWEEP_SPEED;
    return QString::number(SpeedToDisplay(speed, g_LayerContext.m_unitMode), 'f', 1);
}

namespace {
QString powerText(const CLayerParam &layer)
{
    if (layer.WORK_TYPE == WORK_MARK)
        return QStringLiteral("/");
    const LaserParam &laser1 = layer.IsLineProcess() ? layer.CUT.LASER1 : layer.SWEEP.LASER1;
    const LaserParam &laser2 = layer.IsLineProcess() ? layer.CUT.LASER2 : layer.SWEEP.LASER2;
    return QString::number(laser1.ENABLE ? laser1.POWER_MAX : laser2.POWER_MAX, 'g', 6);
}

QString modeName(int workType)
{
    // "Unknow" is shown as it is, untranslated.
    const QString name = CLayerModeWidget::WorkTypeName(workType);
    return workType >= WORK_CUTTING && workType <= WORK_MARK ? wording(name) : name;
}
} // namespace

void DlgLayerMgr::fillValues(int row, const CLayerParam &layer, const LaserNames &names)
{
    QTableWidget *table = ui->tableWidget;
    const bool mark = layer.WORK_TYPE == WORK_MARK;
    bool laser1 = true;
    if (!mark) {
        laser1 = layer.IsLineProcess() ? layer.CUT.LASER1.ENABLE : layer.SWEEP.LASER1.ENABLE;
    }
    if (auto *speed = cellWidget<CLayerLineEditWidget>(table, row, COL_SPEED)) {
        const QString text = speedText(layer);
        speed->SetText(text);
        speed->setToolTip(text);
        speed->SetDisabled(mark);
    }
    if (auto *power = cellWidget<CLayerLineEditWidget>(table, row, COL_POWER)) {
        const QString text = powerText(layer);
        power->SetText(text);
        power->setToolTip(text);
        power->SetDisabled(mark);
    }
    if (QTableWidgetItem *type = table->item(row, COL_TYPE)) {
        const QString name = laser1 ? names.laser1 : names.laser2;
        type->setText(name);
        type->setToolTip(name);
        type->setTextAlignment(Qt::AlignCenter);
    }
}

void DlgLayerMgr::fillRow(int row, CLayerParam *layer, const LaserNames &names,
                          UniqueNumbers *numbers)
{
    CTableWidgetUpDown *table = ui->tableWidget;
    if (!layer)
        return;

    const quint32 color = layer->COLOR;
    int number = paletteNumber(color);
    if (number == 0 && numbers) {
        number = numbers->Take(*layer);
    } else if (number == 0) {
        number = layer->AUX_INDEX;
        if (number < kFirstUniqueNumber && m_manager)
            number = UniqueNumbers(*m_manager, false).Take(*layer);
    }
    layer->AUX_INDEX = number;
    if (size_t(row) < m_layers.size() && m_layers[size_t(row)].COLOR == color)
        m_layers[size_t(row)].AUX_INDEX = number;
    if (auto *numberWidget = cellWidget<CLayerNumberWidget>(table, row, COL_NUM)) {
        numberWidget->SetColor(int((color >> 16) & 0xFF), int((color >> 8) & 0xFF),
                               int(color & 0xFF),
                               QStringLiteral("%1").arg(row + 1, 2, 10, QLatin1Char('0')), number);
    }

    const QString mode = modeName(layer->WORK_TYPE);
    if (auto *modeWidget = cellWidget<CLayerModeWidget>(table, row, COL_MODE)) {
        // Filling a row is not a user's choice of mode.
        const QSignalBlocker blocker(modeWidget);
        if (modeWidget->FillOnly() != layer->FILL_LOCKED || modeWidget->Count() == 0)
            modeWidget->BuildList(layer->FILL_LOCKED);
        modeWidget->SetCurrentText(mode);
    }
    if (QTableWidgetItem *item = table->item(row, COL_MODE)) {
        item->setData(kLayerRole, QVariant::fromValue(static_cast<void *>(layer)));
        item->setToolTip(mode);
    }

    if (auto *air = cellWidget<CLayerAir>(table, row, COL_AIR)) {
        const QSignalBlocker blocker(air);
        air->SetCurrentText(wording(layer->BLOW ? QStringLiteral("High") : QStringLiteral("Low")));
    }

    fillValues(row, *layer, names);

    if (auto *output = cellWidget<QPushButton>(table, row, COL_OUTPUT)) {
        const QIcon &icon = layer->OUTPUT ? m_eyeOpen : m_eyeClosed;
        if (output->icon().cacheKey() != icon.cacheKey())
            output->setIcon(icon);
        output->setChecked(layer->OUTPUT);
    }
    if (table->isRowHidden(row))
        table->setRowHidden(row, false);
}

void DlgLayerMgr::fitColumns()
{
    CTableWidgetUpDown *table = ui->tableWidget;
    table->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    table->setTextElideMode(Qt::ElideRight);
    QHeaderView *header = table->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Stretch);
    const int sections = header->count();
    if (sections == 0)
        return;
    int sum = 0;
    for (int i = 0; i < sections; ++i)
        sum += header->sectionSize(i);
    const int width = header->width();
    if (sum <= 0 || width <= sum)
        return;
    const double factor = double(width) / sum;
    int used = 0;
    for (int i = 0; i < sections - 1; ++i) {
        const int size = int(header->sectionSize(i) * factor);
        header->resizeSection(i, size);
        used += size;
    }
    const int last = sections - 1;
    const QTableWidgetItem *lastHeader = table->horizontalHeaderItem(last);
    const int textWidth =
        header->fontMetrics().horizontalAdvance(lastHeader ? lastHeader->text() : QString());
    const int rest = width - used;
    header->resizeSection(last, textWidth <= rest ? rest : textWidth);
}

void DlgLayerMgr::SetDualLaser(bool dualLaser)
{
    if (dualLaser == m_dualLaser)
        return;
    m_dualLaser = dualLaser;
    if (QTableWidgetItem *header = ui->tableWidget->horizontalHeaderItem(COL_TYPE)) {
        const QString text =
            wording(dualLaser ? QStringLiteral("Type\u296E") : QStringLiteral("Type"));
        header->setText(text);
        header->setToolTip(text);
    }
    refill();
}

void DlgLayerMgr::RefreshSpeeds()
{
    QTableWidget *table = ui->tableWidget;
    const int rows = std::min(int(m_layers.size()), table->rowCount());
    for (int row = 0; row < rows; ++row) {
        const CLayerParam *layer = layerOfRow(row);
        auto *speed = cellWidget<CLayerLineEditWidget>(table, row, COL_SPEED);
        if (!layer || !speed)
            continue;
        const QString text = speedText(*layer);
        speed->SetText(text);
        speed->setToolTip(text);
    }
}

void DlgLayerMgr::AddPendingColor(quint32 color)
{
    if (!m_pendingColors.contains(color))
        m_pendingColors.append(color);
}

void DlgLayerMgr::selectRowOnce(int row)
{
    QTableWidget *table = ui->tableWidget;
    QItemSelectionModel *selection = table->selectionModel();
    if (!selection || !selection->isRowSelected(row, QModelIndex()))
        table->selectRow(row);
}

void DlgLayerMgr::SelectPendingColors()
{
    CTableWidgetUpDown *table = ui->tableWidget;
    QList<int> rows;
    for (size_t i = 0; i < m_layers.size(); ++i) {
        const quint32 color = m_layers[i].COLOR;
        if (!IsReservedColor(color) && m_pendingColors.contains(color))
            rows.append(int(i));
    }
    if (!m_manager)
        return;
    refill();
    table->clearSelection();
    if (rows.isEmpty()) {
        if (QTableWidgetItem *item = table->item(m_currentRow, COL_NUM))
            table->scrollToItem(item);
        selectRowOnce(m_currentRow);
    } else if (rows.size() > 1) {
        for (int row : std::as_const(rows))
            selectRowOnce(row);
        if (QTableWidgetItem *item = table->item(rows.first(), COL_NUM))
            table->scrollToItem(item);
    } else {
        const int row = rows.first();
        if (QTableWidgetItem *item = table->item(row, COL_NUM))
            table->scrollToItem(item);
        table->selectRow(row);
        m_currentRow = row;
    }
}

quint32 DlgLayerMgr::CurrentLayerColor() const
{
    if (m_layers.empty() || m_currentRow < 0 || size_t(m_currentRow) >= m_layers.size())
        return 0;
    return m_layers[size_t(m_currentRow)].COLOR;
}

void DlgLayerMgr::SetPanelData(void *data)
{
    m_panelData = data;
}

void *DlgLayerMgr::GetPanelData() const
{
    return m_panelData;
}

void DlgLayerMgr::SetLibraryDialogOpener(LibraryDialogOpener opener)
{
    m_libraryOpener = std::move(opener);
}

void DlgLayerMgr::HorzHeaderClickedSlot(int column)
{
    if (!m_dualLaser || column != COL_TYPE)
        return;
    ILog_WriteLogF(0, "%s", "horizontalHeader was clicked.");
    m_typeToggle = !m_typeToggle;
    if (!m_manager)
        return;
    const bool before = m_manager->FiberFirst();
    m_manager->SetFiberFirst(m_typeToggle);
    if (m_manager->FiberFirst() != before)
        m_manager->NotifyLayerEvent(kEventLaserSelection, nullptr);
    SyncLayers(m_manager, false);
}

void DlgLayerMgr::MoveLayerSlot(int from, int to)
{
    if (!m_manager)
        return;
    m_manager->MoveLayer(from, to);
    SyncLayers(m_manager, false);
    m_manager->NotifyLayerEvent(kEventLayersMoved, nullptr);
    ui->tableWidget->selectRow(m_currentRow);
    m_manager->NotifyLayersChanged();
}

void DlgLayerMgr::OutputButtonClickedSlot(bool checked)
{
    Q_UNUSED(checked);
    outputClicked(qobject_cast<QWidget *>(sender()));
}

void DlgLayerMgr::outputClicked(QWidget *button)
{
    ILog_WriteLogF(0, "%s", "pushButton_layerEye was clicked.");
    if (!button)
        return;
    // The button knows its row: right after a refill its geometry may still
    // be the one of a row hidden before.
    CTableWidgetUpDown *table = ui->tableWidget;
    const QVariant row = button->property(kRowProperty);
    const QModelIndex index = row.isValid() ? table->model()->index(row.toInt(), COL_OUTPUT)
                                            : table->indexAt(button->pos());
    ILog_WriteLogF(1, "clicke index %d,%d", index.row(), index.column());
    if (!index.isValid())
        return;
    CLayerParam *layer = layerOfRow(index.row());
    if (!layer)
        return;
    layer->OUTPUT = !layer->OUTPUT;
    fillRow(index.row(), layer, LaserNames::Read(), nullptr);
    if (m_manager)
        m_manager->NotifyLayersChanged();
}

void DlgLayerMgr::onCellClicked(int row, int column)
{
    ILog_WriteLogF(1, "clickd row %d, column %d", row, column);
    if (row != m_currentRow) {
        m_currentRow = row;
        if (m_manager)
            m_manager->NotifyCurrentLayerChanged();
    }
    if (column != COL_OUTPUT)
        return;
    if (QTableWidgetItem *item = ui->tableWidget->item(row, column))
        item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    CLayerParam *layer = layerOfRow(row);
    if (!layer)
        return;
    layer->OUTPUT = !layer->OUTPUT;
    fillRow(row, layer, LaserNames::Read(), nullptr);
    if (m_manager)
        m_manager->NotifyLayersChanged();
}

void DlgLayerMgr::onItemDoubleClicked(QTableWidgetItem *item)
{
    ILog_WriteLogF(0, "%s", "tableWidget item was double clicked.");
    if (item && item->column() == COL_OUTPUT)
        return;
    CTableWidgetUpDown *table = ui->tableWidget;
    const int row = table->currentRow();
    if (row < 0)
        return;
    CLayerParam *layer = layerOfRow(row);
    if (!layer)
        return;
    *m_scratchLayer = *layer;
    m_currentRow = row;
    if (!m_libraryOpener || !m_manager)
        return;

    LayerLibraryRequest request;
    request.parent = this;
    request.layer = m_scratchLayer.get();
    request.host = m_manager->Host();
    request.manager = m_manager;
    request.row = row;
    // Every row's text, also of rows whose cell widgets are not built: their
    // number is the one the last fill stored in the layer.
    const int rows = int(m_manager->GetLayerCount());
    request.numberTexts.reserve(rows);
    for (int r = 0; r < rows; ++r) {
        if (auto *number = cellWidget<CLayerNumberWidget>(table, r, COL_NUM))
            request.numberTexts << number->ButtonText();
        else if (const CLayerParam *rowLayer = m_manager->GetLayerAt(quint32(r)))
            request.numberTexts << CLayerNumberWidget::NumberText(rowLayer->AUX_INDEX);
        else
            request.numberTexts << QString();
    }
    if (!m_libraryOpener(request))
        return;
    m_manager->SaveRememberedParams();
    SyncLayers(m_manager, true);
    m_manager->NotifyLayersChanged();
}

void DlgLayerMgr::onModeChanged(int row, int index)
{
    ILog_WriteLogF(0, "%s", "comboBox_mode was changed.");
    QTableWidget *table = ui->tableWidget;
    auto *modeWidget = cellWidget<CLayerModeWidget>(table, row, COL_MODE);
    CLayerParam *layer = layerOfRow(row);
    if (!layer || !modeWidget || index < 0)
        return;
    *m_scratchLayer = *layer;
    // A fill-only list starts at shallow engraving.
    const int workType = modeWidget->WorkTypeAt(index);
    layer->WORK_TYPE = workType;
    if (QTableWidgetItem *item = table->item(row, COL_MODE)) {
        item->setData(kLayerRole, QVariant::fromValue(static_cast<void *>(layer)));
        item->setToolTip(modeName(workType));
    }
    if (m_manager)
        m_manager->NotifyLayersChanged();
    // The speed and power shown belong to the new process.
    fillValues(row, *layer, LaserNames::Read());
    if (m_manager)
        m_manager->NotifyLayerEvent(kEventWorkType, layer);
}

void DlgLayerMgr::onValueEdited(int row)
{
    ILog_WriteLogF(0, "%s", "lineEdit_value was changed.");
    QTableWidget *table = ui->tableWidget;
    auto *speed = cellWidget<CLayerLineEditWidget>(table, row, COL_SPEED);
    auto *power = cellWidget<CLayerLineEditWidget>(table, row, COL_POWER);
    CLayerParam *layer = layerOfRow(row);
    if (!layer || !speed || !power)
        return;
    if (layer->WORK_TYPE >= WORK_CUTTING && layer->WORK_TYPE <= WORK_DEEP_ENGRAVE) {
        *m_scratchLayer = *layer;
        const bool line = layer->IsLineProcess();
        double &storedSpeed = line ? layer->CUT.CUT_SPEED : layer->SWEEP.SWEEP_SPEED;
        LaserParam &laser1 = line ? layer->CUT.LASER1 : layer->SWEEP.LASER1;
        LaserParam &laser2 = line ? layer->CUT.LASER2 : layer->SWEEP.LASER2;

        // The editors show rounded values in the display unit: a field the
        // user left as it was must not write its rounding back into the layer.
        if (speed->Text() != CLayerLineEditWidget::ShownText(speedText(*layer), speed->Decimals()))
            storedSpeed = SpeedFromDisplay(speed->Value(), g_LayerContext.m_unitMode);
        if (power->Text() != CLayerLineEditWidget::ShownText(powerText(*layer), power->Decimals())) {
            laser1.POWER_MAX = power->Value();
            laser2.POWER_MAX = power->Value();
        }
    }
    // The editors show what the layer holds, whether the edit was taken or not.
    fillValues(row, *layer, LaserNames::Read());
}

void DlgLayerMgr::onAirChanged(int row, int index)
{
    ILog_WriteLogF(0, "%s", "comboBox_air was changed.");
    CLayerParam *layer = layerOfRow(row);
    if (!layer)
        return;
    *m_scratchLayer = *layer;
    layer->BLOW = index == 0;
    if (m_manager)
        m_manager->NotifyLayersChanged();
}

void DlgLayerMgr::activateRow(int row)
{
    CLayerParam *layer = layerOfRow(row);
    if (!layer)
        return;
    m_currentRow = row;
    ui->tableWidget->selectRow(row);
    if (m_manager)
        m_manager->NotifyCurrentLayerChanged();
}

bool DlgLayerMgr::eventFilter(QObject *watched, QEvent *event)
{
    QWidget *viewport = ui->tableWidget->viewport();
    if (watched == viewport) {
        if (event->type() == QEvent::MouseButtonPress) {
            auto *mouse = static_cast<QMouseEvent *>(event);
            if (mouse->button() == Qt::RightButton) {
                const QModelIndex index = ui->tableWidget->indexAt(mouse->position().toPoint());
                if (index.isValid())
                    activateRow(index.row());
            }
        } else if (event->type() == QEvent::FocusIn) {
            setFocus();
        } else if (event->type() == QEvent::Resize) {
            updateWidgetWindow();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void DlgLayerMgr::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        translateHeaders();
        if (m_manager) {
            const LaserNames names = LaserNames::Read();
            QTableWidget *table = ui->tableWidget;
            const int rows = std::min(int(m_layers.size()), table->rowCount());
            for (int row = 0; row < rows; ++row) {
                const CLayerParam *layer = layerOfRow(row);
                if (!layer)
                    continue;
                fillValues(row, *layer, names);
                if (QTableWidgetItem *item = table->item(row, COL_MODE))
                    item->setToolTip(modeName(layer->WORK_TYPE));
            }
        }
    }
    QWidget::changeEvent(event);
}
