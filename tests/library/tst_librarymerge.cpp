#include "librarytestdata.h"
#include "library/crunningoptions.h"
#include "library/librarymerge.h"

#include <QRandomGenerator>
#include <QTest>

using Edit = void (*)(CMaterialLibrary &);
Q_DECLARE_METATYPE(Edit)

namespace {

const QString kBirch = QStringLiteral("Birch");

CLibCutSet &cutOf(CMaterialLibrary &library, quint32 craft = 0)
{
    return *library.FindCutSet(libKey(kBirch, 3.0, craft));
}

// One line per row, as a summary would list it.
QStringList rowTexts(const CLibraryMerge &merge)
{
    static const char *const kinds[] = {"power", "material", "thickness", "set", "field"};
    QStringList texts;
    for (const CLibMergeRow &row : merge.Rows()) {
        texts << QStringLiteral("%1 %2 %3 %4 %5 %6: %7 > %8%9")
                     .arg(QLatin1String(kinds[int(row.kind)]))
                     .arg(row.key.power)
                     .arg(row.key.material)
                     .arg(row.key.thickness)
                     .arg(CraftName(row.key.craft), row.caption, row.oldText, row.newText,
                          row.conflict ? QStringLiteral(" !") : QString());
    }
    return texts;
}

void addOak(CMaterialLibrary &library)
{
    library.AddMaterial(libMaterial(QStringLiteral("Oak"), {2.0}, 2, 100));
    library.SetCutSet(sampleCutSet(libKey(QStringLiteral("Oak"), 2.0, 1, 2, 100)));
}

bool hasConflict(const CLibraryMerge &merge, const CLibKey &key)
{
    return std::any_of(merge.Rows().cbegin(), merge.Rows().cend(),
                       [&key](const CLibMergeRow &row) { return row.conflict && row.key == key; });
}

// Small libraries with few values, so that edits collide often.
void addRandomSets(CMaterialLibrary &library, const CLibMaterial &material, QRandomGenerator &rng)
{
    for (double t : material.thicknesses) {
        for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
            const CLibKey key = libKey(material.name, t, craft, material.tube, material.power);
            if (rng.bounded(3) == 0)
                continue;
            if (IsCutCraft(craft)) {
                CLibCutSet set;
                set.key = key;
                set.speed = rng.bounded(3);
                library.SetCutSet(set);
            } else if (IsSweepCraft(craft)) {
                CLibSweepSet set;
                set.key = key;
                set.speed = rng.bounded(3);
                library.SetSweepSet(set);
            } else {
                library.SetMarkSet({key, QString::number(rng.bounded(2))});
            }
        }
    }
}

void randomEdits(CMaterialLibrary &library, QRandomGenerator &rng)
{
    static const char *const names[] = {"Ash", "Birch", "Cork", "Elm"};
    for (int n = int(rng.bounded(4)); n > 0; --n) {
        const std::vector<CLibCutSet> cuts = library.CutSets();
        const std::vector<CLibSweepSet> sweeps = library.SweepSets();
        switch (rng.bounded(4)) {
        case 0: { // a material (maybe under a new power) with sets
            CLibMaterial m = libMaterial(QLatin1String(names[rng.bounded(4)]), {1.0, 2.0}, 2,
                                         rng.bounded(4) ? 60 : 80);
            m.thicknesses.resize(1 + rng.bounded(2));
            if (library.AddMaterial(m))
                addRandomSets(library, m, rng);
            break;
        }
        case 1: // one field of a cut set, from the sample set whose fields all differ
            if (!cuts.empty()) {
                CLibCutSet set = cuts[rng.bounded(int(cuts.size()))];
                const CLibCutSet donor = sampleCutSet(set.key);
                CutSetFields()[rng.bounded(int(CutSetFields().size()))].copy(set, donor);
                library.SetCutSet(set);
            }
            break;
        case 2:
            if (!sweeps.empty()) {
                CLibSweepSet set = sweeps[rng.bounded(int(sweeps.size()))];
                const CLibSweepSet donor = sampleSweepSet(set.key);
                SweepSetFields()[rng.bounded(int(SweepSetFields().size()))].copy(set, donor);
                library.SetSweepSet(set);
            }
            break;
        default:
            if (!cuts.empty()) {
                CLibCutSet set = cuts[rng.bounded(int(cuts.size()))];
                set.speed = rng.bounded(3);
                library.SetCutSet(set);
            }
        }
    }
}

} // namespace

