#include "libmgr/dlglasertube.h"
#include "libmgr/dlglayeraddmaterials.h"
#include "libmgr/dlglayeraddthickness.h"
#include "libmgr/dlgone.h"
#include "libmgr/dlgtps.h"
#include "libmgrwidgettest.h"
#include "library/clayercontext.h"
#include "module/deletequestion.h"
#include "support/cmsgboxqss.h"
#include "support/settings.h"
#include "testenvironment.h"

#include "idevicesinfo.h"
#include "ilayerhost.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolTip>
#include <QTreeWidget>

namespace {

class MachineHost : public ILayerHost
{
public:
    void LayersChanged() override {}
    void LayerEvent(int) override {}
    void CurrentLayerChanged() override {}
    void RefreshView() override {}
    IDevicesInfo *DevicesInfo() const override { return const_cast<CDevicesInfoIns *>(&info); }
    CDevicesInfoIns info;
};

QString glassPowers(const CLibraryStore &store)
{
    QStringList powers;
    for (const CLibPower &entry : store.UserLibrary().Powers(0))
        powers << QString::number(entry.power);
    return powers.join(',');
}

// The last log lines, as many as expected.
QStringList lastLines(const TestEnvironment &env, int count)
{
    return env.logLines().mid(env.logLines().size() - count);
}

} // namespace

class tst_LibraryDialogs : public QObject
{
    Q_OBJECT

private slots:
    void changeSummary_data()
    {
        QTest::addColumn<bool>("applyToLayers");
        QTest::addColumn<bool>("save");
        QTest::addColumn<QString>("texts");
        QTest::newRow("apply to layers, saved")
            << true << true
            << "The parameters are modified as follows,and the new parameters will be used for "
               "processing:|Layer,Parameter name,Original,Modified";
        QTest::newRow("personal set, escaped")
            << false << false
            << "The temporary parameters of the current material will be saved as personalized "
               "parameters.\nPlease check and save the following changes:|Parameter "
               "name,Original,Modified";
    }
    void changeSummary()
    {
        QFETCH(bool, applyToLayers);
        QFETCH(bool, save);
        TestEnvironment env;
        DlgTps dialog(nullptr, applyToLayers);
        auto *tree = child<QTreeWidget>(&dialog, "treeWidget");
        QStringList headers;
        for (int i = 0; i < tree->columnCount(); ++i)
            headers << tree->headerItem()->text(i);
        QTEST(QString(child<QLabel>(&dialog, "label")->text() + '|' + headers.join(',')), "texts");
        // The longest caption there is, on a machine with two lasers.
        const QString caption = QStringLiteral("Use laser dwell mode-Laser2");
        const int column = applyToLayers ? 1 : 0;
        dialog.AddRows({QStringList{"01 ", caption, "100", "100.5"}.mid(1 - column), {"Air"}});
        QCOMPARE(dialog.RowCount(), 2);
        QCOMPARE(tree->topLevelItem(0)->text(column + 2), QStringLiteral("100.5"));

        int shownWidth = 0;
        whenModal<DlgTps>(&dialog, [&](DlgTps *shown) {
            shownWidth = tree->columnWidth(column);
            save ? click(shown, "btnSave") : QTest::keyClick(shown, Qt::Key_Escape);
        });
        QCOMPARE(dialog.exec(), int(save));
        QVERIFY2(shownWidth > tree->fontMetrics().horizontalAdvance(caption), "caption cut");
    }

