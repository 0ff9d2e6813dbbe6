#include "libmgr/dlglayerparamcut.h"
#include "libmgr/dlglayerparamsweep.h"

#include "libmgrwidgettest.h"
#include "library/clayercontext.h"
#include "testenvironment.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
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
};
using Expect = std::function<void(Records &)>;

Records samples()
{
    Records r;
    r.cut.key.material = QStringLiteral("Plywood");
    r.cut.note = QStringLiteral("mine");
    r.cut.blowing = true;
    r.cut.speed = 12.345; // no round number in any unit
    r.cut.laser2.jumpDelay = 40;
    r.cut.bridges = true;
    r.cut.bridgesSpace = 12.7;
    r.cut.useGuideLine = true;
    r.cut.guideIn = 1;
    r.cut.useCompensate = true;
    r.cut.pen.enableUpDown = true;
    r.cut.pen.downHeight = 4.5;
    r.sweep.key.craft = LIB_CRAFT_DEEP;
    r.sweep.laser1.power = r.sweep.maxPower = 66.6;
    r.sweep.dpi = 7;
    r.sweep.isRamp = true;
    r.layer.WORK_TYPE = WORK_DEEP_ENGRAVE;
    r.layer.CUT.GUIDE_TYPE = 7; // not one of the combo's choices
    r.layer.SWEEP.LASER2.POWER_MAX = 44.4;
    return r;
}

std::unique_ptr<CLayerParamEditor> makeEditor(bool cut)
{
    return cut ? std::unique_ptr<CLayerParamEditor>(new DlgLayerParamCut)
               : std::make_unique<DlgLayerParamSweep>();
}

// What an editor shows, read into `r` ("cut set", "sweep set", "cut layer" or
// "sweep layer"); with `load`, loads `r` first.
Records readBack(CLayerParamEditor *editor, const QString &source, Records r, bool load = false)
{
    const bool set = source.endsWith(QLatin1String("set"));
    if (auto *cut = qobject_cast<DlgLayerParamCut *>(editor)) {
        if (load)
            set ? cut->LoadSet(r.cut) : cut->LoadLayer(r.layer);
        set ? cut->ReadSet(r.cut) : cut->ReadLayer(r.layer);
    } else if (auto *sweep = qobject_cast<DlgLayerParamSweep *>(editor)) {
        if (load)
            set ? sweep->LoadSet(r.sweep) : sweep->LoadLayer(r.layer);
        set ? sweep->ReadSet(r.sweep) : sweep->ReadLayer(r.layer);
    }
    return r;
}

bool operator==(const Records &a, const Records &b)
{
    return a.cut == b.cut && a.sweep == b.sweep && a.layer == b.layer;
}

void setUnit(const TestEnvironment &env, int unit)
{
    g_LayerContext.m_unitMode = unit;
    env.writeFile(QStringLiteral("cfg.ini"),
                  QStringLiteral("[APP_CFG]\nKEY_RULER_UNIT=%1\n").arg(unit).toUtf8());
}

} // namespace

Q_DECLARE_METATYPE(Expect)

