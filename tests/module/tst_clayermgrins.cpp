#include "layertestdata.h"
#include "library/clayercontext.h"
#include "module/clayermgrins.h"
#include "module/ilayerpanel.h"
#include "module/layercolors.h"
#include "module/layerparamfile.h"
#include "support/settings.h"
#include "testenvironment.h"

#include "cshapegroup.h"
#include "cshapelist.h"
#include "ilayerhost.h"

#include <QBuffer>
#include <QRegularExpression>
#include <QTest>

using namespace layertest;

namespace {

// Colours by letter: R and S are the two reserved colours.
quint32 colorOf(QChar letter)
{
    if (letter == QLatin1Char('R'))
        return kReservedColorA;
    if (letter == QLatin1Char('S'))
        return kReservedColorB;
    return 0xA00000u | letter.unicode();
}

quint32 colorOf(char letter)
{
    return colorOf(QLatin1Char(letter));
}

QString nameOf(quint32 color)
{
    if (color == kReservedColorA)
        return QStringLiteral("R");
    if (color == kReservedColorB)
        return QStringLiteral("S");
    if ((color & 0xFFFF00u) == 0xA00000u)
        return QChar(char16_t(color & 0xFFu));
    return QString::number(color, 16);
}

QString order(ILayerMgr &manager)
{
    QStringList names;
    for (quint32 i = 0; i < manager.GetLayerCount(); ++i)
        names << nameOf(manager.GetLayerAt(i)->COLOR);
    return names.join(QLatin1Char(' '));
}

class FakePanel : public ILayerPanel
{
public:
    void SetDualLaser(bool) override {}
    void RefreshSpeeds() override {}
    void SyncLayers(CLayerMgrIns *manager, bool force) override
    {
        syncs << order(*manager);
        forced = forced || force;
    }
    void AddPendingColor(quint32 color) override { pending << nameOf(color); }
    void SelectPendingColors() override { ++selectCalls; }
    quint32 CurrentLayerColor() const override { return current; }
    void SetPanelData(void *d) override { data = d; }
    void *GetPanelData() const override { return data; }

    QStringList syncs; // the layer order each time the panel was told to refill
    bool forced = false;
    QStringList pending;
    int selectCalls = 0;
    quint32 current = 0;
    void *data = nullptr;
};

class FakeHost : public ILayerHost
{
public:
    void LayersChanged() override { calls << QStringLiteral("changed"); }
    void LayerEvent(int code) override { calls << QStringLiteral("event %1").arg(code); }
    void CurrentLayerChanged() override { calls << QStringLiteral("current"); }
    void RefreshView() override { calls << QStringLiteral("refresh"); }
    QStringList calls;
};

// A drawing from tokens such as "A Bi C* G*=AB": the colour letter, then 'i'
// for an image, '*' for selected, '=' and the member colours for a group.
void draw(CShapeList &list, const QString &tokens)
{
    list.RemoveAll();
    for (const QString &token : tokens.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const qsizetype eq = token.indexOf(QLatin1Char('='));
        const QString flags = token.mid(1, eq < 0 ? -1 : eq - 1);
        CShape *shape = nullptr;
        if (eq >= 0) {
            auto *group = new CShapeGroup(colorOf(token[0]));
            for (const QChar member : token.mid(eq + 1))
                group->AddShape(new CShape(colorOf(member)));
            shape = group;
        } else {
            const bool image = flags.contains(QLatin1Char('i'));
            shape = new CShape(colorOf(token[0]), image ? SHAPE_IMAGE : SHAPE_PATH);
        }
        shape->SetSelected(flags.contains(QLatin1Char('*')));
        list.AddTail(shape);
    }
}

quint64 update(ILayerMgr &manager, const QString &tokens)
{
    CShapeList list;
    draw(list, tokens);
    return manager.UpdateLayers(&list);
}

// Layers from tokens "<colour><work type><laser>": laser 1 means the block of
// the work type fires LASER1, 2 that it does not; the other block is set the
// other way, so that reading the wrong block shows.
void addLayers(ILayerMgr &manager, const QString &tokens)
{
    for (const QString &token : tokens.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        auto *layer = new CLayerParam(colorOf(token[0]));
        layer->WORK_TYPE = token.size() > 1 ? token[1].digitValue() : 0;
        const bool laser1 = token.size() < 3 || token[2] == QLatin1Char('1');
        layer->CUT.LASER1.ENABLE = layer->IsLineProcess() == laser1;
        layer->SWEEP.LASER1.ENABLE = layer->IsLineProcess() != laser1;
        manager.AddLayer(layer);
    }
}

CLayerParam *layerOf(ILayerMgr &manager, char letter)
{
    return manager.GetLayerByColor(colorOf(letter));
}

// The entries "A:FIELD=value" that the manager's layers do not show.
QString unmet(ILayerMgr &manager, const QStringList &expect)
{
    QStringList out;
    for (const QString &entry : expect) {
        const CLayerParam *layer = manager.GetLayerByColor(colorOf(entry[0]));
        if (!layer || !missingFields(*layer, {entry.mid(2)}).isEmpty())
            out << entry;
    }
    return out.join(QStringLiteral(", "));
}

// "30": LASER1_TYPE 3, LASER2_TYPE 0.
bool setLaserTypes(const TestEnvironment &env, const QString &types)
{
    return env.writeFile(QStringLiteral("FactoryParam.ini"),
                         QStringLiteral("[FACTORY_PARAM_LASER]\nLASER1_TYPE=%1\nLASER2_TYPE=%2\n")
                             .arg(types[0])
                             .arg(types[1])
                             .toUtf8());
}

// As the fill editor saves it. QSettings itself, since a file rewritten
// behind its back within the same millisecond and at the same size may be
// served from its cache.
void setSweepVertType(int type)
{
    WriteIniInt(QStringLiteral("LASER_PARAM_SWEEP"), QStringLiteral("SWEEP_VERT_TYPE"), type,
                UserParamIniPath());
}

} // namespace

