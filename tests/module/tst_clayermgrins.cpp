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

#include <QBuffer>
#include <QTest>

using namespace layertest;

namespace {

// Colours by letter: R and S are the two reserved colours.
quint32 colorOf(QChar letter)
{
    if (letter == QLatin1Char('R'))
        return kReservedColorA;
    return letter == QLatin1Char('S') ? kReservedColorB : 0xA00000u | letter.unicode();
}

QString nameOf(quint32 color)
{
    if (color == kReservedColorA || color == kReservedColorB)
        return color == kReservedColorA ? QStringLiteral("R") : QStringLiteral("S");
    return QChar(char16_t(color & 0xFFu));
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
    void SyncLayers(CLayerMgrIns *manager, bool) override { calls << order(*manager); }
    void AddPendingColor(quint32 color) override { pending << nameOf(color); }
    void SelectPendingColors() override { calls << QStringLiteral("told: ") + pending.join(QLatin1Char(' ')); }
    quint32 CurrentLayerColor() const override { return 0; }
    void SetPanelData(void *) override {}
    void *GetPanelData() const override { return nullptr; }

    QStringList calls; // the layer order of each refill, or the colours told to select
    QStringList pending;
};

// A drawing from tokens such as "A Bi C* G*=AB": the colour letter, then 'i'
// for an image, '*' for selected, '=' and the member colours for a group.
void draw(CShapeList &list, const QString &tokens)
{
    for (const QString &token : tokens.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const qsizetype eq = token.indexOf(QLatin1Char('='));
        CShape *shape = nullptr;
        if (eq >= 0) {
            auto *group = new CShapeGroup(colorOf(token[0]));
            for (const QChar member : token.mid(eq + 1))
                group->AddShape(new CShape(colorOf(member)));
            shape = group;
        } else {
            const bool image = token.contains(QLatin1Char('i'));
            shape = new CShape(colorOf(token[0]), image ? SHAPE_IMAGE : SHAPE_PATH);
        }
        shape->SetSelected(token.left(eq).contains(QLatin1Char('*')));
        list.AddTail(shape);
    }
}

quint64 update(ILayerMgr &manager, const QString &tokens)
{
    CShapeList list;
    draw(list, tokens);
    return manager.UpdateLayers(&list);
}

// Layers from tokens "<colour><work type><laser>": laser 1 means the work
// type's block fires LASER1; the other block is set the other way.
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

// "A:FIELD=value" given to layer A, as the user would edit it.
void setField(ILayerMgr &manager, const QString &entry)
{
    CLayerParam &l = *manager.GetLayerByColor(colorOf(entry[0]));
    const QString field = entry.mid(2).section(QLatin1Char('='), 0, 0);
    const double value = entry.section(QLatin1Char('='), 1).toDouble();
#define LAYERTEST_ASSIGN(f)                                                                        \
    if (field == QLatin1String(#f))                                                                \
        l.f = decltype(l.f)(value);
    LAYERTEST_FIELDS(LAYERTEST_ASSIGN)
#undef LAYERTEST_ASSIGN
}

// The entries "A:FIELD=value" that the manager's layers do not show.
QString unmet(ILayerMgr &manager, const QStringList &expect)
{
    QStringList out;
    for (const QString &entry : expect) {
        const CLayerParam *layer = manager.GetLayerByColor(colorOf(entry[0]));
        if (!layer || !describe(*layer).contains(entry.mid(2)))
            out << entry;
    }
    return out.join(QStringLiteral(", "));
}

} // namespace

class tst_CLayerMgrIns : public QObject
{
    Q_OBJECT

private slots:
    void updateLayers_data();
    void updateLayers();
    void regroup_data();
    void regroup();
    void rememberedParams();
    void queries();
};

void tst_CLayerMgrIns::updateLayers_data()
{
    // clang-format off
    // Each step is a drawing handed to UpdateLayers, "move <from> <to>", "off
    // <colours>" to start without output, "set A:FIELD=v" to edit a layer,
    // "vert <n>" for the user's vertical fill order, "reload" to load the
    // layers' own document behind them, or "select <drawing>".
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<quint64>("result"); // of the last step
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("panel"); // what the panel was told last
    QTest::addColumn<QStringList>("expect");

    QTest::newRow("colours A B A") << QStringList{"A B A"} << 1ull << "A B" << "A B" << QStringList{"A:WORK_TYPE=0", "A:OUTPUT=true", "B:FILL_LOCKED=false"};
    QTest::newRow("image shape") << QStringList{"Ai"} << 1ull << "A" << "A" << QStringList{"A:WORK_TYPE=2", "A:FILL_LOCKED=true", "A:SWEEP.SWEEP_TYPE=0"};
    QTest::newRow("image after a path of its colour") << QStringList{"A Ai"} << 1ull << "A" << "A" << QStringList{"A:WORK_TYPE=0", "A:FILL_LOCKED=false"};
    QTest::newRow("new engraving goes before cutting") << QStringList{"A Bi"} << 1ull << "B A" << "B A" << QStringList{"B:WORK_TYPE=2"};
    QTest::newRow("selected shapes") << QStringList{"A B* A C* C"} << 1ull << "A B C" << "A B C" << QStringList{"A:SELECTED=false", "B:SELECTED=true", "C:SELECTED=true"};
    // A colour back keeps its values, but the vertical fill order is the user's.
    QTest::newRow("returning colour") << QStringList{"A B C", "set B:CUT.CUT_SPEED=42", "set B:WORK_TYPE=1", "set B:SWEEP.SWEEP_TYPE=4", "set B:SWEEP.SWEEP_VERT_TYPE=9", "A C", "vert 5", "A C B"} << 1ull << "B A C" << "B A C" << QStringList{"B:CUT.CUT_SPEED=42", "B:WORK_TYPE=1", "B:SWEEP.SWEEP_TYPE=4", "B:SWEEP.SWEEP_VERT_TYPE=5"};
    QTest::newRow("returning deep engraving") << QStringList{"A B C", "set B:WORK_TYPE=3", "set B:SWEEP.SWEEP_TYPE=4", "A C", "A C Bi"} << 1ull << "B A C" << "B A C" << QStringList{"B:WORK_TYPE=3", "B:FILL_LOCKED=true", "B:SWEEP.SWEEP_TYPE=0"};
    QTest::newRow("pending colour used once") << QStringList{"off BC", "A B", "set B:OUTPUT=1", "A", "A B C"} << 1ull << "A B C" << "A B C" << QStringList{"B:OUTPUT=true", "C:OUTPUT=false"};
    QTest::newRow("new pending set replaces") << QStringList{"off D", "off E", "A D E"} << 1ull << "A D E" << "A D E" << QStringList{"D:OUTPUT=true", "E:OUTPUT=false"};
    // Moves the panel refuses; its own drags are checked with the panel.
    QTest::newRow("move: same place") << QStringList{"A B C", "move 2 2"} << 0ull << "A B C" << "A B C" << QStringList();
    QTest::newRow("move: negative to") << QStringList{"A B C", "move 0 -1"} << 0ull << "A B C" << "A B C" << QStringList();
    QTest::newRow("move: from past the end") << QStringList{"A B C", "move 3 0"} << 0ull << "A B C" << "A B C" << QStringList();
    QTest::newRow("move: to past the end") << QStringList{"A B C", "move 0 3"} << 0ull << "A B C" << "A B C" << QStringList();
    // The panel refills without the reserved layers; they follow at the end.
    QTest::newRow("reserved go last") << QStringList{"B S A R C"} << 1ull << "B A C R S" << "B A C" << QStringList();
    QTest::newRow("reserved at 0 and 1") << QStringList{"R S A"} << 1ull << "R A S" << "R A" << QStringList();
    QTest::newRow("shapes in another order") << QStringList{"A B", "B A B"} << 0ull << "A B" << "A B" << QStringList();
    QTest::newRow("selection alone is no change") << QStringList{"A B", "A* B"} << 0ull << "A B" << "A B" << QStringList{"A:SELECTED=true"};
    QTest::newRow("one gone, one new") << QStringList{"A B", "C B"} << 1ull << "B C" << "B C" << QStringList();
    // Removing never regroups: C, engraving, stays behind the cutting layers.
    QTest::newRow("drop A and E") << QStringList{"A B Ci D E", "move 2 4", "B Ci D"} << 1ull << "B D C" << "B D C" << QStringList();
    // A document holding a colour twice: the shapes count for its first layer only.
    QTest::newRow("duplicate colour after loading") << QStringList{"A", "reload", "set A:CUT.CUT_SPEED=7", "A"} << 1ull << "A" << "A" << QStringList{"A:CUT.CUT_SPEED=7"};
    // A group tells its first member's colour when its last member has that
    // colour; a one-member group leaves the answer of the group before.
    QTest::newRow("select: group ending in its first colour") << QStringList{"G", "select G*=ABA"} << 1ull << "G" << "told: A" << QStringList();
    QTest::newRow("select: group ending in another colour") << QStringList{"G", "select G*=AAB"} << 1ull << "G" << "told: " << QStringList();
    QTest::newRow("select: one-member group keeps a set flag") << QStringList{"G H", "select G*=AA H*=B"} << 1ull << "G H" << "told: A B" << QStringList();
    QTest::newRow("select: one-member group first") << QStringList{"H", "select H*=B"} << 1ull << "H" << "told: " << QStringList();
    QTest::newRow("select: group colour without a layer") << QStringList{"A", "select G*=AA"} << 1ull << "A" << "told: " << QStringList();
    QTest::newRow("select: unselected group ignored") << QStringList{"G H K", "select G*=AA H=AB K*=C"} << 1ull << "G H K" << "told: A C" << QStringList();
    // clang-format on
}

void tst_CLayerMgrIns::updateLayers()
{
    QFETCH(QStringList, steps);
    QFETCH(quint64, result);
    QFETCH(QStringList, expect);
    TestEnvironment env;
    FakePanel fake;
    g_pLayerPanel = &fake;
    CLayerMgrIns manager(nullptr);

    quint64 last = 0;
    int told = 0; // drawings and selections
    for (const QString &step : steps) {
        const QStringList words = step.split(QLatin1Char(' '));
        const QString command = words[0], rest = step.section(QLatin1Char(' '), 1);
        if (command == QLatin1String("move")) {
            last = manager.MoveLayer(words[1].toInt(), words[2].toInt());
        } else if (command == QLatin1String("off")) {
            QSet<quint32> off;
            for (const QChar c : rest)
                off.insert(colorOf(c));
            manager.SetNonOutputColors(&off);
            QVERIFY(off.isEmpty()); // taken over, not copied
        } else if (command == QLatin1String("set")) {
            setField(manager, rest);
        } else if (command == QLatin1String("vert")) {
            WriteIniInt(QStringLiteral("LASER_PARAM_SWEEP"), QStringLiteral("SWEEP_VERT_TYPE"),
                        rest.toInt(), UserParamIniPath());
        } else if (command == QLatin1String("reload")) {
            QBuffer buffer;
            buffer.open(QIODevice::ReadWrite);
            manager.SaveLayers(&buffer);
            buffer.seek(0);
            manager.LoadLayers(&buffer);
        } else if (command == QLatin1String("select")) {
            CShapeList list;
            draw(list, rest);
            manager.SelectLayersOfShapes(&list);
            ++told;
        } else {
            last = ::update(manager, step);
            ++told;
        }
    }
    QCOMPARE(last, result);
    QTEST(::order(manager), "order");
    QCOMPARE(fake.calls.size(), told);
    QTEST(fake.calls.last(), "panel");
    QCOMPARE(unmet(manager, expect), QString());
}

void tst_CLayerMgrIns::regroup_data()
{
    // clang-format off
    // LASER1_TYPE and LASER2_TYPE as two digits; flags F fiber first, C laser
    // check; '^' marks a named reference layer. Modes 0 to 3 go to Regroup; 4
    // switches the laser check off and on, 5 on while on. A drawing after '|'
    // goes to UpdateLayers first.
    QTest::addColumn<QString>("types");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("layers");
    QTest::addColumn<QString>("order");

    // Grouping alone: 0 Glass, 2 RF, 3 Fiber, anything else Glass.
    QTest::newRow("fiber first") << "30" << "F" << 0 << "A02 B01 C02 D01" << "B D A C";
    QTest::newRow("fiber last") << "30" << "" << 0 << "A02 B01 C02 D01" << "A C B D";
    QTest::newRow("glass before rf") << "20" << "F" << 0 << "A01 B02" << "B A";
    QTest::newRow("rf before glass") << "20" << "" << 0 << "A02 B01" << "B A";
    QTest::newRow("type 1 is glass") << "12" << "" << 0 << "A01 B02" << "B A";
    QTest::newRow("mark fires laser 1") << "30" << "F" << 0 << "A02 B42" << "B A";
    QTest::newRow("fill work reads the fill block") << "30" << "F" << 0 << "A22 B31 C02" << "B A C";
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
    QTest::newRow("no move without laser check") << "00" << "F" << 0 << "A0 B2 C1" << "A B C";
    // Switching the check on sorts every group by process.
    QTest::newRow("check on: processing order") << "00" << "FC" << 4 << "A0 B1 C2 D0 E3 F1" << "B F C E A D";
    QTest::newRow("check on: each group apart") << "30" << "FC" << 4 << "A01 B12 C21 D11 E02" << "D C A B E";
    QTest::newRow("check already on: nothing") << "00" << "FC" << 5 << "A0 B1 C2" << "A B C";
    // A new layer cuts with LASER1, the fiber source, whose group comes first.
    QTest::newRow("new layer joins its group") << "30" << "F" << 1 << "A02 C02|A B C" << "B A C";
    // clang-format on
}

void tst_CLayerMgrIns::regroup()
{
    QFETCH(QString, types);
    QFETCH(QString, flags);
    QFETCH(int, mode);
    QFETCH(QString, layers);
    TestEnvironment env;
    const QString ini = QStringLiteral("[FACTORY_PARAM_LASER]\nLASER1_TYPE=%1\nLASER2_TYPE=%2\n");
    QVERIFY(env.writeFile(QStringLiteral("FactoryParam.ini"), ini.arg(types.left(1), types.mid(1)).toUtf8()));
    CLayerMgrIns manager(nullptr);
    manager.SetFiberFirst(flags.contains(QLatin1Char('F')));
    manager.SetLaserCheck(flags.contains(QLatin1Char('C')));
    const qsizetype mark = layers.indexOf(QLatin1Char('^'));
    addLayers(manager, layers.section(QLatin1Char('|'), 0, 0).remove(QLatin1Char('^')));
    const QString added = order(manager);
    if (layers.contains(QLatin1Char('|')))
        ::update(manager, layers.section(QLatin1Char('|'), 1));

    if (mode == 4) {
        manager.SetLaserCheck(false);
        QCOMPARE(::order(manager), added);
    }
    if (mode >= 4)
        manager.SetLaserCheck(true);
    else
        manager.Regroup(mode,
                        mark < 0 ? nullptr : manager.GetLayerByColor(colorOf(layers[mark - 2])));
    QTEST(::order(manager), "order");
}

void tst_CLayerMgrIns::rememberedParams()
{
    TestEnvironment env;
    LayerList file;
    for (const auto &[letter, speed] : {std::pair{'A', 1.5}, std::pair{'C', 7.0}}) {
        file.push_back(std::make_unique<CLayerParam>(colorOf(QLatin1Char(letter))));
        file.back()->CUT.CUT_SPEED = speed;
    }
    WriteLayerParamFile(file);
    for (const char c : {'B', 'D'})
        g_LayerContext.SetRunningOption(colorOf(QLatin1Char(c)), CRunningOptions());
    {
        CLayerMgrIns manager(nullptr);
        update(manager, QStringLiteral("A B D"));
        QCOMPARE(unmet(manager, {"A:CUT.CUT_SPEED=1.5", "B:CUT.CUT_SPEED=1"}), QString());
        // A colour gone is remembered once however often it goes, and its
        // running options go with its layer.
        setField(manager, QStringLiteral("D:CUT.CUT_SPEED=42"));
        update(manager, QStringLiteral("A B"));
        update(manager, QStringLiteral("A B D"));
        update(manager, QStringLiteral("A B"));
        QCOMPARE(manager.RememberedLayers().size(), size_t(3));
        QVERIFY(g_LayerContext.FindRunningOption(colorOf(QLatin1Char('B'))));
        QVERIFY(!g_LayerContext.FindRunningOption(colorOf(QLatin1Char('D'))));
        // Restoring takes the remembered values of the colours that have them.
        setField(manager, QStringLiteral("A:CUT.CUT_SPEED=5"));
        setField(manager, QStringLiteral("B:CUT.CUT_SPEED=6"));
        manager.RestoreLayerParams();
        QCOMPARE(unmet(manager, {"A:CUT.CUT_SPEED=1.5", "B:CUT.CUT_SPEED=6"}), QString());
        setField(manager, QStringLiteral("A:CUT.CUT_SPEED=11"));
        manager.SaveRememberedParams();
    }

    file.clear();
    ReadLayerParamFile(file);
    QStringList names;
    for (const auto &record : file)
        names << nameOf(record->COLOR);
    QCOMPARE(names, QStringList({"A", "C", "D", "B"}));

    CLayerMgrIns next(nullptr);
    update(next, QStringLiteral("A B C D"));
    QCOMPARE(unmet(next, {"A:CUT.CUT_SPEED=11", "B:CUT.CUT_SPEED=6", "C:CUT.CUT_SPEED=7",
                          "D:CUT.CUT_SPEED=42"}),
             QString());
}

void tst_CLayerMgrIns::queries()
{
    TestEnvironment env;
    CRunningOptions options;
    options.type = LASER_TUBE_FIBER;
    options.thickness = 2.5;
    options.SetMaterialName(QStringLiteral("Holz \u00e4\u00df"));
    g_LayerContext.SetRunningOption(colorOf(QLatin1Char('B')), options);
    CLayerMgrIns manager(nullptr);
    // Each alternate is its colour one step up per channel, green of layer 5
    // by two; numbers outside 1 to 35 give black or its alternate.
    QCOMPARE((QList<quint32>{manager.GetLayerColor(1, false), manager.GetLayerColor(1, true),
                             manager.GetLayerColor(5, true), manager.GetLayerColor(35, true),
                             manager.GetLayerColor(0, false), manager.GetLayerColor(36, true)}),
             (QList<quint32>{0x0B00FF, 0x0C01FF, 0x01CCFD, 0x237857, 0, 0x010101}));
    QCOMPARE((QList<quint32>{manager.GetLayerNumber(0x0C01FF), manager.GetLayerNumber(0x237857),
                             manager.GetLayerNumber(0x010101)}),
             (QList<quint32>{1, 35, 0}));
    auto runningOption = [&manager] {
        quint32 type = 99;
        QString name = QStringLiteral("untouched");
        double thickness = -1;
        manager.GetRunningOption(&type, &name, &thickness);
        return QStringLiteral("%1|%2|%3").arg(type).arg(name).arg(thickness);
    };
    // A first layer without options gives the defaults.
    addLayers(manager, QStringLiteral("A B C"));
    QCOMPARE(runningOption(), QStringLiteral("0||1"));

    // A second layer of a colour is refused; the caller keeps it.
    auto duplicate = std::make_unique<CLayerParam>(colorOf(QLatin1Char('A')));
    manager.AddLayer(duplicate.get());
    QCOMPARE(order(manager), QStringLiteral("A B C"));
    manager.MoveLayer(1, 0);
    QCOMPARE(runningOption(), QStringLiteral("3|Holz \u00e4\u00df|2.5"));

    // The lists are appended to; the count is of every layer.
    setField(manager, QStringLiteral("A:OUTPUT=0"));
    setField(manager, QStringLiteral("C:OUTPUT=0"));
    QList<CLayerParam *> output{duplicate.get()};
    QCOMPARE(manager.GetOutputLayers(output), 3u);
    QCOMPARE(output, (QList<CLayerParam *>{duplicate.get(), manager.GetLayerAt(0)}));
    QList<quint32> off{7};
    QCOMPARE(manager.GetNonOutputColors(off), 3u);
    QCOMPARE(off, (QList<quint32>{7, colorOf(QLatin1Char('A')), colorOf(QLatin1Char('C'))}));

    // Without a panel the documented zero; the panel's own answer is checked with the plug-in.
    manager.AttachPanel(nullptr);
    QCOMPARE(manager.GetPanelData(), nullptr);
    QCOMPARE(manager.GetCurrentLayerColor(), 0u);
}

QTEST_GUILESS_MAIN(tst_CLayerMgrIns)
#include "tst_clayermgrins.moc"
