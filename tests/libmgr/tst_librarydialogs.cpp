#include "libmgr/dlglasertube.h"
#include "libmgr/dlglayeraddmaterials.h"
#include "libmgr/dlgone.h"
#include "libmgr/dlgtps.h"
#include "libmgrwidgettest.h"
#include "library/clayercontext.h"
#include "module/deletequestion.h"
#include "support/cmsgboxqss.h"
#include "support/settings.h"
#include "testenvironment.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QToolTip>
#include <QTreeWidget>

namespace {

QString glassPowers(const CLibraryStore &store)
{
    QStringList powers;
    for (const CLibPower &entry : store.UserLibrary().Powers(0))
        powers << QString::number(entry.power);
    return powers.join(',');
}

} // namespace

class tst_LibraryDialogs : public QObject
{
    Q_OBJECT

private slots:
    void changeSummary_data()
    {
        QTest::addColumn<bool>("applyToLayers");
        QTest::addColumn<QString>("texts");
        QTest::newRow("layers")
            << true
            << "The parameters are modified as follows,and the new parameters will be used for "
               "processing:|Layer,Parameter name,Original,Modified";
        QTest::newRow("personal set")
            << false
            << "The temporary parameters of the current material will be saved as personalized "
               "parameters.\nPlease check and save the following changes:|Parameter "
               "name,Original,Modified";
    }
    void changeSummary()
    {
        QFETCH(bool, applyToLayers);
        TestEnvironment env;
        DlgTps dialog(nullptr, applyToLayers);
        auto *tree = child<QTreeWidget>(&dialog, "treeWidget");
        QStringList headers;
        for (int i = 0; i < tree->columnCount(); ++i)
            headers << tree->headerItem()->text(i);
        QTEST(QString(child<QLabel>(&dialog, "label")->text() + '|' + headers.join(',')), "texts");
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
        QCOMPARE(env.logLines().mid(env.logLines().size() - 2),
                 (QStringList{"0|checkBox_Vision was clicked.", "0|pushButton_ok was clicked."}));
    }

    // A file that is no image: the message, and the icon stays.
    void badIcon()
    {
        TestEnvironment env;
        DlgLayerAddMaterials dialog(true, 0);
        dialog.show(); // a hidden dialog asks nothing
        const QString text = env.root() + QStringLiteral("/notes.png");
        QVERIFY(env.writeFile(text, "not a picture"));
        QString message;
        whenModal<CMsgBoxQss>(&dialog, [&message](CMsgBoxQss *box) {
            message = box->windowTitle() + '|' + box->text();
            box->button(QMessageBox::Ok)->click();
        });
        QVERIFY(!dialog.LoadIcon(text));
        QCOMPARE(message, QStringLiteral("Tips|Failed to open the image"));
        QCOMPARE(dialog.GetIconPath(), env.resourceDir() + "/Res/Icon/Plywood.jpg");
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
        row("add: appended and saved", 0, 40, "ok 80", "0/80 Glass [40 W,60 W,80 W] 80 W del on",
            "30,40,50,60,80");
        row("add nothing typed", 0, 40, "ok ", "0/40 Glass [40 W,60 W] 40 W del off");
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
        TestHost host;
        host.devices.SetLaser(0, {type, 60, true});
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