class tst_CLayerMgrIns : public QObject
{
    Q_OBJECT

private slots:
    void firstUpdate_data();
    void firstUpdate();
    void secondUpdate_data();
    void secondUpdate();
    void removingKeepsOrder_data();
    void removingKeepsOrder();
    void returningColour();
    void pendingColourUsedOnce();
    void duplicateColourAfterLoading();
    void runningOptionsOfRemovedColours();
    void regroup_data();
    void regroup();
    void newLayerJoinsItsLaserGroup();
    void fullReorder_data();
    void fullReorder();
    void moveLayer_data();
    void moveLayer();
    void addLayer();
    void queries();
    void restoreLayerParams();
    void saveRememberedParams();
    void selectLayersOfShapes_data();
    void selectLayersOfShapes();
    void runningOption_data();
    void runningOption();
    void panelForwarding();
    void hostNotifications();
};

void tst_CLayerMgrIns::firstUpdate_data()
{
    QTest::addColumn<QString>("shapes");
    QTest::addColumn<QString>("pendingOff");
    QTest::addColumn<quint64>("result");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("panelOrder");
    QTest::addColumn<QStringList>("expect");

    // clang-format off
    QTest::newRow("empty drawing") << "" << "" << 0ull << "" << "" << QStringList();
    QTest::newRow("colours A B A") << "A B A" << "" << 1ull << "A B" << "A B"
        << QStringList{"A:WORK_TYPE=0", "A:OUTPUT=true", "B:FILL_LOCKED=false"};
    QTest::newRow("image shape") << "Ai" << "" << 1ull << "A" << "A"
        << QStringList{"A:WORK_TYPE=2", "A:FILL_LOCKED=true", "A:SWEEP.SWEEP_TYPE=0"};
    QTest::newRow("image after a path of its colour") << "A Ai" << "" << 1ull << "A" << "A"
        << QStringList{"A:WORK_TYPE=0", "A:FILL_LOCKED=false"};
    QTest::newRow("new engraving goes before cutting") << "A Bi" << "" << 1ull << "B A" << "B A"
        << QStringList{"B:WORK_TYPE=2"};
    QTest::newRow("selected shapes") << "A B* A C C*" << "" << 1ull << "A B C" << "A B C"
        << QStringList{"A:SELECTED=false", "B:SELECTED=true", "C:SELECTED=true"};
    QTest::newRow("pending colour starts off") << "A B" << "BD" << 1ull << "A B" << "A B"
        << QStringList{"A:OUTPUT=true", "B:OUTPUT=false"};
    // The panel refills without the reserved layers; they follow at the end.
    QTest::newRow("reserved first stays") << "R A" << "" << 1ull << "R A" << "R A" << QStringList();
    QTest::newRow("reserved go last") << "B S A R C" << "" << 1ull << "B A C R S" << "B A C"
        << QStringList();
    QTest::newRow("reserved at 0 and 1") << "R S A" << "" << 1ull << "R A S" << "R A"
        << QStringList();
    QTest::newRow("second reserved at 0") << "S A R" << "" << 1ull << "S A R" << "S A"
        << QStringList();
    // clang-format on
}

