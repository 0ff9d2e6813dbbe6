#include "librarytestdata.h"
#include "library/cmateriallibrary.h"
#include "testenvironment.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

const QString kBirch = QStringLiteral("Birch");

// Two tube/power pairs with materials interleaved in the order they are added.
CMaterialLibrary twoPairs()
{
    CMaterialLibrary library;
    library.AddPower(0, 80, false);
    library.AddPower(2, 60, false);
    library.AddMaterial(libMaterial(QStringLiteral("A"), {1.0}, 0, 80));
    library.AddMaterial(libMaterial(QStringLiteral("X"), {1.0}, 2, 60));
    library.AddMaterial(libMaterial(QStringLiteral("B"), {1.0}, 0, 80));
    library.AddMaterial(libMaterial(QStringLiteral("Y"), {1.0}, 2, 60));
    library.AddMaterial(libMaterial(QStringLiteral("C"), {1.0}, 0, 80));
    library.AddMaterial(libMaterial(QStringLiteral("D"), {1.0}, 0, 80));
    return library;
}

QStringList allNames(const CMaterialLibrary &library)
{
    QStringList names;
    for (const CLibMaterial &m : library.Materials())
        names.append(m.name);
    return names;
}

} // namespace

Q_DECLARE_METATYPE(CLibKey)

class tst_MaterialLibrary : public QObject
{
    Q_OBJECT

private slots:
    void findSetByKey_data()
    {
        QTest::addColumn<CLibKey>("key");
        QTest::addColumn<bool>("found");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("exact") << libKey(kBirch, 3.0, 0) << true;
        QTest::newRow("within 1e-6 above") << libKey(kBirch, 3.000001, 0) << true;
        QTest::newRow("within 1e-6 below") << libKey(kBirch, 2.9999995, 1) << true;
        QTest::newRow("beyond 1e-6") << libKey(kBirch, 3.0000021, 0) << false;
        QTest::newRow("other thickness") << libKey(kBirch, 6.0, 0) << false;
        QTest::newRow("other material") << libKey(QStringLiteral("birch"), 3.0, 0) << false;
        QTest::newRow("other power") << libKey(kBirch, 3.0, 0, 2, 80) << false;
        QTest::newRow("other tube") << libKey(kBirch, 3.0, 0, 1, 60) << false;
        QTest::newRow("sweep craft") << libKey(kBirch, 3.0, 3) << true;
        QTest::newRow("mark craft") << libKey(kBirch, 3.0, 4) << true;
        QTest::newRow("garbage: craft 5") << libKey(kBirch, 3.0, 5) << false;
        QTest::newRow("garbage: NaN thickness") << libKey(kBirch, nan, 0) << false;
        QTest::newRow("garbage: infinite thickness") << libKey(kBirch, inf, 2) << false;
    }

    void findSetByKey()
    {
        QFETCH(CLibKey, key);
        QFETCH(bool, found);
        const quint32 craft = key.craft;
        TestEnvironment env;

        const CMaterialLibrary library = sampleLibrary();
        QCOMPARE(library.HasSet(key), found);
        if (IsCutCraft(craft)) {
            const CLibCutSet *set = library.FindCutSet(key);
            QCOMPARE(set != nullptr, found);
            if (set)
                QCOMPARE(*set, sampleCutSet(libKey(kBirch, 3.0, craft)));
            QCOMPARE(library.FindSweepSet(key), nullptr);
        } else if (IsSweepCraft(craft)) {
            const CLibSweepSet *set = library.FindSweepSet(key);
            QCOMPARE(set != nullptr, found);
            if (set)
                QCOMPARE(set->note, QStringLiteral("sweep note"));
            QCOMPARE(library.FindCutSet(key), nullptr);
        } else if (craft == LIB_CRAFT_MARK) {
            QCOMPARE(library.FindMarkSet(key) != nullptr, found);
        }
    }

