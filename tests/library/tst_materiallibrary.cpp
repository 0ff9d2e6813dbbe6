#include "librarytestdata.h"
#include "testenvironment.h"

#include <QTest>

#include <functional>
#include <limits>

namespace {

using Edit = std::function<int(CMaterialLibrary &)>;
const double kNan = std::numeric_limits<double>::quiet_NaN();

// Two tube/power pairs, materials added interleaved; "B" under both, with
// sets of three crafts under 0/80 and two under 2/60.
CMaterialLibrary fixture()
{
    CMaterialLibrary library;
    library.AddPower(0, 80, false);
    library.AddPower(2, 60, false);
    for (const char *entry : {"A0", "X2", "B0", "Y2", "C0", "D0", "B2"}) {
        const bool second = entry[1] == '2';
        library.AddMaterial(libMaterial(QString(entry[0]), {1.0}, second ? 2 : 0, second ? 60 : 80));
    }
    for (quint32 tube : {0u, 2u}) {
        const qint32 power = tube ? 60 : 80;
        library.SetCutSet(sampleCutSet(libKey("B", 1.0, 0, tube, power)));
        library.SetSweepSet(sampleSweepSet(libKey("B", 1.0, 3, tube, power)));
    }
    library.SetMarkSet({libKey("B", 1.0, 4, 0, 80), "m"});
    return library;
}

// Power entries ("u": added by the user), then the materials in list order
// under their pair, each with its thicknesses and the crafts that have a set
// there, then the number of sets.
QString dump(const CMaterialLibrary &library)
{
    QStringList text;
    for (const CLibTube &tube : library.Tubes()) {
        for (const CLibPower &p : tube.powers)
            text << QStringLiteral("%1/%2%3").arg(tube.type).arg(p.power).arg(p.custom ? "u" : "");
    }
    text << "|";
    qint64 pair = -1;
    for (const CLibMaterial &m : library.Materials()) {
        if (pair != (qint64(m.tube) << 32 | quint32(m.power)))
            text << QStringLiteral("%1/%2:").arg(m.tube).arg(m.power);
        pair = qint64(m.tube) << 32 | quint32(m.power);
        QStringList thicknesses;
        for (double t : m.thicknesses) {
            QString crafts;
            for (quint32 craft = 0; craft < 5; ++craft) {
                if (library.HasSet({m.tube, m.power, m.name, t, craft}))
                    crafts += QString::number(craft);
            }
            thicknesses << (crafts.isEmpty() ? QString::number(t) : QString::number(t) + ":" + crafts);
        }
        text << m.name + "(" + thicknesses.join(",") + ")";
    }
    const size_t sets = library.CutSetCount() + library.SweepSetCount() + library.MarkSetCount();
    return text.join(' ') + QStringLiteral(" #%1").arg(sets);
}

// The cut set of B, 1 mm at 0/80, a little off in thickness, with another speed.
CLibCutSet changedCut()
{
    CLibCutSet set = sampleCutSet(libKey("B", 1.0000004, 0, 0, 80));
    set.speed = 99;
    return set;
}

} // namespace

Q_DECLARE_METATYPE(Edit)

