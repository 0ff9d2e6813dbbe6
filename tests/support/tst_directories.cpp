#include "support/directories.h"
#include "testenvironment.h"

#include "cuipermissionsmanager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTest>

class tst_Directories : public QObject
{
    Q_OBJECT

private slots:
    void userDataDirByTheme_data();
    void userDataDirByTheme();
    void userDataDirCreatedWhenMissing();
    void userDataDirBesideOrganisation();
    void resourceDirDefault();
    void resourceDirOverride();
};

void tst_Directories::userDataDirByTheme_data()
{
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("folder");

    QTest::newRow("Quorvantix") << "Quorvantix" << "Quorvantix";
    QTest::newRow("no theme") << "" << "Tessavolia";
    QTest::newRow("Tessavolia") << "Tessavolia" << "Tessavolia";
    QTest::newRow("other") << "Dark" << "Tessavolia";
    QTest::newRow("case differs") << "quorvantix" << "Tessavolia";
    QTest::newRow("trailing blank") << "Quorvantix " << "Tessavolia";
    QTest::newRow("longer name") << "QuorvantixPro" << "Tessavolia";
}

void tst_Directories::userDataDirByTheme()
{
    QFETCH(QString, theme);
    QFETCH(QString, folder);
    TestEnvironment env;
    CUiPermissionsManager::GetInstance()->SetThemeName(theme);

    // The configuration location is <XDG>/<application name>; the data
    // directory is its sibling.
    const QString expected = env.root() + QStringLiteral("/config/") + folder + QStringLiteral("/Resources");
    const QString dir = UserDataDir();
    QCOMPARE(dir, expected);
    QVERIFY(!dir.contains(QLatin1String("..")));
    QVERIFY(!dir.endsWith(QLatin1Char('/')));
    QVERIFY(QFileInfo(dir).isDir());
}

void tst_Directories::userDataDirCreatedWhenMissing()
{
    TestEnvironment env;
    CUiPermissionsManager::GetInstance()->SetThemeName(QStringLiteral("Quorvantix"));
    const QString expected = env.root() + QStringLiteral("/config/Quorvantix/Resources");
    QVERIFY(QDir(env.root() + QStringLiteral("/config/Quorvantix")).removeRecursively());
    QVERIFY(!QFileInfo::exists(expected));

    QCOMPARE(UserDataDir(), expected);
    QVERIFY(QFileInfo(expected).isDir());
    // Only the directory itself: Data/ is the host's to create.
    QVERIFY(QDir(expected).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).isEmpty());

    // An existing directory and its content are left alone.
    QVERIFY(env.writeFile(expected + QStringLiteral("/Data/cfg.ini"), "[APP_CFG]\n"));
    QCOMPARE(UserDataDir(), expected);
    QCOMPARE(env.readFile(expected + QStringLiteral("/Data/cfg.ini")), QByteArray("[APP_CFG]\n"));
}

void tst_Directories::userDataDirBesideOrganisation()
{
    TestEnvironment env;
    const QString oldOrganisation = QCoreApplication::organizationName();
    QCoreApplication::setOrganizationName(QStringLiteral("Maker"));
    const QString dir = UserDataDir();
    QCoreApplication::setOrganizationName(oldOrganisation);

    QCOMPARE(dir, env.root() + QStringLiteral("/config/Maker/Tessavolia/Resources"));
}

void tst_Directories::resourceDirDefault()
{
    TestEnvironment env;
    SetAppResourceDir(QString());

    // Tests run from <build>/tests, so the default is <build>/Resources,
    // the same folder the plug-in in <build>/bin sees.
    const QString expected = QDir::cleanPath(QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources"));
    QCOMPARE(AppResourceDir(), expected);
    QVERIFY(QDir::isAbsolutePath(AppResourceDir()));
}

void tst_Directories::resourceDirOverride()
{
    TestEnvironment env;
    QCOMPARE(AppResourceDir(), env.resourceDir());

    SetAppResourceDir(QStringLiteral("/opt/elsewhere/Resources"));
    QCOMPARE(AppResourceDir(), QStringLiteral("/opt/elsewhere/Resources"));

    SetAppResourceDir(QString());
    QCOMPARE(AppResourceDir(), QDir::cleanPath(QStringLiteral(LAYERMGR_BUILD_BIN "/../Resources")));
}

QTEST_GUILESS_MAIN(tst_Directories)
#include "tst_directories.moc"
