#include "layerparamfile.h"

#include "layerstream.h"
#include "support/settings.h"

#include <QFileInfo>
#include <QSet>
#include <QSettings>

#include <functional>

namespace {

enum class Kind { Int, Bool, Double };

using FieldAt = void *(*)(CLayerParam &);

// One key of a layer section. The reader of the fill block's delays takes
// another key, and for laser 2 another default, than the writer: files of
// every earlier release were written that way.
struct KeyField
{
    QString key;
    Kind kind;
    std::function<void *(CLayerParam &)> field;
    QString readKey;                                 // empty: key
    std::function<void *(CLayerParam &)> readDefault; // empty: the field itself
};

using Table = std::vector<KeyField>;

template<typename Get>
void add(Table &table, const QString &key, Kind kind, Get get)
{
    table.push_back({key, kind, [get](CLayerParam &l) -> void * { return get(l); }, {}, {}});
}

void addCutLaser(Table &t, const QString &p, LaserParam CutParam::*laser)
{
    auto at = [laser](CLayerParam &l) -> LaserParam & { return l.CUT.*laser; };
    add(t, p + QStringLiteral("ENABLE"), Kind::Bool, [at](CLayerParam &l) { return &at(l).ENABLE; });
    add(t, p + QStringLiteral("FREQ"), Kind::Int, [at](CLayerParam &l) { return &at(l).FREQ; });
    add(t, p + QStringLiteral("PULSE_WIDTH"), Kind::Int, [at](CLayerParam &l) { return &at(l).PULSE_WIDTH; });
    add(t, p + QStringLiteral("POWER_MIN"), Kind::Double, [at](CLayerParam &l) { return &at(l).POWER_MIN; });
    add(t, p + QStringLiteral("POWER_MAX"), Kind::Double, [at](CLayerParam &l) { return &at(l).POWER_MAX; });
    add(t, p + QStringLiteral("JUMP_DELAY"), Kind::Int, [at](CLayerParam &l) { return &at(l).JUMP_DELAY; });
    add(t, p + QStringLiteral("CORNER_DELAY"), Kind::Int, [at](CLayerParam &l) { return &at(l).CORNER_DELAY; });
    add(t, p + QStringLiteral("DWELL_MODE"), Kind::Bool, [at](CLayerParam &l) { return &at(l).DWELL_MODE; });
    add(t, p + QStringLiteral("DWELL_ON"), Kind::Bool, [at](CLayerParam &l) { return &at(l).DWELL_ON; });
    add(t, p + QStringLiteral("START_DWELL"), Kind::Bool, [at](CLayerParam &l) { return &at(l).START_DWELL; });
    add(t, p + QStringLiteral("END_DWELL"), Kind::Bool, [at](CLayerParam &l) { return &at(l).END_DWELL; });
    add(t, p + QStringLiteral("START_DWELL_TIME"), Kind::Int, [at](CLayerParam &l) { return &at(l).START_DWELL_TIME; });
    add(t, p + QStringLiteral("END_DWELL_TIME"), Kind::Int, [at](CLayerParam &l) { return &at(l).END_DWELL_TIME; });
    add(t, p + QStringLiteral("DWELL_POWER"), Kind::Double, [at](CLayerParam &l) { return &at(l).DWELL_POWER; });
}

void addSweepLaser(Table &t, int n, LaserParam SweepParam::*laser)
{
    auto at = [laser](CLayerParam &l) -> LaserParam & { return l.SWEEP.*laser; };
    const QString p = QStringLiteral("SWEEP_LASER%1_").arg(n);
    const QString cut = QStringLiteral("CUT_LASER%1_").arg(n);
    add(t, p + QStringLiteral("ENABLE"), Kind::Bool, [at](CLayerParam &l) { return &at(l).ENABLE; });
    add(t, p + QStringLiteral("FREQ"), Kind::Int, [at](CLayerParam &l) { return &at(l).FREQ; });
    add(t, p + QStringLiteral("PULSE_WIDTH"), Kind::Int, [at](CLayerParam &l) { return &at(l).PULSE_WIDTH; });
    add(t, p + QStringLiteral("POWER_MIN"), Kind::Double, [at](CLayerParam &l) { return &at(l).POWER_MIN; });
    add(t, p + QStringLiteral("POWER_MAX"), Kind::Double, [at](CLayerParam &l) { return &at(l).POWER_MAX; });
    add(t, p + QStringLiteral("JUMP_DELAY"), Kind::Int, [at](CLayerParam &l) { return &at(l).JUMP_DELAY; });
    add(t, p + QStringLiteral("CORNER_DELAY"), Kind::Int, [at](CLayerParam &l) { return &at(l).CORNER_DELAY; });

    // The fill delays are read from the line keys of the same laser; laser 2
    // falls back to what laser 1 just got.
    KeyField &jump = t[t.size() - 2];
    KeyField &corner = t[t.size() - 1];
    jump.readKey = cut + QStringLiteral("JUMP_DELAY");
    corner.readKey = cut + QStringLiteral("CORNER_DELAY");
    if (n == 2) {
        jump.readDefault = [](CLayerParam &l) -> void * { return &l.SWEEP.LASER1.JUMP_DELAY; };
        corner.readDefault = [](CLayerParam &l) -> void * { return &l.SWEEP.LASER1.CORNER_DELAY; };
    }
}

void addPen(Table &t, const QString &p, PenParam CutParam::*cutPen, PenParam SweepParam::*sweepPen)
{
    auto at = [cutPen, sweepPen](CLayerParam &l) -> PenParam & {
        return cutPen ? l.CUT.*cutPen : l.SWEEP.*sweepPen;
    };
    add(t, p + QStringLiteral("ENABLE_PEN_UP_DOWN"), Kind::Bool, [at](CLayerParam &l) { return &at(l).ENABLE_PEN_UP_DOWN; });
    add(t, p + QStringLiteral("ENABLE_PEN_DOWN"), Kind::Bool, [at](CLayerParam &l) { return &at(l).ENABLE_PEN_DOWN; });
    add(t, p + QStringLiteral("ENABLE_PEN_UP"), Kind::Bool, [at](CLayerParam &l) { return &at(l).ENABLE_PEN_UP; });
    add(t, p + QStringLiteral("DOWN_HRIGHT"), Kind::Double, [at](CLayerParam &l) { return &at(l).PEN_DOWN_HRIGHT; });
    add(t, p + QStringLiteral("UP_HRIGHT"), Kind::Double, [at](CLayerParam &l) { return &at(l).PEN_UP_HRIGHT; });
}

// Keys in the order they are written.
const Table &keyTable()
{
    static const Table table = [] {
        Table t;
        auto s = [](const char *key) { return QString::fromLatin1(key); };
        add(t, s("COLOR"), Kind::Int, [](CLayerParam &l) { return &l.COLOR; });
        add(t, s("WORK_TYPE"), Kind::Int, [](CLayerParam &l) { return &l.WORK_TYPE; });
        add(t, s("OUTPUT"), Kind::Bool, [](CLayerParam &l) { return &l.OUTPUT; });
        add(t, s("BLOW"), Kind::Bool, [](CLayerParam &l) { return &l.BLOW; });
        add(t, s("CUT_SPEED"), Kind::Double, [](CLayerParam &l) { return &l.CUT.CUT_SPEED; });
        add(t, s("CUT_JOINT_LEN"), Kind::Double, [](CLayerParam &l) { return &l.CUT.CUT_JOINT_LEN; });
        add(t, s("CUT_BRIDGES"), Kind::Bool, [](CLayerParam &l) { return &l.CUT.CUT_BRIDGES; });
        add(t, s("CUT_BRIDGES_SPACE"), Kind::Double, [](CLayerParam &l) { return &l.CUT.CUT_BRIDGES_SPACE; });
        add(t, s("CUT_BRIDGES_LEN"), Kind::Double, [](CLayerParam &l) { return &l.CUT.CUT_BRIDGES_LEN; });
        addCutLaser(t, s("CUT_LASER1_"), &CutParam::LASER1);
        addCutLaser(t, s("CUT_LASER2_"), &CutParam::LASER2);
        add(t, s("CUTTING_NUMBER"), Kind::Int, [](CLayerParam &l) { return &l.CUT.CUTTING_NUMBER; });
        add(t, s("USE_GUIDE_LINE"), Kind::Bool, [](CLayerParam &l) { return &l.CUT.USE_GUIDE_LINE; });
        add(t, s("GUIDE_TYPE"), Kind::Int, [](CLayerParam &l) { return &l.CUT.GUIDE_TYPE; });
        add(t, s("IS_GUIDE_IN"), Kind::Int, [](CLayerParam &l) { return &l.CUT.IS_GUIDE_IN; });
        add(t, s("GUIDE_IN_LEN"), Kind::Double, [](CLayerParam &l) { return &l.CUT.GUIDE_IN_LEN; });
        add(t, s("IS_GUIDE_OUT"), Kind::Int, [](CLayerParam &l) { return &l.CUT.IS_GUIDE_OUT; });
        add(t, s("GUIDE_OUT_LEN"), Kind::Double, [](CLayerParam &l) { return &l.CUT.GUIDE_OUT_LEN; });
        add(t, s("SWEEP_SPEED"), Kind::Double, [](CLayerParam &l) { return &l.SWEEP.SWEEP_SPEED; });
        add(t, s("SWEEP_TYPE"), Kind::Int, [](CLayerParam &l) { return &l.SWEEP.SWEEP_TYPE; });
        add(t, s("SWEEP_INCLINE_LEN"), Kind::Double, [](CLayerParam &l) { return &l.SWEEP.SWEEP_INCLINE_LEN; });
        add(t, s("SWEEP_IS3DRELIEF"), Kind::Bool, [](CLayerParam &l) { return &l.SWEEP.SWEEP_IS3DRELIEF; });
        add(t, s("SWEEP_ISRAMP"), Kind::Bool, [](CLayerParam &l) { return &l.SWEEP.SWEEP_ISRAMP; });
        add(t, s("SWEEP_DPI"), Kind::Int, [](CLayerParam &l) { return &l.SWEEP.SWEEP_DPI; });
        add(t, s("SWEEP_OFFSET_TYPE"), Kind::Int, [](CLayerParam &l) { return &l.SWEEP.SWEEP_OFFSET_TYPE; });
        add(t, s("SWEEP_OFFSET_ENGRAVING"), Kind::Bool, [](CLayerParam &l) { return &l.SWEEP.SWEEP_OFFSET_ENGRAVING; });
        addSweepLaser(t, 1, &SweepParam::LASER1);
        addSweepLaser(t, 2, &SweepParam::LASER2);
        add(t, s("CARVING_NUMBER"), Kind::Int, [](CLayerParam &l) { return &l.SWEEP.CARVING_NUMBER; });
        addPen(t, s("CUT_PEN_"), &CutParam::PEN, nullptr);
        addPen(t, s("SWEEP_PEN_"), nullptr, &SweepParam::PEN);
        add(t, s("CUT_COMPENSATE_OUTWARD"), Kind::Bool, [](CLayerParam &l) { return &l.CUT.CUT_COMPENSATE_OUTWARD; });
        add(t, s("CUT_COMPENSATE_SIZE"), Kind::Double, [](CLayerParam &l) { return &l.CUT.CUT_COMPENSATE_SIZE; });
        return t;
    }();
    return table;
}

const QString kParamsGroup = QStringLiteral("LAYER_PARAMS");
const QString kCountKey = QStringLiteral("LAYER_COUNT");

QString sectionName(int index)
{
    return QStringLiteral("LAYER%1").arg(index);
}

int readInt(const QSettings &settings, const QString &group, const QString &key, void *field,
            Kind kind)
{
    const int current = kind == Kind::Bool ? int(*static_cast<bool *>(field))
                                           : *static_cast<qint32 *>(field);
    return ReadIniInt(settings, group, key, current);
}

void readSection(const QSettings &settings, const QString &group, CLayerParam &layer)
{
    for (const KeyField &entry : keyTable()) {
        void *field = entry.field(layer);
        void *fallback = entry.readDefault ? entry.readDefault(layer) : field;
        const QString &key = entry.readKey.isEmpty() ? entry.key : entry.readKey;
        switch (entry.kind) {
        case Kind::Int:
            *static_cast<qint32 *>(field) = readInt(settings, group, key, fallback, Kind::Int);
            break;
        case Kind::Bool:
            *static_cast<bool *>(field) = readInt(settings, group, key, fallback, Kind::Bool) != 0;
            break;
        case Kind::Double:
            *static_cast<double *>(field)
                = ReadIniDouble(settings, group, key, *static_cast<double *>(fallback));
            break;
        }
    }
}

} // namespace

