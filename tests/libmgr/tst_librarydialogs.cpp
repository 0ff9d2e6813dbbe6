#include "libmgr/dlglasertube.h"
#include "libmgr/dlglayeraddmaterials.h"
#include "libmgr/dlglayeraddthickness.h"
#include "libmgr/dlgone.h"
#include "libmgr/dlgtps.h"
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
#include <QTimer>
#include <QToolTip>
#include <QTreeWidget>

#include <functional>

class tst_LibraryDialogs : public QObject
{
    Q_OBJECT

private slots:
    void powerInput_data();
    void powerInput();
    void changeSummary_data();
    void changeSummary();
    void addMaterial_data();
    void addMaterial();
    void addMaterialIcon();
    void addThickness_data();
    void addThickness();
    void laserTube_data();
    void laserTube();
};

namespace {

template<typename T = QWidget>
T *child(QWidget *dialog, const QString &name)
{
    return dialog->findChild<T *>(name);
}

void click(QWidget *dialog, const QString &button)
{
    child<QPushButton>(dialog, button)->click();
}

// Runs `act` on the modal widget of type T once one shows; the poll dies with
// `context`, so a box that never came leaves nothing behind.
template<typename T>
void whenModal(QObject *context, std::function<void(T *)> act)
{
    auto *poll = new QTimer(context);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
        if (auto *widget = qobject_cast<T *>(QApplication::activeModalWidget())) {
            poll->deleteLater();
            act(widget);
        }
    });
    poll->start(10);
}

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

} // namespace

void tst_LibraryDialogs::powerInput_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("value");

    const QString ok = QStringLiteral("pushButton_ok");
    QTest::newRow("typed power") << "250" << ok << "250" << 250;
    QTest::newRow("empty field gives 0") << "" << ok << "" << 0;
    QTest::newRow("four digits cannot be typed") << "1000" << ok << "100" << 100;
    QTest::newRow("below the range corrected") << "0" << ok << "0" << 1;
    QTest::newRow("cancel keeps the preset") << "250" << "pushButton_cancel" << "250" << 80;
}

void tst_LibraryDialogs::powerInput()
{
    QFETCH(QString, typed);
    QFETCH(QString, button);
    QFETCH(QString, shown);
    QFETCH(int, value);
    TestEnvironment env;

    DlgOne dialog(80);
    auto *edit = child<QLineEdit>(&dialog, "lineEdit");
    QCOMPARE(edit->text(), QStringLiteral("80"));
    edit->clear();
    QTest::keyClicks(edit, typed);
    QCOMPARE(edit->text(), shown);
    click(&dialog, button);
    QCOMPARE(dialog.result(), button == QLatin1String("pushButton_ok") ? 1 : 0);
    QCOMPARE(dialog.Value(), value);
    QCOMPARE(env.logLines().last(), QStringLiteral("0|%1 was changed.").arg(button));
}

void tst_LibraryDialogs::changeSummary_data()
{
    QTest::addColumn<bool>("applyToLayers");
    QTest::addColumn<bool>("save");
    QTest::addColumn<QString>("texts");

    const QString apply = QStringLiteral("The parameters are modified as follows,and the new "
                                         "parameters will be used for processing:|Layer,");
    const QString personal = QStringLiteral(
        "The temporary parameters of the current material will be saved as personalized "
        "parameters.\nPlease check and save the following changes:|");
    QTest::newRow("apply to layers, saved") << true << true << apply;
    QTest::newRow("apply to layers, escaped") << true << false << apply;
    QTest::newRow("personal set, saved") << false << true << personal;
    QTest::newRow("personal set, escaped") << false << false << personal;
}