    void setReplaceRemove()
    {
        TestEnvironment env;
        CMaterialLibrary library = sampleLibrary();
        const size_t count = library.CutSetCount();

        CLibCutSet changed = sampleCutSet(libKey(kBirch, 3.0000004, 0));
        changed.speed = 99;
        QVERIFY(library.InsertCutSetIfAbsent(changed));
        QCOMPARE(library.FindCutSet(libKey(kBirch, 3.0, 0))->speed, 12.5);
        QVERIFY(library.SetCutSet(changed));
        QCOMPARE(library.FindCutSet(libKey(kBirch, 3.0, 0))->speed, 99.0);
        QCOMPARE(library.CutSetCount(), count);

        // Through the mutable pointer, as the library manager copies a layer in.
        library.FindCutSet(libKey(kBirch, 3.0, 0))->note = QStringLiteral("edited");
        QCOMPARE(library.FindCutSet(libKey(kBirch, 3.0, 0))->note, QStringLiteral("edited"));
        library.FindSweepSet(libKey(kBirch, 3.0, 2))->dpi = 9;
        QCOMPARE(library.FindSweepSet(libKey(kBirch, 3.0, 2))->dpi, 9);

        QVERIFY(library.SetCutSet(sampleCutSet(libKey(kBirch, 6.0, 0))));
        QCOMPARE(library.CutSetCount(), count + 1);

        // Removal matches the thickness within the same tolerance.
        library = sampleLibrary();
        QVERIFY(library.RemoveSet(libKey(kBirch, 3.0000009, 1)));
        QVERIFY(!library.RemoveSet(libKey(kBirch, 3.0, 1)));
        QVERIFY(library.FindCutSet(libKey(kBirch, 3.0, 0)));
        QCOMPARE(library.CutSetCount(), size_t(1));
        QVERIFY(library.RemoveSet(libKey(kBirch, 3.0, 4)));
        QCOMPARE(library.MarkSetCount(), size_t(0));
        QVERIFY(!library.RemoveSet(libKey(kBirch, 3.0, 9)));
    }

    void setsOfTheWrongKind_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<quint32>("craft");
        QTest::addColumn<double>("thickness");
        QTest::addColumn<bool>("accepted");

