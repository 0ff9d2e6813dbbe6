#include "support/directories.h"
#include "support/settings.h"
#include "testenvironment.h"

#include "cuipermissionsmanager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTest>

class tst_Settings : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read();
    void write_data();
    void write();
    void batch();
    void everyReadOpensAfresh();
    void userDataDir_data();
    void userDataDir();
    void directories();
};

namespace {

const QByteArray kSample = "[APP_CFG]\nKEY_RULER_UNIT=3\nNEGATIVE=-7\nTEXT=abc\nMIXED=12abc\n"
                           "FRACTION=2.5\nEXPONENT=1e3\nEMPTY=\n"
                           "[FACTORY_PARAM_MOTOR]\nMOTOR_SPEED_MAX_1=300\nKEY_RULER_UNIT=9\n";

QString read(const QString &type, const QString &group, const QString &key, const QString &fallback,
             const QString &path)
{
    if (type == QLatin1String("int"))
        return QString::number(ReadIniInt(group, key, fallback.toInt(), path));
    if (type == QLatin1String("double"))
        return QString::number(ReadIniDouble(group, key, fallback.toDouble(), path));
    return ReadIniString(group, key, fallback, path);
}

} // namespace

void tst_Settings::read_data()
{
    // clang-format off
    QTest::addColumn<bool>("withFile");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("fallback");
    QTest::addColumn<QString>("expected");

    QTest::newRow("int") << true << "int" << "APP_CFG" << "KEY_RULER_UNIT" << "1" << "3";
    QTest::newRow("int: same key, other group") << true << "int" << "FACTORY_PARAM_MOTOR" << "KEY_RULER_UNIT" << "1" << "9";
    QTest::newRow("int: negative") << true << "int" << "APP_CFG" << "NEGATIVE" << "1" << "-7";
    QTest::newRow("int: missing key gives default") << true << "int" << "APP_CFG" << "NOPE" << "42" << "42";
    QTest::newRow("int: missing file gives default") << false << "int" << "APP_CFG" << "KEY_RULER_UNIT" << "1" << "1";
    QTest::newRow("int: group is case sensitive") << true << "int" << "app_cfg" << "KEY_RULER_UNIT" << "5" << "5";
    QTest::newRow("int: garbage text") << true << "int" << "APP_CFG" << "TEXT" << "42" << "0";
    QTest::newRow("int: garbage empty value") << true << "int" << "APP_CFG" << "EMPTY" << "42" << "0";
    QTest::newRow("double: fraction") << true << "double" << "APP_CFG" << "FRACTION" << "1" << "2.5";
    QTest::newRow("double: missing file gives default") << false << "double" << "APP_CFG" << "FRACTION" << "0.25" << "0.25";
    QTest::newRow("double: garbage text") << true << "double" << "APP_CFG" << "TEXT" << "7.5" << "0";
    QTest::newRow("text") << true << "string" << "APP_CFG" << "TEXT" << "x" << "abc";
    QTest::newRow("text: empty value is not missing") << true << "string" << "APP_CFG" << "EMPTY" << "x" << "";
    QTest::newRow("text: missing key gives default") << true << "string" << "APP_CFG" << "NOPE" << "fallback" << "fallback";
    // clang-format on
}

void tst_Settings::read()
{
    QFETCH(bool, withFile);
    QFETCH(QString, type);
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QString, fallback);
    QFETCH(QString, expected);
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("cfg.ini"));
    if (withFile)
        env.writeFile(path, kSample);

    QCOMPARE(::read(type, group, key, fallback, path), expected);
    // A read never creates the file.
    QCOMPARE(QFile::exists(path), withFile);
}

void tst_Settings::write_data()
{
    // clang-format off
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("line"); // empty: whatever QSettings makes of it

    QTest::newRow("int") << "int" << "5" << QByteArray("VALUE=5\n");
    QTest::newRow("double") << "double" << "0.1" << QByteArray("VALUE=0.1\n");
    QTest::newRow("whole double") << "double" << "200" << QByteArray("VALUE=200\n");
    QTest::newRow("text") << "string" << "Acrylic" << QByteArray("VALUE=Acrylic\n");
    QTest::newRow("comma") << "string" << "a,b" << QByteArray();
    QTest::newRow("non-ASCII") << "string" << QStringLiteral("木材 é") << QByteArray();
    QTest::newRow("section lookalike") << "string" << "[APP_CFG]" << QByteArray();
    QTest::newRow("line break") << "string" << "one\ntwo" << QByteArray();
    // clang-format on
}

