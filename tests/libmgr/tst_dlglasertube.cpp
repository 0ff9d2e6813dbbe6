#include "libmgr/dlglasertube.h"
#include "libmgr/dlgone.h"
#include "library/clayercontext.h"
#include "module/deletequestion.h"
#include "smalldialogfixtures.h"
#include "support/cmsgboxqss.h"
#include "support/settings.h"
#include "testenvironment.h"

#include "idevicesinfo.h"
#include "ilayerhost.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using smalldialogs::whenModal;

class tst_DlgLaserTube : public QObject
{
    Q_OBJECT

private slots:
    void lists_data();
    void lists();
    void addPower_data();
    void addPower();
    void deletePower_data();
    void deletePower();
    void okWritesSettings();
};

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

// Glass 30, 40, 50 (library) and 60, 70, 90 (added); RF with and without
// burning; no semiconductor entry.
void fillLibrary(CLibraryStore &store)
{
    CMaterialLibrary &library = store.UserLibrary();
    for (int power : {30, 40, 50})
        library.AddPower(0, power, false);
    for (int power : {60, 70, 90})
        library.AddPower(0, power, true);
    library.AddPower(2, 60, false);
    library.AddPower(2, 100, false);
    library.AddPower(1, 35, false);
}

QStringList itemTexts(const QComboBox *combo)
{
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i)
        texts << combo->itemText(i);
    return texts;
}

// "type/power, items, current item, delete enabled" as the dialog shows it.
QString state(DlgLaserTube &dialog)
{
    auto *powers = dialog.findChild<QComboBox *>(QStringLiteral("comboBox_power"));
    auto *tubes = dialog.findChild<QComboBox *>(QStringLiteral("comboBox_tube"));
    auto *del = dialog.findChild<QPushButton *>(QStringLiteral("pushButton_del"));
    return QStringLiteral("%1/%2 %3 [%4] %5 del %6")
        .arg(dialog.GetType())
        .arg(dialog.GetPower())
        .arg(tubes->currentText(), itemTexts(powers).join(QLatin1Char(',')), powers->currentText())
        .arg(del->isEnabled() ? "on" : "off");
}

void answerPowerInput(QObject *context, const QString &typed, bool ok)
{
    whenModal<DlgOne>(context, [typed, ok](DlgOne *input) {
        auto *edit = input->findChild<QLineEdit *>(QStringLiteral("lineEdit"));
        QCOMPARE(edit->text(), QStringLiteral("100"));
        edit->setText(typed);
        input
            ->findChild<QPushButton *>(ok ? QStringLiteral("pushButton_ok")
                                          : QStringLiteral("pushButton_cancel"))
            ->click();
    });
}

} // namespace

void tst_DlgLaserTube::lists_data()
{
    QTest::addColumn<int>("machineTube");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("power");
    QTest::addColumn<QString>("expected");

    QTest::newRow("glass hides 30 and 50")
        << 0 << 0 << 40 << "0/40 Glass [40 W,60 W,70 W,90 W] 40 W del off";
    QTest::newRow("added power deletable")
        << 0 << 0 << 70 << "0/70 Glass [40 W,60 W,70 W,90 W] 70 W del on";
    QTest::newRow("hidden power wanted: first shown")
        << 0 << 0 << 50 << "0/40 Glass [40 W,60 W,70 W,90 W] 40 W del off";
    QTest::newRow("fiber shows as RF with burning")
        << 0 << 3 << 100 << "2/100 RF [60 W,100 W] 100 W del off";
    QTest::newRow("RF machine without burning") << 1 << 2 << 60 << "1/35 RF [35 W] 35 W del off";
    QTest::newRow("no semiconductor entry: no powers")
        << 0 << 4 << 20 << "4/20 Semiconductor laser []  del off";
}

void tst_DlgLaserTube::lists()
{
    QFETCH(int, machineTube);
    QFETCH(int, type);
    QFETCH(int, power);
    QFETCH(QString, expected);
    TestEnvironment env;
    MachineHost host;
    host.info.SetLaser(0, {machineTube, 60, true});
    g_LayerContext.m_pHost = &host;
    CLibraryStore &store = g_LayerContext.Store();
    fillLibrary(store);

    DlgLaserTube dialog(&store);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Laser tube"));
    dialog.SetType(type);
    dialog.SetPower(power);
    QCOMPARE(state(dialog), expected);
}