        const double nan = std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("cut as cutting") << "cut" << 0u << 1.0 << true;
        QTest::newRow("cut as tracing") << "cut" << 1u << 1.0 << true;
        QTest::newRow("cut as shallow") << "cut" << 2u << 1.0 << false;
        QTest::newRow("cut as mark") << "cut" << 4u << 1.0 << false;
        QTest::newRow("sweep as shallow") << "sweep" << 2u << 1.0 << true;
        QTest::newRow("sweep as deep") << "sweep" << 3u << 1.0 << true;
        QTest::newRow("sweep as cutting") << "sweep" << 0u << 1.0 << false;
        QTest::newRow("mark as mark") << "mark" << 4u << 1.0 << true;
        QTest::newRow("mark as tracing") << "mark" << 1u << 1.0 << false;
        QTest::newRow("garbage: craft 77") << "cut" << 77u << 1.0 << false;
        QTest::newRow("garbage: NaN thickness") << "sweep" << 2u << nan << false;
        QTest::newRow("garbage: infinite thickness")
            << "mark" << 4u << std::numeric_limits<double>::infinity() << false;
    }

    void setsOfTheWrongKind()
    {
        QFETCH(QString, kind);
        QFETCH(quint32, craft);
        QFETCH(double, thickness);
        QFETCH(bool, accepted);
        TestEnvironment env;

        CMaterialLibrary library;
        const CLibKey key = libKey(kBirch, thickness, craft);
        bool result = false;
        if (kind == QLatin1String("cut"))
            result = library.SetCutSet(sampleCutSet(key));
        else if (kind == QLatin1String("sweep"))
            result = library.SetSweepSet(sampleSweepSet(key));
        else
            result = library.SetMarkSet({key, QString()});
        QCOMPARE(result, accepted);
        QCOMPARE(library.CutSetCount() + library.SweepSetCount() + library.MarkSetCount(),
                 size_t(accepted ? 1 : 0));
        QCOMPARE(library.HasSet(key), accepted);
    }

    void materialsPerTubePower()
    {
        TestEnvironment env;
        const CMaterialLibrary library = twoPairs();
        QCOMPARE(library.MaterialNames(0, 80), (QStringList{"A", "B", "C", "D"}));
        QCOMPARE(library.MaterialNames(2, 60), (QStringList{"X", "Y"}));
        QCOMPARE(library.MaterialNames(2, 80), QStringList());
        // Each pair is one run of the whole list.
        QCOMPARE(allNames(library), (QStringList{"A", "B", "C", "D", "X", "Y"}));

        const auto pointers = library.MaterialsOf(2, 60);
        QCOMPARE(pointers.size(), size_t(2));
        QCOMPARE(pointers[1]->name, QStringLiteral("Y"));
        QCOMPARE(library.FindMaterial(2, 60, QStringLiteral("Y")), pointers[1]);
        QCOMPARE(library.FindMaterial(0, 80, QStringLiteral("Y")), nullptr);
        QCOMPARE(library.MaterialIndex(2, 60, QStringLiteral("X")), qsizetype(4));
        QCOMPARE(library.MaterialIndex(2, 60, QStringLiteral("Z")), qsizetype(-1));
    }

    void materialIcon()
    {
        TestEnvironment env;
        CMaterialLibrary library = twoPairs();
        QVERIFY(library.SetMaterialIcon(0, 80, QStringLiteral("C"), QStringLiteral("/p.png"),
                                        QStringLiteral("AAAA")));
        QCOMPARE(library.FindMaterial(0, 80, QStringLiteral("C"))->iconPath, QStringLiteral("/p.png"));
        QCOMPARE(library.FindMaterial(0, 80, QStringLiteral("C"))->iconBase64, QStringLiteral("AAAA"));
        QVERIFY(!library.SetMaterialIcon(2, 60, QStringLiteral("C"), QString(), QString()));
    }

    void addMaterial()
    {
        TestEnvironment env;
        CMaterialLibrary library = twoPairs();
        QVERIFY(!library.AddMaterial(libMaterial(QStringLiteral("B"), {}, 0, 80)));
        // The same name under another pair is another material.
        QVERIFY(library.AddMaterial(libMaterial(QStringLiteral("B"), {}, 2, 60)));
        QCOMPARE(library.MaterialNames(2, 60), (QStringList{"X", "Y", "B"}));

        // A pair without a power entry gets one, as a power the user added.
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QVERIFY(library.AddMaterial(libMaterial(QStringLiteral("N"), {2.0, 2.0000001, nan, 1.0}, 4,
                                                10)));
        QCOMPARE(library.Powers(4), (std::vector<CLibPower>{{10, true}}));
        QCOMPARE(library.Thicknesses(4, 10, QStringLiteral("N")), (std::vector<double>{2.0, 1.0}));
        QCOMPARE(allNames(library), (QStringList{"A", "B", "C", "D", "X", "Y", "B", "N"}));
    }

    void renameMaterial_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<bool>("renamed");
        QTest::addColumn<QStringList>("names");

        QTest::newRow("free name") << "B" << "Beech" << true << QStringList{"A", "Beech", "C", "D"};
        QTest::newRow("same name") << "B" << "B" << true << QStringList{"A", "B", "C", "D"};
        QTest::newRow("taken name") << "B" << "C" << false << QStringList{"A", "B", "C", "D"};
        QTest::newRow("no such material") << "Q" << "R" << false << QStringList{"A", "B", "C", "D"};
        QTest::newRow("name of another pair") << "B" << "X" << true
                                              << QStringList{"A", "X", "C", "D"};
    }

    void renameMaterial()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(bool, renamed);
        QFETCH(QStringList, names);
        TestEnvironment env;

        CMaterialLibrary library = twoPairs();
        library.SetCutSet(sampleCutSet(libKey(QStringLiteral("B"), 1.0, 0, 0, 80)));
        library.SetMarkSet({libKey(QStringLiteral("B"), 1.0, 4, 0, 80), QStringLiteral("m")});
        QCOMPARE(library.RenameMaterial(0, 80, from, to), renamed);
        QCOMPARE(library.MaterialNames(0, 80), names);
        const QString holder = renamed && from == QLatin1String("B") ? to : QStringLiteral("B");
        const CLibCutSet *set = library.FindCutSet(libKey(holder, 1.0, 0, 0, 80));
        QVERIFY(set);
        QCOMPARE(set->key.material, holder);
        QVERIFY(library.FindMarkSet(libKey(holder, 1.0, 4, 0, 80)));
        QCOMPARE(library.CutSetCount(), size_t(1));
        QCOMPARE(library.MarkSetCount(), size_t(1));
        QVERIFY(library.FindMaterial(0, 80, holder));
        // The other pair is untouched.
        QCOMPARE(library.MaterialNames(2, 60), (QStringList{"X", "Y"}));
    }

    void removeMaterial()
    {
        TestEnvironment env;
        CMaterialLibrary library = twoPairs();
        library.AddMaterial(libMaterial(QStringLiteral("B"), {1.0}, 2, 60));
        for (quint32 tube : {0u, 2u}) {
            const qint32 power = tube == 0 ? 80 : 60;
            library.SetCutSet(sampleCutSet(libKey(QStringLiteral("B"), 1.0, 0, tube, power)));
            library.SetSweepSet(sampleSweepSet(libKey(QStringLiteral("B"), 1.0, 3, tube, power)));
        }
        QVERIFY(library.RemoveMaterial(0, 80, QStringLiteral("B")));
        QVERIFY(!library.RemoveMaterial(0, 80, QStringLiteral("B")));
        QCOMPARE(library.MaterialNames(0, 80), (QStringList{"A", "C", "D"}));
        QCOMPARE(library.FindCutSet(libKey(QStringLiteral("B"), 1.0, 0, 0, 80)), nullptr);
        QCOMPARE(library.FindSweepSet(libKey(QStringLiteral("B"), 1.0, 3, 0, 80)), nullptr);
        // The same name under the other pair keeps its material and sets.
        QCOMPARE(library.MaterialNames(2, 60), (QStringList{"X", "Y", "B"}));
        QVERIFY(library.FindCutSet(libKey(QStringLiteral("B"), 1.0, 0, 2, 60)));
        QCOMPARE(library.CutSetCount(), size_t(1));
        QCOMPARE(library.SweepSetCount(), size_t(1));
        QCOMPARE(library.MaterialIndex(2, 60, QStringLiteral("X")), qsizetype(3));
    }

    void moveMaterial_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<bool>("moved");
        QTest::addColumn<QStringList>("names");

        QTest::newRow("first to last") << 0 << 3 << true << QStringList{"B", "C", "D", "A"};
        QTest::newRow("last to first") << 3 << 0 << true << QStringList{"D", "A", "B", "C"};
        QTest::newRow("down by one") << 1 << 2 << true << QStringList{"A", "C", "B", "D"};
        QTest::newRow("up by one") << 2 << 1 << true << QStringList{"A", "C", "B", "D"};
        QTest::newRow("in place") << 2 << 2 << true << QStringList{"A", "B", "C", "D"};
        QTest::newRow("garbage: past the run") << 1 << 4 << false << QStringList{"A", "B", "C", "D"};
        QTest::newRow("garbage: negative") << -1 << 2 << false << QStringList{"A", "B", "C", "D"};
        QTest::newRow("garbage: the custom entry row")
            << 4 << 0 << false << QStringList{"A", "B", "C", "D"};
    }

    void moveMaterial()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(bool, moved);
        QFETCH(QStringList, names);
        TestEnvironment env;

        CMaterialLibrary library = twoPairs();
        QCOMPARE(library.MoveMaterial(0, 80, from, to), moved);
        QCOMPARE(library.MaterialNames(0, 80), names);
        // Other pairs keep their places in the whole list.
        QCOMPARE(allNames(library), names + QStringList({"X", "Y"}));
        for (const QString &name : std::as_const(names))
            QCOMPARE(library.FindMaterial(0, 80, name)->name, name);
        QVERIFY(!library.MoveMaterial(1, 80, 0, 0));
    }

    void thicknesses()
    {
        TestEnvironment env;
        CMaterialLibrary library = sampleLibrary();
        QVERIFY(library.AddThickness(2, 60, kBirch, 6.0));
        QVERIFY(library.AddThickness(2, 60, kBirch, 1.5));
        QVERIFY(!library.AddThickness(2, 60, kBirch, 6.0000005));
        QVERIFY(!library.AddThickness(2, 60, kBirch, std::nan("")));
        QVERIFY(!library.AddThickness(2, 60, QStringLiteral("Oak"), 1.0));
        QCOMPARE(library.Thicknesses(2, 60, kBirch), (std::vector<double>{3.0, 6.0, 1.5}));
        QCOMPARE(library.Thicknesses(2, 60, QStringLiteral("Oak")), std::vector<double>());

        library.SetCutSet(sampleCutSet(libKey(kBirch, 6.0, 0)));
        QVERIFY(library.RemoveThickness(2, 60, kBirch, 3.0000003));
        QVERIFY(!library.RemoveThickness(2, 60, kBirch, 3.0));
        QCOMPARE(library.Thicknesses(2, 60, kBirch), (std::vector<double>{6.0, 1.5}));
        // The sets of that thickness went with it, the others stayed.
        QCOMPARE(library.CutSetCount(), size_t(1));
        QCOMPARE(library.SweepSetCount(), size_t(0));
        QCOMPARE(library.MarkSetCount(), size_t(0));
        QVERIFY(library.FindCutSet(libKey(kBirch, 6.0, 0)));
    }

    void powers()
    {
        TestEnvironment env;
        CMaterialLibrary library;
        QVERIFY(library.AddPower(0, 40, false));
        QVERIFY(library.AddPower(0, 60, false));
        QVERIFY(library.AddPower(0, 45, true));
        QVERIFY(!library.AddPower(0, 60, true));
        QVERIFY(library.AddPower(4, 10, false));
        QCOMPARE(library.Powers(0), (std::vector<CLibPower>{{40, false}, {60, false}, {45, true}}));
        QCOMPARE(library.Powers(4), (std::vector<CLibPower>{{10, false}}));
        QCOMPARE(library.Powers(3), std::vector<CLibPower>());
        QCOMPARE(library.Tubes().size(), size_t(2));
        QVERIFY(library.HasPower(0, 45));
        QVERIFY(!library.HasPower(4, 45));
        QCOMPARE(library.FindTube(3), nullptr);
        library.AddTube(3);
        library.AddTube(3);
        QCOMPARE(library.Tubes().size(), size_t(3));
        QVERIFY(library.FindTube(3)->powers.empty());
    }

    void removeUserPower()
    {
        TestEnvironment env;
        CMaterialLibrary library = twoPairs();
        library.AddPower(0, 45, true);
        library.AddMaterial(libMaterial(QStringLiteral("U"), {2.0}, 0, 45));
        library.SetCutSet(sampleCutSet(libKey(QStringLiteral("U"), 2.0, 0, 0, 45)));

        QVERIFY(!library.RemoveUserPower(0, 80)); // came with the library
        QVERIFY(!library.RemoveUserPower(0, 46));
        QVERIFY(!library.RemoveUserPower(3, 45));
        QVERIFY(library.RemoveUserPower(0, 45));
        QCOMPARE(library.Powers(0), (std::vector<CLibPower>{{80, false}}));
        QCOMPARE(library.MaterialNames(0, 45), QStringList());
        QCOMPARE(library.CutSetCount(), size_t(0));
        QCOMPARE(allNames(library), (QStringList{"A", "B", "C", "D", "X", "Y"}));
        QCOMPARE(library.MaterialIndex(2, 60, QStringLiteral("Y")), qsizetype(5));
    }

    void clonePair()
    {
        TestEnvironment env;
        CMaterialLibrary library = sampleLibrary();
        library.AddMaterial(libMaterial(QStringLiteral("Oak"), {4.0, 8.0}));
        library.SetSweepSet(sampleSweepSet(libKey(QStringLiteral("Oak"), 8.0, 2)));
        const CMaterialLibrary before = library;

        QCOMPARE(library.ClonePair(2, 60, 0, 100), 2);
        QCOMPARE(library.Powers(0), (std::vector<CLibPower>{{100, true}}));
        QCOMPARE(library.MaterialNames(0, 100), (QStringList{"Birch", "Oak"}));
        QCOMPARE(library.Thicknesses(0, 100, QStringLiteral("Oak")), (std::vector<double>{4.0, 8.0}));
        QCOMPARE(library.FindMaterial(0, 100, kBirch)->iconPath,
                 before.FindMaterial(2, 60, kBirch)->iconPath);
        for (quint32 craft : {0u, 1u}) {
            CLibCutSet expected = sampleCutSet(libKey(kBirch, 3.0, craft, 0, 100));
            QCOMPARE(*library.FindCutSet(libKey(kBirch, 3.0, craft, 0, 100)), expected);
        }
        QCOMPARE(library.FindSweepSet(libKey(QStringLiteral("Oak"), 8.0, 2, 0, 100))->key.power, 100);
        QVERIFY(library.FindMarkSet(libKey(kBirch, 3.0, 4, 0, 100)));
        QCOMPARE(library.CutSetCount(), 2 * before.CutSetCount());
        QCOMPARE(library.SweepSetCount(), 2 * before.SweepSetCount());
        QCOMPARE(library.MarkSetCount(), 2 * before.MarkSetCount());

        // The source is as it was; a second clone to the same pair copies nothing.
        QCOMPARE(library.MaterialNames(2, 60), before.MaterialNames(2, 60));
        const CMaterialLibrary once = library;
        QCOMPARE(library.ClonePair(2, 60, 0, 100), 0);
        QVERIFY(library == once);
        QCOMPARE(library.ClonePair(2, 60, 2, 60), 0);
        QCOMPARE(library.ClonePair(3, 20, 1, 20), 0);
        QVERIFY(library == once);
        QCOMPARE(library.FindTube(1), nullptr);
    }

    void countsAndOrderedSets()
    {
        TestEnvironment env;
        CMaterialLibrary library = sampleLibrary();
        library.AddThickness(2, 60, kBirch, 1.0);
        library.SetCutSet(sampleCutSet(libKey(kBirch, 1.0, 0)));
        QCOMPARE(library.CountSets(2, 60, 0), 2);
        QCOMPARE(library.CountSets(2, 60, 1), 1);
        QCOMPARE(library.CountSets(2, 60, 4), 1);
        QCOMPARE(library.CountSets(2, 80, 0), 0);
        QCOMPARE(library.CountSets(2, 60, 9), 0);
        const std::vector<CLibCutSet> sets = library.CutSets();
        QCOMPARE(sets.size(), size_t(3));
        QCOMPARE(sets[0].key, libKey(kBirch, 1.0, 0));
        QCOMPARE(sets[1].key, libKey(kBirch, 3.0, 0));
        QCOMPARE(sets[2].key, libKey(kBirch, 3.0, 1));
    }

    void equality()
    {
        TestEnvironment env;
        const CMaterialLibrary a = sampleLibrary();
        CMaterialLibrary b = sampleLibrary();
        QVERIFY(a == b);
        b.FindSweepSet(libKey(kBirch, 3.0, 3))->carvingNumber = 4;
        QVERIFY(a != b);
        b = sampleLibrary();
        b.SetVersion(8);
        QVERIFY(a != b);
        b = sampleLibrary();
        b.MoveMaterial(2, 60, 0, 0);
        QVERIFY(a == b);
        b.AddPower(2, 90, true);
        QVERIFY(a != b);
        QVERIFY(!a.IsEmpty());
        b.Clear();
        QVERIFY(b.IsEmpty());
        QCOMPARE(b.Version(), QJsonValue(0));
    }
};

QTEST_GUILESS_MAIN(tst_MaterialLibrary)
#include "tst_materiallibrary.moc"
