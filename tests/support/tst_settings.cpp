#include "support/settings.h"
#include "testenvironment.h"

#include <QFile>
#include <QHash>
#include <QSettings>
#include <QTest>

class tst_Settings : public QObject
{
    Q_OBJECT

private slots:
    void readInt_data();
    void readInt();
    void readDouble_data();
    void readDouble();
    void readString_data();
    void readString();
    void writeLandsAsIniLine_data();
    void writeLandsAsIniLine();
    void writeThenReadBack_data();
    void writeThenReadBack();
    void writeKeepsOtherKeys();
    void batchTakesEveryWrite();
    void secondBatchRedirects();
    void closeWithoutBatchIsHarmless();
    void readsIgnoreTheBatch();
    void everyReadOpensAfresh();
    void dataFilePaths_data();
    void dataFilePaths();
};

namespace {

const QByteArray kSample = "[APP_CFG]\n"
                           "KEY_RULER_UNIT=3\n"
                           "NEGATIVE=-7\n"
                           "TEXT=abc\n"
                           "MIXED=12abc\n"
                           "FRACTION=2.5\n"
                           "EXPONENT=1e3\n"
                           "EMPTY=\n"
                           "[FACTORY_PARAM_MOTOR]\n"
                           "MOTOR_SPEED_MAX_1=300\n"
                           "KEY_RULER_UNIT=9\n";

// Writes kSample (or nothing) and returns the path the reads are given.
QString prepare(const TestEnvironment &env, bool withFile)
{
    const QString path = env.dataFile(QStringLiteral("cfg.ini"));
    if (withFile)
        env.writeFile(path, kSample);
    return path;
}

} // namespace

void tst_Settings::readInt_data()
{
    QTest::addColumn<bool>("withFile");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("defaultValue");
    QTest::addColumn<int>("expected");

    QTest::newRow("present") << true << "APP_CFG" << "KEY_RULER_UNIT" << 1 << 3;
    QTest::newRow("same key, other group") << true << "FACTORY_PARAM_MOTOR" << "KEY_RULER_UNIT" << 1 << 9;
    QTest::newRow("negative") << true << "APP_CFG" << "NEGATIVE" << 1 << -7;
    QTest::newRow("missing key gives default") << true << "APP_CFG" << "NOPE" << 42 << 42;
    QTest::newRow("missing group gives default") << true << "NOPE" << "KEY_RULER_UNIT" << 42 << 42;
    QTest::newRow("missing file gives default") << false << "APP_CFG" << "KEY_RULER_UNIT" << 1 << 1;
    QTest::newRow("group is case sensitive") << true << "app_cfg" << "KEY_RULER_UNIT" << 5 << 5;
    QTest::newRow("garbage text") << true << "APP_CFG" << "TEXT" << 42 << 0;
    QTest::newRow("garbage digits then text") << true << "APP_CFG" << "MIXED" << 42 << 0;
    QTest::newRow("garbage fraction") << true << "APP_CFG" << "FRACTION" << 42 << 0;
    QTest::newRow("garbage empty value") << true << "APP_CFG" << "EMPTY" << 42 << 0;
}

void tst_Settings::readInt()
{
    QFETCH(bool, withFile);
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(int, defaultValue);
    QFETCH(int, expected);
    TestEnvironment env;
    const QString path = prepare(env, withFile);

    QCOMPARE(ReadIniInt(group, key, defaultValue, path), expected);
    const QSettings held(path, QSettings::IniFormat);
    QCOMPARE(ReadIniInt(held, group, key, defaultValue), expected);
    // A read never creates the file.
    QCOMPARE(QFile::exists(path), withFile);
}