void tst_CLayerMgrIns::firstUpdate()
{
    QFETCH(QString, shapes);
    QFETCH(QString, pendingOff);
    QFETCH(quint64, result);
    QFETCH(QString, order);
    QFETCH(QString, panelOrder);
    QFETCH(QStringList, expect);
    TestEnvironment env;
    FakePanel panel;
    g_pLayerPanel = &panel;
    CLayerMgrIns manager(nullptr);
    QSet<quint32> off;
    for (const QChar c : pendingOff)
        off.insert(colorOf(c));
    manager.SetNonOutputColors(&off);
    QVERIFY(off.isEmpty());

    QCOMPARE(update(manager, shapes), result);
    QCOMPARE(::order(manager), order);
    QCOMPARE(panel.syncs, QStringList{panelOrder});
    QVERIFY(!panel.forced);
    QCOMPARE(unmet(manager, expect), QString());
}

void tst_CLayerMgrIns::secondUpdate_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<quint64>("result");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QStringList>("expect");

    // clang-format off
    QTest::newRow("same drawing") << "A B" << "A B" << 0ull << "A B" << QStringList();
    QTest::newRow("shapes in another order") << "A B" << "B A B" << 0ull << "A B" << QStringList();
    QTest::newRow("selection alone is no change") << "A B" << "A* B" << 0ull << "A B"
        << QStringList{"A:SELECTED=true"};
    QTest::newRow("selection cleared") << "A* B" << "A B" << 0ull << "A B"
        << QStringList{"A:SELECTED=false"};
    QTest::newRow("image of an existing colour") << "A" << "Ai" << 0ull << "A"
        << QStringList{"A:WORK_TYPE=0", "A:FILL_LOCKED=false"};
    QTest::newRow("new colour") << "A" << "A B" << 1ull << "A B" << QStringList();
    QTest::newRow("colour gone") << "A B" << "B" << 1ull << "B" << QStringList();
    QTest::newRow("all gone") << "A B" << "" << 1ull << "" << QStringList();
    QTest::newRow("one gone, one new") << "A B" << "C B" << 1ull << "B C" << QStringList();
    // clang-format on
}

void tst_CLayerMgrIns::secondUpdate()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(quint64, result);
    QFETCH(QString, order);
    QFETCH(QStringList, expect);
    TestEnvironment env;
    FakePanel panel;
    g_pLayerPanel = &panel;
    CLayerMgrIns manager(nullptr);

    update(manager, first);
    QCOMPARE(update(manager, second), result);
    QCOMPARE(::order(manager), order);
    QCOMPARE(panel.syncs.size(), 2);
    QCOMPARE(unmet(manager, expect), QString());
    QCOMPARE(manager.UpdateLayers(nullptr), 0u);
    QCOMPARE(panel.syncs.size(), 2);
}

void tst_CLayerMgrIns::removingKeepsOrder_data()
{
    QTest::addColumn<QString>("shapes");
    QTest::addColumn<QString>("order");

    // From "A B D E C", C engraving: a regroup would move it.
    QTest::newRow("drop B") << "A Ci D E"
                            << "A D E C";
    QTest::newRow("drop A and E") << "B Ci D"
                                  << "B D C";
    QTest::newRow("drop C") << "A B D E"
                            << "A B D E";
    QTest::newRow("keep only C") << "Ci"
                                 << "C";
}

void tst_CLayerMgrIns::removingKeepsOrder()
{
    QFETCH(QString, shapes);
    QFETCH(QString, order);
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    update(manager, QStringLiteral("A B Ci D E"));
    QVERIFY(manager.MoveLayer(2, 4));
    QCOMPARE(::order(manager), QStringLiteral("A B D E C"));

    QCOMPARE(update(manager, shapes), 1u);
    QCOMPARE(::order(manager), order);
}

