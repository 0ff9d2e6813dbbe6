#include "deletequestion.h"

#include "library/clayercontext.h"
#include "support/cmsgboxqss.h"

#include <QApplication>

bool AskDeletionInMessageBox(const QString &title, const QString &question)
{
    CMsgBoxQss box(QMessageBox::Question, title, question, QMessageBox::Yes | QMessageBox::No,
                   QApplication::activeWindow());
    return box.exec() != QMessageBox::No;
}

void InstallDeletionQuestion()
{
    g_LayerContext.Store().SetDeletionQuestion(&AskDeletionInMessageBox);
}
