#include "layertable/dlglayermgr.h"
#include "libmgr/dlglayerlibmgr.h"
#include "libmgr/dlglayerparamcut.h"
#include "libmgr/dlglayerparampresets.h"
#include "libmgr/dlglibrarymerge.h"
#include "libmgr/dlgtps.h"
#include "library/clayercontext.h"
#include "library/librarydocument.h"
#include "module/clayermgrins.h"
#include "module/ilayerpanel.h"
#include "module/layercolors.h"
#include "support/settings.h"
#include "libmgrwidgettest.h"
#include "testenvironment.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

#include <memory>

namespace {

void answerBox(QMessageBox::StandardButton button, QStringList *texts = nullptr)
{
    whenModal<QMessageBox>([button, texts](QMessageBox *box) {
        if (texts)
            *texts << box->text();
        box->button(button)->click();
    });
}

const QStringList kMaterials{"Plywood", "Acrylic", "MDF"};

// Glass 80 W: three materials with every process; 100 W: one.
CMaterialLibrary factoryLibrary()
{
    CMaterialLibrary library;
    library.AddPower(0, 80, false);
    for (int m = 0; m < kMaterials.size(); ++m) {
        library.AddMaterial(CLibMaterial{kMaterials[m], {}, {}, 0, 80, {3.0, 5.0}});
        for (double thickness : {3.0, 5.0}) {
            for (quint32 craft : {0u, 1u}) {
                CLibCutSet set;
                set.key = {0, 80, kMaterials[m], thickness, craft};
                set.speed = 20 + m * 10 + thickness + craft * 100;
                library.SetCutSet(set);
            }
            CLibSweepSet sweep;
            sweep.key = {0, 80, kMaterials[m], thickness, 2};
            sweep.speed = 300 + thickness;
            library.SetSweepSet(sweep);
            library.SetMarkSet(CLibMarkSet{{0, 80, kMaterials[m], thickness, 4}, {}});
        }
    }
    library.AddMaterial(CLibMaterial{QStringLiteral("Felt"), {}, {}, 0, 100, {2.0}});
    return library;
}

struct Fixture
{
    Fixture()
    {
        g_LayerContext.m_unitMode = 1;
        QDir().mkpath(env.resourceDir() + QStringLiteral("/Data"));
        WriteMaterialLibraryFile(env.resourceDir() + QStringLiteral("/Data/defaultMaterial.json"),
                                 factoryLibrary());
        store().Load();
        store().SetDeletionQuestion([](const QString &, const QString &) { return true; });
        // Personal parameters differ from the suggested ones for plywood 3 mm.
        CLibCutSet personal = *user().FindCutSet({0, 80, "Plywood", 3.0, 0});
        personal.speed = 99;
        user().SetCutSet(personal);
        manager = std::make_unique<CLayerMgrIns>(&host);
        for (quint32 i = 1; i <= 3; ++i)
            manager->AddLayer(new CLayerParam(StandardLayerColor(i, false)));
    }

    static CLibraryStore &store() { return g_LayerContext.Store(); }
    static CMaterialLibrary &user() { return store().UserLibrary(); }
    CLayerParam &layer(int row) const { return *manager->GetLayerAt(quint32(row)); }