void tst_Settings::readDouble_data()
{
    QTest::addColumn<bool>("withFile");
    QTest::addColumn<QString>("key");
    QTest::addColumn<double>("defaultValue");
    QTest::addColumn<double>("expected");

    QTest::newRow("integer text") << true << "KEY_RULER_UNIT" << 1.0 << 3.0;
    QTest::newRow("fraction") << true << "FRACTION" << 1.0 << 2.5;
    QTest::newRow("exponent") << true << "EXPONENT" << 1.0 << 1000.0;
    QTest::newRow("missing key gives default") << true << "NOPE" << 1000.0 << 1000.0;
    QTest::newRow("missing file gives default") << false << "FRACTION" << 0.25 << 0.25;
    QTest::newRow("garbage text") << true << "TEXT" << 7.5 << 0.0;
    QTest::newRow("garbage digits then text") << true << "MIXED" << 7.5 << 0.0;
    QTest::newRow("garbage empty value") << true << "EMPTY" << 7.5 << 0.0;
}

void tst_Settings::readDouble()
{
    QFETCH(bool, withFile);
    QFETCH(QString, key);
    QFETCH(double, defaultValue);
    QFETCH(double, expected);
    TestEnvironment env;
    const QString path = prepare(env, withFile);

    QCOMPARE(ReadIniDouble(QStringLiteral("APP_CFG"), key, defaultValue, path), expected);
    const QSettings held(path, QSettings::IniFormat);
    QCOMPARE(ReadIniDouble(held, QStringLiteral("APP_CFG"), key, defaultValue), expected);
}

void tst_Settings::readString_data()
{
    QTest::addColumn<bool>("withFile");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<QString>("expected");

    QTest::newRow("text") << true << "TEXT" << "x" << "abc";
    QTest::newRow("number as text") << true << "NEGATIVE" << "x" << "-7";
    QTest::newRow("empty value is not missing") << true << "EMPTY" << "x" << "";
    QTest::newRow("missing key gives default") << true << "NOPE" << "fallback" << "fallback";
    QTest::newRow("missing file gives default") << false << "TEXT" << "fallback" << "fallback";
}

void tst_Settings::readString()
{
    QFETCH(bool, withFile);
    QFETCH(QString, key);
    QFETCH(QString, defaultValue);
    QFETCH(QString, expected);
    TestEnvironment env;
    const QString path = prepare(env, withFile);

    QCOMPARE(ReadIniString(QStringLiteral("APP_CFG"), key, defaultValue, path), expected);
    const QSettings held(path, QSettings::IniFormat);
    QCOMPARE(ReadIniString(held, QStringLiteral("APP_CFG"), key, defaultValue), expected);
}

void tst_Settings::writeLandsAsIniLine_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("int") << "int" << "5" << QByteArray("[BLOCK]\nBLOCK_PROCESS_PARAM=5\n");
    QTest::newRow("negative int") << "int" << "-12" << QByteArray("[BLOCK]\nBLOCK_PROCESS_PARAM=-12\n");
    QTest::newRow("double") << "double" << "0.1" << QByteArray("[BLOCK]\nBLOCK_PROCESS_PARAM=0.1\n");
    QTest::newRow("whole double") << "double" << "200" << QByteArray("[BLOCK]\nBLOCK_PROCESS_PARAM=200\n");
    QTest::newRow("text") << "string" << "Acrylic" << QByteArray("[BLOCK]\nBLOCK_PROCESS_PARAM=Acrylic\n");
}

void tst_Settings::writeLandsAsIniLine()
{
    QFETCH(QString, type);
    QFETCH(QString, value);
    QFETCH(QByteArray, expected);
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("UserParam.ini"));
    const QString group = QStringLiteral("BLOCK");
    const QString key = QStringLiteral("BLOCK_PROCESS_PARAM");

    if (type == QLatin1String("int"))
        WriteIniInt(group, key, value.toInt(), path);
    else if (type == QLatin1String("double"))
        WriteIniDouble(group, key, value.toDouble(), path);
    else
        WriteIniString(group, key, value, path);

    // Written at once, no batch involved.
    QCOMPARE(env.readFile(path), expected);
}

void tst_Settings::writeThenReadBack_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << "Plywood";
    QTest::newRow("comma") << "a,b";
    QTest::newRow("equals and semicolon") << "k=v;x";
    QTest::newRow("leading and trailing blanks") << "  padded  ";
    QTest::newRow("non-ASCII") << QStringLiteral("木材 é");
    QTest::newRow("section lookalike") << "[APP_CFG]";
    QTest::newRow("line break") << "one\ntwo";
    QTest::newRow("empty") << "";
}

