#include "clayermgrins.h"

#include "colorindex.h"
#include "ilayerpanel.h"
#include "layercolors.h"
#include "layerparamfile.h"
#include "layerstream.h"
#include "library/clayercontext.h"
#include "support/settings.h"

#include "cshapegroup.h"
#include "cshapelist.h"
#include "ilayerhost.h"

#include <QIODevice>

#include <algorithm>
#include <optional>

namespace {

const QString kFiber = QStringLiteral("Fiber");
const QString kGlass = QStringLiteral("Glass");
const QString kRF = QStringLiteral("RF");

// Scoring first, then shallow and deep engraving, cutting last.
int processRank(qint32 workType)
{
    switch (workType) {
    case WORK_SHALLOW_ENGRAVE:
        return 1;
    case WORK_DEEP_ENGRAVE:
        return 2;
    case WORK_CUTTING:
        return 3;
    default:
        return 0;
    }
}

void laserNames(QString *laser1, QString *laser2)
{
    const LaserTypeCodes types = ReadLaserTypes();
    *laser1 = CLayerMgrIns::LaserTypeName(types.laser1);
    *laser2 = CLayerMgrIns::LaserTypeName(types.laser2);
}

} // namespace

struct CLayerMgrIns::LaserGroups
{
    LayerList fiber, glass, rf;

    LayerList &byName(const QString &name)
    {
        if (name == kFiber)
            return fiber;
        return name == kRF ? rf : glass;
    }
};

CLayerMgrIns::CLayerMgrIns(void *host)
    : m_host(static_cast<ILayerHost *>(host))
{
    m_remembered.clear();
    ReadLayerParamFile(m_remembered);
    rebuildRememberedIndex();
}

CLayerMgrIns::~CLayerMgrIns() = default;

void CLayerMgrIns::rebuildRememberedIndex()
{
    m_rememberedIndex.clear();
    m_rememberedIndex.reserve(qsizetype(m_remembered.size()));
    for (size_t i = 0; i < m_remembered.size(); ++i) {
        if (!m_rememberedIndex.contains(m_remembered[i]->COLOR))
            m_rememberedIndex.insert(m_remembered[i]->COLOR, int(i));
    }
}

void CLayerMgrIns::remember(const CLayerParam &layer)
{
    const auto it = m_rememberedIndex.constFind(layer.COLOR);
    if (it != m_rememberedIndex.cend()) {
        *m_remembered[size_t(*it)] = layer;
        return;
    }
    m_rememberedIndex.insert(layer.COLOR, int(m_remembered.size()));
    m_remembered.push_back(std::make_unique<CLayerParam>(layer));
}

std::unique_ptr<CLayerParam> CLayerMgrIns::CreateLayer(quint32 color) const
{
    return createLayer(color, userSweepVertType());
}

// The vertical fill order is a user preference, not a colour's.
int CLayerMgrIns::userSweepVertType()
{
    return ReadIniInt(QStringLiteral("LASER_PARAM_SWEEP"), QStringLiteral("SWEEP_VERT_TYPE"), 0,
                      UserParamIniPath());
}

std::unique_ptr<CLayerParam> CLayerMgrIns::createLayer(quint32 color, int sweepVertType) const
{
    auto layer = std::make_unique<CLayerParam>(color);
    const auto it = m_rememberedIndex.constFind(color);
    if (it != m_rememberedIndex.cend())
        *layer = *m_remembered[size_t(*it)];
    layer->SWEEP.SWEEP_VERT_TYPE = sweepVertType;
    return layer;
}