    void open()
    {
        owned = std::make_unique<DlgLayerLibMgr>(&layer(0), host.DevicesInfo());
        dialog = owned.get();
        dialog->Fill(manager.get(), 0);
        dialog->show();
    }
    template <typename T> T *child(const char *name) const { return ::child<T>(dialog, name); }
    DlgLayerParamPresets *presets() const { return dialog->findChild<DlgLayerParamPresets *>(); }
    void choose(int material, int thickness, int craft, int scheme) const
    {
        child<QComboBox>("comboBox_Material")->setCurrentIndex(material);
        child<QComboBox>("comboBox_Thickness")->setCurrentIndex(thickness);
        auto *crafts = presets()->findChild<QListWidget *>(QStringLiteral("listWidget"));
        for (int row = 0; row < crafts->count(); ++row) {
            if (presets()->CraftOfRow(row) == craft) {
                crafts->setCurrentRow(row);
                emit crafts->itemClicked(crafts->item(row));
            }
        }
        child<QListWidget>("listWidget_scheme")->setCurrentRow(scheme);
    }
    void click(const char *button) const { child<QPushButton>(button)->click(); }
    static void pickFile(const QString &path)
    {
        whenModal<QFileDialog>([path](QFileDialog *dialog) {
            dialog->selectFile(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
    }

    TestEnvironment env;
    TestHost host;
    std::unique_ptr<CLayerMgrIns> manager;
    std::unique_ptr<DlgLayerLibMgr> owned;
    DlgLayerLibMgr *dialog = nullptr;
};

} // namespace

class tst_DlgLayerLibMgr : public QObject
{
    Q_OBJECT

private slots:
    void choose_data()
    {
        QTest::addColumn<int>("material");
        QTest::addColumn<int>("thickness");
        QTest::addColumn<int>("craft");
        QTest::addColumn<int>("scheme");
        QTest::addColumn<bool>("edit");
        QTest::addColumn<double>("speed");
        QTest::newRow("plywood 3 cutting suggested") << 0 << 0 << 0 << 0 << false << 23.0;
        QTest::newRow("plywood 3 cutting personalized") << 0 << 0 << 0 << 1 << false << 99.0;
        QTest::newRow("plywood 3 temporary: the layer's") << 0 << 0 << 0 << 2 << false << 1.0;
        QTest::newRow("mdf 5 shallow suggested") << 2 << 1 << 2 << 0 << false << 305.0;
        QTest::newRow("mark shows the hint") << 0 << 0 << 4 << 0 << false << -1.0;
        QTest::newRow("an edit turns a set temporary") << 1 << 0 << 0 << 0 << true << 33.0;
    }
    void choose()
    {
        QFETCH(int, material);
        QFETCH(int, thickness);
        QFETCH(int, craft);
        QFETCH(int, scheme);
        QFETCH(bool, edit);
        QFETCH(double, speed);
        Fixture f;
        f.open();
        f.choose(material, thickness, craft, scheme);
        if (edit)
            emit f.dialog->findChild<DlgLayerParamCut *>()->DataChange();
        // The speed the visible editor shows; -1 without one.
        double shown = -1;
        for (auto *edit : f.dialog->findChildren<QLineEdit *>(QStringLiteral("lineEdit_speed")))
            shown = edit->isVisibleTo(f.dialog) ? edit->text().toDouble() : shown;
        QCOMPARE(f.child<QWidget>("widget_hint")->isVisibleTo(f.dialog), speed < 0);
        QCOMPARE(shown, speed);
        QCOMPARE(QList<int>({f.presets()->CurrentScheme(), f.dialog->SchemeOfRow(0)}),
                 QList<int>(2, edit ? 2 : scheme));
        QCOMPARE(f.layer(0).CUT.CUT_SPEED, edit ? speed : 1.0);
    }

    void confirm_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("summary");
        QTest::addColumn<bool>("committed");
        QTest::addColumn<double>("speed");
        QTest::newRow("no change: no summary") << "ok" << false << true << 1.0;
        QTest::newRow("suggested set, summary saved") << "save" << true << true << 23.0;
        QTest::newRow("summary rejected keeps the dialog") << "reject" << true << false << 1.0;
        QTest::newRow("cancel restores every layer") << "cancel" << false << false << 1.0;
    }
    void confirm()
    {
        QFETCH(QString, action);
        QFETCH(bool, summary);
        QFETCH(bool, committed);
        QFETCH(double, speed);
        Fixture f;
        f.user().RemoveSet({0, 80, "Plywood", 3.0, 1});
        int summaryRows = 0;
        QString firstCaption;
        bool stayedOpen = false;
        whenModal<DlgLayerLibMgr>([&](DlgLayerLibMgr *dialog) {
            f.dialog = dialog;
            if (action != "ok") {
                // Browsing a process the user library lacks files a set for it.
                f.choose(0, 0, 1, 0);
                f.choose(0, 0, 0, 0);
                auto *layers = f.child<QListWidget>("listWidget_Layer");
                emit layers->itemClicked(layers->item(1));
                f.choose(2, 0, 2, 0);
            }
            if (summary) {
                whenModal<DlgTps>([&](DlgTps *tps) {
                    summaryRows = tps->RowCount();
                    firstCaption = tps->findChild<QTreeWidget *>()->topLevelItem(0)->text(0);
                    if (action == "save")
                        tps->findChild<QPushButton *>(QStringLiteral("btnSave"))->click();
                    else
                        tps->reject();
                });
            }
            if (action == "cancel")
                QTest::keyClick(dialog, Qt::Key_Escape);
            else
                f.click("pushButton_ok");
            stayedOpen = dialog->isVisible();
            if (stayedOpen)
                dialog->reject();
        });
        // A double click on a row of a panel built as the module builds it.
        std::unique_ptr<DlgLayerMgr> panel(NewLayerPanel(nullptr));
        panel->SyncLayers(f.manager.get(), true);
        auto *table = panel->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
        table->setCurrentCell(0, 1);
        emit table->itemDoubleClicked(table->item(0, 1));
        QCOMPARE(summaryRows > 0, summary);
        if (summary)
            QCOMPARE(firstCaption, QStringLiteral("01 B"));
        QCOMPARE(stayedOpen, !committed && action == "reject");
        QCOMPARE(f.layer(0).CUT.CUT_SPEED, speed);
        QCOMPARE(f.layer(1).WORK_TYPE, committed && action != "ok" ? 2 : 0);
        QCOMPARE(QFile::exists(f.env.dataFile(QStringLiteral("old.lpl"))), committed);
        QCOMPARE(f.host.layersChanged, committed);
        QCOMPARE(f.user().HasSet({0, 80, "Plywood", 3.0, 1}), action != "ok");
        QCOMPARE(ReadIniInt("DLG_LIB_MGR", "LASER_POWER", -1, TmpParamIniPath()), 80);
    }

    void deviceMode_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QList<int>>("laser"); // power and tube
        QTest::newRow("MaxPower 1000 is 10 W") << 0 << QList<int>{10, 4};
        QTest::newRow("no machine: settings") << 1 << QList<int>{80, 0};
    }
    void deviceMode()
    {
        QFETCH(int, status);
        QFETCH(QList<int>, laser);
        Fixture f;
        f.host.devices.SetStatus(status);
        f.host.devices.SetMachineKind(1);
        f.host.devices.SetValue(QStringLiteral("MaxPower"), 1000);
        f.open();
        QCOMPARE(QList<int>({f.dialog->LaserPower(), f.dialog->LaserTube()}), laser);
        QCOMPARE(f.child<QPushButton>("pushButton_Advanced")->isEnabled(), status != 0);
        QCOMPARE(ReadIniInt("DLG_LIB_MGR", "LASER_POWER", -1, TmpParamIniPath()),
                 status == 0 ? laser[0] : -1);
        // No material for that tube: empty lists, OK refused.
        QTRY_COMPARE(f.child<QPushButton>("pushButton_ok")->isEnabled(), status != 0);
    }