void tst_LibraryDialogs::changeSummary()
{
    QFETCH(bool, applyToLayers);
    QFETCH(bool, save);
    QFETCH(QString, texts);
    TestEnvironment env;

    DlgTps dialog(nullptr, applyToLayers);
    auto *tree = child<QTreeWidget>(&dialog, "treeWidget");
    QStringList headers;
    for (int i = 0; i < tree->columnCount(); ++i)
        headers << tree->headerItem()->text(i);
    QCOMPARE(child<QLabel>(&dialog, "label")->text() + '|' + headers.join(','),
             texts + "Parameter name,Original,Modified");
    // The longest caption there is, on a machine with two lasers.
    const QString caption = QStringLiteral("Use laser dwell mode-Laser2");
    const int column = applyToLayers ? 1 : 0;
    dialog.AddRow(QStringList{"01 ", caption, "100", "100.5"}.mid(1 - column));
    dialog.AddRow({"Air Assist", "Low"});
    QCOMPARE(dialog.RowCount(), 2);
    QCOMPARE(tree->topLevelItem(0)->text(column + 2), QStringLiteral("100.5"));

    int shownWidth = 0;
    whenModal<DlgTps>(&dialog, [save, &shownWidth, tree, column](DlgTps *shown) {
        shownWidth = tree->columnWidth(column);
        save ? click(shown, "btnSave") : QTest::keyClick(shown, Qt::Key_Escape);
    });
    QCOMPARE(dialog.exec(), save ? 1 : 0);
    QVERIFY2(shownWidth > tree->fontMetrics().horizontalAdvance(caption), "caption cut");
}

void tst_LibraryDialogs::addMaterial_data()
{
    QTest::addColumn<int>("tube");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("thickness");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("crafts");

    const QString five = QStringLiteral("Cutting Scoring Shallow_Engrave Deep_Engrave Mark | "
                                        "11110");
    QTest::newRow("both empty: only the name tip")
        << 0 << "" << "" << "The material name cannot be empty" << five;
    QTest::newRow("empty thickness")
        << 0 << "Oak" << "" << "The material thickness cannot be empty" << five;
    QTest::newRow("semiconductor: four crafts, Fill, no shallow")
        << 4 << "Oak" << "4.5" << "" << "Cutting Scoring Fill Mark | 11100";
}

void tst_LibraryDialogs::addMaterial()
{
    QFETCH(int, tube);
    QFETCH(QString, name);
    QFETCH(QString, thickness);
    QFETCH(QString, tip);
    QFETCH(QString, crafts);
    TestEnvironment env;

    DlgLayerAddMaterials dialog(tube != 4, tube);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *thicknessEdit = child<QLineEdit>(&dialog, "lineEdit_Thickness");
    QCOMPARE(thicknessEdit->text(), QStringLiteral("3"));
    QCOMPARE(thicknessEdit->isEnabled(), tube != 4);
    QTest::keyClicks(child(&dialog, "lineEdit_name"), name);
    thicknessEdit->setText(thickness);
    // On the indicator: a short text leaves the middle of a wide box dead.
    QTest::mouseClick(child(&dialog, "checkBox_vision"), Qt::LeftButton, {}, QPoint(6, 8));
    QToolTip::hideText();
    click(&dialog, "pushButton_ok");

    QCOMPARE(QToolTip::isVisible() ? QToolTip::text() : QString(), tip);
    QCOMPARE(dialog.result(), tip.isEmpty() ? 1 : 0);
    QCOMPARE(dialog.GetName() + '/' + QString::number(dialog.GetThickness()),
             name + '/' + QString::number(thickness.toDouble()));
    QStringList shown;
    for (const char *box : {"checkBox_cut", "checkBox_trc", "checkBox_swpShallow",
                            "checkBox_swpDeep", "checkBox_vision"}) {
        if (auto *check = child<QCheckBox>(&dialog, box); check->isVisibleTo(&dialog))
            shown << check->text().replace(' ', '_');
    }
    // Cut, scoring, deep, shallow, mark: what the caller reads back.
    shown << QStringLiteral("| %1%2%3%4%5")
                 .arg(dialog.IsCut())
                 .arg(dialog.IsTrc())
                 .arg(dialog.IsSwpDeep())
                 .arg(dialog.IsSwpShallow())
                 .arg(dialog.IsVision());
    QCOMPARE(shown.join(' '), crafts);
    QCOMPARE(env.logLines().mid(env.logLines().size() - 2),
             (QStringList{"0|checkBox_Vision was clicked.", "0|pushButton_ok was clicked."}));
    QToolTip::hideText();
}

