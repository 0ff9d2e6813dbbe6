#include "support/basedialog.h"
#include "support/cmsgboxqss.h"
#include "support/csubgallerylistview.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QAbstractButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

class tst_Widgets : public QObject
{
    Q_OBJECT

private slots:
    // "objectName=text" of every button that got an object name, sorted: style sheets select on
    // the names.
    void messageBox_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<QString>("language");
        QTest::addColumn<bool>("switchedWhileOpen");
        QTest::addColumn<QString>("named");
        const int all = int(QMessageBox::Yes | QMessageBox::No | QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::Retry);
        const QString allChinese = QStringLiteral("messageBox_cancelButton=取消 messageBox_noButton=否 messageBox_okButton=确定 "
                                                  "messageBox_retryButton=重试 messageBox_yesButton=是");
        QTest::newRow("ok and cancel, English") << int(QMessageBox::Ok | QMessageBox::Cancel) << "" << false
                                                << "messageBox_cancelButton=Cancel messageBox_okButton=OK";
        QTest::newRow("all five, Chinese") << all << "Chs" << false << allChinese;
        QTest::newRow("all five, Chinese chosen while open") << all << "Chs" << true << allChinese;
        // A button outside the styled set stays as Qt made it.
        QTest::newRow("save is left alone") << int(QMessageBox::Save | QMessageBox::No) << "Chs" << false
                                            << QStringLiteral("messageBox_noButton=否");
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
        QTEST(named.join(QLatin1Char(' ')), "named");
        QCOMPARE(box.objectName(), QStringLiteral("CMsgBoxQss"));
    }

    // Centred on the available area of the 800 x 800 offscreen screen, on every show.
    void dialogPosition_data()
    {
        QTest::addColumn<bool>("centre");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QPoint>("position");
        QTest::newRow("odd size rounds toward zero") << true << QSize(301, 201) << QPoint(249, 299);
        QTest::newRow("larger than the screen") << true << QSize(1400, 900) << QPoint(-300, -50);
        QTest::newRow("centring off") << false << QSize(300, 200) << QPoint(137, 95);
    }

    void dialogPosition()
    {
        QFETCH(bool, centre);
        QFETCH(QSize, size);
        TestEnvironment env;
        BaseDialog dialog;
        if (!centre)
            dialog.SetCenterOnShow(false);
        for (const QSize &shown : {QSize(400, 300), size}) {
            dialog.resize(shown);
            dialog.move(137, 95);
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            dialog.hide();
        }
        QTEST(dialog.pos(), "position");
    }

    // A double click clears the current row and reaches no one. A right press is consumed: it
    // names the row current before it, none here, and leaves no row current.
    void galleryMouse()
    {
        TestEnvironment env;
        QStandardItemModel model;
        for (const char *name : {"Plywood", "Acrylic", "Leather"})
            model.appendRow(new QStandardItem(QString::fromLatin1(name)));
        CSubGalleryListView view;
        view.setModel(&model);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QSignalSpy doubleClicked(&view, &QAbstractItemView::doubleClicked);
        QSignalSpy menu(&view, &CSubGalleryListView::RightMouseButtonPress);
        view.setCurrentIndex(model.index(1, 0));
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(model.index(1, 0)).center());
        QCOMPARE(view.currentIndex().row(), -1);
        QTest::mousePress(view.viewport(), Qt::RightButton, {}, view.visualRect(model.index(2, 0)).center());
        QCOMPARE(view.currentIndex().row(), -1);
        QCOMPARE(view.RightClickedRow(), -1);
        QCOMPARE(menu.count(), 1);
        QCOMPARE(doubleClicked.count(), 0);
    }
};

QTEST_MAIN(tst_Widgets)
#include "tst_widgets.moc"