class tst_MaterialLibrary : public QObject
{
    Q_OBJECT

private slots:
    void edit_data()
    {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("after");
        const QString same = "0/80 2/60 | 0/80: A(1) B(1:034) C(1) D(1) 2/60: X(1) Y(1) B(1:03) #5";
        auto row = [](const char *name, Edit edit, int result, const QString &after) {
            QTest::newRow(name) << edit << result << after;
        };
        using L = CMaterialLibrary;
        row("rename to the same name", [](L &l) { return l.RenameMaterial(0, 80, "B", "B"); }, 1, same);
        row("remove a material and its sets", [](L &l) { return l.RemoveMaterial(0, 80, "B"); }, 1, "0/80 2/60 | 0/80: A(1) C(1) D(1) 2/60: X(1) Y(1) B(1:03) #2");
        row("move up by one", [](L &l) { return l.MoveMaterial(2, 60, 2, 1); }, 1, "0/80 2/60 | 0/80: A(1) B(1:034) C(1) D(1) 2/60: X(1) B(1:03) Y(1) #5");
        row("garbage: move past the run", [](L &l) { return l.MoveMaterial(0, 80, 1, 4); }, 0, same);
        row("add a taken name", [](L &l) { return l.AddMaterial(libMaterial("C", {}, 0, 80)); }, 0, same);
        row("add a name of the other pair", [](L &l) { return l.AddMaterial(libMaterial("A", {2}, 2, 60)); }, 1,
            "0/80 2/60 | 0/80: A(1) B(1:034) C(1) D(1) 2/60: X(1) Y(1) B(1:03) A(2) #5");
        row("add to a new pair: a user power, thicknesses once",
            [](L &l) { return l.AddMaterial(libMaterial("N", {2, 2.0000001, kNan, 1}, 4, 10)); }, 1,
            "0/80 2/60 4/10u | 0/80: A(1) B(1:034) C(1) D(1) 2/60: X(1) Y(1) B(1:03) 4/10: N(2,1) #5");
        row("remove a thickness and its sets", [](L &l) { return l.RemoveThickness(0, 80, "B", 1.0000003); }, 1,
            "0/80 2/60 | 0/80: A(1) B() C(1) D(1) 2/60: X(1) Y(1) B(1:03) #2");
        row("add a power", [](L &l) { return l.AddPower(0, 45, true) && l.AddPower(3, 20, false); }, 1,
            "0/80 0/45u 2/60 3/20 | 0/80: A(1) B(1:034) C(1) D(1) 2/60: X(1) Y(1) B(1:03) #5");
        row("remove a user power with its materials and sets", [](L &l) {
            l.AddMaterial(libMaterial("U", {2}, 0, 45));
            l.SetCutSet(sampleCutSet(libKey("U", 2, 0, 0, 45)));
            return l.RemoveUserPower(0, 45); }, 1, same);
        row("a power of the library stays", [](L &l) { return l.RemoveUserPower(0, 80); }, 0, same);
        row("clone a pair", [](L &l) { return l.ClonePair(2, 60, 0, 100); }, 3,
            "0/80 0/100u 2/60 | 0/80: A(1) B(1:034) C(1) D(1) 2/60: X(1) Y(1) B(1:03) 0/100: X(1) Y(1) B(1:03) #7");
        row("clone onto a pair with materials", [](L &l) { return l.ClonePair(2, 60, 0, 80); }, 0, same);
        row("a new set", [](L &l) { return l.SetCutSet(sampleCutSet(libKey("A", 1, 1, 0, 80))); }, 1,
            "0/80 2/60 | 0/80: A(1:1) B(1:034) C(1) D(1) 2/60: X(1) Y(1) B(1:03) #6");
        row("garbage: cut set as shallow", [](L &l) { return l.SetCutSet(sampleCutSet(libKey("A", 1, 2, 0, 80))); }, 0, same);
        row("find within 1e-6", [](L &l) { return l.HasSet(libKey("B", 1.000001, 0, 0, 80)); }, 1, same);
        row("find beyond 1e-6", [](L &l) { return l.HasSet(libKey("B", 0.9999979, 0, 0, 80)); }, 0, same);
        row("find: NaN thickness", [](L &l) { return l.HasSet(libKey("B", kNan, 0, 0, 80)); }, 0, same);
        row("insert keeps the set there", [](L &l) { return l.InsertCutSetIfAbsent(changedCut()) && l.FindCutSet(changedCut().key)->speed == 12.5; }, 1, same);
        row("set replaces the set there", [](L &l) { return l.SetCutSet(changedCut()) && l.FindCutSet(changedCut().key)->speed == 99; }, 1, same);
    }

    // Every material stays in one run per pair, found where the list has it.
    void edit()
    {
        QFETCH(Edit, edit);
        QFETCH(int, result);
        QFETCH(QString, after);
        TestEnvironment env;
        CMaterialLibrary library = fixture();
        QCOMPARE(edit(library), result);
        QCOMPARE(dump(library), after);
        const std::vector<CLibMaterial> &all = library.Materials();
        for (size_t i = 0; i < all.size(); ++i) {
            QCOMPARE(library.MaterialIndex(all[i].tube, all[i].power, all[i].name), qsizetype(i));
            QCOMPARE(library.FindMaterial(all[i].tube, all[i].power, all[i].name), &all[i]);
        }
    }
};

QTEST_GUILESS_MAIN(tst_MaterialLibrary)
#include "tst_materiallibrary.moc"