void tst_Settings::writeThenReadBack()
{
    QFETCH(QString, text);
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("tmpParam.ini"));

    WriteIniString(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("NAME"), text, path);
    WriteIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("AFTER"), 17, path);

    QCOMPARE(ReadIniString(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("NAME"), QStringLiteral("x"), path),
             text);
    // Whatever the text holds, it does not swallow the next key.
    QCOMPARE(ReadIniInt(QStringLiteral("DLG_LIB_MGR"), QStringLiteral("AFTER"), 0, path), 17);
}

void tst_Settings::writeKeepsOtherKeys()
{
    TestEnvironment env;
    const QString path = prepare(env, true);

    WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 0, path);
    WriteIniDouble(QStringLiteral("NEW_GROUP"), QStringLiteral("LASER_THICKNESS"), 2.5, path);

    QCOMPARE(ReadIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 1, path), 0);
    QCOMPARE(ReadIniInt(QStringLiteral("FACTORY_PARAM_MOTOR"), QStringLiteral("MOTOR_SPEED_MAX_1"), 0, path),
             300);
    QCOMPARE(ReadIniString(QStringLiteral("APP_CFG"), QStringLiteral("TEXT"), QString(), path),
             QStringLiteral("abc"));
    const QByteArray bytes = env.readFile(path);
    QVERIFY2(bytes.contains("[NEW_GROUP]\nLASER_THICKNESS=2.5\n"), bytes.constData());
    QVERIFY2(bytes.contains("KEY_RULER_UNIT=0\n"), bytes.constData());
}

void tst_Settings::batchTakesEveryWrite()
{
    TestEnvironment env;
    const QString batchPath = env.dataFile(QStringLiteral("old.lpl"));
    const QString otherPath = env.dataFile(QStringLiteral("cfg.ini"));

    OpenIniBatch(batchPath);
    WriteIniInt(QStringLiteral("LAYER_0"), QStringLiteral("COLOR"), 255, batchPath);
    WriteIniDouble(QStringLiteral("LAYER_0"), QStringLiteral("CUT_SPEED"), 12.5, otherPath);
    WriteIniString(QStringLiteral("APP_CFG"), QStringLiteral("NAME"), QStringLiteral("elsewhere"), otherPath);
    CloseIniBatch();

    QVERIFY(!QFile::exists(otherPath));
    QCOMPARE(ReadIniInt(QStringLiteral("LAYER_0"), QStringLiteral("COLOR"), 0, batchPath), 255);
    QCOMPARE(ReadIniDouble(QStringLiteral("LAYER_0"), QStringLiteral("CUT_SPEED"), 0, batchPath), 12.5);
    QCOMPARE(ReadIniString(QStringLiteral("APP_CFG"), QStringLiteral("NAME"), QString(), batchPath),
             QStringLiteral("elsewhere"));

    // With the batch closed, writes go to the file they name again.
    WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 2, otherPath);
    QCOMPARE(env.readFile(otherPath), QByteArray("[APP_CFG]\nKEY_RULER_UNIT=2\n"));
    QCOMPARE(ReadIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 0, batchPath), 0);
}

void tst_Settings::secondBatchRedirects()
{
    TestEnvironment env;
    const QString first = env.dataFile(QStringLiteral("first.ini"));
    const QString second = env.dataFile(QStringLiteral("second.ini"));

    OpenIniBatch(first);
    WriteIniInt(QStringLiteral("G"), QStringLiteral("A"), 1, first);
    OpenIniBatch(second);
    WriteIniInt(QStringLiteral("G"), QStringLiteral("B"), 2, first);
    CloseIniBatch();

    QCOMPARE(ReadIniInt(QStringLiteral("G"), QStringLiteral("B"), 0, second), 2);
    QCOMPARE(ReadIniInt(QStringLiteral("G"), QStringLiteral("B"), 0, first), 0);
}

