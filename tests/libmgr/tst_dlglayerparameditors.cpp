#include "libmgr/dlglayerparamcut.h"
#include "libmgr/dlglayerparamsweep.h"

#include "library/clayercontext.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>
#include <memory>

namespace {

// One record of each kind the editors load; a row's edit changes one of them.
struct Records
{
    CLibCutSet cut;
    CLibSweepSet sweep;
    CLayerParam layer{0xff0000};

    friend bool operator==(const Records &a, const Records &b)
    {
        return a.cut == b.cut && a.sweep == b.sweep && a.layer == b.layer;
    }
};
using Expect = std::function<void(Records &)>;

Records samples()
{
    Records r;
    r.cut.key.material = QStringLiteral("Plywood");
    r.cut.note = QStringLiteral("mine");
    r.cut.blowing = true;
    r.cut.speed = 12.345; // no round number in any unit
    r.cut.laser1.power = 55.55;
    r.cut.laser1.turnPower = 33.3;
    r.cut.laser2.jumpDelay = 40;
    r.cut.bridges = true;
    r.cut.bridgesSpace = 12.7;
    r.cut.useGuideLine = true;
    r.cut.guideIn = 1;
    r.cut.useCompensate = true;
    r.cut.pen.enableUpDown = true;
    r.cut.pen.downHeight = 4.5;
    r.sweep.key.craft = LIB_CRAFT_DEEP;
    r.sweep.speed = 333.333;
    r.sweep.laser1.power = r.sweep.maxPower = 66.6;
    r.sweep.dpi = 7;
    r.sweep.rampLength = 1.234;
    r.sweep.isRamp = true;
    r.sweep.minPower = 9.9;
    r.sweep.carvingNumber = 4;
    r.layer.WORK_TYPE = WORK_DEEP_ENGRAVE;
    r.layer.CUT.LASER1.DWELL_MODE = true;
    r.layer.CUT.GUIDE_TYPE = 7; // not one of the combo's choices
    r.layer.SWEEP.SWEEP_SPEED = 123.456;
    r.layer.SWEEP.LASER2.POWER_MAX = 44.4;
    return r;
}

std::unique_ptr<CLayerParamEditor> makeEditor(bool cut)
{
    if (cut)
        return std::make_unique<DlgLayerParamCut>();
    return std::make_unique<DlgLayerParamSweep>();
}

// source: "cut set", "sweep set", "cut layer" or "sweep layer".
void load(CLayerParamEditor *editor, const QString &source, const Records &r)
{
    const bool set = source.endsWith(QLatin1String("set"));
    if (auto *cut = qobject_cast<DlgLayerParamCut *>(editor))
        set ? cut->LoadSet(r.cut) : cut->LoadLayer(r.layer);
    else if (auto *sweep = qobject_cast<DlgLayerParamSweep *>(editor))
        set ? sweep->LoadSet(r.sweep) : sweep->LoadLayer(r.layer);
}

Records readBack(const CLayerParamEditor *editor, const QString &source, Records r)
{
    const bool set = source.endsWith(QLatin1String("set"));
    if (auto *cut = qobject_cast<const DlgLayerParamCut *>(editor))
        set ? cut->ReadSet(r.cut) : cut->ReadLayer(r.layer);
    else if (auto *sweep = qobject_cast<const DlgLayerParamSweep *>(editor))
        set ? sweep->ReadSet(r.sweep) : sweep->ReadLayer(r.layer);
    return r;
}

// Edits a field as a user does: types into a line edit, clicks a box, steps
// a combo or spin box with the arrow keys.
void userEdit(QWidget *widget, const QString &input)
{
    if (auto *edit = qobject_cast<QLineEdit *>(widget)) {
        edit->selectAll();
        QTest::keyClicks(edit, input);
        QTest::keyClick(edit, Qt::Key_Return);
    } else if (auto *box = qobject_cast<QCheckBox *>(widget)) {
        box->click();
    } else {
        QTest::keyClick(widget, input == QLatin1String("up") ? Qt::Key_Up : Qt::Key_Down);
    }
}

void setUnit(const TestEnvironment &env, int unit)
{
    g_LayerContext.m_unitMode = unit;
    env.writeFile(QStringLiteral("cfg.ini"),
                  QStringLiteral("[APP_CFG]\nKEY_RULER_UNIT=%1\n").arg(unit).toUtf8());
}

template <typename T> T *child(QWidget *editor, const QString &name)
{
    T *widget = editor->findChild<T *>(name);
    if (!widget)
        qFatal("no %s", qPrintable(name));
    return widget;
}

} // namespace

