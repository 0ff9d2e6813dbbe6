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

void none(CMaterialLibrary &) {}
void speed15(CMaterialLibrary &l) { cutOf(l).speed = 15; }
void speed20(CMaterialLibrary &l) { cutOf(l).speed = 20; }
void laserAndNotes(CMaterialLibrary &l)
{
    cutOf(l, 1).laser2.frequency = 9;
    cutOf(l, 1).note = QStringLiteral("x");
    l.SetMarkSet({libKey(kBirch, 3.0, 4), QStringLiteral("y")});
}
void oak(CMaterialLibrary &l)
{
    l.AddMaterial(libMaterial(QStringLiteral("Oak"), {2.0}, 2, 100));
    l.SetCutSet(sampleCutSet(libKey(QStringLiteral("Oak"), 2.0, 1, 2, 100)));
}
void thicknessAndPine(CMaterialLibrary &l)
{
    l.AddThickness(2, 60, kBirch, 1.5);
    l.AddMaterial(libMaterial(QStringLiteral("Pine"), {}));
}

// One line per row, as a summary would list it.
QStringList rowTexts(const CLibraryMerge &merge)
{
    static const char *const kinds[] = {"power", "material", "thickness", "set", "field"};
    QStringList texts;
    for (const CLibMergeRow &row : merge.Rows()) {
        texts << QStringList{QLatin1String(kinds[int(row.kind)]), QString::number(row.key.power),
                             row.key.material, QString::number(row.key.thickness),
                             CraftName(row.key.craft), row.caption + ':', row.oldText,
                             QStringLiteral(">"), row.newText}
                         .join(' ')
                + (row.conflict ? " !" : "");
    }
    return texts;
}

bool hasRow(const CLibraryMerge &merge, const CLibDiffEntry &change, bool conflict)
{
    return std::any_of(merge.Rows().cbegin(), merge.Rows().cend(), [&](const CLibMergeRow &row) {
        return row.key == change.key && (!conflict || row.conflict)
            && (change.kind == CLibDiffEntry::Added ? row.kind == ELibMergeKind::NewSet
                                                    : row.caption == change.caption);
    });
}

// Whether the user changed the set filed under the key (it differs from the
// factory's, or the factory lacks it), and whether `kept` still holds the
// user's set; for every kind of set.
template <typename Find>
std::pair<bool, bool> userChange(const CMaterialLibrary &factory, const CMaterialLibrary &user,
                                 const CMaterialLibrary &kept, const CLibKey &key, Find find)
{
    const auto *mine = find(user, key);
    if (!mine)
        return {false, true};
    const auto *base = find(factory, key);
    const auto *now = find(kept, key);
    return {!base || !SameSetFields(*base, *mine), now && SameSetFields(*now, *mine)};
}

std::pair<bool, bool> userChange(const CMaterialLibrary &factory, const CMaterialLibrary &user,
                                 const CMaterialLibrary &kept, const CLibKey &key)
{
    if (IsCutCraft(key.craft)) {
        return userChange(factory, user, kept, key, [](const CMaterialLibrary &l, const CLibKey &k) {
            return l.FindCutSet(k);
        });
    }
    if (IsSweepCraft(key.craft)) {
        return userChange(factory, user, kept, key, [](const CMaterialLibrary &l, const CLibKey &k) {
            return l.FindSweepSet(k);
        });
    }
    return userChange(factory, user, kept, key, [](const CMaterialLibrary &l, const CLibKey &k) {
        return l.FindMarkSet(k);
    });
}

// Small libraries with few values, so that edits collide often.
void addRandomSets(CMaterialLibrary &library, const CLibMaterial &m, QRandomGenerator &rng)
{
    for (double t : m.thicknesses) {
        for (quint32 craft = 0; craft < kLibCraftCount; ++craft) {
            const CLibKey key = libKey(m.name, t, craft, m.tube, m.power);
            CLibCutSet cut;
            CLibSweepSet sweep;
            cut.key = sweep.key = key;
            cut.speed = sweep.speed = rng.bounded(3);
            if (rng.bounded(3) != 0 && !library.SetCutSet(cut) && !library.SetSweepSet(sweep))
                library.SetMarkSet({key, QString::number(rng.bounded(2))});
        }
    }
}