void tst_Settings::write()
{
    QFETCH(QString, type);
    QFETCH(QString, value);
    QFETCH(QByteArray, line);
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("cfg.ini"));
    env.writeFile(path, kSample);
    const QString group = QStringLiteral("BLOCK");
    const QString key = QStringLiteral("VALUE");

    WriteIniInt(group, key, 99, path);
    if (type == QLatin1String("int"))
        WriteIniInt(group, key, value.toInt(), path);
    else if (type == QLatin1String("double"))
        WriteIniDouble(group, key, value.toDouble(), path);
    else
        WriteIniString(group, key, value, path);
    // Written at once, no batch involved, beside what the file held.
    const QByteArray bytes = env.readFile(path);
    QVERIFY2(bytes.contains(QByteArray("[BLOCK]\n").append(line)), bytes.constData());
    QCOMPARE(::read(QStringLiteral("int"), QStringLiteral("FACTORY_PARAM_MOTOR"),
                    QStringLiteral("MOTOR_SPEED_MAX_1"), QString(), path),
             QStringLiteral("300"));

    // Whatever the text holds, it reads back and does not swallow the next key.
    WriteIniInt(group, QStringLiteral("AFTER"), 17, path);
    QCOMPARE(::read(type, group, key, QStringLiteral("x"), path), value);
    QCOMPARE(ReadIniInt(group, QStringLiteral("AFTER"), 0, path), 17);
}

void tst_Settings::batch()
{
    TestEnvironment env;
    const QString g = QStringLiteral("APP_CFG");
    const QString k = QStringLiteral("KEY_RULER_UNIT");
    const QString batchPath = env.dataFile(QStringLiteral("old.lpl"));
    const QString cfgPath = env.dataFile(QStringLiteral("cfg.ini"));
    const QString otherPath = env.dataFile(QStringLiteral("other.ini"));
    env.writeFile(cfgPath, kSample);
    env.writeFile(batchPath, "[APP_CFG]\nKEY_RULER_UNIT=0\n");

    // Closing without a batch does nothing.
    CloseIniBatch();
    CloseIniBatch();

    // Every write goes to the batch, whatever file it names; reads go to the
    // file they name; nothing reaches the disk before the batch closes.
    OpenIniBatch(batchPath);
    WriteIniInt(g, k, 2, cfgPath);
    WriteIniDouble(QStringLiteral("LAYER_0"), QStringLiteral("CUT_SPEED"), 12.5, otherPath);
    WriteIniString(g, QStringLiteral("NAME"), QStringLiteral("elsewhere"), batchPath);
    QCOMPARE(ReadIniInt(g, k, 1, cfgPath), 3);
    QCOMPARE(env.readFile(batchPath), QByteArray("[APP_CFG]\nKEY_RULER_UNIT=0\n"));
    CloseIniBatch();
    CloseIniBatch();
    QCOMPARE(
        env.readFile(batchPath),
        QByteArray("[APP_CFG]\nKEY_RULER_UNIT=2\nNAME=elsewhere\n\n[LAYER_0]\nCUT_SPEED=12.5\n"));
    QCOMPARE(env.readFile(cfgPath), kSample);
    QVERIFY(!QFile::exists(otherPath));

    // A second batch takes over from the first.
    OpenIniBatch(otherPath);
    WriteIniInt(g, QStringLiteral("A"), 1, otherPath);
    OpenIniBatch(cfgPath);
    WriteIniInt(g, QStringLiteral("B"), 2, otherPath);
    CloseIniBatch();
    QCOMPARE(ReadIniInt(g, QStringLiteral("B"), 0, cfgPath), 2);
    QCOMPARE(env.readFile(otherPath), QByteArray("[APP_CFG]\nA=1\n"));

    // With the batch closed, writes go to the file they name again.
    WriteIniInt(g, k, 5, otherPath);
    QCOMPARE(ReadIniInt(g, k, 0, otherPath), 5);
    QCOMPARE(ReadIniInt(g, k, 0, batchPath), 2);
}