Q_DECLARE_METATYPE(Expect)

class tst_DlgLayerParamEditors : public QObject
{
    Q_OBJECT

private slots:
    void roundTrip_data();
    void roundTrip();
    void ranges_data();
    void ranges();
    void lockAndReadOnly_data();
    void lockAndReadOnly();
    void dependentFields();
    void userSettingsAndLanguage();
};

// Row names start with the record that is loaded.
void tst_DlgLayerParamEditors::roundTrip_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("laser");
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QString>("input");
    QTest::addColumn<Expect>("expect");

    const auto row = [](const char *name, int unit, int laser, const char *widget,
                        const char *input, Expect expect) {
        QTest::newRow(name) << unit << laser << QString::fromLatin1(widget)
                            << QString::fromLatin1(input) << expect;
    };
    row("cut set speed mm/min", 3, 1, "lineEdit_speed", "600",
        [](Records &r) { r.cut.speed = 10.0; });
    row("cut set speed inch/s", 0, 1, "lineEdit_speed", "2",
        [](Records &r) { r.cut.speed = 50.8; });
    row("cut set corner power", 1, 1, "lineEdit_cornerPower", "35.5",
        [](Records &r) { r.cut.laser1.turnPower = 35.5; });
    row("cut set laser 2 jump delay", 1, 2, "lineEdit_jumpDelay", "120",
        [](Records &r) { r.cut.laser2.jumpDelay = 120; });
    row("cut set tab distance inch/min", 2, 1, "lineEdit_tabDistance", "2",
        [](Records &r) { r.cut.bridgesSpace = 50.8; });
    row("cut set lead-in off", 1, 1, "checkBox_leadIn", "", [](Records &r) { r.cut.guideIn = 0; });
    row("cut set compensation inward", 1, 1, "comboBox_compensationDirection", "down",
        [](Records &r) { r.cut.compensateOutward = false; });
    row("cut set processing focus", 1, 1, "doubleSpinBox_processingFocus", "up",
        [](Records &r) { r.cut.pen.downHeight = 5.5; });
    row("cut layer passes", 1, 1, "lineEdit_passes", "3",
        [](Records &r) { r.layer.CUT.CUTTING_NUMBER = 3; });
    row("cut layer laser 2 on", 1, 2, "checkBox_laserEnable", "",
        [](Records &r) { r.layer.CUT.LASER2.ENABLE = true; });
    row("sweep set resolution", 1, 1, "comboBox_resolution", "down",
        [](Records &r) { r.sweep.dpi = 8; });
    row("sweep set deep min power", 1, 1, "lineEdit_minPower", "7.5",
        [](Records &r) { r.sweep.minPower = 7.5; });
    row("sweep layer speed mm/min", 3, 1, "lineEdit_speed", "30000",
        [](Records &r) { r.layer.SWEEP.SWEEP_SPEED = 500.0; });
}

// Load, read back unchanged, edit one field, read back: exactly that field
// changes, whatever the display unit rounds; loads stay silent, edits signal
// and log.
void tst_DlgLayerParamEditors::roundTrip()
{
    QFETCH(int, unit);
    QFETCH(int, laser);
    QFETCH(QString, widget);
    QFETCH(QString, input);
    QFETCH(Expect, expect);
    const QString tag = QString::fromLatin1(QTest::currentDataTag());
    const QString source = tag.section(QLatin1Char(' '), 0, 1);

    TestEnvironment env;
    setUnit(env, unit);
    const auto editor = makeEditor(source.startsWith(QLatin1String("cut")));
    QSignalSpy changes(editor.get(), &CLayerParamEditor::DataChange);
    editor->SetDualLaser(true);
    editor->SetFirstLaser(laser == 1);
    Records records = samples();
    load(editor.get(), source, records);
    QVERIFY(readBack(editor.get(), source, records) == records);
    QCOMPARE(changes.count(), 0);

    userEdit(child<QWidget>(editor.get(), widget), input);
    QVERIFY(changes.count() > 0);
    QVERIFY(
        env.logLines().join(QLatin1Char('\n')).contains(QStringLiteral("0|%1 was ").arg(widget)));
    expect(records);
    QVERIFY(readBack(editor.get(), source, samples()) == records);
}