void tst_CLayerMgrIns::returningColour()
{
    TestEnvironment env;
    setSweepVertType(2);
    CLayerMgrIns manager(nullptr);
    update(manager, QStringLiteral("A B C"));
    QCOMPARE(unmet(manager, {"B:SWEEP.SWEEP_VERT_TYPE=2"}), QString());

    CLayerParam *b = layerOf(manager, 'B');
    b->CUT.CUT_SPEED = 42;
    b->WORK_TYPE = WORK_SCORING;
    b->SWEEP.SWEEP_TYPE = 4;
    b->SWEEP.SWEEP_VERT_TYPE = 9;
    QCOMPARE(update(manager, QStringLiteral("A C")), 1u);
    QCOMPARE(order(manager), QStringLiteral("A C"));
    QCOMPARE(manager.RememberedLayers().size(), size_t(1));
    QCOMPARE(manager.RememberedLayers()[0]->CUT.CUT_SPEED, 42.0);

    // Back with its parameters, but the vertical fill order is the user's.
    setSweepVertType(5);
    update(manager, QStringLiteral("A C B"));
    QCOMPARE(unmet(manager, {"B:CUT.CUT_SPEED=42", "B:WORK_TYPE=1", "B:SWEEP.SWEEP_TYPE=4",
                             "B:SWEEP.SWEEP_VERT_TYPE=5"}),
             QString());

    // An image brings it back as a fill layer, deep engraving staying deep.
    update(manager, QStringLiteral("A C"));
    update(manager, QStringLiteral("A C Bi"));
    QCOMPARE(unmet(manager, {"B:CUT.CUT_SPEED=42", "B:WORK_TYPE=2", "B:FILL_LOCKED=true",
                             "B:SWEEP.SWEEP_TYPE=0"}),
             QString());
    layerOf(manager, 'B')->WORK_TYPE = WORK_DEEP_ENGRAVE;
    layerOf(manager, 'B')->SWEEP.SWEEP_TYPE = 4;
    update(manager, QStringLiteral("A C"));
    update(manager, QStringLiteral("A C Bi"));
    QCOMPARE(unmet(manager, {"B:WORK_TYPE=3", "B:FILL_LOCKED=true", "B:SWEEP.SWEEP_TYPE=0"}),
             QString());
    QCOMPARE(manager.RememberedLayers().size(), size_t(1));
}

void tst_CLayerMgrIns::pendingColourUsedOnce()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    QSet<quint32> off{colorOf('B'), colorOf('C')};
    manager.SetNonOutputColors(&off);
    update(manager, QStringLiteral("A B"));
    layerOf(manager, 'B')->OUTPUT = true;
    update(manager, QStringLiteral("A"));
    update(manager, QStringLiteral("A B C"));
    QCOMPARE(unmet(manager, {"B:OUTPUT=true", "C:OUTPUT=false"}), QString());

    // A new set replaces the old one.
    off = {colorOf('D')};
    manager.SetNonOutputColors(&off);
    off = {colorOf('E')};
    manager.SetNonOutputColors(&off);
    update(manager, QStringLiteral("A B C D E"));
    QCOMPARE(unmet(manager, {"D:OUTPUT=true", "E:OUTPUT=false"}), QString());
}

void tst_CLayerMgrIns::duplicateColourAfterLoading()
{
    TestEnvironment env;
    CLayerMgrIns source(nullptr);
    addLayers(source, QStringLiteral("A"));
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    source.SaveLayers(&buffer);

    CLayerMgrIns manager(nullptr);
    for (int i = 0; i < 2; ++i) {
        buffer.seek(0);
        manager.LoadLayers(&buffer);
    }
    QCOMPARE(order(manager), QStringLiteral("A A"));
    const CLayerParam *first = manager.GetLayerAt(0);
    // The shapes count for the first layer of the colour only.
    QCOMPARE(update(manager, QStringLiteral("A")), 1u);
    QCOMPARE(manager.GetLayerCount(), 1u);
    QCOMPARE(manager.GetLayerAt(0), first);
}

void tst_CLayerMgrIns::runningOptionsOfRemovedColours()
{
    TestEnvironment env;
    for (const char c : {'A', 'B', 'Z'})
        g_LayerContext.SetRunningOption(colorOf(c), CRunningOptions());
    CLayerMgrIns manager(nullptr);
    update(manager, QStringLiteral("A B"));
    update(manager, QStringLiteral("A"));
    QVERIFY(g_LayerContext.FindRunningOption(colorOf('A')));
    QVERIFY(!g_LayerContext.FindRunningOption(colorOf('B')));
    QVERIFY(g_LayerContext.FindRunningOption(colorOf('Z')));
}

