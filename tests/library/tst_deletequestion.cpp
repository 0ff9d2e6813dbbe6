#include "library/clayercontext.h"
#include "module/deletequestion.h"
#include "support/cmsgboxqss.h"
#include "libmgrwidgettest.h"
#include "testenvironment.h"

#include "ctranslator.h"

#include <QTest>

class tst_DeleteQuestion : public QObject
{
    Q_OBJECT

private slots:
    void answer_data()
    {
        QTest::addColumn<int>("answer"); // a button, Qt::Key_Escape, 0: closed, -1: nobody to ask
        QTest::addColumn<QByteArray>("languageFile");
        QTest::addColumn<QByteArray>("wordings");
        QTest::addColumn<QString>("asked"); // title|question
        QTest::addColumn<bool>("confirmed");
        const int yes = QMessageBox::Yes, no = QMessageBox::No;
        const QByteArray none;
        // clang-format off
        QTest::newRow("Yes clicked") << yes << none << none << "Tips|Confirm deletion?" << true;
        QTest::newRow("No clicked") << no << none << none << "Tips|Confirm deletion?" << false;
        QTest::newRow("Escape counts as No") << int(Qt::Key_Escape) << none << none << "Tips|Confirm deletion?" << false;
        QTest::newRow("closed without an answer") << 0 << none << none << "Tips|Confirm deletion?" << true;
        QTest::newRow("language file translated") << yes << QByteArray("[CLayerMgrApp]\nDEL_TITLE=Notice\nDEL_TIP=Delete it?") << QByteArray("Notice=Achtung") << "Achtung|Delete it?" << true;
        QTest::newRow("other group not read") << yes << QByteArray("[DLG_LIB_MGR]\nDEL_TITLE=Elsewhere") << none << "Tips|Confirm deletion?" << true;
        // Headless use (tools): nobody to ask, nothing refused.
        QTest::newRow("no question installed") << -1 << none << none << QString() << true;
        // clang-format on
    }

    // The store asks through a styled box with Yes and No; only No refuses.
    void answer()
    {
        QFETCH(int, answer);
        QFETCH(QByteArray, languageFile);
        QFETCH(QByteArray, wordings);
        QFETCH(QString, asked);
        QFETCH(bool, confirmed);
        TestEnvironment env;
        if (!languageFile.isEmpty())
            env.writeFile(env.resourceDir() + QStringLiteral("/Lang/Chs/LayerMgr.ini"), languageFile);
        CTranslator *translator = CTranslator::GetInstance();
        if (!wordings.isEmpty()) {
            env.writeFile(env.root() + QStringLiteral("/words/Lang/De/w.ini"), wordings);
            translator->SetResourceDir(env.root() + QStringLiteral("/words"));
            translator->SetLanguage(QStringLiteral("De"));
        }
        if (answer >= 0)
            InstallDeletionQuestion();
        QString seen;
        QObject context; // ends the poll with the row
        whenModal<CMsgBoxQss>(&context, [&](CMsgBoxQss *box) {
            QStringList buttons;
            for (QAbstractButton *b : box->buttons())
                buttons.append(b->objectName());
            buttons.sort();
            seen = box->windowTitle() + '|' + box->text() + '|' + buttons.join(',');
            if (answer == Qt::Key_Escape)
                QTest::keyClick(box, Qt::Key_Escape);
            else if (answer)
                box->button(QMessageBox::StandardButton(answer))->click();
            else
                box->done(0);
        });
        const bool result = g_LayerContext.Store().ConfirmDeletion();
        translator->SetLanguage(QString());
        translator->SetResourceDir(QString());
        QCOMPARE(result, confirmed);
        QCOMPARE(seen, asked.isEmpty() ? asked : asked + "|messageBox_noButton,messageBox_yesButton");
        QCOMPARE(env.logLines().join('\n').contains(QStringLiteral("nothing to ask")), answer < 0);
    }
};

QTEST_MAIN(tst_DeleteQuestion)
#include "tst_deletequestion.moc"
