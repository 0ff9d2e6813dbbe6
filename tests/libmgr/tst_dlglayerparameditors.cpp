#include "libmgr/dlglayerparamcut.h"
#include "libmgr/dlglayerparamsweep.h"

#include "library/clayercontext.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSettings>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>
#include <memory>

namespace {

// What an edit changes: the test applies it to its own copy of the record.
using Expect = std::function<void(CLibCutSet &, CLibSweepSet &, CLayerParam &)>;

CLibCutSet sampleCutSet()
{
    CLibCutSet set;
    set.key.craft = LIB_CRAFT_CUTTING;
    set.key.material = QStringLiteral("Plywood");
    set.note = QStringLiteral("mine");
    set.blowing = true;
    set.speed = 12.345;
    set.laser1.power = 55.55;
    set.laser1.turnPower = 33.3;
    set.laser1.frequency = 5000;
    set.laser2.jumpDelay = 40;
    set.bridges = true;
    set.bridgesSpace = 12.7;
    set.useGuideLine = true;
    set.guideIn = 1;
    set.useCompensate = true;
    set.pen.enableUpDown = true;
    set.guideInLen = 0.333;
    set.pen.downHeight = 4.5;
    return set;
}

CLibSweepSet sampleSweepSet()
{
    CLibSweepSet set;
    set.key.craft = LIB_CRAFT_DEEP;
    set.speed = 333.333;
    set.laser1.power = 66.6;
    set.dpi = 7;
    set.rampLength = 1.234;
    set.isRamp = true;
    set.minPower = 9.9;
    set.maxPower = 66.6;
    set.carvingNumber = 4;
    set.offsetDistance = 0.15;
    return set;
}

CLayerParam sampleLayer()
{
    CLayerParam layer(0xff0000);
    layer.WORK_TYPE = WORK_DEEP_ENGRAVE;
    layer.CUT.CUT_SPEED = 7.77;
    layer.CUT.LASER2.ENABLE = false;
    layer.CUT.LASER1.DWELL_MODE = true;
    layer.CUT.GUIDE_TYPE = 7; // not one of the combo's choices
    layer.SWEEP.SWEEP_SPEED = 123.456;
    layer.SWEEP.LASER2.POWER_MAX = 44.4;
    return layer;
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

template<typename T>
T *child(QWidget *editor, const QString &name)
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
    void dependentFields_data();
    void dependentFields();
    void userSettingsAndLanguage();
};

void tst_DlgLayerParamEditors::roundTrip_data()
{
    QTest::addColumn<QString>("source"); // cut set, sweep set, cut layer, sweep layer
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("laser");
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QString>("input");
    QTest::addColumn<Expect>("expect");

    const auto row = [](const char *name, const char *source, int unit, int laser,
                        const char *widget, const char *input, Expect expect) {
        QTest::newRow(name) << QString::fromLatin1(source) << unit << laser
                            << QString::fromLatin1(widget) << QString::fromLatin1(input) << expect;
    };
    row("cut set speed mm/min", "cut set", 3, 1, "lineEdit_speed", "600",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.speed = 10.0; });
    row("cut set speed inch/s", "cut set", 0, 1, "lineEdit_speed", "2",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.speed = 50.8; });
    row("cut set corner power", "cut set", 1, 1, "lineEdit_cornerPower", "35.5",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.laser1.turnPower = 35.5; });
    row("cut set laser 2 jump delay", "cut set", 1, 2, "lineEdit_jumpDelay", "120",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.laser2.jumpDelay = 120; });
    row("cut set tab distance inch/min", "cut set", 2, 1, "lineEdit_tabDistance", "2",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.bridgesSpace = 50.8; });
    row("cut set lead-in off", "cut set", 1, 1, "checkBox_leadIn", "",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.guideIn = 0; });
    row("cut set compensation inward", "cut set", 1, 1, "comboBox_compensationDirection", "down",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.compensateOutward = false; });
    row("cut set processing focus", "cut set", 1, 1, "doubleSpinBox_processingFocus", "up",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.pen.downHeight = 5.5; });
    row("cut set air assist low", "cut set", 1, 1, "comboBox_airAssist", "down",
        [](CLibCutSet &s, CLibSweepSet &, CLayerParam &) { s.blowing = false; });
    row("cut layer passes", "cut layer", 1, 1, "lineEdit_passes", "3",
        [](CLibCutSet &, CLibSweepSet &, CLayerParam &l) { l.CUT.CUTTING_NUMBER = 3; });
    row("cut layer laser 2 on", "cut layer", 1, 2, "checkBox_laserEnable", "",
        [](CLibCutSet &, CLibSweepSet &, CLayerParam &l) { l.CUT.LASER2.ENABLE = true; });
    row("cut layer dwell power", "cut layer", 1, 1, "lineEdit_dwellPower", "12.5",
        [](CLibCutSet &, CLibSweepSet &, CLayerParam &l) { l.CUT.LASER1.DWELL_POWER = 12.5; });
    row("sweep set resolution", "sweep set", 1, 1, "comboBox_resolution", "down",
        [](CLibCutSet &, CLibSweepSet &s, CLayerParam &) { s.dpi = 8; });
    row("sweep set deep min power", "sweep set", 1, 1, "lineEdit_minPower", "7.5",
        [](CLibCutSet &, CLibSweepSet &s, CLayerParam &) { s.minPower = 7.5; });
    row("sweep set ramp inch/s", "sweep set", 0, 1, "lineEdit_rampLength", "0.5",
        [](CLibCutSet &, CLibSweepSet &s, CLayerParam &) { s.rampLength = 12.7; });
    row("sweep set one way", "sweep set", 1, 1, "comboBox_mode", "down",
        [](CLibCutSet &, CLibSweepSet &s, CLayerParam &) { s.mode = 1; });
    row("sweep layer laser 2 power", "sweep layer", 1, 2, "lineEdit_maxPower", "50",
        [](CLibCutSet &, CLibSweepSet &, CLayerParam &l) { l.SWEEP.LASER2.POWER_MAX = 50.0; });
    row("sweep layer speed mm/min", "sweep layer", 3, 1, "lineEdit_speed", "30000",
        [](CLibCutSet &, CLibSweepSet &, CLayerParam &l) { l.SWEEP.SWEEP_SPEED = 500.0; });
    row("sweep layer 3D relief", "sweep layer", 1, 1, "checkBox_relief", "",
        [](CLibCutSet &, CLibSweepSet &, CLayerParam &l) { l.SWEEP.SWEEP_IS3DRELIEF = true; });
}