void tst_LibraryDialogs::addMaterialIcon()
{
    TestEnvironment env;
    DlgLayerAddMaterials dialog(true, 0);
    QCOMPARE(dialog.GetIconPath(), env.resourceDir() + QStringLiteral("/Res/Icon/Plywood.jpg"));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
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
    QCOMPARE(child(&dialog, "pushButton_icon")->styleSheet(), look);
    QCOMPARE(dialog.GetIconPath(), picture);
}

void tst_LibraryDialogs::addThickness_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("preset");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("stored");
    QTest::addColumn<QString>("label");

    const QString inch = QStringLiteral("Thickness (inch)");
    const QString mm = QStringLiteral("Thickness (mm)");
    QTest::newRow("inch: 25.4 mm shows 1") << 0 << 25.4 << "1" << "2" << 50.8 << inch;
    QTest::newRow("mm: hundredths") << 1 << 3.456 << "3.46" << "4.2" << 4.2 << mm;
    QTest::newRow("mm per minute") << 3 << 0.004 << "0" << "12.5" << 12.5 << mm;
    QTest::newRow("empty stores 0") << 1 << 3.0 << "3" << "" << 0.0 << mm;
}

void tst_LibraryDialogs::addThickness()
{
    QFETCH(int, unit);
    QFETCH(double, preset);
    QFETCH(QString, shown);
    QFETCH(QString, typed);
    QFETCH(double, stored);
    QFETCH(QString, label);
    TestEnvironment env;
    WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), unit, CfgIniPath());
    g_LayerContext.m_unitMode = unit;

    DlgLayerAddThickness dialog;
    QCOMPARE(dialog.GetThickness(), 3.0);
    QCOMPARE(child<QLabel>(&dialog, "label_thickness")->text(), label);
    auto *edit = child<QLineEdit>(&dialog, "lineEdit_Thickness");
    dialog.SetThickness(preset);
    QCOMPARE(edit->text(), shown);
    QCOMPARE(dialog.GetThickness(), preset);
    edit->clear();
    QTest::keyClicks(edit, typed);
    QCOMPARE(dialog.GetThickness(), stored);

    dialog.SetSwpShallow(false);
    QVERIFY(!child<QCheckBox>(&dialog, "checkBox_swpShallow")->isChecked());
    QTest::mouseClick(child(&dialog, "checkBox_cut"), Qt::LeftButton, {}, QPoint(6, 8));
    QVERIFY(!dialog.IsCut() && dialog.IsTrc() && dialog.IsSwpDeep() && dialog.IsVision()
            && !dialog.IsSwpShallow());
    click(&dialog, "pushButton_OK");
    QCOMPARE(dialog.result(), 1);
    QCOMPARE(env.logLines().mid(env.logLines().size() - 2),
             (QStringList{"0|checkBox_cut was clicked.", "0|pushButton_OK was clicked."}));
}

void tst_LibraryDialogs::laserTube_data()
{
    QTest::addColumn<int>("machineTube");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("power");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("glass");
    QTest::addColumn<bool>("saved");

    const QString all = QStringLiteral("30,40,50,60");
    QTest::newRow("glass hides 30 and 50")
        << 0 << 0 << 60 << "" << "0/60 Glass [40 W,60 W] 60 W del on" << all << false;
    QTest::newRow("fiber shows as RF with burning")
        << 0 << 3 << 100 << "" << "2/100 RF [60 W,100 W] 100 W del off" << all << false;
    QTest::newRow("RF machine without burning")
        << 1 << 2 << 60 << "" << "1/35 RF [35 W] 35 W del off" << all << false;
    QTest::newRow("no semiconductor powers")
        << 0 << 4 << 20 << "" << "4/20 Semiconductor laser []  del off" << all << false;
    QTest::newRow("add: appended and saved") << 0 << 0 << 40 << "add 80"
                                             << "0/80 Glass [40 W,60 W,80 W] 80 W del on"
                                             << "30,40,50,60,80" << true;
    QTest::newRow("add existing: only selected")
        << 0 << 0 << 40 << "add 60" << "0/60 Glass [40 W,60 W] 60 W del on" << all << false;
    QTest::newRow("add nothing typed")
        << 0 << 0 << 40 << "add " << "0/40 Glass [40 W,60 W] 40 W del off" << all << false;
    QTest::newRow("delete last: new last selected")
        << 0 << 0 << 60 << "del messageBox_yesButton" << "0/40 Glass [40 W] 40 W del off"
        << "30,40,50" << true;
    QTest::newRow("delete answered No") << 0 << 0 << 60 << "del messageBox_noButton"
                                        << "0/60 Glass [40 W,60 W] 60 W del on" << all << false;
}

