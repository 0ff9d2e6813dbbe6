#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QTimer>

#include <functional>

// Writes a picture of one of the plug-in's dialogs. The dialogs are the
// plug-in's own, so they are reached as a user reaches them: a double click
// on the panel's first row opens the library manager, and the others are
// opened from there through its widgets, found by object name. Every dialog
// is rejected afterwards.
class CDialogShooter : public QObject
{
    Q_OBJECT

public:
    static constexpr int kWaitMilliseconds = 5000;

    CDialogShooter(QWidget *panel, const QString &dialog, const QString &file,
                   QObject *parent = nullptr);

    static QStringList DialogNames();
    // The import summary needs a library the user changed and a file to
    // import: the host gives it a data folder of its own, so the picture
    // never touches the user's library, and the sample file (mergesample.h).
    static bool UsesPrivateData(const QString &dialog);
    void SetImportFile(const QString &file) { m_importFile = file; }
    void Start();

signals:
    // exitCode 0 when the picture was written; otherwise error says why.
    void SigFinished(int exitCode, const QString &error);

private:
    // What to do once the named dialog is the top modal widget; returns an
    // error, or nothing when the next step may follow.
    struct Step
    {
        QString dialog;
        std::function<QString(QWidget *)> act;
    };

    void buildSteps(const QString &dialog);
    void poll();
    void fail(int exitCode, const QString &error);
    QString openLibraryManager();
    QString grab(QWidget *widget);

    QWidget *m_panel;
    QString m_file;
    QString m_importFile;
    QList<Step> m_steps;
    QTimer m_poll;
    QElapsedTimer m_waiting;  // since the current step began
    QElapsedTimer m_settling; // since its dialog came up
    bool m_closing = false;
    int m_exitCode = 0;
    QString m_error;
};