quint64 CLayerMgrIns::UpdateLayers(CShapeList *shapes)
{
    if (!shapes)
        return 0;

    const size_t before = m_layers.size();
    std::vector<CLayerParam> snapshot;
    snapshot.reserve(before);
    for (const auto &layer : m_layers)
        snapshot.push_back(*layer);

    // One slot per colour seen: index < before is an existing layer, above is
    // a layer made in this pass. The slot counts the shapes of the colour and
    // notes whether one of them is selected, so one pass answers every
    // question about the shapes.
    ColorIndex colors(before + 64);
    for (size_t i = 0; i < before; ++i) {
        bool inserted = false;
        ColorIndex::Slot &slot = colors.claim(m_layers[i]->COLOR, &inserted);
        if (inserted)
            slot.index = int(i);
    }

    LayerList made;
    // Read once per pass: nothing can change the settings between two shapes.
    std::optional<int> sweepVertType;
    const int count = shapes->GetCount();
    for (int s = 0; s < count; ++s) {
        const CShape *shape = shapes->GetShape(s);
        const quint32 c = shape->GetColor();
        const bool selected = shape->IsSelected();
        ColorIndex::Slot *slot = &colors.lookup(c);
        if (Q_UNLIKELY(!slot->used)) {
            if (!sweepVertType)
                sweepVertType = userSweepVertType();
            auto layer = createLayer(c, *sweepVertType);
            if (m_pendingNonOutput.remove(c))
                layer->OUTPUT = false;
            if (shape->GetType() == SHAPE_IMAGE) {
                if (layer->WORK_TYPE != WORK_DEEP_ENGRAVE)
                    layer->WORK_TYPE = WORK_SHALLOW_ENGRAVE;
                layer->FILL_LOCKED = true;
                layer->SWEEP.SWEEP_TYPE = 0;
            }
            slot = &colors.claim(c);
            slot->index = int(before + made.size());
            made.push_back(std::move(layer));
        }
        ++slot->hits;
        slot->selected |= selected;
    }

    // Layers no shape uses go, their parameters remembered.
    bool removed = false;
    for (size_t i = before; i-- > 0;) {
        const ColorIndex::Slot *slot = colors.find(m_layers[i]->COLOR);
        // Only the first layer of a colour gets its shapes.
        if (slot->index == int(i) && slot->hits != 0)
            continue;
        remember(*m_layers[i]);
        g_LayerContext.RemoveRunningOption(m_layers[i]->COLOR);
        m_layers[i].reset();
        removed = true;
    }
    if (removed)
        m_layers.erase(std::remove(m_layers.begin(), m_layers.end(), nullptr), m_layers.end());
    for (auto &layer : made)
        m_layers.push_back(std::move(layer));

    bool changed = m_layers.size() != before;
    for (size_t i = 0; !changed && i < before; ++i)
        changed = *m_layers[i] != snapshot[i];
    if (changed)
        Regroup(m_layers.size() < before ? 1 : 0);

    for (auto &layer : m_layers) {
        const ColorIndex::Slot *slot = colors.find(layer->COLOR);
        layer->SELECTED = slot && slot->selected;
    }

    // The special layers go last, after the panel was told: it takes them on
    // its next refill. The first layer is never looked at.
    LayerList heldA, heldB;
    for (size_t i = m_layers.size(); i-- > 1;) {
        const quint32 c = m_layers[i]->COLOR;
        if (c == kReservedColorA)
            heldA.push_back(std::move(m_layers[i]));
        else if (c == kReservedColorB)
            heldB.push_back(std::move(m_layers[i]));
    }
    std::reverse(heldA.begin(), heldA.end());
    std::reverse(heldB.begin(), heldB.end());
    if (!heldA.empty() || !heldB.empty())
        m_layers.erase(std::remove(m_layers.begin(), m_layers.end(), nullptr), m_layers.end());
    if (g_pLayerPanel)
        g_pLayerPanel->SyncLayers(this, false);
    for (auto &layer : heldA)
        m_layers.push_back(std::move(layer));
    for (auto &layer : heldB)
        m_layers.push_back(std::move(layer));

    return changed ? 1 : 0;
}

void CLayerMgrIns::AttachPanel(DlgLayerMgr *panel)
{
    g_pLayerPanel = LayerPanelInterface(panel);
    g_LayerContext.m_pHost = m_host;
}

quint64 CLayerMgrIns::GetLayerCount()
{
    return m_layers.size();
}

quint32 CLayerMgrIns::GetLayerColor(quint32 number, bool alternate)
{
    return StandardLayerColor(number, alternate);
}

quint32 CLayerMgrIns::GetLayerNumber(quint32 color)
{
    return StandardLayerNumber(color);
}

CLayerParam *CLayerMgrIns::GetLayerByColor(quint32 color)
{
    for (const auto &layer : m_layers) {
        if (layer->COLOR == color)
            return layer.get();
    }
    return nullptr;
}

CLayerParam *CLayerMgrIns::GetLayerAt(quint32 index)
{
    return index < m_layers.size() ? m_layers[index].get() : nullptr;
}

