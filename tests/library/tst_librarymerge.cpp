#include "librarytestdata.h"
#include "library/crunningoptions.h"
#include "library/librarymerge.h"

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
void oakAt20(CMaterialLibrary &l)
{
    oak(l);
    l.FindCutSet(libKey(QStringLiteral("Oak"), 2.0, 1, 2, 100))->speed = 20;
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
        QTest::newRow("a set the factory lacks is the user's: conflict")
            << &oak << &oakAt20 << false << QStringList{"field 100 Oak 2 Tracing Speed: 12.5 > 20 !"} << &none;
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
};

QTEST_GUILESS_MAIN(tst_LibraryMerge)
#include "tst_librarymerge.moc"