class tst_LibraryMerge : public QObject
{
    Q_OBJECT

private slots:
    void rule_data()
    {
        QTest::addColumn<Edit>("user");
        QTest::addColumn<Edit>("incoming");
        QTest::addColumn<bool>("takeConflicts");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<Edit>("expected"); // applied to the user library

        const Edit none = [](CMaterialLibrary &) {};
        const Edit speed20 = [](CMaterialLibrary &l) { cutOf(l).speed = 20; };
        const Edit speed15 = [](CMaterialLibrary &l) { cutOf(l).speed = 15; };
        const Edit oak = addOak;
        const QString speed = QStringLiteral("field 60 Birch 3 Cutting Speed: 12.5 > 20");
        QTest::newRow("equal") << none << none << false << QStringList() << none;
        QTest::newRow("untouched by the user: the file's values")
            << none << speed20 << false << QStringList{speed} << speed20;
        QTest::newRow("changed by the user: conflict, kept")
            << speed15 << speed20 << false
            << QStringList{"field 60 Birch 3 Cutting Speed: 15 > 20 !"} << none;
        QTest::newRow("changed by the user: conflict, taken")
            << speed15 << speed20 << true
            << QStringList{"field 60 Birch 3 Cutting Speed: 15 > 20 !"} << speed20;
        QTest::newRow("same change on both sides") << speed20 << speed20 << false << QStringList()
                                                   << none;
        QTest::newRow("fields without a summary caption, per laser and note")
            << none
            << Edit([](CMaterialLibrary &l) {
                   cutOf(l, 1).laser2.frequency = 9;
                   cutOf(l, 1).note = QStringLiteral("x");
                   l.SetMarkSet({libKey(kBirch, 3.0, 4), QStringLiteral("y")});
               })
            << false
            << QStringList{"field 60 Birch 3 Tracing Frequency-Laser2: 3000 > 9",
                           "field 60 Birch 3 Tracing Note: cut note > x",
                           "field 60 Birch 3 Vision Mark Note: mark note > y"}
            << Edit([](CMaterialLibrary &l) {
                   cutOf(l, 1).laser2.frequency = 9;
                   cutOf(l, 1).note = QStringLiteral("x");
                   l.SetMarkSet({libKey(kBirch, 3.0, 4), QStringLiteral("y")});
               });
        QTest::newRow("new power, material with picture, thickness and set; power is the user's")
            << none << Edit([](CMaterialLibrary &l) {
                   l.AddPower(2, 100, false);
                   addOak(l);
               })
            << false
            << QStringList{"power 100  0 Cutting Power:  > 100", "material 100 Oak 0 Cutting Material:  > Oak",
                           "thickness 100 Oak 2 Cutting Thickness:  > 2",
                           "set 100 Oak 2 Tracing Parameters:  > Tracing"}
            << Edit([](CMaterialLibrary &l) {
                   l.AddPower(2, 100, true);
                   addOak(l);
               });
        QTest::newRow("a set the factory lacks is the user's")
            << oak << Edit([](CMaterialLibrary &l) {
                   addOak(l);
                   l.FindCutSet(libKey(QStringLiteral("Oak"), 2.0, 1, 2, 100))->blowing = false;
               })
            << false << QStringList{"field 100 Oak 2 Tracing Air Assist: High > Low !"} << none;
        QTest::newRow("nothing removed; new materials and thicknesses follow the user's")
            << Edit([](CMaterialLibrary &l) { l.AddMaterial(libMaterial("Ash", {})); })
            << Edit([](CMaterialLibrary &l) {
                   l.RemoveSet(libKey(kBirch, 3.0, 4));
                   l.AddThickness(2, 60, kBirch, 1.5);
                   l.AddMaterial(libMaterial("Pine", {}));
                   l.MoveMaterial(2, 60, 1, 0);
               })
            << false
            << QStringList{"thickness 60 Birch 1.5 Cutting Thickness:  > 1.5",
                           "material 60 Pine 0 Cutting Material:  > Pine"}
            << Edit([](CMaterialLibrary &l) {
                   l.AddThickness(2, 60, kBirch, 1.5);
                   l.AddMaterial(libMaterial("Pine", {}));
               });
    }