// New materials (maybe under a new power), or one field of a set copied from
// the sample sets, whose fields all differ from the defaults.
void randomEdits(CMaterialLibrary &library, QRandomGenerator &rng)
{
    static const char *const names[] = {"Ash", "Birch", "Cork", "Elm"};
    for (int n = int(rng.bounded(4)); n > 0; --n) {
        const std::vector<CLibCutSet> cuts = library.CutSets();
        const std::vector<CLibSweepSet> sweeps = library.SweepSets();
        const int what = rng.bounded(3);
        if (what == 0) {
            CLibMaterial m = libMaterial(QLatin1String(names[rng.bounded(4)]), {1.0, 2.0}, 2,
                                         rng.bounded(4) ? 60 : 80);
            m.thicknesses.resize(1 + rng.bounded(2));
            if (library.AddMaterial(m))
                addRandomSets(library, m, rng);
        } else if (what == 1 && !cuts.empty()) {
            CLibCutSet set = cuts[rng.bounded(int(cuts.size()))];
            const auto &field = CutSetFields()[rng.bounded(int(CutSetFields().size()))];
            field.copy(set, sampleCutSet(set.key));
            library.SetCutSet(set);
        } else if (what == 2 && !sweeps.empty()) {
            CLibSweepSet set = sweeps[rng.bounded(int(sweeps.size()))];
            const auto &field = SweepSetFields()[rng.bounded(int(SweepSetFields().size()))];
            field.copy(set, sampleSweepSet(set.key));
            library.SetSweepSet(set);
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

        const QString conflict = QStringLiteral("field 60 Birch 3 Cutting Speed: 15 > 20 !");
        QTest::newRow("equal") << &none << &none << false << QStringList() << &none;
        QTest::newRow("untouched by the user: the file's values")
            << &none << &speed20 << false
            << QStringList{"field 60 Birch 3 Cutting Speed: 12.5 > 20"} << &speed20;
        QTest::newRow("changed by the user: conflict, kept")
            << &speed15 << &speed20 << false << QStringList{conflict} << &none;
        QTest::newRow("changed by the user: conflict, taken")
            << &speed15 << &speed20 << true << QStringList{conflict} << &speed20;
        QTest::newRow("fields without a summary caption, per laser and note")
            << &none << &laserAndNotes << false
            << QStringList{"field 60 Birch 3 Tracing Frequency-Laser2: 3000 > 9",
                           "field 60 Birch 3 Tracing Note: cut note > x",
                           "field 60 Birch 3 Vision Mark Note: mark note > y"}
            << &laserAndNotes;
        QTest::newRow("new power, material with picture, thickness and set; power is the user's")
            << &none << Edit([](CMaterialLibrary &l) {
                   l.AddPower(2, 100, false);
                   oak(l);
               })
            << false
            << QStringList{"power 100  0 Cutting Power:  > 100",
                           "material 100 Oak 0 Cutting Material:  > Oak",
                           "thickness 100 Oak 2 Cutting Thickness:  > 2",
                           "set 100 Oak 2 Tracing Parameters:  > Scoring"}
            << Edit([](CMaterialLibrary &l) {
                   l.AddPower(2, 100, true);
                   oak(l);
               });
        QTest::newRow("nothing removed; new materials and thicknesses follow the user's")
            << Edit([](CMaterialLibrary &l) { l.AddMaterial(libMaterial("Ash", {})); })
            << Edit([](CMaterialLibrary &l) {
                   l.RemoveSet(libKey(kBirch, 3.0, 4));
                   thicknessAndPine(l);
                   l.MoveMaterial(2, 60, 1, 0);
               })
            << false
            << QStringList{"thickness 60 Birch 1.5 Cutting Thickness:  > 1.5",
                           "material 60 Pine 0 Cutting Material:  > Pine"}
            << &thicknessAndPine;
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
    }

    // Random factory, user and incoming libraries from a fixed seed.
    void randomLibraries()
    {
        QRandomGenerator rng(20261123);
        for (int round = 0; round < 10000; ++round) {
            CMaterialLibrary factory;
            factory.AddPower(2, 60, false);
            for (const char *name : {"Birch", "Cork"}) {
                factory.AddMaterial(libMaterial(QLatin1String(name), {1.0, 2.0}));
                addRandomSets(factory, factory.Materials().back(), rng);
            }
            CMaterialLibrary user = factory, incoming = factory;
            randomEdits(user, rng);
            randomEdits(incoming, rng);
            if (rng.bounded(8) == 0)
                factory.Clear();
            const QByteArray label = "round " + QByteArray::number(round);
            const char *context = label.constData();

            CLibraryMerge merge(factory, user, incoming);
            const CMaterialLibrary kept = merge.Apply();
            for (CLibMergeRow &row : merge.Rows())
                row.accepted = true;
            const CMaterialLibrary taken = merge.Apply();
            // Whatever differs from the user's once all is taken is a row (a
            // conflict where the user's stays by default); nothing is removed.
            for (const CLibDiffEntry &change : DiffLibraries(user, taken)) {
                QVERIFY2(change.kind != CLibDiffEntry::Removed, context);
                const auto [changedByUser, userKept] = userChange(factory, user, kept, change.key);
                QVERIFY2(hasRow(merge, change, changedByUser), context);
                QVERIFY2(!changedByUser || userKept, context);
            }
            // Against the file, only the kept conflicts still differ.
            for (const CLibDiffEntry &change : DiffLibraries(kept, incoming)) {
                QVERIFY2(change.kind != CLibDiffEntry::Added, context);
                if (change.kind == CLibDiffEntry::Changed)
                    QVERIFY2(hasRow(merge, change, true), context);
            }
            QVERIFY2(CLibraryMerge(factory, user, user).IsEmpty(), context);
            if (round % 10 == 0) {
                // As exported: a mark set's note is not read back.
                const CMaterialLibrary read = readBytes(MaterialLibraryText(user));
                const QByteArray bytes = MaterialLibraryText(read);
                QCOMPARE(MaterialLibraryText(CLibraryMerge(factory, read, read).Apply()), bytes);
            }
        }
    }
};

QTEST_GUILESS_MAIN(tst_LibraryMerge)
#include "tst_librarymerge.moc"
