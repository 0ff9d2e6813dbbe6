#include "support/basedialog.h"
#include "testenvironment.h"

#include <QApplication>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

// The offscreen screen is given an origin away from 0,0 (see main), so a
// position taken from the screen's size alone can be told from one that adds
// the origin.
static const QRect kScreen(120, 80, 1000, 700);

class tst_BaseDialog : public QObject
{
    Q_OBJECT

private slots:
    void windowFlags();
    void centredOnShow_data();
    void centredOnShow();
    void centredAgainOnEveryShow();
    void centreOffKeepsPosition();

private:
    static bool screenIsConfigured();
};

bool tst_BaseDialog::screenIsConfigured()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen && screen->availableGeometry() == kScreen;
}

void tst_BaseDialog::windowFlags()
{
    TestEnvironment env;
    BaseDialog dialog;
    const Qt::WindowFlags flags = dialog.windowFlags();
    QCOMPARE(dialog.windowType(), Qt::Dialog);
    QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
    // Only a close button: no help, minimise or maximise buttons.
    QVERIFY(!flags.testFlag(Qt::WindowContextHelpButtonHint));
    QVERIFY(!flags.testFlag(Qt::WindowMinimizeButtonHint));
    QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(dialog.CenterOnShow());
}

void tst_BaseDialog::centredOnShow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("position");

    QTest::newRow("small") << QSize(300, 200) << QPoint(350, 250);
    QTest::newRow("odd size rounds toward zero") << QSize(301, 201) << QPoint(349, 249);
    QTest::newRow("as large as the screen") << QSize(1000, 700) << QPoint(0, 0);
    QTest::newRow("larger than the screen") << QSize(1400, 900) << QPoint(-200, -100);
    QTest::newRow("larger, odd size") << QSize(1401, 901) << QPoint(-200, -100);
}

void tst_BaseDialog::centredOnShow()
{
    QFETCH(QSize, size);
    QFETCH(QPoint, position);
    if (!screenIsConfigured())
        QSKIP("needs the offscreen platform with the screen set up in main()");
    TestEnvironment env;
    BaseDialog dialog;
    dialog.resize(size);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.size(), size);
    QCOMPARE(dialog.pos(), position);
}

void tst_BaseDialog::centredAgainOnEveryShow()
{
    if (!screenIsConfigured())
        QSKIP("needs the offscreen platform with the screen set up in main()");
    TestEnvironment env;
    BaseDialog dialog;
    dialog.resize(400, 300);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.hide();
    dialog.move(10, 20);
    dialog.resize(200, 100);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.pos(), QPoint(400, 300));
}

void tst_BaseDialog::centreOffKeepsPosition()
{
    TestEnvironment env;
    BaseDialog dialog;
    dialog.SetCenterOnShow(false);
    QVERIFY(!dialog.CenterOnShow());
    dialog.resize(300, 200);
    dialog.move(137, 95);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.pos(), QPoint(137, 95));
}

int main(int argc, char **argv)
{
    QTemporaryDir dir;
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (dir.isValid() && platform == QLatin1String("offscreen")) {
        const QString config = dir.filePath(QStringLiteral("screens.json"));
        QFile file(config);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(QStringLiteral("{\"windowFrameMargins\": false, \"screens\": [{\"name\": "
                                      "\"Primary\", \"x\": %1, \"y\": %2, \"width\": %3, "
                                      "\"height\": %4, \"logicalDpi\": 96, \"dpr\": 1}]}")
                           .arg(kScreen.x())
                           .arg(kScreen.y())
                           .arg(kScreen.width())
                           .arg(kScreen.height())
                           .toUtf8());
            file.close();
            qputenv("QT_QPA_PLATFORM",
                    QFile::encodeName(QStringLiteral("offscreen:configfile=") + config));
        }
    }
    QApplication app(argc, argv);
    tst_BaseDialog test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_basedialog.moc"