// Load, read back unchanged, edit one field, read back: exactly that field
// changes, whatever the display unit rounds.
void tst_DlgLayerParamEditors::roundTrip()
{
    QFETCH(QString, source);
    QFETCH(int, unit);
    QFETCH(int, laser);
    QFETCH(QString, widget);
    QFETCH(QString, input);
    QFETCH(Expect, expect);

    TestEnvironment env;
    setUnit(env, unit);
    const bool cut = source.startsWith(QLatin1String("cut"));
    std::unique_ptr<CLayerParamEditor> editor;
    if (cut)
        editor = std::make_unique<DlgLayerParamCut>();
    else
        editor = std::make_unique<DlgLayerParamSweep>();
    QSignalSpy changes(editor.get(), &CLayerParamEditor::DataChange);
    editor->SetDualLaser(true);
    editor->SetFirstLaser(laser == 1);

    CLibCutSet cutSet = sampleCutSet();
    CLibSweepSet sweepSet = sampleSweepSet();
    CLayerParam layer = sampleLayer();
    auto *cutEditor = qobject_cast<DlgLayerParamCut *>(editor.get());
    auto *sweepEditor = qobject_cast<DlgLayerParamSweep *>(editor.get());
    const auto load = [&] {
        if (source == QLatin1String("cut set"))
            cutEditor->LoadSet(cutSet);
        else if (source == QLatin1String("sweep set"))
            sweepEditor->LoadSet(sweepSet);
        else if (cut)
            cutEditor->LoadLayer(layer);
        else
            sweepEditor->LoadLayer(layer);
    };
    const auto read = [&](CLibCutSet &c, CLibSweepSet &s, CLayerParam &l) {
        if (source == QLatin1String("cut set"))
            cutEditor->ReadSet(c);
        else if (source == QLatin1String("sweep set"))
            sweepEditor->ReadSet(s);
        else if (cut)
            cutEditor->ReadLayer(l);
        else
            sweepEditor->ReadLayer(l);
    };
    load();
    CLibCutSet cutBack;
    CLibSweepSet sweepBack;
    CLayerParam layerBack;
    cutBack.key = cutSet.key;
    cutBack.note = cutSet.note;
    sweepBack.key = sweepSet.key;
    layerBack = layer;
    read(cutBack, sweepBack, layerBack);
    if (source == QLatin1String("cut set"))
        QCOMPARE(cutBack, cutSet);
    else if (source == QLatin1String("sweep set"))
        QCOMPARE(sweepBack, sweepSet);
    else
        QCOMPARE(layerBack, layer);
    QCOMPARE(changes.count(), 0);

    env.clearLog();
    userEdit(child<QWidget>(editor.get(), widget), input);
    QVERIFY(changes.count() > 0);
    QVERIFY2(env.logLines().join(QLatin1Char('\n')).contains(QStringLiteral("0|%1 was ").arg(widget)),
             qPrintable(env.logLines().join(QLatin1Char('\n'))));
    expect(cutSet, sweepSet, layer);
    read(cutBack, sweepBack, layerBack);
    if (source == QLatin1String("cut set")) {
        QCOMPARE(cutBack.speed, cutSet.speed);
        QCOMPARE(cutBack, cutSet);
    } else if (source == QLatin1String("sweep set")) {
        QCOMPARE(sweepBack, sweepSet);
    } else {
        QCOMPARE(layerBack.SWEEP.SWEEP_SPEED, layer.SWEEP.SWEEP_SPEED);
        QCOMPARE(layerBack, layer);
    }
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
    QTest::newRow("cut speed over the default limit") << true << 1 << none << "lineEdit_speed"
                                                      << "250" << "0" << "mm/s" << 99.0;
    QTest::newRow("cut speed under the slower axis") << true << 1 << motors << "lineEdit_speed"
                                                     << "150" << "150" << "mm/s" << 50.0;
    QTest::newRow("cut speed over the slower axis") << true << 1 << motors << "lineEdit_speed"
                                                    << "160" << "0" << "mm/s" << 50.0;
    QTest::newRow("cut speed mm/min") << true << 3 << none << "lineEdit_speed" << "150" << "150"
                                      << "mm/min" << 99.0;
    QTest::newRow("cut length inch") << true << 0 << motors << "lineEdit_sealLength" << "0.5"
                                     << "0.5" << "inch" << 50.0 / 25.4;
    QTest::newRow("sweep speed default limit") << false << 1 << none << "lineEdit_speed" << "999"
                                               << "999" << "mm/s" << 99.0;
    QTest::newRow("sweep speed inch/s") << false << 0 << none << "lineEdit_speed" << "2" << "2"
                                        << "inch/s" << 99.0 / 25.4;
    QTest::newRow("power under the minimum") << false << 1 << none << "lineEdit_maxPower" << "0"
                                             << "0.1" << "%" << 99.0;
    QTest::newRow("passes empty") << true << 1 << none << "lineEdit_passes" << "" << "1" << ""
                                  << 99.0;
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
    std::unique_ptr<QWidget> editor;
    if (cut)
        editor = std::make_unique<DlgLayerParamCut>();
    else
        editor = std::make_unique<DlgLayerParamSweep>();
    auto *edit = child<QLineEdit>(editor.get(), widget);
    const QString labelName = QString(widget).replace(QLatin1String("lineEdit_"),
                                                      QLatin1String("label_"))
        + QLatin1String("Unit");
    QCOMPARE(child<QLabel>(editor.get(), labelName)->text(), label);
    QCOMPARE(child<QDoubleSpinBox>(editor.get(), QStringLiteral("doubleSpinBox_safetyFocus"))
                 ->maximum(),
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
    QTest::addColumn<QString>("written");  // BLOCK_PROCESS_PARAM after saving, "" when no save

    QTest::newRow("no file, editable") << QByteArray() << true << false << "0";
    QTest::newRow("no file, lock and save") << QByteArray() << true << true << "1";
    QTest::newRow("locked by 5") << QByteArray("[BLOCK]\nBLOCK_PROCESS_PARAM=5\n") << true << false
                                 << "1";
    QTest::newRow("locked, unlock and save") << QByteArray("[BLOCK]\nBLOCK_PROCESS_PARAM=5\n")
                                             << true << true << "0";
    QTest::newRow("read only saves nothing") << QByteArray() << false << false << "";
}

void tst_DlgLayerParamEditors::lockAndReadOnly()
{
    QFETCH(QByteArray, userParam);
    QFETCH(bool, editable);
    QFETCH(bool, clickLock);
    QFETCH(QString, written);

    TestEnvironment env;
    if (!userParam.isEmpty())
        env.writeFile(QStringLiteral("UserParam.ini"), userParam);
    for (bool cut : {true, false}) {
        std::unique_ptr<CLayerParamEditor> editor;
        if (cut)
            editor = std::make_unique<DlgLayerParamCut>();
        else
            editor = std::make_unique<DlgLayerParamSweep>();
        QSignalSpy saves(editor.get(), &CLayerParamEditor::SigSaveUserPar);
        editor->SetEditable(editable);
        QCOMPARE(editor->IsEditable(), editable);
        auto *lock = child<QCheckBox>(editor.get(), QStringLiteral("checkBox_lock"));
        if (clickLock)
            lock->click();
        const bool locked = lock->isChecked();
        auto *speed = child<QLineEdit>(editor.get(), QStringLiteral("lineEdit_speed"));
        QCOMPARE(speed->isReadOnly(), !editable);
        QCOMPARE(speed->isEnabled(), !locked);
        QCOMPARE(child<QComboBox>(editor.get(), QStringLiteral("comboBox_airAssist"))->isEnabled(),
                 editable && !locked);

        child<QPushButton>(editor.get(), QStringLiteral("pushButton_save"))->click();
        QCOMPARE(saves.count(), written.isEmpty() ? 0 : 1);
        const QString path = env.dataFile(QStringLiteral("UserParam.ini"));
        const QString stored = QSettings(path, QSettings::IniFormat)
                                   .value(QStringLiteral("BLOCK/BLOCK_PROCESS_PARAM"))
                                   .toString();
        QCOMPARE(stored, written.isEmpty() ? QString::fromLatin1(userParam.isEmpty() ? "" : "5")
                                           : written);
        env.writeFile(QStringLiteral("UserParam.ini"), userParam);
    }
}

void tst_DlgLayerParamEditors::dependentFields_data()
{
    QTest::addColumn<bool>("cut");
    QTest::addColumn<QString>("toggle");
    QTest::addColumn<QString>("dependent");
    QTest::addColumn<QString>("chained"); // depends on the dependent

    QTest::newRow("tabs") << true << "checkBox_tabs" << "lineEdit_tabDistance" << "";
    QTest::newRow("leads") << true << "checkBox_leads" << "checkBox_leadIn"
                           << "lineEdit_leadInLength";
    QTest::newRow("dynamic focus") << false << "checkBox_dynamicFocus" << "checkBox_penUp"
                                   << "doubleSpinBox_safetyFocus";
    QTest::newRow("offset") << false << "checkBox_offset" << "lineEdit_offsetStep" << "";
}

// A value that belongs to a switch is usable only while the switch is on.
void tst_DlgLayerParamEditors::dependentFields()
{
    QFETCH(bool, cut);
    QFETCH(QString, toggle);
    QFETCH(QString, dependent);
    QFETCH(QString, chained);

    TestEnvironment env;
    std::unique_ptr<QWidget> editor;
    if (cut)
        editor = std::make_unique<DlgLayerParamCut>();
    else
        editor = std::make_unique<DlgLayerParamSweep>();
    auto *box = child<QCheckBox>(editor.get(), toggle);
    QWidget *widget = child<QWidget>(editor.get(), dependent);
    QWidget *next = chained.isEmpty() ? nullptr : child<QWidget>(editor.get(), chained);
    box->setChecked(false);
    QVERIFY(!widget->isEnabled());
    box->click();
    QVERIFY(widget->isEnabled());
    if (next) {
        auto *middle = qobject_cast<QCheckBox *>(widget);
        middle->setChecked(true);
        QVERIFY(next->isEnabled());
        box->click();
        QVERIFY(!next->isEnabled());
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
        QTest::keyClick(child<QComboBox>(&sweep, QStringLiteral("comboBox_direction")), Qt::Key_Down);
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
    QCoreApplication::sendPostedEvents();
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(&sweep, &change);
    QCOMPARE(speed->text(), QStringLiteral("速度"));
    QCOMPARE(mode->itemText(0), QStringLiteral("水平双向"));
    CTranslator::GetInstance()->SetLanguage(QString());
    CTranslator::GetInstance()->SetResourceDir(QString());
    QCoreApplication::sendEvent(&sweep, &change);
    QCOMPARE(speed->text(), QStringLiteral("Speed"));
    QCOMPARE(mode->itemText(0), QStringLiteral("HoriZontal bidirectional"));
}

QTEST_MAIN(tst_DlgLayerParamEditors)
#include "tst_dlglayerparameditors.moc"