    void importMerge_data()
    {
        // "changes" and "same": a library that changes the user's or one that matches it.
        QTest::addColumn<QByteArray>("file");
        // Ticks ("conflict", "automatic") and buttons of the merge summary, in order.
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QString>("speeds"); // plywood, acrylic and cork in lm.json afterwards
        QTest::addColumn<QStringList>("shown");
        const QStringList offered{"Changes: 5, conflicts: 1, ticked: 4", "Conflict", "0", "2"};
        const QStringList invalid{"Import failed, invalid parameter file!"};
        const QString save = QStringLiteral("pushButton_save");
        QTest::newRow("as offered: the conflict keeps the user's value")
            << QByteArray("changes") << QStringList{save} << "99 77 12" << offered;
        QTest::newRow("conflict ticked, automatic row unticked")
            << QByteArray("changes") << QStringList{"conflict", "automatic", save} << "50 33 12"
            << offered;
        QTest::newRow("tick all, then untick conflicts") << QByteArray("changes")
            << QStringList{"automatic", "pushButton_tickAll", "pushButton_untickConflicts", save}
            << "99 77 12" << offered;
        QTest::newRow("cancel writes nothing")
            << QByteArray("changes") << QStringList{"conflict", "pushButton_cancel"} << "99 33 -1"
            << offered;
        QTest::newRow("file changes nothing: one line, nothing written")
            << QByteArray("same") << QStringList() << "99 33 -1"
            << QStringList{"The file changes nothing in your library."};
        QTest::newRow("not JSON") << QByteArray("not a library {") << QStringList() << "99 33 -1"
                                  << invalid;
        QTest::newRow("no materials") << QByteArray(R"({"Type":{"Glass":[{"Power":80}]}})")
                                      << QStringList() << "99 33 -1" << invalid;
    }
    void importMerge()
    {
        QFETCH(QByteArray, file);
        QFETCH(QStringList, clicks);
        Fixture f;
        f.store().Save();
        const QByteArray before = f.env.readFile(QStringLiteral("lm.json"));
        const bool changes = file == "changes";
        CMaterialLibrary imported = factoryLibrary();
        const auto setSpeed = [&imported](const char *material, double speed) {
            CLibCutSet set;
            set.key = {0, 80, QLatin1String(material), 3.0, 0};
            set.speed = speed;
            imported.SetCutSet(set);
        };
        setSpeed("Plywood", changes ? 50 : 99);
        QStringList seen;
        if (changes) {
            setSpeed("Acrylic", 77);
            imported.AddMaterial(CLibMaterial{QStringLiteral("Cork"), {}, {}, 0, 80, {3.0}});
            setSpeed("Cork", 12);
            whenModal<DlgLibraryMerge>([&](DlgLibraryMerge *merge) {
                QAbstractItemModel *model = merge->findChild<QTableView *>()->model();
                // Each holds one changed row: its speed.
                const auto rowOf = [model](const char *material) {
                    return model->match(model->index(0, 2), Qt::DisplayRole, material).value(0);
                };
                const QModelIndex conflict = rowOf("Plywood").siblingAtColumn(0);
                const QModelIndex automatic = rowOf("Acrylic").siblingAtColumn(0);
                seen << child<QLabel>(merge, "label_count")->text() << conflict.data().toString()
                     << conflict.data(Qt::CheckStateRole).toString()
                     << automatic.data(Qt::CheckStateRole).toString();
                for (const QString &name : clicks) {
                    if (name == "conflict")
                        model->setData(conflict, Qt::Checked, Qt::CheckStateRole);
                    else if (name == "automatic")
                        model->setData(automatic, Qt::Unchecked, Qt::CheckStateRole);
                    else
                        ::click(merge, name);
                }
            });
        } else {
            answerBox(QMessageBox::Yes, &seen);
        }
        const QString path = f.env.root() + QStringLiteral("/import.json");
        const bool library = changes || file == "same";
        QVERIFY(f.env.writeFile(path, library ? MaterialLibraryText(imported) : file));
        f.pickFile(path);
        f.open();
        f.click("pushButton_Import");
        QTEST(seen, "shown");
        const bool saved = clicks.contains("pushButton_save");
        QCOMPARE(QDir(CLibraryStore::BackupDir()).entryList(QDir::Files).size(), saved ? 1 : 0);
        QCOMPARE(f.env.readFile(QStringLiteral("lm.json")) == before, !saved);
        CMaterialLibrary written;
        QVERIFY(ReadMaterialLibraryFile(CLibraryStore::UserLibraryPath(), written).ok());
        QCOMPARE(written, f.user());
        const auto speed = [&written](const char *material) {
            const CLibCutSet *set = written.FindCutSet({0, 80, QLatin1String(material), 3.0, 0});
            return set ? set->speed : -1;
        };
        const auto speeds = QList<double>{speed("Plywood"), speed("Acrylic"), speed("Cork")};
        QTEST(QStringLiteral("%1 %2 %3").arg(speeds[0]).arg(speeds[1]).arg(speeds[2]), "speeds");
    }