QString LayerParamFilePath()
{
    return DataFilePath(QStringLiteral("old.lpl"));
}

void ReadLayerParamFile(LayerList &remembered)
{
    ReadLayerParamFile(remembered, LayerParamFilePath());
}

void WriteLayerParamFile(const LayerList &remembered)
{
    WriteLayerParamFile(remembered, LayerParamFilePath());
}

void ReadLayerParamFile(LayerList &remembered, const QString &path)
{
    if (!QFileInfo::exists(path))
        return;
    // One QSettings for the whole file: a file of a thousand colours holds
    // ninety thousand keys.
    const QSettings settings(path, QSettings::IniFormat);
    int count = ReadIniInt(settings, kParamsGroup, kCountKey, 0);
    count = qBound(0, count, int(kMaxStreamLayers));
    const QStringList groups = settings.childGroups();
    const QSet<QString> present(groups.cbegin(), groups.cend());
    remembered.reserve(remembered.size() + size_t(count));
    for (int i = 0; i < count; ++i) {
        auto layer = std::make_unique<CLayerParam>(0);
        const QString group = sectionName(i);
        // A missing section is a record of defaults; no need to ask for its keys.
        if (present.contains(group))
            readSection(settings, group, *layer);
        remembered.push_back(std::move(layer));
    }
}

void WriteLayerParamFile(const LayerList &remembered, const QString &path)
{
    OpenIniBatch(path);
    WriteIniInt(kParamsGroup, kCountKey, int(remembered.size()), path);
    int index = 0;
    for (const auto &record : remembered) {
        CLayerParam &layer = *record;
        const QString group = sectionName(index++);
        for (const KeyField &entry : keyTable()) {
            void *field = entry.field(layer);
            switch (entry.kind) {
            case Kind::Int:
                WriteIniInt(group, entry.key, *static_cast<qint32 *>(field), path);
                break;
            case Kind::Bool:
                WriteIniInt(group, entry.key, *static_cast<bool *>(field) ? 1 : 0, path);
                break;
            case Kind::Double:
                WriteIniDouble(group, entry.key, *static_cast<double *>(field), path);
                break;
            }
        }
    }
    CloseIniBatch();
}