void tst_CLayerMgrIns::regroup_data()
{
    // LASER1_TYPE and LASER2_TYPE as two digits; flags F fiber first, C laser
    // check; '^' marks a reference layer given by name.
    QTest::addColumn<QString>("types");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("layers");
    QTest::addColumn<QString>("order");

    // clang-format off
    // Grouping alone: 0 Glass, 2 RF, 3 Fiber, anything else Glass.
    QTest::newRow("fiber first") << "30" << "F" << 0 << "A02 B01 C02 D01" << "B D A C";
    QTest::newRow("fiber last") << "30" << "" << 0 << "A02 B01 C02 D01" << "A C B D";
    QTest::newRow("glass before rf") << "20" << "F" << 0 << "A01 B02" << "B A";
    QTest::newRow("rf before glass") << "20" << "" << 0 << "A02 B01" << "B A";
    QTest::newRow("type 1 is glass") << "12" << "" << 0 << "A01 B02" << "B A";
    QTest::newRow("type 4 is glass") << "42" << "" << 0 << "A01 B02" << "B A";
    QTest::newRow("mark fires laser 1") << "30" << "F" << 0 << "A02 B42" << "B A";
    QTest::newRow("fill work reads the fill block") << "30" << "F" << 0 << "A22 B31 C02" << "B A C";
    QTest::newRow("mode 1 leaves the order") << "30" << "F" << 1 << "A02 B01" << "A B";
    QTest::newRow("mode 2 regroups") << "30" << "F" << 2 << "A02 B01" << "B A";
    QTest::newRow("mode 3 leaves the order") << "30" << "F" << 3 << "A02 B01" << "A B";
    // The reference layer, the last one unless named, moves within its group
    // in front of the first layer processed after it: 1, 2, 3, then 0.
    QTest::newRow("scoring before the first cut") << "00" << "FC" << 0 << "A0 B2 C1" << "C A B";
    QTest::newRow("engraving after scoring") << "00" << "FC" << 0 << "A1 B0 C3" << "A C B";
    QTest::newRow("cutting stays last") << "00" << "FC" << 0 << "A1 B0 C0" << "A B C";
    QTest::newRow("named reference") << "00" << "FC" << 0 << "A3^ B1 C0 D2" << "B A C D";
    QTest::newRow("others keep their order") << "00" << "FC" << 0 << "A0 B3 C2 D1" << "D A B C";
    QTest::newRow("within its own group") << "30" << "FC" << 0 << "A01 B02 C11" << "C A B";
    QTest::newRow("mark ranks with scoring") << "00" << "FC" << 0 << "A0 B1 C4" << "C A B";
    QTest::newRow("unknown work type with scoring") << "00" << "FC" << 0 << "A2 B7" << "B A";
    QTest::newRow("no move without laser check") << "00" << "F" << 0 << "A0 B2 C1" << "A B C";
    // clang-format on
}

void tst_CLayerMgrIns::regroup()
{
    QFETCH(QString, types);
    QFETCH(QString, flags);
    QFETCH(int, mode);
    QFETCH(QString, layers);
    QFETCH(QString, order);
    TestEnvironment env;
    QVERIFY(setLaserTypes(env, types));
    CLayerMgrIns manager(nullptr);
    manager.SetFiberFirst(flags.contains(QLatin1Char('F')));
    manager.SetLaserCheck(flags.contains(QLatin1Char('C')));
    const qsizetype mark = layers.indexOf(QLatin1Char('^'));
    const quint32 reference = mark < 0 ? 0 : colorOf(layers[mark - 2]);
    addLayers(manager, layers.remove(QLatin1Char('^')));
    QCOMPARE(::order(manager), layers.remove(QRegularExpression(QStringLiteral("\\d"))));

    manager.Regroup(mode, reference ? manager.GetLayerByColor(reference) : nullptr);
    QCOMPARE(::order(manager), order);
}

void tst_CLayerMgrIns::newLayerJoinsItsLaserGroup()
{
    TestEnvironment env;
    QVERIFY(setLaserTypes(env, QStringLiteral("30")));
    CLayerMgrIns manager(nullptr);
    addLayers(manager, QStringLiteral("A02 C02"));
    // A new layer cuts with LASER1, the fiber source, whose group comes first.
    QCOMPARE(update(manager, QStringLiteral("A B C")), 1u);
    QCOMPARE(order(manager), QStringLiteral("B A C"));

    manager.SetLaserCheck(false);
    manager.SetFiberFirst(true);
    QCOMPARE(order(manager), QStringLiteral("B A C"));
    manager.SetFiberFirst(false);
    QCOMPARE(order(manager), QStringLiteral("A C B"));
}