    // Each edit lands in lm.json and shows in the lists; `edit` is the action
    // triggered or the combo whose custom entry is chosen; `value` a thickness typed.
    void editLibrary_data()
    {
        QTest::addColumn<QString>("edit");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QStringList>("materials");
        QTest::addColumn<QString>("current");
        QTest::addColumn<QStringList>("thicknesses");
        const QStringList both{"3.0mm", "5.0mm", "Custom Thickness"};
        QTest::newRow("add material") << "comboBox_Material" << "Cork" << "4"
                                      << QStringList{"Plywood", "Acrylic", "MDF", "Cork"} << "Cork"
                                      << QStringList{"4.0mm", "Custom Thickness"};
        QTest::newRow("rename") << "action_Rename" << "Birch" << ""
                                << QStringList{"Birch", "Acrylic", "MDF"} << "Birch" << both;
        QTest::newRow("rename to a taken name, replace refused")
            << "action_Rename" << "MDF" << "" << kMaterials << "Plywood" << both;
        QTest::newRow("add thickness, listed in order")
            << "comboBox_Thickness" << "" << "10" << kMaterials << "Plywood"
            << QStringList{"3.0mm", "5.0mm", "10.0mm", "Custom Thickness"};
        QTest::newRow("delete thickness") << "action_deleteThickness" << "" << "" << kMaterials
                                          << "Plywood" << QStringList{"5.0mm", "Custom Thickness"};
        QTest::newRow("delete the first material: the next moves up")
            << "action_deleteMaterial" << "Plywood" << "" << QStringList{"Acrylic", "MDF"}
            << "Acrylic" << both;
        QTest::newRow("delete the last real material: the new last")
            << "action_deleteMaterial" << "MDF" << "" << QStringList{"Plywood", "Acrylic"}
            << "Acrylic" << both;
    }
    void editLibrary()
    {
        QFETCH(QString, edit);
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(QStringList, materials);
        QFETCH(QString, current);
        QFETCH(QStringList, thicknesses);
        Fixture f;
        f.store().Save();
        f.open();
        // A taken name asks first; renaming onto one is refused.
        const bool taken = kMaterials.contains(name);
        auto fill = [=](QDialog *dialog) {
            if (auto *line = dialog->findChild<QLineEdit *>(QStringLiteral("lineEdit_name")))
                line->setText(name);
            if (!value.isEmpty()) {
                dialog->findChild<QLineEdit *>(QStringLiteral("lineEdit_Thickness"))->setText(value);
                auto *cut = dialog->findChild<QCheckBox *>(QStringLiteral("checkBox_cut"));
                if (!cut->isChecked())
                    cut->click();
            }
            if (taken)
                answerBox(QMessageBox::Cancel);
            for (auto *button : dialog->findChildren<QPushButton *>()) {
                if (button->objectName().compare("pushButton_ok", Qt::CaseInsensitive) == 0)
                    button->click();
            }
        };
        if (edit == "action_deleteMaterial")
            f.child<QComboBox>("comboBox_Material")->setCurrentIndex(kMaterials.indexOf(name));
        else if (edit != "action_deleteThickness")
            whenModal<QDialog>(fill);
        if (auto *combo = f.dialog->findChild<QComboBox *>(edit))
            combo->setCurrentIndex(combo->count() - 1);
        else
            f.dialog->findChild<QAction *>(edit)->trigger();
        auto texts = [&f](const char *name) {
            QStringList shown;
            auto *list = f.child<QListWidget>(name);
            for (int row = 0; row < list->count(); ++row)
                shown << list->item(row)->text();
            return shown;
        };
        QTRY_COMPARE(texts("listWidget_Material").mid(0, materials.size()), materials);
        QCOMPARE(f.child<QListWidget>("listWidget_Material")->currentItem()->text(), current);
        QCOMPARE(texts("listWidget_Thickness"), thicknesses);
        CMaterialLibrary saved;
        QVERIFY(ReadMaterialLibraryFile(CLibraryStore::UserLibraryPath(), saved).ok());
        QCOMPARE(saved.MaterialNames(0, 80), materials);
        // Other tube/power pairs keep their materials and order.
        QCOMPARE(saved.MaterialNames(0, 100), QStringList{"Felt"});
        if (!value.isEmpty())
            QVERIFY(saved.FindCutSet({0, 80, name.isEmpty() ? "Plywood" : name, value.toDouble(), 0}));
        // An export copies the edited library as it is.
        const QString path = f.env.root() + QStringLiteral("/export.json");
        f.pickFile(path);
        f.click("pushButton_Export");
        QCOMPARE(f.env.readFile(path), f.env.readFile(QStringLiteral("lm.json")));
    }
};

QTEST_MAIN(tst_DlgLayerLibMgr)
#include "tst_dlglayerlibmgr.moc"