    void addMaterial_data()
    {
        QTest::addColumn<int>("tube");
        QTest::addColumn<QString>("typed"); // name/thickness
        QTest::addColumn<QString>("tip");
        QTest::addColumn<QString>("crafts"); // shown boxes | cut, scoring, deep, shallow, mark
        const QString five =
            QStringLiteral("Cutting Scoring Shallow_Engrave Deep_Engrave Mark|11110");
        QTest::newRow("both empty: only the name tip")
            << 0 << "/"
            << "The material name cannot be empty" << five;
        QTest::newRow("empty thickness") << 0 << "Oak/"
                                         << "The material thickness cannot be empty" << five;
        QTest::newRow("semiconductor: four crafts, Fill, no shallow")
            << 4 << "Oak/4.5" << QString() << "Cutting Scoring Fill Mark|11100";
    }
    void addMaterial()
    {
        QFETCH(int, tube);
        QFETCH(QString, typed);
        QFETCH(QString, tip);
        TestEnvironment env;
        DlgLayerAddMaterials dialog(tube != 4, tube);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto *thickness = child<QLineEdit>(&dialog, "lineEdit_Thickness");
        QCOMPARE(thickness->text() + QString::number(thickness->isEnabled()),
                 QStringLiteral("3%1").arg(tube != 4));
        QTest::keyClicks(child(&dialog, "lineEdit_name"), typed.section('/', 0, 0));
        thickness->setText(typed.section('/', 1));
        // On the indicator: a short text leaves the middle of a wide box dead.
        QTest::mouseClick(child(&dialog, "checkBox_vision"), Qt::LeftButton, {}, QPoint(6, 8));
        QToolTip::hideText();
        click(&dialog, "pushButton_ok");

        QCOMPARE(QToolTip::isVisible() ? QToolTip::text() : QString(), tip);
        QToolTip::hideText();
        QCOMPARE(dialog.result(), int(tip.isEmpty()));
        QCOMPARE(dialog.GetName() + '/' + QString::number(dialog.GetThickness()),
                 typed.section('/', 0, 0) + '/' +
                     QString::number(typed.section('/', 1).toDouble()));
        QStringList shown;
        for (const char *box : {"checkBox_cut", "checkBox_trc", "checkBox_swpShallow",
                                "checkBox_swpDeep", "checkBox_vision"}) {
            if (auto *check = child<QCheckBox>(&dialog, box); check->isVisibleTo(&dialog))
                shown << check->text().replace(' ', '_');
        }
        QString crafts;
        for (bool on : {dialog.IsCut(), dialog.IsTrc(), dialog.IsSwpDeep(), dialog.IsSwpShallow(),
                        dialog.IsVision()})
            crafts += on ? '1' : '0';
        QTEST(QString(shown.join(' ') + '|' + crafts), "crafts");
        QCOMPARE(lastLines(env, 2),
                 (QStringList{"0|checkBox_Vision was clicked.", "0|pushButton_ok was clicked."}));
    }

    void addMaterialIcon()
    {
        TestEnvironment env;
        DlgLayerAddMaterials dialog(true, 0);
        QCOMPARE(dialog.GetIconPath(), env.resourceDir() + "/Res/Icon/Plywood.jpg");
        dialog.show();
        const QString picture = env.root() + QStringLiteral("/walnut.png");
        QVERIFY(QImage(10, 10, QImage::Format_RGB32).save(picture));
        QVERIFY(dialog.LoadIcon(picture));
        const QString look = QStringLiteral("QPushButton{border-image: url(%1)}").arg(picture);
        QCOMPARE(child(&dialog, "pushButton_icon")->styleSheet(), look);

        // Not an image: the message, answered; nothing changes.
        const QString text = env.root() + QStringLiteral("/notes.png");
        QVERIFY(env.writeFile(text, "not a picture"));
        QString message;
        whenModal<CMsgBoxQss>(&dialog, [&message](CMsgBoxQss *box) {
            message = box->windowTitle() + '|' + box->text();
            box->button(QMessageBox::Ok)->click();
        });
        QVERIFY(!dialog.LoadIcon(text));
        QCOMPARE(message, QStringLiteral("Tips|Failed to open the image"));
        QCOMPARE(child(&dialog, "pushButton_icon")->styleSheet() + dialog.GetIconPath(),
                 look + picture);
    }