void tst_CLayerMgrIns::fullReorder_data()
{
    QTest::addColumn<QString>("types");
    QTest::addColumn<bool>("offFirst");
    QTest::addColumn<QString>("layers");
    QTest::addColumn<QString>("order");

    // clang-format off
    QTest::newRow("processing order") << "00" << true << "A0 B1 C2 D0 E3 F1" << "B F C E A D";
    QTest::newRow("each group apart") << "30" << true << "A01 B12 C21 D11 E02" << "D C A B E";
    QTest::newRow("mark and unknown with scoring") << "00" << true << "A0 B4 C9 D1" << "B C D A";
    QTest::newRow("already on: nothing") << "00" << false << "A0 B1 C2" << "A B C";
    // clang-format on
}

void tst_CLayerMgrIns::fullReorder()
{
    QFETCH(QString, types);
    QFETCH(bool, offFirst);
    QFETCH(QString, layers);
    QFETCH(QString, order);
    TestEnvironment env;
    QVERIFY(setLaserTypes(env, types));
    CLayerMgrIns manager(nullptr);
    addLayers(manager, layers);
    const QString before = ::order(manager);

    if (offFirst) {
        manager.SetLaserCheck(false);
        QCOMPARE(::order(manager), before);
    }
    manager.SetLaserCheck(true);
    QCOMPARE(::order(manager), order);
}

void tst_CLayerMgrIns::moveLayer_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("moved");
    QTest::addColumn<QString>("order");

    // clang-format off
    QTest::newRow("same place") << 2 << 2 << false << "A B C";
    QTest::newRow("negative from") << -1 << 0 << false << "A B C";
    QTest::newRow("negative to") << 0 << -1 << false << "A B C";
    QTest::newRow("from past the end") << 3 << 0 << false << "A B C";
    QTest::newRow("to past the end") << 0 << 3 << false << "A B C";
    QTest::newRow("first to end") << 0 << 2 << true << "B C A";
    QTest::newRow("last to front") << 2 << 0 << true << "C A B";
    QTest::newRow("one down") << 1 << 2 << true << "A C B";
    // clang-format on
}

void tst_CLayerMgrIns::moveLayer()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, moved);
    QFETCH(QString, order);
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    addLayers(manager, QStringLiteral("A B C"));
    QCOMPARE(manager.MoveLayer(from, to), moved);
    QCOMPARE(::order(manager), order);
}

void tst_CLayerMgrIns::addLayer()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    manager.AddLayer(nullptr);
    QCOMPARE(manager.GetLayerCount(), 0u);
    addLayers(manager, QStringLiteral("A0 B2"));
    const CLayerParam *a = manager.GetLayerAt(0);

    auto duplicate = std::make_unique<CLayerParam>(colorOf('A'));
    duplicate->CUT.CUT_SPEED = 99;
    manager.AddLayer(duplicate.get()); // still ours: the manager refuses it
    QCOMPARE(order(manager), QStringLiteral("A B"));
    QCOMPARE(layerOf(manager, 'A'), a);
    QCOMPARE(a->CUT.CUT_SPEED, 1.0);
}

void tst_CLayerMgrIns::queries()
{
    TestEnvironment env;
    CLayerMgrIns manager(nullptr);
    addLayers(manager, QStringLiteral("A B C"));
    CLayerParam *b = layerOf(manager, 'B');
    CLayerParam *c = manager.GetLayerAt(2);
    QVERIFY(b && c);
    b->OUTPUT = false;
    c->OUTPUT = false;

    QCOMPARE(manager.GetLayerAt(1), b);
    QCOMPARE(manager.GetLayerAt(3), nullptr);
    QCOMPARE(manager.GetLayerAt(0xFFFFFFFFu), nullptr);
    QCOMPARE(layerOf(manager, 'Q'), nullptr);
    QCOMPARE(manager.GetLayerIndex(c), 2u);
    CLayerParam stranger(c->COLOR);
    QCOMPARE(manager.GetLayerIndex(&stranger), 0xFFFFFFFFu);
    QCOMPARE(manager.GetLayerIndex(nullptr), 0xFFFFFFFFu);

    QList<CLayerParam *> output{&stranger};
    QCOMPARE(manager.GetOutputLayers(output), 3u);
    QCOMPARE(output, (QList<CLayerParam *>{&stranger, manager.GetLayerAt(0)}));
    QList<quint32> off{7};
    QCOMPARE(manager.GetNonOutputColors(off), 3u);
    QCOMPARE(off, (QList<quint32>{7, b->COLOR, c->COLOR}));
}