quint32 CLayerMgrIns::GetLayerIndex(CLayerParam *layer)
{
    for (size_t i = 0; i < m_layers.size(); ++i) {
        if (m_layers[i].get() == layer)
            return quint32(i);
    }
    return 0xFFFFFFFFu;
}

quint64 CLayerMgrIns::GetOutputLayers(QList<CLayerParam *> &layers)
{
    for (const auto &layer : m_layers) {
        if (layer->OUTPUT)
            layers.append(layer.get());
    }
    return m_layers.size();
}

quint64 CLayerMgrIns::GetNonOutputColors(QList<quint32> &colors)
{
    for (const auto &layer : m_layers) {
        if (!layer->OUTPUT)
            colors.append(layer->COLOR);
    }
    return m_layers.size();
}

void CLayerMgrIns::SetNonOutputColors(QSet<quint32> *colors)
{
    if (!colors)
        return;
    m_pendingNonOutput = *colors;
    colors->clear();
}

void CLayerMgrIns::AddLayer(CLayerParam *layer)
{
    if (!layer || GetLayerByColor(layer->COLOR))
        return;
    m_layers.emplace_back(layer);
}

bool CLayerMgrIns::MoveLayer(int from, int to)
{
    const int count = int(m_layers.size());
    if (from < 0 || to < 0 || from == to || from >= count || to >= count)
        return false;
    auto layer = std::move(m_layers[size_t(from)]);
    m_layers.erase(m_layers.begin() + from);
    m_layers.insert(m_layers.begin() + to, std::move(layer));
    return true;
}

quint64 CLayerMgrIns::LoadLayers(QIODevice *device)
{
    if (!device)
        return 1;
    ReadLayerStream(device, m_layers);
    return 0;
}

quint64 CLayerMgrIns::SaveLayers(QIODevice *device)
{
    if (!device)
        return 1;
    WriteLayerStream(device, m_layers);
    return 0;
}

void CLayerMgrIns::RestoreLayerParams()
{
    for (auto &layer : m_layers) {
        const auto it = m_rememberedIndex.constFind(layer->COLOR);
        if (it != m_rememberedIndex.cend())
            *layer = *m_remembered[size_t(*it)];
    }
}

void CLayerMgrIns::SelectLayersOfShapes(CShapeList *shapes)
{
    if (!shapes)
        return;
    ColorIndex layerColors(m_layers.size());
    for (const auto &layer : m_layers)
        layerColors.claim(layer->COLOR).index = 0;

    // Carried from group to group: a one-member group keeps the last answer.
    bool sameColor = false;
    const int count = shapes->GetCount();
    for (int s = 0; s < count; ++s) {
        const CShape *shape = shapes->GetShape(s);
        if (!shape->IsSelected())
            continue;
        const quint32 c = shape->GetColor();
        const bool isGroup = shape->GetType() == SHAPE_GROUP;
        quint32 first = 0;
        if (isGroup) {
            if (const auto *group = dynamic_cast<const CShapeGroup *>(shape)) {
                const int members = group->GetCount();
                if (members > 0)
                    first = group->GetShape(0)->GetColor();
                for (int m = 1; m < members; ++m)
                    sameColor = group->GetShape(m)->GetColor() == first;
            }
        }
        if (!layerColors.find(c) || !g_pLayerPanel)
            continue;
        if (!isGroup)
            g_pLayerPanel->AddPendingColor(c);
        else if (sameColor)
            g_pLayerPanel->AddPendingColor(first);
    }
    if (g_pLayerPanel)
        g_pLayerPanel->SelectPendingColors();
}

quint32 CLayerMgrIns::GetCurrentLayerColor()
{
    return g_pLayerPanel ? g_pLayerPanel->CurrentLayerColor() : 0;
}

void CLayerMgrIns::GetRunningOption(quint32 *type, QString *materialName, double *thickness)
{
    CRunningOptions options;
    if (const CLayerParam *first = GetLayerAt(0)) {
        if (const CRunningOptions *found = g_LayerContext.FindRunningOption(first->COLOR))
            options = *found;
    }
    if (type)
        *type = options.type;
    if (materialName)
        *materialName = options.MaterialName();
    if (thickness)
        *thickness = options.thickness;
}