void tst_LibraryDialogs::laserTube()
{
    QFETCH(int, machineTube);
    QFETCH(int, type);
    QFETCH(int, power);
    QFETCH(QString, action);
    QFETCH(QString, expected);
    QFETCH(QString, glass);
    QFETCH(bool, saved);
    TestEnvironment env;
    InstallDeletionQuestion();
    MachineHost host;
    host.info.SetLaser(0, {machineTube, 60, true});
    g_LayerContext.m_pHost = &host;
    // Four glass entries fill the list's storage: adding one moves it.
    CMaterialLibrary &library = g_LayerContext.Store().UserLibrary();
    for (int glassPower : {30, 40, 50})
        library.AddPower(0, glassPower, false);
    library.AddPower(0, 60, true);
    library.AddPower(2, 60, false);
    library.AddPower(2, 100, false);
    library.AddPower(1, 35, false);

    DlgLaserTube dialog(&g_LayerContext.Store());
    dialog.SetType(type);
    dialog.SetPower(power);
    const QString argument = action.section(' ', 1);
    QString asked;
    if (action.startsWith(QLatin1String("add"))) {
        whenModal<DlgOne>(&dialog, [argument, &asked](DlgOne *input) {
            asked = child<QLineEdit>(input, "lineEdit")->text();
            child<QLineEdit>(input, "lineEdit")->setText(argument);
            click(input, "pushButton_ok");
        });
        click(&dialog, "pushButton_add");
    } else if (action.startsWith(QLatin1String("del"))) {
        whenModal<CMsgBoxQss>(&dialog, [argument, &asked](CMsgBoxQss *box) {
            asked = box->text();
            click(box, argument);
        });
        click(&dialog, "pushButton_del");
    }
    QCOMPARE(asked, action.isEmpty() ? "" : action[0] == 'a' ? "100" : "Confirm deletion?");
    auto *powers = child<QComboBox>(&dialog, "comboBox_power");
    QStringList items;
    for (int i = 0; i < powers->count(); ++i)
        items << powers->itemText(i);
    QCOMPARE(QStringLiteral("%1/%2 %3 [%4] %5 del %6")
                 .arg(dialog.GetType())
                 .arg(dialog.GetPower())
                 .arg(child<QComboBox>(&dialog, "comboBox_tube")->currentText(), items.join(','),
                      powers->currentText(),
                      child(&dialog, "pushButton_del")->isEnabled() ? "on" : "off"),
             expected);
    QCOMPARE(glassPowers(g_LayerContext.Store()), glass);
    QCOMPARE(QFile::exists(CLibraryStore::UserLibraryPath()), saved);
    CLibraryStore reread;
    reread.Load();
    QCOMPARE(glassPowers(reread), saved ? glass : QString());

    click(&dialog, "pushButton_ok");
    QCOMPARE(dialog.result(), 1);
    const QString group = QStringLiteral("DLG_LIB_MGR");
    const int tube = ReadIniInt(group, QStringLiteral("LASER_TUBE"), -1, TmpParamIniPath());
    const int written = ReadIniInt(group, QStringLiteral("LASER_POWER"), -1, TmpParamIniPath());
    QCOMPARE(QStringLiteral("%1/%2").arg(tube).arg(written), expected.section(' ', 0, 0));
}

QTEST_MAIN(tst_LibraryDialogs)
#include "tst_librarydialogs.moc"