void tst_CLayerMgrIns::restoreLayerParams()
{
    TestEnvironment env;
    LayerList remembered;
    remembered.push_back(std::make_unique<CLayerParam>(colorOf('A')));
    remembered[0]->CUT.CUT_SPEED = 42;
    WriteLayerParamFile(remembered);

    CLayerMgrIns manager(nullptr);
    update(manager, QStringLiteral("A B"));
    QCOMPARE(unmet(manager, {"A:CUT.CUT_SPEED=42", "B:CUT.CUT_SPEED=1"}), QString());
    layerOf(manager, 'A')->CUT.CUT_SPEED = 5;
    layerOf(manager, 'B')->CUT.CUT_SPEED = 6;
    manager.RestoreLayerParams();
    QCOMPARE(unmet(manager, {"A:CUT.CUT_SPEED=42", "B:CUT.CUT_SPEED=6"}), QString());
}

void tst_CLayerMgrIns::saveRememberedParams()
{
    TestEnvironment env;
    LayerList remembered;
    for (const char c : {'A', 'C'})
        remembered.push_back(std::make_unique<CLayerParam>(colorOf(c)));
    remembered[0]->CUT.CUT_SPEED = 1.5;
    remembered[1]->CUT.CUT_SPEED = 7;
    WriteLayerParamFile(remembered);

    {
        CLayerMgrIns manager(nullptr);
        update(manager, QStringLiteral("A B"));
        QCOMPARE(unmet(manager, {"A:CUT.CUT_SPEED=1.5"}), QString());
        layerOf(manager, 'A')->CUT.CUT_SPEED = 11;
        layerOf(manager, 'B')->CUT.CUT_SPEED = 12;
        manager.SaveRememberedParams();
    }

    LayerList file;
    ReadLayerParamFile(file);
    QStringList names;
    for (const auto &record : file)
        names << nameOf(record->COLOR);
    QCOMPARE(names, QStringList({"A", "C", "B"}));

    CLayerMgrIns next(nullptr);
    update(next, QStringLiteral("A B C"));
    QCOMPARE(unmet(next, {"A:CUT.CUT_SPEED=11", "B:CUT.CUT_SPEED=12", "C:CUT.CUT_SPEED=7"}),
             QString());
}

void tst_CLayerMgrIns::selectLayersOfShapes_data()
{
    QTest::addColumn<QString>("layers");
    QTest::addColumn<QString>("shapes");
    QTest::addColumn<bool>("withPanel");
    QTest::addColumn<QString>("told");

    // A group tells its first member's colour when its last member has that
    // colour; a one-member group leaves the answer of the group before.
    // clang-format off
    QTest::newRow("selected shapes with layers") << "A B" << "A* B C* A*" << true << "A A";
    QTest::newRow("nothing selected") << "A B" << "A B" << true << "";
    QTest::newRow("group of one colour") << "G" << "G*=AA" << true << "A";
    QTest::newRow("group ending in its first colour") << "G" << "G*=ABA" << true << "A";
    QTest::newRow("group ending in another colour") << "G" << "G*=AAB" << true << "";
    QTest::newRow("one-member group keeps a set flag") << "G H" << "G*=AA H*=B" << true << "A B";
    QTest::newRow("one-member group keeps a clear flag") << "G H" << "G*=AB H*=B" << true << "";
    QTest::newRow("one-member group first") << "H" << "H*=B" << true << "";
    QTest::newRow("group colour without a layer") << "A" << "G*=AA" << true << "";
    QTest::newRow("unselected group ignored") << "G H K" << "G*=AA H=AB K*=C" << true << "A C";
    QTest::newRow("no panel") << "A" << "A*" << false << "";
    // clang-format on
}