void tst_Settings::everyReadOpensAfresh()
{
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("cfg.ini"));
    env.writeFile(path, kSample);
    const QString group = QStringLiteral("APP_CFG");
    const QString key = QStringLiteral("KEY_RULER_UNIT");
    QCOMPARE(ReadIniInt(group, key, 1, path), 3);
    // Another writer in the process, as a dialog would be.
    QSettings(path, QSettings::IniFormat).setValue(QStringLiteral("APP_CFG/KEY_RULER_UNIT"), 2);
    QCOMPARE(ReadIniInt(group, key, 1, path), 2);
    // Another program rewrites the file (different size, so the change shows
    // whatever the time stamp resolution), then removes it.
    QVERIFY(env.writeFile(path, "[APP_CFG]\nKEY_RULER_UNIT=0\nOTHER=12345\n"));
    QCOMPARE(ReadIniInt(group, QStringLiteral("NEGATIVE"), 99, path), 99);
    QVERIFY(QFile::remove(path));
    QCOMPARE(ReadIniInt(group, key, 1, path), 1);
}

void tst_Settings::userDataDir_data()
{
    // clang-format off
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("organisation");
    QTest::addColumn<QString>("folder");

    QTest::newRow("Quorvantix") << "Quorvantix" << "" << "Quorvantix";
    QTest::newRow("no theme") << "" << "" << "Tessavolia";
    QTest::newRow("other") << "Dark" << "" << "Tessavolia";
    QTest::newRow("case differs") << "quorvantix" << "" << "Tessavolia";
    QTest::newRow("trailing blank") << "Quorvantix " << "" << "Tessavolia";
    QTest::newRow("longer name") << "QuorvantixPro" << "" << "Tessavolia";
    QTest::newRow("beside the organisation") << "" << "Maker" << "Maker/Tessavolia";
    // clang-format on
}

void tst_Settings::userDataDir()
{
    QFETCH(QString, theme);
    QFETCH(QString, organisation);
    QFETCH(QString, folder);
    TestEnvironment env;
    CUiPermissionsManager::GetInstance()->SetThemeName(theme);
    const QString oldOrganisation = QCoreApplication::organizationName();
    QCoreApplication::setOrganizationName(organisation);
    const QString dir = UserDataDir();
    const QString cfg = CfgIniPath();
    QCoreApplication::setOrganizationName(oldOrganisation);

    // The configuration location is <XDG>/<application name>; the data
    // directory is its sibling, and the host's files are in its Data/.
    const QString expected =
        env.root() + QStringLiteral("/config/") + folder + QStringLiteral("/Resources");
    QCOMPARE(dir, expected);
    QVERIFY(QFileInfo(dir).isDir());
    QCOMPARE(cfg, expected + QStringLiteral("/Data/cfg.ini"));
}

void tst_Settings::directories()
{
    TestEnvironment env;
    const QString data = env.dataDir() + QStringLiteral("/Data/");
    QCOMPARE(FactoryParamIniPath(), data + QStringLiteral("FactoryParam.ini"));
    QCOMPARE(UserParamIniPath(), data + QStringLiteral("UserParam.ini"));
    QCOMPARE(TmpParamIniPath(), data + QStringLiteral("tmpParam.ini"));
    QCOMPARE(DataFilePath(QStringLiteral("lm.json")), data + QStringLiteral("lm.json"));

    CUiPermissionsManager::GetInstance()->SetThemeName(QStringLiteral("Quorvantix"));
    const QString expected = env.root() + QStringLiteral("/config/Quorvantix/Resources");
    QVERIFY(!QFileInfo::exists(expected));
    QCOMPARE(UserDataDir(), expected);
    // Only the directory itself: Data/ is the host's to create.
    QVERIFY(QDir(expected).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).isEmpty());

    // An existing directory and its content are left alone.
    QVERIFY(env.writeFile(expected + QStringLiteral("/Data/cfg.ini"), "[APP_CFG]\n"));
    QCOMPARE(UserDataDir(), expected);
    QCOMPARE(env.readFile(expected + QStringLiteral("/Data/cfg.ini")), QByteArray("[APP_CFG]\n"));

    // Tests run from <build>/tests, so the default resource folder is
    // <build>/Resources, the same folder the plug-in in <build>/bin sees.
    QCOMPARE(AppResourceDir(), env.resourceDir());
    SetAppResourceDir(QString());
    QCOMPARE(AppResourceDir(), QDir::cleanPath(QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources")));
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_settings.moc"