    void rule()
    {
        QFETCH(Edit, user);
        QFETCH(Edit, incoming);
        QFETCH(bool, takeConflicts);
        QFETCH(QStringList, rows);
        QFETCH(Edit, expected);
        const CMaterialLibrary factory = sampleLibrary();
        CMaterialLibrary mine = factory, theirs = factory;
        user(mine);
        incoming(theirs);
        CLibraryMerge merge(factory, mine, theirs);
        QCOMPARE(rowTexts(merge), rows);
        QCOMPARE(merge.IsEmpty(), rows.isEmpty());
        for (CLibMergeRow &row : merge.Rows())
            row.accepted = row.accepted || takeConflicts;
        CMaterialLibrary want = mine;
        expected(want);
        QCOMPARE(MaterialLibraryText(merge.Apply()), MaterialLibraryText(want));
        QVERIFY(merge.Apply() == want);
    }

    // Random factory, user and incoming libraries from a fixed seed.
    void randomLibraries()
    {
        QRandomGenerator rng(20261123);
        for (int round = 0; round < 10000; ++round) {
            CMaterialLibrary factory;
            factory.AddPower(2, 60, false);
            for (const char *name : {"Birch", "Cork"}) {
                const CLibMaterial m = libMaterial(QLatin1String(name), {1.0, 2.0});
                factory.AddMaterial(m);
                addRandomSets(factory, m, rng);
            }
            CMaterialLibrary user = factory, incoming = factory;
            randomEdits(user, rng);
            randomEdits(incoming, rng);
            if (rng.bounded(8) == 0)
                factory.Clear();
            const QByteArray round_ = "round " + QByteArray::number(round);
            const char *context = round_.constData();

            CLibraryMerge merge(factory, user, incoming);
            const CMaterialLibrary kept = merge.Apply();
            for (CLibMergeRow &row : merge.Rows())
                row.accepted = true;
            const CMaterialLibrary taken = merge.Apply();
            // The user's changes stay unless shown as conflicts.
            for (const CLibCutSet &set : user.CutSets()) {
                const CLibCutSet *base = factory.FindCutSet(set.key);
                const CLibCutSet *theirs = incoming.FindCutSet(set.key);
                if ((!base || !SameSetFields(*base, set)) && theirs && !SameSetFields(set, *theirs)) {
                    QVERIFY2(SameSetFields(*kept.FindCutSet(set.key), set), context);
                    QVERIFY2(hasConflict(merge, set.key), context);
                }
            }
            // Every change taken is a row; nothing is removed.
            for (const CLibDiffEntry &change : DiffLibraries(user, taken)) {
                QVERIFY2(change.kind != CLibDiffEntry::Removed, context);
                const bool listed = std::any_of(merge.Rows().cbegin(), merge.Rows().cend(),
                                                [&change](const CLibMergeRow &row) {
                                                    return row.key == change.key
                                                        && (change.kind == CLibDiffEntry::Added
                                                                ? row.kind == ELibMergeKind::NewSet
                                                                : row.caption == change.caption);
                                                });
                QVERIFY2(listed, qPrintable(change.caption));
            }
            // Against the file, only the kept conflicts still differ.
            for (const CLibDiffEntry &change : DiffLibraries(kept, incoming)) {
                QVERIFY2(change.kind != CLibDiffEntry::Added, context);
                if (change.kind == CLibDiffEntry::Changed)
                    QVERIFY2(hasConflict(merge, change.key), context);
            }
            QVERIFY2(CLibraryMerge(factory, user, user).IsEmpty(), context);
            if (round % 10 == 0) {
                // As exported: a mark set's note is not read back.
                const CMaterialLibrary read = readBytes(MaterialLibraryText(user));
                const QByteArray bytes = MaterialLibraryText(read);
                QCOMPARE(MaterialLibraryText(CLibraryMerge(factory, read, readBytes(bytes)).Apply()),
                         bytes);
            }
        }
    }
};

QTEST_GUILESS_MAIN(tst_LibraryMerge)
#include "tst_librarymerge.moc"