void tst_Settings::closeWithoutBatchIsHarmless()
{
    TestEnvironment env;
    const QString path = env.dataFile(QStringLiteral("cfg.ini"));

    CloseIniBatch();
    CloseIniBatch();
    WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 3, path);
    QCOMPARE(env.readFile(path), QByteArray("[APP_CFG]\nKEY_RULER_UNIT=3\n"));

    OpenIniBatch(env.dataFile(QStringLiteral("old.lpl")));
    CloseIniBatch();
    CloseIniBatch();
    WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 0, path);
    QCOMPARE(ReadIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 1, path), 0);
}

void tst_Settings::readsIgnoreTheBatch()
{
    TestEnvironment env;
    const QString batchPath = env.dataFile(QStringLiteral("old.lpl"));
    const QString cfgPath = prepare(env, true);
    env.writeFile(batchPath, "[APP_CFG]\nKEY_RULER_UNIT=0\n");

    OpenIniBatch(batchPath);
    WriteIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 2, cfgPath);
    // A read goes to the file it names, not to the batch that took the write.
    QCOMPARE(ReadIniInt(QStringLiteral("APP_CFG"), QStringLiteral("KEY_RULER_UNIT"), 1, cfgPath), 3);
    QCOMPARE(ReadIniString(QStringLiteral("APP_CFG"), QStringLiteral("TEXT"), QString(), cfgPath),
             QStringLiteral("abc"));
    // Nothing reaches the disk before the batch closes.
    QCOMPARE(env.readFile(batchPath), QByteArray("[APP_CFG]\nKEY_RULER_UNIT=0\n"));
    CloseIniBatch();

    QCOMPARE(env.readFile(batchPath), QByteArray("[APP_CFG]\nKEY_RULER_UNIT=2\n"));
    QCOMPARE(env.readFile(cfgPath), kSample);
}

void tst_Settings::everyReadOpensAfresh()
{
    TestEnvironment env;
    const QString path = prepare(env, true);
    const QString group = QStringLiteral("APP_CFG");
    const QString key = QStringLiteral("KEY_RULER_UNIT");
    QCOMPARE(ReadIniInt(group, key, 1, path), 3);

    {
        // Another writer in the process, as a dialog would be.
        QSettings other(path, QSettings::IniFormat);
        other.setValue(QStringLiteral("APP_CFG/KEY_RULER_UNIT"), 2);
        other.sync();
        QCOMPARE(ReadIniInt(group, key, 1, path), 2);
    }

    // Another program rewrites the file (different size, so the change shows
    // whatever the time stamp resolution).
    QVERIFY(env.writeFile(path, "[APP_CFG]\nKEY_RULER_UNIT=0\nOTHER=12345\n"));
    QCOMPARE(ReadIniInt(group, key, 1, path), 0);
    QCOMPARE(ReadIniInt(group, QStringLiteral("NEGATIVE"), 99, path), 99);

    QVERIFY(QFile::remove(path));
    QCOMPARE(ReadIniInt(group, key, 1, path), 1);
}

void tst_Settings::dataFilePaths_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("cfg") << "cfg.ini";
    QTest::newRow("factory") << "FactoryParam.ini";
    QTest::newRow("user") << "UserParam.ini";
    QTest::newRow("tmp") << "tmpParam.ini";
    QTest::newRow("any other") << "lm.json";
}

void tst_Settings::dataFilePaths()
{
    QFETCH(QString, name);
    TestEnvironment env;
    const QString expected = env.root() + QStringLiteral("/config/Tessavolia/Resources/Data/") + name;

    const QHash<QString, QString (*)()> named = {
        {QStringLiteral("cfg.ini"), &CfgIniPath},
        {QStringLiteral("FactoryParam.ini"), &FactoryParamIniPath},
        {QStringLiteral("UserParam.ini"), &UserParamIniPath},
        {QStringLiteral("tmpParam.ini"), &TmpParamIniPath},
    };
    if (named.contains(name))
        QCOMPARE(named.value(name)(), expected);
    QCOMPARE(DataFilePath(name), expected);
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_settings.moc"
