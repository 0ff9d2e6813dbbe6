#include "support/basedialog.h"
#include "support/cmsgboxqss.h"
#include "support/csubgallerylistview.h"
#include "support/widgethelpers.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QScopeGuard>
#include <QScreen>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTest>

// The offscreen screen is given an origin away from 0,0 (see main), so a
// position taken from the screen's size alone can be told from one that adds
// the origin.
static const QRect kScreen(120, 80, 1000, 700);

class tst_Widgets : public QObject
{
    Q_OBJECT

private slots:
    void messageBox_data()
    {
        // clang-format off
        QTest::addColumn<int>("buttons");
        QTest::addColumn<QString>("language");
        QTest::addColumn<bool>("switchedWhileOpen");
        // "objectName=text" of every button that got an object name, sorted:
        // style sheets select on the names.
        QTest::addColumn<QStringList>("named");

        const int all = int(QMessageBox::Yes | QMessageBox::No | QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::Retry);
        QTest::newRow("ok and cancel, English") << int(QMessageBox::Ok | QMessageBox::Cancel) << "" << false << QStringList{"messageBox_cancelButton=Cancel", "messageBox_okButton=OK"};
        const QStringList allChinese{QStringLiteral("messageBox_cancelButton=取消"), QStringLiteral("messageBox_noButton=否"), QStringLiteral("messageBox_okButton=确定"), QStringLiteral("messageBox_retryButton=重试"), QStringLiteral("messageBox_yesButton=是")};
        QTest::newRow("all five, Chinese") << all << "Chs" << false << allChinese;
        QTest::newRow("all five, Chinese chosen while open") << all << "Chs" << true << allChinese;
        // A button outside the styled set stays as Qt made it.
        QTest::newRow("save is left alone") << int(QMessageBox::Save | QMessageBox::No) << "Chs" << false << QStringList{QStringLiteral("messageBox_noButton=否")};
        QTest::newRow("no buttons") << 0 << "Chs" << false << QStringList{};
        // clang-format on
    }

    void messageBox()
    {
        QFETCH(int, buttons);
        QFETCH(QString, language);
        QFETCH(bool, switchedWhileOpen);
        TestEnvironment env;
        QVERIFY(env.writeFile(env.resourceDir() + QStringLiteral("/Lang/Chs/test.ini"),
                              QStringLiteral("Yes=是\nNo=否\nOK=确定\nCancel=取消\nRetry=重试\n").toUtf8()));
        CTranslator::GetInstance()->SetResourceDir(env.resourceDir());
        CTranslator::GetInstance()->SetLanguage(switchedWhileOpen ? QString() : language);
        const auto english = qScopeGuard([] {
            CTranslator::GetInstance()->SetLanguage(QString());
            CTranslator::GetInstance()->SetResourceDir(QString());
        });
        QWidget parent;
        CMsgBoxQss box(QMessageBox::Question, QStringLiteral("Tips"), QStringLiteral("Delete?"),
                       QMessageBox::StandardButtons(buttons), &parent);
        if (switchedWhileOpen)
            CTranslator::GetInstance()->SetLanguage(language);
        QStringList named;
        for (const QAbstractButton *button : box.buttons()) {
            if (!button->objectName().isEmpty())
                named << button->objectName() + QLatin1Char('=') + button->text();
        }
        named.sort();
        QTEST(named, "named");
        QCOMPARE(box.objectName(), QStringLiteral("CMsgBoxQss"));
        QCOMPARE(box.windowTitle() + QLatin1Char('|') + box.text(), QStringLiteral("Tips|Delete?"));
        QVERIFY(!box.windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    }

    // Centred on the available area's size alone, the screen's origin left out, on every show.
    void dialogPosition_data()
    {
        QTest::addColumn<bool>("centre");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QPoint>("position");
        QTest::newRow("small") << true << QSize(300, 200) << QPoint(350, 250);
        QTest::newRow("odd size rounds toward zero") << true << QSize(301, 201) << QPoint(349, 249);
        QTest::newRow("larger than the screen") << true << QSize(1400, 900) << QPoint(-200, -100);
        QTest::newRow("centring off") << false << QSize(300, 200) << QPoint(137, 95);
    }

    void dialogPosition()
    {
        QFETCH(bool, centre);
        QFETCH(QSize, size);
        const QScreen *screen = QGuiApplication::primaryScreen();
        if (!screen || screen->availableGeometry() != kScreen)
            QSKIP("needs the offscreen platform with the screen set up in main()");
        TestEnvironment env;
        BaseDialog dialog;
        // Only a close button: no help, minimise or maximise buttons.
        const Qt::WindowFlags buttons = Qt::WindowCloseButtonHint | Qt::WindowContextHelpButtonHint |
                                        Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint;
        QCOMPARE(dialog.windowFlags() & buttons, Qt::WindowFlags(Qt::WindowCloseButtonHint));
        dialog.SetCenterOnShow(centre);
        for (const QSize &shown : {QSize(400, 300), size}) {
            dialog.resize(shown);
            dialog.move(137, 95);
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            dialog.hide();
        }
        QTEST(dialog.pos(), "position");
    }

    // A right press is consumed: the menu refers to the row current before it, and no row
    // stays current.
    void galleryMouse_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("currentAfter");
        QTest::addColumn<int>("rightClicked");
        QTest::addColumn<int>("pressed"); // presses the view itself saw
        QTest::newRow("right press on another row") << "right" << 0 << 2 << -1 << 0 << 0;
        QTest::newRow("right press without a current row") << "right" << -1 << 2 << -1 << -1 << 0;
        QTest::newRow("right press sent to the view itself") << "right view" << 2 << 2 << -1 << 2 << 0;
        QTest::newRow("left click selects") << "left" << -1 << 2 << 2 << -1 << 1;
        QTest::newRow("double click clears the current row") << "double" << 1 << 1 << -1 << -1 << 0;
    }