void tst_DlgLaserTube::addPower_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("saved");

    QTest::newRow("new power appended and saved")
        << "80" << true << "0/80 Glass [40 W,60 W,70 W,90 W,80 W] 80 W del on" << true;
    QTest::newRow("existing power only selected")
        << "90" << true << "0/90 Glass [40 W,60 W,70 W,90 W] 90 W del on" << false;
    QTest::newRow("cancelled") << "80" << false << "0/60 Glass [40 W,60 W,70 W,90 W] 60 W del on"
                               << false;
    QTest::newRow("empty adds nothing")
        << "" << true << "0/60 Glass [40 W,60 W,70 W,90 W] 60 W del on" << false;
}

void tst_DlgLaserTube::addPower()
{
    QFETCH(QString, typed);
    QFETCH(bool, ok);
    QFETCH(QString, expected);
    QFETCH(bool, saved);
    TestEnvironment env;
    CLibraryStore &store = g_LayerContext.Store();
    fillLibrary(store);

    DlgLaserTube dialog(&store);
    dialog.SetPower(60);
    answerPowerInput(&dialog, typed, ok);
    dialog.findChild<QPushButton *>(QStringLiteral("pushButton_add"))->click();
    QCOMPARE(state(dialog), expected);
    QCOMPARE(QFile::exists(CLibraryStore::UserLibraryPath()), saved);
    if (saved) {
        CLibraryStore reread;
        reread.Load();
        QCOMPARE(reread.UserLibrary().Powers(0).back(), (CLibPower{80, true}));
    }

    // The items hold values, not places in the library's lists: more powers
    // and a round trip through another tube leave them right.
    for (int power = 200; power < 240; ++power)
        store.UserLibrary().AddPower(0, power, true);
    auto *powers = dialog.findChild<QComboBox *>(QStringLiteral("comboBox_power"));
    powers->setCurrentIndex(1);
    QCOMPARE(dialog.GetPower(), 60);
    auto *tubes = dialog.findChild<QComboBox *>(QStringLiteral("comboBox_tube"));
    tubes->setCurrentIndex(1);
    tubes->setCurrentIndex(0);
    QCOMPARE(powers->count(), saved ? 45 : 44);
}

void tst_DlgLaserTube::deletePower_data()
{
    QTest::addColumn<int>("power");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QList<int>>("glassPowers");

    QTest::newRow("middle entry: the next takes its place")
        << 60 << "messageBox_yesButton"
        << "0/70 Glass [40 W,70 W,90 W] 70 W del on" << QList<int>{30, 40, 50, 70, 90};
    QTest::newRow("last entry: the new last is selected")
        << 90 << "messageBox_yesButton"
        << "0/70 Glass [40 W,60 W,70 W] 70 W del on" << QList<int>{30, 40, 50, 60, 70};
    QTest::newRow("answered No") << 70 << "messageBox_noButton"
                                 << "0/70 Glass [40 W,60 W,70 W,90 W] 70 W del on"
                                 << QList<int>{30, 40, 50, 60, 70, 90};
}

void tst_DlgLaserTube::deletePower()
{
    QFETCH(int, power);
    QFETCH(QString, answer);
    QFETCH(QString, expected);
    QFETCH(QList<int>, glassPowers);
    TestEnvironment env;
    InstallDeletionQuestion();
    CLibraryStore &store = g_LayerContext.Store();
    fillLibrary(store);

    DlgLaserTube dialog(&store);
    dialog.SetPower(power);
    QString question;
    whenModal<CMsgBoxQss>(&dialog, [answer, &question](CMsgBoxQss *box) {
        question = box->text();
        box->findChild<QPushButton *>(answer)->click();
    });
    dialog.findChild<QPushButton *>(QStringLiteral("pushButton_del"))->click();
    QCOMPARE(question, QStringLiteral("Confirm deletion?"));
    QCOMPARE(state(dialog), expected);
    QList<int> left;
    for (const CLibPower &entry : store.UserLibrary().Powers(0))
        left << entry.power;
    QCOMPARE(left, glassPowers);
}

void tst_DlgLaserTube::okWritesSettings()
{
    TestEnvironment env;
    CLibraryStore &store = g_LayerContext.Store();
    fillLibrary(store);
    DlgLaserTube dialog(&store);
    dialog.SetType(2);
    dialog.SetPower(100);
    dialog.findChild<QPushButton *>(QStringLiteral("pushButton_ok"))->click();
    QCOMPARE(dialog.result(), 1);
    const QString path = TmpParamIniPath();
    QCOMPARE(ReadIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("LASER_POWER"), 0, path),
             100);
    QCOMPARE(ReadIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("LASER_TUBE"), 0, path), 2);
    QCOMPARE(env.logLines().last(), QStringLiteral("0|pushButton_ok was clicked."));
}

QTEST_MAIN(tst_DlgLaserTube)
#include "tst_dlglasertube.moc"
