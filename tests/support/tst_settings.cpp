#include "support/directories.h"
#include "support/settings.h"
#include "testenvironment.h"

#include "cuipermissionsmanager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>

class tst_Settings : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read();
    void batch();
    void userDataDir_data();
    void userDataDir();
};

namespace {

const QByteArray kSample = "[APP_CFG]\nKEY_RULER_UNIT=3\nTEXT=abc\nFRACTION=2.5\nEMPTY=\n"
                           "CHS=\xe6\x9c\xa8\xe6\x9d\x90\n";

QString read(const QString &type, const QString &key, const QString &fallback, const QString &path)
{
    const QString group = QStringLiteral("APP_CFG");
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
    QTest::addColumn<QString>("key"); // of [APP_CFG]
    QTest::addColumn<QString>("fallback");
    QTest::addColumn<QString>("expected");

    QTest::newRow("int") << true << "int" << "KEY_RULER_UNIT" << "1" << "3";
    QTest::newRow("int: missing key gives default") << true << "int" << "NOPE" << "42" << "42";
    QTest::newRow("int: missing file gives default") << false << "int" << "KEY_RULER_UNIT" << "1" << "1";
    QTest::newRow("int: garbage text") << true << "int" << "TEXT" << "42" << "0";
    QTest::newRow("double: fraction") << true << "double" << "FRACTION" << "1" << "2.5";
    QTest::newRow("double: garbage text") << true << "double" << "TEXT" << "7.5" << "0";
    QTest::newRow("text") << true << "string" << "TEXT" << "x" << "abc";
    QTest::newRow("text: Chinese") << true << "string" << "CHS" << "x" << QStringLiteral("木材");
    QTest::newRow("text: empty value is not missing") << true << "string" << "EMPTY" << "x" << "";
    QTest::newRow("text: missing key gives default") << true << "string" << "NOPE" << "fallback" << "fallback";
    // clang-format on
}

void tst_Settings::read()
{
    QFETCH(bool, withFile);
    QFETCH(QString, type);
    QFETCH(QString, key);
    QFETCH(QString, fallback);
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("cfg.ini"));
    if (withFile)
        env.writeFile(path, kSample);
    QTEST(::read(type, key, fallback, path), "expected");
    // A read never creates the file.
    QCOMPARE(QFile::exists(path), withFile);
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

    // Every write goes to the batch, whatever file it names; reads go to the
    // file they name; nothing reaches the disk before the batch closes.
    OpenIniBatch(batchPath);
    WriteIniInt(g, k, 2, cfgPath);
    WriteIniDouble(QStringLiteral("LAYER_0"), QStringLiteral("CUT_SPEED"), 12.5, otherPath);
    WriteIniString(g, QStringLiteral("NAME"), QStringLiteral("elsewhere"), batchPath);
    QCOMPARE(ReadIniInt(g, k, 1, cfgPath), 3);
    QCOMPARE(env.readFile(batchPath), QByteArray("[APP_CFG]\nKEY_RULER_UNIT=0\n"));
    CloseIniBatch();
    QCOMPARE(
        env.readFile(batchPath),
        QByteArray("[APP_CFG]\nKEY_RULER_UNIT=2\nNAME=elsewhere\n\n[LAYER_0]\nCUT_SPEED=12.5\n"));
    QCOMPARE(env.readFile(cfgPath), kSample);
    QVERIFY(!QFile::exists(otherPath));

    // A second batch takes over from the first, which is written.
    OpenIniBatch(otherPath);
    WriteIniInt(g, QStringLiteral("A"), 1, otherPath);
    OpenIniBatch(cfgPath);
    WriteIniInt(g, QStringLiteral("B"), 2, otherPath);
    CloseIniBatch();
    QCOMPARE(ReadIniInt(g, QStringLiteral("B"), 0, cfgPath), 2);
    QCOMPARE(env.readFile(otherPath), QByteArray("[APP_CFG]\nA=1\n"));
}

void tst_Settings::userDataDir_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("organisation");
    QTest::addColumn<bool>("existing"); // with the host's Data/cfg.ini in it
    QTest::addColumn<QString>("folder");

    QTest::newRow("Quorvantix") << "Quorvantix"
                                << "" << false << "Quorvantix";
    QTest::newRow("existing, with its files") << "Quorvantix"
                                              << "" << true << "Quorvantix";
    QTest::newRow("other") << "Dark"
                           << "" << false << "Tessavolia";
    QTest::newRow("case differs") << "quorvantix"
                                  << "" << false << "Tessavolia";
    QTest::newRow("longer name") << "QuorvantixPro"
                                 << "" << false << "Tessavolia";
    QTest::newRow("beside the organisation") << ""
                                             << "Maker" << false << "Maker/Tessavolia";
}

void tst_Settings::userDataDir()
{
    QFETCH(QString, theme);
    QFETCH(QString, organisation);
    QFETCH(bool, existing);
    QFETCH(QString, folder);
    TestEnvironment env;
    // The configuration location is <XDG>/<application name>; the data
    // directory is its sibling, and the host's files are in its Data/.
    const QString expected =
        env.root() + QStringLiteral("/config/") + folder + QStringLiteral("/Resources");
    if (existing)
        QVERIFY(env.writeFile(expected + QStringLiteral("/Data/cfg.ini"), "[APP_CFG]\n"));
    CUiPermissionsManager::GetInstance()->SetThemeName(theme);
    const QString oldOrganisation = QCoreApplication::organizationName();
    QCoreApplication::setOrganizationName(organisation);
    const QString dir = UserDataDir();
    const QStringList files{CfgIniPath(), FactoryParamIniPath(), UserParamIniPath(),
                            TmpParamIniPath()};
    QCoreApplication::setOrganizationName(oldOrganisation);

    QCOMPARE(dir, expected);
    const QString data = expected + QStringLiteral("/Data/");
    QCOMPARE(files, QStringList({data + "cfg.ini", data + "FactoryParam.ini",
                                 data + "UserParam.ini", data + "tmpParam.ini"}));
    // Only the directory itself is made (the test set up the other theme's):
    // Data/ is the host's to create, and what is there is left alone.
    QVERIFY(QFileInfo(dir).isDir());
    if (folder == QLatin1String("Quorvantix"))
        QCOMPARE(QDir(dir).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 existing ? QStringList{"Data"} : QStringList());
    if (existing)
        QCOMPARE(env.readFile(files[0]), QByteArray("[APP_CFG]\n"));

    // Tests run from <build>/tests, so the default resource folder is
    // <build>/Resources, the same folder the plug-in in <build>/bin sees.
    SetAppResourceDir(QString());
    QCOMPARE(AppResourceDir(), QDir::cleanPath(QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources")));
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_settings.moc"
