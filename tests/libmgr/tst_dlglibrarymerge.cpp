#include "libmgr/dlglayerlibmgr.h"
#include "libmgr/dlglibrarymerge.h"
#include "library/clayercontext.h"
#include "library/librarydocument.h"
#include "module/clayermgrins.h"
#include "libmgrwidgettest.h"
#include "testenvironment.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

CLibCutSet cutSet(const QString &material, double speed)
{
    CLibCutSet set;
    set.key = {0, 80, material, 3.0, 0};
    set.speed = speed;
    return set;
}

// Plywood and acrylic, 3 mm cutting at 23 and 33 mm/s.
CMaterialLibrary factoryLibrary()
{
    CMaterialLibrary library;
    for (const char *name : {"Plywood", "Acrylic"}) {
        library.AddMaterial(CLibMaterial{QLatin1String(name), {}, {}, 0, 80, {3.0}});
        library.SetCutSet(cutSet(QLatin1String(name), name[0] == 'P' ? 23 : 33));
    }
    return library;
}

double speedIn(const CMaterialLibrary &library, const char *material)
{
    const CLibCutSet *set = library.FindCutSet({0, 80, QLatin1String(material), 3.0, 0});
    return set ? set->speed : -1;
}

// Row of the merge table whose material and parameter name are these.
int rowOf(const QAbstractItemModel *model, const char *material, const char *caption)
{
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, 2).data() == QLatin1String(material)
            && model->index(row, 5).data() == QLatin1String(caption))
            return row;
    }
    return -1;
}

} // namespace

class tst_DlgLibraryMerge : public QObject
{
    Q_OBJECT

private slots:
    void import_data()
    {
        QTest::addColumn<bool>("changes");
        QTest::addColumn<bool>("tickConflict");
        QTest::addColumn<bool>("untickAutomatic");
        QTest::addColumn<QString>("press"); // after the ticks, before the last button
        QTest::addColumn<QString>("button");
        QTest::addColumn<double>("plywood");
        QTest::addColumn<double>("acrylic");
        QTest::addColumn<QStringList>("shown");
        // Plywood and acrylic speeds, cork's material, thickness and set.
        const QStringList offered{"Changes: 5, conflicts: 1, ticked: 4", "Conflict", "0", "2"};
        QTest::newRow("as offered: the conflict keeps the user's value")
            << true << false << false << "" << "pushButton_save" << 99.0 << 77.0 << offered;
        QTest::newRow("conflict ticked takes the file's value")
            << true << true << false << "" << "pushButton_save" << 50.0 << 77.0 << offered;
        QTest::newRow("automatic row unticked keeps the old value")
            << true << false << true << "" << "pushButton_save" << 99.0 << 33.0 << offered;
        QTest::newRow("tick all takes every value") << true << false << true << "pushButton_tickAll"
                                                    << "pushButton_save" << 50.0 << 77.0 << offered;
        QTest::newRow("untick conflicts keeps the user's value")
            << true << true << false << "pushButton_untickConflicts" << "pushButton_save" << 99.0
            << 77.0 << offered;
        QTest::newRow("cancel writes nothing")
            << true << true << false << "" << "pushButton_cancel" << 99.0 << 33.0 << offered;
        QTest::newRow("file changes nothing: one line, nothing written")
            << false << false << false << "" << QString() << 99.0 << 33.0
            << QStringList{"The file changes nothing in your library."};
    }
    void import()
    {
        QFETCH(bool, changes);
        QFETCH(bool, tickConflict);
        QFETCH(bool, untickAutomatic);
        QFETCH(QString, press);
        QFETCH(QString, button);
        QFETCH(double, plywood);
        QFETCH(double, acrylic);
        QFETCH(QStringList, shown);
        TestEnvironment env;
        QDir().mkpath(env.resourceDir() + QStringLiteral("/Data"));
        WriteMaterialLibraryFile(env.resourceDir() + QStringLiteral("/Data/defaultMaterial.json"),
                                 factoryLibrary());
        CLibraryStore &store = g_LayerContext.Store();
        store.Load();
        // The user's own plywood speed.
        store.UserLibrary().SetCutSet(cutSet(QStringLiteral("Plywood"), 99));
        store.Save();
        const QByteArray before = env.readFile(QStringLiteral("lm.json"));
        // Without changes the file holds what the user library holds.
        CMaterialLibrary file = factoryLibrary();
        file.SetCutSet(cutSet(QStringLiteral("Plywood"), changes ? 50 : 99));
        QStringList seen;
        if (changes) {
            file.SetCutSet(cutSet(QStringLiteral("Acrylic"), 77));
            file.AddMaterial(CLibMaterial{QStringLiteral("Cork"), {}, {}, 0, 80, {3.0}});
            file.SetCutSet(cutSet(QStringLiteral("Cork"), 12));
            whenModal<DlgLibraryMerge>([&](DlgLibraryMerge *merge) {
                QAbstractItemModel *model = merge->findChild<QTableView *>()->model();
                const int conflict = rowOf(model, "Plywood", "Speed");
                const int automatic = rowOf(model, "Acrylic", "Speed");
                seen << merge->findChild<QLabel *>(QStringLiteral("label_count"))->text()
                     << model->index(conflict, 0).data().toString()
                     << model->index(conflict, 0).data(Qt::CheckStateRole).toString()
                     << model->index(automatic, 0).data(Qt::CheckStateRole).toString();
                if (tickConflict)
                    model->setData(model->index(conflict, 0), Qt::Checked, Qt::CheckStateRole);
                if (untickAutomatic)
                    model->setData(model->index(automatic, 0), Qt::Unchecked, Qt::CheckStateRole);
                if (!press.isEmpty())
                    merge->findChild<QPushButton *>(press)->click();
                merge->findChild<QPushButton *>(button)->click();
            });
        } else {
            whenModal<QMessageBox>([&seen](QMessageBox *box) {
                seen << box->text();
                box->button(QMessageBox::Yes)->click();
            });
        }
        const QString path = env.root() + QStringLiteral("/import.json");
        QVERIFY(WriteMaterialLibraryFile(path, file));
        whenModal<QFileDialog>([path](QFileDialog *files) {
            files->selectFile(path);
            QMetaObject::invokeMethod(files, "accept");
        });
        CLayerMgrIns manager(nullptr);
        manager.AddLayer(new CLayerParam(0xFF0000));
        DlgLayerLibMgr dialog(manager.GetLayerAt(0), nullptr);
        dialog.Fill(&manager, 0);
        dialog.show();
        dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Import"))->click();
        QCOMPARE(seen, shown);
        const bool saved = button == "pushButton_save";
        QCOMPARE(QDir(CLibraryStore::BackupDir()).entryList(QDir::Files).size(), saved ? 1 : 0);
        QCOMPARE(env.readFile(QStringLiteral("lm.json")) == before, !saved);
        CMaterialLibrary written;
        QVERIFY(ReadMaterialLibraryFile(CLibraryStore::UserLibraryPath(), written).ok());
        QCOMPARE(speedIn(written, "Plywood"), plywood);
        QCOMPARE(speedIn(written, "Acrylic"), acrylic);
        QCOMPARE(speedIn(written, "Cork"), saved ? 12.0 : -1.0);
        QCOMPARE(written, store.UserLibrary());
        QCOMPARE(env.logLines().contains(QStringLiteral("0|tableView was changed.")),
                 tickConflict || untickAutomatic);
    }
};

QTEST_MAIN(tst_DlgLibraryMerge)
#include "tst_dlglibrarymerge.moc"
