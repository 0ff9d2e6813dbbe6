#include "library/clayercontext.h"
#include "module/deletequestion.h"
#include "support/cmsgboxqss.h"
#include "testenvironment.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTest>
#include <QTimer>

class tst_DeleteQuestion : public QObject
{
    Q_OBJECT

private slots:
    void answer_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("confirmed");
        QTest::newRow("Yes clicked") << "yes" << true;
        QTest::newRow("No clicked") << "no" << false;
        QTest::newRow("Escape counts as No") << "escape" << false;
        QTest::newRow("closed without an answer") << "done" << true;
    }

    // The store asks through a styled box with Yes and No; only No refuses.
    void answer()
    {
        QFETCH(QString, action);
        QFETCH(bool, confirmed);
        TestEnvironment env;
        InstallDeletionQuestion();
        QString seen;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            auto *box = qobject_cast<CMsgBoxQss *>(QApplication::activeModalWidget());
            if (!box)
                return;
            poll.stop();
            QStringList buttons;
            for (QAbstractButton *b : box->buttons())
                buttons.append(b->objectName());
            buttons.sort();
            seen = box->windowTitle() + '|' + box->text() + '|' + buttons.join(',');
            if (action == QLatin1String("yes"))
                box->button(QMessageBox::Yes)->click();
            else if (action == QLatin1String("no"))
                box->button(QMessageBox::No)->click();
            else if (action == QLatin1String("escape"))
                QTest::keyClick(box, Qt::Key_Escape);
            else
                box->done(0);
        });
        poll.start(10);
        QCOMPARE(g_LayerContext.Store().ConfirmDeletion(), confirmed);
        QCOMPARE(seen, QStringLiteral("Tips|Confirm deletion?|messageBox_noButton,messageBox_yesButton"));
    }
};

QTEST_MAIN(tst_DeleteQuestion)
#include "tst_deletequestion.moc"