    void galleryMouse()
    {
        QFETCH(QString, action);
        QFETCH(int, current);
        QFETCH(int, row);
        TestEnvironment env;
        QStandardItemModel model;
        for (const char *name : {"Plywood", "Acrylic", "Leather", "Slate"})
            model.appendRow(new QStandardItem(QString::fromLatin1(name)));
        CSubGalleryListView view;
        view.setModel(&model);
        view.setGeometry(30, 40, 240, 200);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.setCurrentIndex(model.index(current, 0));

        // The menu opens at the current item's top-right corner, wherever the cursor is.
        const QPoint menuAt = view.viewport()->mapToGlobal(view.visualRect(model.index(current, 0)).topRight());
        QSignalSpy menu(&view, &CSubGalleryListView::RightMouseButtonPress);
        QSignalSpy pressSpy(&view, &QAbstractItemView::pressed);
        QSignalSpy doubleClicked(&view, &QAbstractItemView::doubleClicked);
        QWidget *target = action == QLatin1String("right view") ? static_cast<QWidget *>(&view) : view.viewport();
        const QPoint at = view.viewport()->mapTo(target, view.visualRect(model.index(row, 0)).center());
        if (action == QLatin1String("left"))
            QTest::mouseClick(target, Qt::LeftButton, {}, at);
        else if (action == QLatin1String("double"))
            QTest::mouseDClick(target, Qt::LeftButton, {}, at);
        else
            QTest::mousePress(target, Qt::RightButton, {}, at);

        QTEST(view.currentIndex().row(), "currentAfter");
        QTEST(view.RightClickedRow(), "rightClicked");
        QTEST(int(pressSpy.count()), "pressed");
        QCOMPARE(doubleClicked.count(), 0);
        QCOMPARE(menu.count(), action.startsWith(QLatin1String("right")) ? 1 : 0);
        if (!menu.isEmpty())
            QCOMPARE(menu.takeFirst().at(0).toPoint(), menuAt);
    }

    // A style sheet does not look at dynamic properties again by itself.
    void restyleFollowsProperty_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<QColor>("color");
        QTest::newRow("error") << QStringLiteral("error") << QColor(200, 0, 0);
        QTest::newRow("ok") << QStringLiteral("ok") << QColor(0, 120, 0);
        QTest::newRow("no selector matches") << QStringLiteral("other") << QColor(10, 20, 30);
    }

    void restyleFollowsProperty()
    {
        QFETCH(QString, state);
        TestEnvironment env;
        QLabel label(QStringLiteral("12.5"));
        label.setStyleSheet(QStringLiteral("QLabel { color: rgb(10, 20, 30); }"
                                           "QLabel[state=\"error\"] { color: rgb(200, 0, 0); }"
                                           "QLabel[state=\"ok\"] { color: rgb(0, 120, 0); }"));
        label.show();
        QVERIFY(QTest::qWaitForWindowExposed(&label));
        SetPropertyAndRestyle(&label, "state", state);
        QTEST(label.palette().color(QPalette::WindowText), "color");
        // Nothing to restyle is no crash and no property.
        SetPropertyAndRestyle(nullptr, "state", state);
        QLabel plain;
        SetPropertyAndRestyle(&plain, nullptr, state);
        QVERIFY(plain.dynamicPropertyNames().isEmpty());
    }
};

int main(int argc, char **argv)
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("screens.json")));
    if (qEnvironmentVariable("QT_QPA_PLATFORM") == QLatin1String("offscreen") && file.open(QIODevice::WriteOnly)) {
        file.write(QStringLiteral("{\"windowFrameMargins\": false, \"screens\": [{\"name\": \"Primary\", \"x\": %1, "
                                  "\"y\": %2, \"width\": %3, \"height\": %4, \"logicalDpi\": 96, \"dpr\": 1}]}")
                       .arg(kScreen.x())
                       .arg(kScreen.y())
                       .arg(kScreen.width())
                       .arg(kScreen.height())
                       .toUtf8());
        file.close();
        qputenv("QT_QPA_PLATFORM", QFile::encodeName(QStringLiteral("offscreen:configfile=") + file.fileName()));
    }
    QApplication app(argc, argv);
    tst_Widgets test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_widgets.moc"
