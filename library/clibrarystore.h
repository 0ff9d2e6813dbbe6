#pragma once

#include "cmateriallibrary.h"
#include "crunningoptions.h"

#include <QDateTime>
#include <QString>

#include <functional>

// The material library as the plug-in keeps it: the user library ("lm.json"
// in the data folder, first copied from the factory library), the factory
// library read beside it, the running options ("lm.tmp.json"), dated backups
// in "Backup/", and the deletion question. Model code: the question itself
// is asked by whatever the widget side installs.
class CLibraryStore
{
public:
    using Clock = std::function<QDateTime()>;
    // Returns true unless the user answered No.
    using DeletionQuestion = std::function<bool(const QString &title, const QString &question)>;

    CLibraryStore();

    CMaterialLibrary &UserLibrary() { return m_user; }
    const CMaterialLibrary &UserLibrary() const { return m_user; }
    const CMaterialLibrary &FactoryLibrary() const { return m_factory; }

    // "%1/Data%2" with "/lm.json" when loading; "%1/Data/%2" with "/lm.json"
    // when saving, backing up and deleting, which doubles the separator.
    static QString UserLibraryLoadPath();
    static QString UserLibraryPath();
    static QString RunningOptionsLoadPath();
    static QString RunningOptionsPath();
    // "/Data/defaultMaterial.json" below the application resource directory.
    static QString FactoryLibraryPath();
    // "%1/Backup/".
    static QString BackupDir();

    // Start-up: copies the factory library in when there is no user library,
    // reads the user library, the running options and the factory library.
    // A user library that does not read as one is backed up first.
    void Load();
    // Whether Load() ran since construction or the last Reset(): the module
    // loads once per process and later module objects share what it holds.
    bool IsLoaded() const { return m_loaded; }
    // The user library, then the running options, each written atomically.
    // False when either could not be written; the previous files stay whole.
    bool Save();

    // Reads the file; when it reads as a library, backs up "lm.json", takes
    // the file's library over whole in place of the user library and saves.
    // Import, restore defaults and the module's reload use it.
    bool BackupAndTakeOver(const QString &path);
    bool RestoreFactoryLibrary() { return BackupAndTakeOver(FactoryLibraryPath()); }
    // Import: backs up "lm.json", then saves `merged` in place of the user
    // library. False, with the user library in memory as it was, when
    // "lm.json" could not be written.
    bool TakeMerged(const CMaterialLibrary &merged);
    // Reads the factory library again into the second library.
    bool ReloadFactoryLibrary();
    // Export: the user library into any file, atomically.
    bool WriteUserLibrary(const QString &path) const;
    // Makes sure "Backup/" exists, then copies "lm.json" to
    // "Backup/libyyyyMMddHHmmss.bck" (clock time). An
    // existing backup of that name is never replaced. Returns the backup's
    // path, empty when nothing was copied.
    QString BackUpUserLibrary() const;

    // Asks before a material, thickness or tube power is deleted; the title
    // and question come from the language file.
    bool ConfirmDeletion() const;

    void SetClock(Clock clock);
    void SetDeletionQuestion(DeletionQuestion question);

    const RunningOptionList &RunningOptions() const { return m_runningOptions; }
    // First entry of that colour, or null.
    const CRunningOptions *FindRunningOption(quint32 color) const;
    // Replaces the first entry of the colour, or appends one.
    void SetRunningOption(quint32 color, const CRunningOptions &options);
    // Drops the first entry of the colour.
    void RemoveRunningOption(quint32 color);
    QString RunningOptionsJson() const;
    bool SetRunningOptionsJson(const QString &text);

    void Reset();

private:
    QString backUpCorruptFile(const QString &path) const;

    CMaterialLibrary m_user;
    CMaterialLibrary m_factory;
    RunningOptionList m_runningOptions;
    Clock m_clock;
    DeletionQuestion m_question;
    // Set while "lm.json" holds something unreadable that could not be
    // backed up: saving would destroy it.
    bool m_userFileHeld = false;
    bool m_loaded = false;
};