    void addThickness_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<double>("preset");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("stored");
        QTest::newRow("inch: 25.4 mm shows 1") << 0 << 25.4 << QStringLiteral("1") << "2" << 50.8;
        QTest::newRow("mm: hundredths") << 1 << 3.456 << QStringLiteral("3.46") << "4.2" << 4.2;
        QTest::newRow("mm per minute") << 3 << 0.004 << QStringLiteral("0") << "12.5" << 12.5;
        QTest::newRow("empty stores 0") << 1 << 3.0 << QStringLiteral("3") << "" << 0.0;
    }
    void addThickness()
    {
        QFETCH(int, unit);
        QFETCH(double, preset);
        QFETCH(QString, typed);
        TestEnvironment env;
        WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), unit,
                    CfgIniPath());
        g_LayerContext.m_unitMode = unit;

        DlgLayerAddThickness dialog;
        QCOMPARE(dialog.GetThickness(), 3.0);
        QCOMPARE(child<QLabel>(&dialog, "label_thickness")->text(),
                 unit == 0 ? "Thickness (inch)" : "Thickness (mm)");
        auto *edit = child<QLineEdit>(&dialog, "lineEdit_Thickness");
        dialog.SetThickness(preset);
        QTEST(edit->text(), "shown");
        QCOMPARE(dialog.GetThickness(), preset);
        edit->clear();
        QTest::keyClicks(edit, typed);
        QTEST(dialog.GetThickness(), "stored");

        dialog.SetSwpShallow(false);
        QTest::mouseClick(child(&dialog, "checkBox_cut"), Qt::LeftButton, {}, QPoint(6, 8));
        click(&dialog, "pushButton_OK");
        QString crafts = QString::number(dialog.result());
        for (bool on :
             {dialog.IsCut(), dialog.IsTrc(), dialog.IsSwpDeep(), dialog.IsVision(),
              dialog.IsSwpShallow(), child<QCheckBox>(&dialog, "checkBox_swpShallow")->isChecked()})
            crafts += on ? '1' : '0';
        QCOMPARE(crafts, QStringLiteral("1011100"));
        QCOMPARE(lastLines(env, 2),
                 (QStringList{"0|checkBox_cut was clicked.", "0|pushButton_OK was clicked."}));
    }

    void laserTube_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("power");
        QTest::addColumn<QString>("action"); // DlgOne's button and the text typed, or del
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("saved"); // the glass powers on disk; empty: nothing saved
        const auto row = [](const char *name, int type, int power, const char *action,
                            const char *expected, const char *saved = "") {
            QTest::newRow(name) << type << power << QString::fromLatin1(action)
                                << QString::fromLatin1(expected) << QString::fromLatin1(saved);
        };
        row("glass hides 30 and 50", 0, 60, "", "0/60 Glass [40 W,60 W] 60 W del on");
        row("fiber shows as RF with burning", 3, 100, "", "2/100 RF [60 W,100 W] 100 W del off");
        row("RF machine without burning", 1, 60, "", "1/35 RF [35 W] 35 W del off");
        row("no semiconductor powers", 4, 20, "", "4/20 Semiconductor laser []  del off");
        row("add: appended and saved", 0, 40, "ok 80", "0/80 Glass [40 W,60 W,80 W] 80 W del on",
            "30,40,50,60,80");
        row("add: three digits at most", 0, 40, "ok 1000",
            "0/100 Glass [40 W,60 W,100 W] 100 W del on", "30,40,50,60,100");
        row("add: 0 raised to 1", 0, 40, "ok 0", "0/1 Glass [40 W,60 W,1 W] 1 W del on",
            "30,40,50,60,1");
        row("add existing: only selected", 0, 40, "ok 60", "0/60 Glass [40 W,60 W] 60 W del on");
        row("add nothing typed", 0, 40, "ok ", "0/40 Glass [40 W,60 W] 40 W del off");
        row("add cancelled", 0, 40, "cancel 80", "0/40 Glass [40 W,60 W] 40 W del off");
        row("delete last: new last selected", 0, 60, "del messageBox_yesButton",
            "0/40 Glass [40 W] 40 W del off", "30,40,50");
        row("delete answered No", 0, 60, "del messageBox_noButton",
            "0/60 Glass [40 W,60 W] 60 W del on");
    }
    void laserTube()
    {
        QFETCH(int, type);
        QFETCH(int, power);
        QFETCH(QString, action);
        QFETCH(QString, expected);
        QFETCH(QString, saved);
        TestEnvironment env;
        InstallDeletionQuestion();
        // The machine's first source is of the row's kind.
        MachineHost host;
        host.info.SetLaser(0, {type, 60, true});
        g_LayerContext.m_pHost = &host;
        // Four glass entries fill the list's storage: adding one moves it.
        CMaterialLibrary &library = g_LayerContext.Store().UserLibrary();
        for (const auto &[tube, watts] :
             {std::pair{0, 30}, {0, 40}, {0, 50}, {2, 60}, {2, 100}, {1, 35}})
            library.AddPower(tube, watts, false);
        library.AddPower(0, 60, true);

        DlgLaserTube dialog(&g_LayerContext.Store());
        dialog.SetType(type);
        dialog.SetPower(power);
        const QString argument = action.section(' ', 1);
        const QString button = action.section(' ', 0, 0);
        QString asked;
        if (button == QLatin1String("del")) {
            whenModal<CMsgBoxQss>(&dialog, [&](CMsgBoxQss *box) {
                asked = box->text();
                click(box, argument);
            });
            click(&dialog, "pushButton_del");
        } else if (!action.isEmpty()) {
            // Typed as a user does: the field takes three digits at most.
            whenModal<DlgOne>(&dialog, [&](DlgOne *input) {
                auto *edit = child<QLineEdit>(input, "lineEdit");
                asked = edit->text();
                edit->clear();
                QTest::keyClicks(edit, argument);
                click(input, "pushButton_" + button);
            });
            click(&dialog, "pushButton_add");
            QCOMPARE(env.logLines().count("0|pushButton_" + button + " was changed."), 1);
        }
        QCOMPARE(asked, action.isEmpty() ? "" : button == "del" ? "Confirm deletion?" : "100");
        auto *powers = child<QComboBox>(&dialog, "comboBox_power");
        QStringList items;
        for (int i = 0; i < powers->count(); ++i)
            items << powers->itemText(i);
        QCOMPARE(QStringLiteral("%1/%2 %3 [%4] %5 del %6")
                     .arg(dialog.GetType())
                     .arg(dialog.GetPower())
                     .arg(child<QComboBox>(&dialog, "comboBox_tube")->currentText(),
                          items.join(','), powers->currentText(),
                          child(&dialog, "pushButton_del")->isEnabled() ? "on" : "off"),
                 expected);
        // Adding and deleting are on disk at once; nothing else is.
        CLibraryStore reread;
        reread.Load();
        QCOMPARE(glassPowers(g_LayerContext.Store()) + '/' + glassPowers(reread),
                 (saved.isEmpty() ? QStringLiteral("30,40,50,60") : saved) + '/' + saved);

        click(&dialog, "pushButton_ok");
        QCOMPARE(dialog.result(), 1);
        const QString group = QStringLiteral("DLG_LIB_MGR");
        const int tube = ReadIniInt(group, QStringLiteral("LASER_TUBE"), -1, TmpParamIniPath());
        const int written = ReadIniInt(group, QStringLiteral("LASER_POWER"), -1, TmpParamIniPath());
        QCOMPARE(QStringLiteral("%1/%2").arg(tube).arg(written), expected.section(' ', 0, 0));
    }
};

QTEST_MAIN(tst_LibraryDialogs)
#include "tst_librarydialogs.moc"