class tst_DlgLayerParamEditors : public QObject
{
    Q_OBJECT

private slots:
    // Row names start with the record that is loaded; "laser 2" rows edit the second laser.
    void roundTrip_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<QString>("widget");
        QTest::addColumn<QString>("input");     // typed, or up/down for a combo or spin box
        QTest::addColumn<QString>("dependent"); // usable after the edit; "!": not usable
        QTest::addColumn<Expect>("expect");
        const auto row = [](const char *name, int unit, const char *widget, const char *input,
                            const char *dependent, Expect expect) {
            QTest::newRow(name) << unit << QString::fromLatin1(widget)
                                << QString::fromLatin1(input) << QString::fromLatin1(dependent)
                                << expect;
        };
        row("cut set speed mm/min", 3, "lineEdit_speed", "600", "",
            [](Records &r) { r.cut.speed = 10.0; });
        row("cut set laser 2 jump delay", 1, "lineEdit_jumpDelay", "120", "",
            [](Records &r) { r.cut.laser2.jumpDelay = 120; });
        row("cut set tab distance inch/min", 2, "lineEdit_tabDistance", "2", "",
            [](Records &r) { r.cut.bridgesSpace = 50.8; });
        row("cut set leads off", 1, "checkBox_leads", "", "!lineEdit_leadInLength",
            [](Records &r) { r.cut.useGuideLine = false; });
        row("cut set compensation inward", 1, "comboBox_compensationDirection", "down", "",
            [](Records &r) { r.cut.compensateOutward = false; });
        row("cut set processing focus", 1, "doubleSpinBox_processingFocus", "up", "",
            [](Records &r) { r.cut.pen.downHeight = 5.5; });
        row("cut layer passes", 1, "lineEdit_passes", "3", "",
            [](Records &r) { r.layer.CUT.CUTTING_NUMBER = 3; });
        row("sweep set resolution", 1, "comboBox_resolution", "down", "",
            [](Records &r) { r.sweep.dpi = 8; });
        row("sweep layer offset on", 1, "checkBox_offset", "", "lineEdit_offsetStep",
            [](Records &r) { r.layer.SWEEP.SWEEP_OFFSET_ENGRAVING = true; });
    }
    // Load, read back unchanged, edit one field, read back: exactly that field
    // changes, whatever the display unit rounds; loads stay silent, edits signal
    // and log; a value that belongs to a switch is usable only while it is on.
    void roundTrip()
    {
        QFETCH(int, unit);
        QFETCH(QString, widget);
        QFETCH(QString, input);
        QFETCH(QString, dependent);
        QFETCH(Expect, expect);
        const QString tag = QString::fromLatin1(QTest::currentDataTag());
        const QString source = tag.section(' ', 0, 1);
        TestEnvironment env;
        setUnit(env, unit);
        const auto editor = makeEditor(source.startsWith(QLatin1String("cut")));
        QSignalSpy changes(editor.get(), &CLayerParamEditor::DataChange);
        editor->SetDualLaser(true);
        editor->SetFirstLaser(!tag.contains(QLatin1String("laser 2")));
        Records records = samples();
        QVERIFY(readBack(editor.get(), source, records, true) == records);
        QCOMPARE(changes.count(), 0);
        const bool usable = !dependent.startsWith('!');
        QWidget *other =
            dependent.isEmpty() ? nullptr : child(editor.get(), dependent.mid(!usable));
        QVERIFY(!other || other->isEnabled() != usable);
        // As a user does: types into a line edit, clicks a box, steps a combo or spin box.
        QWidget *edited = child(editor.get(), widget);
        if (auto *edit = qobject_cast<QLineEdit *>(edited)) {
            edit->selectAll();
            QTest::keyClicks(edit, input);
            QTest::keyClick(edit, Qt::Key_Return);
        } else if (auto *box = qobject_cast<QCheckBox *>(edited)) {
            box->click();
        } else {
            QTest::keyClick(edited, input == QLatin1String("up") ? Qt::Key_Up : Qt::Key_Down);
        }
        QVERIFY(changes.count() > 0);
        QVERIFY(env.logLines().join('\n').contains(QStringLiteral("0|%1 was ").arg(widget)));
        expect(records);
        QVERIFY(readBack(editor.get(), source, samples()) == records);
        QVERIFY(!other || other->isEnabled() == usable);
    }

    void ranges_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<bool>("motors"); // FactoryParam.ini gives axis speeds and height
        QTest::addColumn<QString>("widget");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("left"); // the text after leaving the field
        QTest::addColumn<double>("heightMax");
        QTest::newRow("cut speed over the default limit")
            << 1 << false << "lineEdit_speed" << "250" << "0" << 99.0;
        QTest::newRow("cut speed over the slower axis")
            << 1 << true << "lineEdit_speed" << "160" << "0" << 50.0;
        QTest::newRow("cut length inch") << 0 << true << "lineEdit_sealLength" << "0.5" << "0.5"
                                         << 50 / 25.4;
        QTest::newRow("sweep power under the minimum")
            << 1 << false << "lineEdit_maxPower" << "0" << "0.1" << 99.0;
    }
    void ranges()
    {
        QFETCH(int, unit);
        QFETCH(QString, widget);
        QFETCH(QString, typed);
        QFETCH(double, heightMax);
        TestEnvironment env;
        setUnit(env, unit);
        QFETCH(bool, motors);
        if (motors)
            env.writeFile(QStringLiteral("FactoryParam.ini"),
                          "[FACTORY_PARAM_MOTOR]\nMOTOR_SPEED_MAX_1=300\nMOTOR_SPEED_MAX_2=150\n"
                          "MOTOR_SIZE_3=50\n");
        const auto editor = makeEditor(QByteArray(QTest::currentDataTag()).startsWith("cut"));
        auto *edit = child<QLineEdit>(editor.get(), widget);
        QCOMPARE(child<QDoubleSpinBox>(editor.get(), "doubleSpinBox_safetyFocus")->maximum(),
                 std::round(heightMax * 1000.0) / 1000.0);
        edit->selectAll();
        QTest::keyClicks(edit, typed);
        QFocusEvent focusOut(QEvent::FocusOut, Qt::OtherFocusReason);
        QCoreApplication::sendEvent(edit, &focusOut);
        QTEST(edit->text(), "left");
    }

    void lockAndReadOnly_data()
    {
        QTest::addColumn<QByteArray>("userParam");
        QTest::addColumn<bool>("editable");
        QTest::addColumn<bool>("clickLock"); // before saving
        QTest::addColumn<QString>("stored"); // BLOCK_PROCESS_PARAM after the save button
        const QByteArray locked("[BLOCK]\nBLOCK_PROCESS_PARAM=5\n");
        QTest::newRow("no file, lock and save") << QByteArray() << true << true << "1";
        QTest::newRow("locked by 5") << locked << true << false << "1";
        QTest::newRow("locked, unlock and save") << locked << true << true << "0";
        QTest::newRow("read only saves nothing") << QByteArray() << false << false << "";
    }
    void lockAndReadOnly()
    {
        QFETCH(QByteArray, userParam);
        QFETCH(bool, editable);
        QFETCH(bool, clickLock);
        TestEnvironment env;
        env.writeFile(QStringLiteral("UserParam.ini"), userParam);
        DlgLayerParamCut editor;
        QSignalSpy saves(&editor, &CLayerParamEditor::SigSaveUserPar);
        editor.SetEditable(editable);
        auto *lock = child<QCheckBox>(&editor, "checkBox_lock");
        if (clickLock)
            lock->click();
        auto *speed = child<QLineEdit>(&editor, "lineEdit_speed");
        const bool open = !lock->isChecked();
        QCOMPARE(speed->isReadOnly(), !editable);
        QCOMPARE(speed->isEnabled(), open);
        QCOMPARE(child(&editor, "comboBox_airAssist")->isEnabled(), editable && open);
        click(&editor, "pushButton_save");
        QCOMPARE(saves.count(), int(editable));
        const QSettings ini(env.dataFile(QStringLiteral("UserParam.ini")), QSettings::IniFormat);
        QTEST(ini.value(QStringLiteral("BLOCK/BLOCK_PROCESS_PARAM")).toString(), "stored");
    }

    void userSettings()
    {
        TestEnvironment env;
        {
            DlgLayerParamSweep sweep;
            // One laser: the second is not offered.
            sweep.SetFirstLaser(false);
            QCOMPARE(sweep.CurrentLaser(), 1);
            QVERIFY(child(&sweep, "comboBox_laser")->isHidden());
            QTest::keyClick(child(&sweep, "comboBox_direction"), Qt::Key_Down);
        }
        QVERIFY(env.readFile(QStringLiteral("UserParam.ini")).contains("SWEEP_VERT_TYPE=1"));
        DlgLayerParamSweep sweep;
        CLayerParam layer;
        sweep.ReadLayer(layer);
        QCOMPARE(layer.SWEEP.SWEEP_VERT_TYPE, 1);
    }
};

QTEST_MAIN(tst_DlgLayerParamEditors)
#include "tst_dlglayerparameditors.moc"