void tst_CLayerMgrIns::selectLayersOfShapes()
{
    QFETCH(QString, layers);
    QFETCH(QString, shapes);
    QFETCH(bool, withPanel);
    QFETCH(QString, told);
    TestEnvironment env;
    FakePanel panel;
    if (withPanel)
        g_pLayerPanel = &panel;
    CLayerMgrIns manager(nullptr);
    addLayers(manager, layers);
    CShapeList list;
    draw(list, shapes);

    manager.SelectLayersOfShapes(&list);
    QCOMPARE(panel.pending.join(QLatin1Char(' ')), told);
    QCOMPARE(panel.selectCalls, withPanel ? 1 : 0);
    manager.SelectLayersOfShapes(nullptr);
    QCOMPARE(panel.selectCalls, withPanel ? 1 : 0);
}

void tst_CLayerMgrIns::runningOption_data()
{
    QTest::addColumn<QString>("layers");
    QTest::addColumn<QString>("entryOf");
    QTest::addColumn<QString>("material");
    QTest::addColumn<bool>("found");

    // clang-format off
    QTest::newRow("entry of the first layer") << "A B" << "A" << "Acrylic" << true;
    QTest::newRow("utf-8 name") << "A" << "A" << QStringLiteral("Holz \u00e4\u00df") << true;
    QTest::newRow("entry of another layer") << "A B" << "B" << "Acrylic" << false;
    QTest::newRow("no entry") << "A" << "" << "" << false;
    QTest::newRow("no layers") << "" << "A" << "Acrylic" << false;
    // clang-format on
}

void tst_CLayerMgrIns::runningOption()
{
    QFETCH(QString, layers);
    QFETCH(QString, entryOf);
    QFETCH(QString, material);
    QFETCH(bool, found);
    TestEnvironment env;
    if (!entryOf.isEmpty()) {
        CRunningOptions options;
        options.type = LASER_TUBE_FIBER;
        options.thickness = 2.5;
        options.SetMaterialName(material);
        g_LayerContext.SetRunningOption(colorOf(entryOf[0]), options);
    }
    CLayerMgrIns manager(nullptr);
    addLayers(manager, layers);

    quint32 type = 99;
    QString name = QStringLiteral("untouched");
    double thickness = -1;
    manager.GetRunningOption(&type, &name, &thickness);
    QCOMPARE(type, found ? 3u : 0u);
    QCOMPARE(name, found ? material : QString());
    QCOMPARE(thickness, found ? 2.5 : 1.0);
}

void tst_CLayerMgrIns::panelForwarding()
{
    TestEnvironment env;
    FakePanel panel;
    panel.current = 0xABCDEF;
    int payload = 0;
    CLayerMgrIns manager(nullptr);

    g_pLayerPanel = &panel;
    QCOMPARE(manager.GetCurrentLayerColor(), 0xABCDEFu);
    manager.SetPanelData(&payload);
    QCOMPARE(panel.data, static_cast<void *>(&payload));
    QCOMPARE(manager.GetPanelData(), static_cast<void *>(&payload));

    g_pLayerPanel = nullptr;
    manager.SetPanelData(nullptr);
    QCOMPARE(panel.data, static_cast<void *>(&payload));
    QCOMPARE(manager.GetPanelData(), nullptr);
    QCOMPARE(manager.GetCurrentLayerColor(), 0u);
    QCOMPARE(update(manager, QStringLiteral("A")), 1u);
    QVERIFY(panel.syncs.isEmpty());
}

void tst_CLayerMgrIns::hostNotifications()
{
    TestEnvironment env;
    FakeHost host;
    CLayerMgrIns manager(&host);
    update(manager, QStringLiteral("A B"));
    QVERIFY(host.calls.isEmpty());

    manager.NotifyLayersChanged();
    manager.NotifyLayerEvent(3, manager.GetLayerAt(0));
    manager.NotifyCurrentLayerChanged();
    QCOMPARE(host.calls, QStringList({"changed", "event 3", "refresh", "current"}));

    FakePanel panel;
    g_pLayerPanel = &panel;
    manager.AttachPanel(nullptr);
    QCOMPARE(g_pLayerPanel, nullptr);
    QCOMPARE(g_LayerContext.m_pHost, static_cast<ILayerHost *>(&host));

    CLayerMgrIns hostless(nullptr);
    hostless.NotifyLayersChanged();
    hostless.NotifyLayerEvent(0, nullptr);
    hostless.NotifyCurrentLayerChanged();
    QCOMPARE(host.calls.size(), 4);
}

QTEST_GUILESS_MAIN(tst_CLayerMgrIns)
#include "tst_clayermgrins.moc"
