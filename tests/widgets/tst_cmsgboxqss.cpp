#include "support/cmsgboxqss.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QAbstractButton>
#include <QTest>

// Switches the host's translator to a language for one test and back to
// English when it goes, so later tests see untranslated wordings.
class LanguageGuard
{
public:
    LanguageGuard(const QString &resourceDir, const QString &language)
    {
        CTranslator::GetInstance()->SetResourceDir(resourceDir);
        CTranslator::GetInstance()->SetLanguage(language);
    }
    ~LanguageGuard()
    {
        CTranslator::GetInstance()->SetLanguage(QString());
        CTranslator::GetInstance()->SetResourceDir(QString());
    }
    LanguageGuard(const LanguageGuard &) = delete;
    LanguageGuard &operator=(const LanguageGuard &) = delete;
};

class tst_CMsgBoxQss : public QObject
{
    Q_OBJECT

private slots:
    void buttons_data();
    void buttons();
    void windowFlagsAndName();
    void titleTextAndIcon();
};

void tst_CMsgBoxQss::buttons_data()
{
    QTest::addColumn<int>("buttons");
    QTest::addColumn<QString>("language");
    // "objectName=text" of every button that got an object name, sorted.
    QTest::addColumn<QStringList>("named");
    QTest::addColumn<int>("buttonCount");

    const int okCancel = int(QMessageBox::Ok | QMessageBox::Cancel);
    QTest::newRow("ok and cancel, English")
        << okCancel << QString()
        << QStringList{"messageBox_cancelButton=Cancel", "messageBox_okButton=OK"} << 2;
    QTest::newRow("ok and cancel, Chinese")
        << okCancel << QStringLiteral("Chs")
        << QStringList{QStringLiteral("messageBox_cancelButton=取消"),
                       QStringLiteral("messageBox_okButton=确定")}
        << 2;
    QTest::newRow("yes and no, English")
        << int(QMessageBox::Yes | QMessageBox::No) << QString()
        << QStringList{"messageBox_noButton=No", "messageBox_yesButton=Yes"} << 2;
    QTest::newRow("yes and no, Chinese")
        << int(QMessageBox::Yes | QMessageBox::No) << QStringLiteral("Chs")
        << QStringList{QStringLiteral("messageBox_noButton=否"),
                       QStringLiteral("messageBox_yesButton=是")}
        << 2;
    QTest::newRow("ok alone") << int(QMessageBox::Ok) << QString()
                              << QStringList{"messageBox_okButton=OK"} << 1;
    QTest::newRow("retry and cancel, Chinese")
        << int(QMessageBox::Retry | QMessageBox::Cancel) << QStringLiteral("Chs")
        << QStringList{QStringLiteral("messageBox_cancelButton=取消"),
                       QStringLiteral("messageBox_retryButton=重试")}
        << 2;
    QTest::newRow("all five, Chinese")
        << int(QMessageBox::Yes | QMessageBox::No | QMessageBox::Ok | QMessageBox::Cancel |
               QMessageBox::Retry)
        << QStringLiteral("Chs")
        << QStringList{QStringLiteral("messageBox_cancelButton=取消"),
                       QStringLiteral("messageBox_noButton=否"),
                       QStringLiteral("messageBox_okButton=确定"),
                       QStringLiteral("messageBox_retryButton=重试"),
                       QStringLiteral("messageBox_yesButton=是")}
        << 5;
    // A button outside the styled set stays as Qt made it.
    QTest::newRow("save is left alone")
        << int(QMessageBox::Save | QMessageBox::No) << QStringLiteral("Chs")
        << QStringList{QStringLiteral("messageBox_noButton=否")} << 2;
    QTest::newRow("no buttons") << 0 << QStringLiteral("Chs") << QStringList{} << 0;
}

void tst_CMsgBoxQss::buttons()
{
    QFETCH(int, buttons);
    QFETCH(QString, language);
    QFETCH(QStringList, named);
    QFETCH(int, buttonCount);
    TestEnvironment env;
    QVERIFY(env.writeFile(
        env.resourceDir() + QStringLiteral("/Lang/Chs/test.ini"),
        QStringLiteral("Yes=是\nNo=否\nOK=确定\nCancel=取消\nRetry=重试\n").toUtf8()));
    LanguageGuard guard(env.resourceDir(), language);

    CMsgBoxQss box(QMessageBox::Question, QStringLiteral("Tips"), QStringLiteral("Delete?"),
                   QMessageBox::StandardButtons(buttons));

    QStringList actual;
    const QList<QAbstractButton *> all = box.buttons();
    for (const QAbstractButton *button : all) {
        if (!button->objectName().isEmpty())
            actual << button->objectName() + QLatin1Char('=') + button->text();
    }
    actual.sort();
    QCOMPARE(actual, named);
    QCOMPARE(int(all.size()), buttonCount);
}

void tst_CMsgBoxQss::windowFlagsAndName()
{
    TestEnvironment env;
    CMsgBoxQss box(QMessageBox::Information, QStringLiteral("Tips"), QStringLiteral("Saved."),
                   QMessageBox::Ok);
    QCOMPARE(box.objectName(), QStringLiteral("CMsgBoxQss"));
    QCOMPARE(box.windowType(), Qt::Dialog);
    QVERIFY(box.windowFlags().testFlag(Qt::MSWindowsFixedSizeDialogHint));
    QVERIFY(!box.windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    // Style sheets select on the name, so a single-button box must find it.
    QVERIFY(box.findChild<QAbstractButton *>(QStringLiteral("messageBox_okButton")));
}

void tst_CMsgBoxQss::titleTextAndIcon()
{
    TestEnvironment env;
    QWidget parent;
    CMsgBoxQss box(QMessageBox::Question, QStringLiteral("Tips"),
                   QStringLiteral("Replace the library?"), QMessageBox::Yes | QMessageBox::No,
                   &parent);
    QCOMPARE(box.windowTitle(), QStringLiteral("Tips"));
    QCOMPARE(box.text(), QStringLiteral("Replace the library?"));
    QCOMPARE(box.icon(), QMessageBox::Question);
    QCOMPARE(box.parentWidget(), &parent);
}

QTEST_MAIN(tst_CMsgBoxQss)
#include "tst_cmsgboxqss.moc"
