#pragma once

#include <QString>

// The widget side of the library store's deletion question: a styled
// message box with Yes and No, run modally. True unless the answer is No.
bool AskDeletionInMessageBox(const QString &title, const QString &question);

// Has the library store ask through AskDeletionInMessageBox.
void InstallDeletionQuestion();
