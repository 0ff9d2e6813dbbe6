#include "library/clayercontext.h"
#include "module/deletequestion.h"
#include "support/cmsgboxqss.h"
#include "testenvironment.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

class tst_DeleteQuestion : public QObject
{
    Q_OBJECT

private slots:
    void answer_data();
    void answer();
};

namespace {

// Runs `act` on the message box once it is up and modal.
void whenBoxShows(const std::function<void(CMsgBoxQss *)> &act, QString *seen)
{
    auto *poll = new QTimer;
    QObject::connect(poll, &QTimer::timeout, poll, [poll, act, seen] {
        auto *box = qobject_cast<CMsgBoxQss *>(QApplication::activeModalWidget());
        if (!box)
            return;
        poll->stop();
        poll->deleteLater();
        QStringList buttons;
        const auto all = box->buttons();
        for (QAbstractButton *b : all)
            buttons.append(b->objectName());
        buttons.sort();
        *seen = box->windowTitle() + QLatin1Char('|') + box->text() + QLatin1Char('|')
            + buttons.join(QLatin1Char(','));
        act(box);
    });
    poll->start(10);
}

} // namespace

void tst_DeleteQuestion::answer_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<bool>("confirmed");

    QTest::newRow("Yes clicked") << "yes" << true;
    QTest::newRow("No clicked") << "no" << false;
    QTest::newRow("Escape counts as No") << "escape" << false;
    QTest::newRow("closed without an answer") << "done" << true;
}

void tst_DeleteQuestion::answer()
{
    QFETCH(QString, action);
    QFETCH(bool, confirmed);
    TestEnvironment env;
    InstallDeletionQuestion();

    QString seen;
    whenBoxShows(
        [action](CMsgBoxQss *box) {
            if (action == QLatin1String("yes"))
                box->button(QMessageBox::Yes)->click();
            else if (action == QLatin1String("no"))
                box->button(QMessageBox::No)->click();
            else if (action == QLatin1String("escape"))
                QTest::keyClick(box, Qt::Key_Escape);
            else
                box->done(0);
        },
        &seen);
    QCOMPARE(g_LayerContext.Store().ConfirmDeletion(), confirmed);
    QCOMPARE(seen, QStringLiteral("Tips|Confirm deletion?|messageBox_noButton,messageBox_yesButton"));
}

QTEST_MAIN(tst_DeleteQuestion)
#include "tst_deletequestion.moc"