void tst_DlgLayerParamEditors::ranges_data()
{
    QTest::addColumn<bool>("cut");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QByteArray>("factory"); // FactoryParam.ini
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("left");  // the text after leaving the field
    QTest::addColumn<QString>("label"); // the unit label beside it
    QTest::addColumn<double>("heightMax");

    const QByteArray none;
    const QByteArray motors("[FACTORY_PARAM_MOTOR]\nMOTOR_SPEED_MAX_1=300\nMOTOR_SPEED_MAX_2=150\n"
                            "MOTOR_SIZE_3=50\n");
    const auto row = [](const char *name, bool cut, int unit, const QByteArray &factory,
                        const char *widget, const char *typed, const char *left, const char *label,
                        double heightMax) {
        QTest::newRow(name) << cut << unit << factory << QString::fromLatin1(widget)
                            << QString::fromLatin1(typed) << QString::fromLatin1(left)
                            << QString::fromUtf8(label) << heightMax;
    };
    row("cut speed over the default limit", true, 1, none, "lineEdit_speed", "250", "0", "mm/s",
        99.0);
    row("cut speed under the slower axis", true, 1, motors, "lineEdit_speed", "150", "150", "mm/s",
        50.0);
    row("cut speed over the slower axis", true, 1, motors, "lineEdit_speed", "160", "0", "mm/s",
        50.0);
    row("cut speed mm/min", true, 3, none, "lineEdit_speed", "150", "150", "mm/min", 99.0);
    row("cut length inch", true, 0, motors, "lineEdit_sealLength", "0.5", "0.5", "inch",
        50.0 / 25.4);
    row("sweep speed default limit", false, 1, none, "lineEdit_speed", "999", "999", "mm/s", 99.0);
    row("power under the minimum", false, 1, none, "lineEdit_maxPower", "0", "0.1", "%", 99.0);
}

void tst_DlgLayerParamEditors::ranges()
{
    QFETCH(bool, cut);
    QFETCH(int, unit);
    QFETCH(QByteArray, factory);
    QFETCH(QString, widget);
    QFETCH(QString, typed);
    QFETCH(QString, left);
    QFETCH(QString, label);
    QFETCH(double, heightMax);

    TestEnvironment env;
    setUnit(env, unit);
    if (!factory.isEmpty())
        env.writeFile(QStringLiteral("FactoryParam.ini"), factory);
    const auto editor = makeEditor(cut);
    auto *edit = child<QLineEdit>(editor.get(), widget);
    const QString unitLabel = widget.mid(widget.indexOf(QLatin1Char('_'))) + QLatin1String("Unit");
    QCOMPARE(child<QLabel>(editor.get(), QLatin1String("label") + unitLabel)->text(), label);
    QCOMPARE(
        child<QDoubleSpinBox>(editor.get(), QStringLiteral("doubleSpinBox_safetyFocus"))->maximum(),
        std::round(heightMax * 1000.0) / 1000.0);

    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, typed);
    QFocusEvent focusOut(QEvent::FocusOut, Qt::OtherFocusReason);
    QCoreApplication::sendEvent(edit, &focusOut);
    QCOMPARE(edit->text(), left);
}

void tst_DlgLayerParamEditors::lockAndReadOnly_data()
{
    QTest::addColumn<QByteArray>("userParam");
    QTest::addColumn<bool>("editable");
    QTest::addColumn<bool>("clickLock"); // before saving
    QTest::addColumn<QString>("stored"); // BLOCK_PROCESS_PARAM after the save button

    const QByteArray locked("[BLOCK]\nBLOCK_PROCESS_PARAM=5\n");
    QTest::newRow("no file, editable") << QByteArray() << true << false << "0";
    QTest::newRow("no file, lock and save") << QByteArray() << true << true << "1";
    QTest::newRow("locked by 5") << locked << true << false << "1";
    QTest::newRow("locked, unlock and save") << locked << true << true << "0";
    QTest::newRow("read only saves nothing") << locked << false << false << "5";
}