void CLayerMgrIns::SetLaserCheck(bool check)
{
    if (check == m_laserCheck)
        return;
    m_laserCheck = check;
    if (!check || m_layers.empty())
        return;
    QString laser1, laser2;
    laserNames(&laser1, &laser2);
    LaserGroups groups;
    for (auto &layer : m_layers)
        groups.byName(LayerLaserName(layer.get(), laser1, laser2)).push_back(std::move(layer));
    auto byProcess = [](const std::unique_ptr<CLayerParam> &a, const std::unique_ptr<CLayerParam> &b) {
        return processRank(a->WORK_TYPE) < processRank(b->WORK_TYPE);
    };
    for (LayerList *group : {&groups.fiber, &groups.glass, &groups.rf})
        std::stable_sort(group->begin(), group->end(), byProcess);
    m_layers.clear();
    refill(groups);
}

void CLayerMgrIns::SetPanelData(void *data)
{
    if (g_pLayerPanel)
        g_pLayerPanel->SetPanelData(data);
}

void *CLayerMgrIns::GetPanelData()
{
    return g_pLayerPanel ? g_pLayerPanel->GetPanelData() : nullptr;
}

void CLayerMgrIns::SaveRememberedParams()
{
    for (const auto &layer : m_layers)
        remember(*layer);
    WriteLayerParamFile(m_remembered);
}

void CLayerMgrIns::SetFiberFirst(bool fiberFirst)
{
    if (fiberFirst == m_fiberFirst)
        return;
    m_fiberFirst = fiberFirst;
    Regroup(0);
}

void CLayerMgrIns::Regroup(int mode, CLayerParam *reference)
{
    if (m_layers.empty() || (mode != 0 && mode != 2))
        return;
    QString laser1, laser2;
    laserNames(&laser1, &laser2);

    CLayerParam *ref = m_laserCheck ? (reference ? reference : m_layers.back().get()) : nullptr;
    LaserGroups groups;
    for (auto &layer : m_layers)
        groups.byName(LayerLaserName(layer.get(), laser1, laser2)).push_back(std::move(layer));
    m_layers.clear();

    if (ref) {
        // Only the reference layer moves: in front of the first layer of its
        // group that is processed after it, else to the group's end.
        LayerList &group = groups.byName(LayerLaserName(ref, laser1, laser2));
        const auto at = std::find_if(group.begin(), group.end(),
                                     [ref](const auto &l) { return l.get() == ref; });
        if (at != group.end()) {
            auto moving = std::move(*at);
            group.erase(at);
            const int rank = processRank(moving->WORK_TYPE);
            const auto later = std::find_if(group.begin(), group.end(), [rank](const auto &l) {
                return processRank(l->WORK_TYPE) > rank;
            });
            group.insert(later, std::move(moving));
        }
    }

    refill(groups);
}

void CLayerMgrIns::refill(LaserGroups &groups)
{
    LayerList *const fiberFirst[] = {&groups.fiber, &groups.glass, &groups.rf};
    LayerList *const rfFirst[] = {&groups.rf, &groups.glass, &groups.fiber};
    for (LayerList *group : m_fiberFirst ? fiberFirst : rfFirst) {
        for (auto &layer : *group)
            m_layers.push_back(std::move(layer));
    }
}

QString CLayerMgrIns::LaserTypeName(int type)
{
    switch (type) {
    case 2:
        return kRF;
    case 3:
        return kFiber;
    default:
        return kGlass;
    }
}

QString CLayerMgrIns::LayerLaserName(const CLayerParam *layer, const QString &laser1,
                                     const QString &laser2)
{
    if (!layer)
        return kGlass;
    switch (layer->WORK_TYPE) {
    case WORK_CUTTING:
    case WORK_SCORING:
        return layer->CUT.LASER1.ENABLE ? laser1 : laser2;
    case WORK_MARK:
        return laser1;
    default:
        return layer->SWEEP.LASER1.ENABLE ? laser1 : laser2;
    }
}

void CLayerMgrIns::NotifyLayersChanged()
{
    if (m_host)
        m_host->LayersChanged();
}

void CLayerMgrIns::NotifyLayerEvent(int code, CLayerParam *layer)
{
    Q_UNUSED(layer);
    if (!m_host)
        return;
    m_host->LayerEvent(code);
    m_host->RefreshView();
}

void CLayerMgrIns::NotifyCurrentLayerChanged()
{
    if (m_host)
        m_host->CurrentLayerChanged();
}