void tst_DlgLayerParamEditors::lockAndReadOnly()
{
    QFETCH(QByteArray, userParam);
    QFETCH(bool, editable);
    QFETCH(bool, clickLock);
    QFETCH(QString, stored);

    TestEnvironment env;
    for (bool cut : {true, false}) {
        env.writeFile(QStringLiteral("UserParam.ini"), userParam);
        const auto editor = makeEditor(cut);
        QSignalSpy saves(editor.get(), &CLayerParamEditor::SigSaveUserPar);
        editor->SetEditable(editable);
        auto *lock = child<QCheckBox>(editor.get(), QStringLiteral("checkBox_lock"));
        if (clickLock)
            lock->click();
        auto *speed = child<QLineEdit>(editor.get(), QStringLiteral("lineEdit_speed"));
        QCOMPARE(speed->isReadOnly(), !editable);
        QCOMPARE(speed->isEnabled(), !lock->isChecked());
        QCOMPARE(child<QComboBox>(editor.get(), QStringLiteral("comboBox_airAssist"))->isEnabled(),
                 editable && !lock->isChecked());

        child<QPushButton>(editor.get(), QStringLiteral("pushButton_save"))->click();
        QCOMPARE(saves.count(), editable ? 1 : 0);
        const QSettings ini(env.dataFile(QStringLiteral("UserParam.ini")), QSettings::IniFormat);
        QCOMPARE(ini.value(QStringLiteral("BLOCK/BLOCK_PROCESS_PARAM")).toString(), stored);
    }
}

// A value that belongs to a switch is usable only while the switch is on.
void tst_DlgLayerParamEditors::dependentFields()
{
    TestEnvironment env;
    DlgLayerParamCut cut;
    DlgLayerParamSweep sweep;
    const struct
    {
        QWidget *editor;
        const char *toggle;
        const char *dependent;
    } cases[] = {
        {&cut, "checkBox_leads", "lineEdit_leadInLength"}, // and Lead-In, on by default
        {&sweep, "checkBox_dynamicFocus", "doubleSpinBox_safetyFocus"},
        {&sweep, "checkBox_offset", "lineEdit_offsetStep"},
    };
    for (const auto &c : cases) {
        auto *box = child<QCheckBox>(c.editor, QString::fromLatin1(c.toggle));
        QWidget *widget = child<QWidget>(c.editor, QString::fromLatin1(c.dependent));
        QVERIFY2(!box->isChecked() && !widget->isEnabled(), c.dependent);
        box->click();
        QVERIFY2(widget->isEnabled(), c.dependent);
    }
}

void tst_DlgLayerParamEditors::userSettingsAndLanguage()
{
    TestEnvironment env;
    {
        DlgLayerParamSweep sweep;
        // One laser: the second is not offered.
        sweep.SetFirstLaser(false);
        QCOMPARE(sweep.CurrentLaser(), 1);
        QVERIFY(child<QComboBox>(&sweep, QStringLiteral("comboBox_laser"))->isHidden());
        QTest::keyClick(child<QComboBox>(&sweep, QStringLiteral("comboBox_direction")),
                        Qt::Key_Down);
    }
    QVERIFY(env.readFile(QStringLiteral("UserParam.ini")).contains("SWEEP_VERT_TYPE=1"));
    DlgLayerParamSweep sweep;
    CLayerParam layer;
    sweep.ReadLayer(layer);
    QCOMPARE(layer.SWEEP.SWEEP_VERT_TYPE, 1);

    auto *speed = child<QLabel>(&sweep, QStringLiteral("label_speed"));
    auto *mode = child<QComboBox>(&sweep, QStringLiteral("comboBox_mode"));
    CTranslator::GetInstance()->SetResourceDir(QStringLiteral(LAYERMGR_SOURCE_DIR "/resources"));
    CTranslator::GetInstance()->SetLanguage(QStringLiteral("Chs"));
    QCOMPARE(speed->text(), QStringLiteral("速度"));
    QCOMPARE(mode->itemText(0), QStringLiteral("水平双向"));
    CTranslator::GetInstance()->SetLanguage(QString());
    CTranslator::GetInstance()->SetResourceDir(QString());
    QCOMPARE(speed->text(), QStringLiteral("Speed"));
    QCOMPARE(mode->itemText(0), QStringLiteral("HoriZontal bidirectional"));
}

QTEST_MAIN(tst_DlgLayerParamEditors)
#include "tst_dlglayerparameditors.moc"
