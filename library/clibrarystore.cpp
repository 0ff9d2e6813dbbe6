#include "clibrarystore.h"

#include "librarydocument.h"
#include "support/directories.h"
#include "support/settings.h"

#include "ctranslator.h"
#include "ilog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace {

const char kUserFile[] = "/lm.json";
const char kRunningFile[] = "/lm.tmp.json";
const char kBackupFormat[] = "'lib'yyyyMMddHHmmss'.bck'";

QString loadPath(const char *name)
{
    return QStringLiteral("%1/Data%2").arg(UserDataDir(), QLatin1String(name));
}

QString savePath(const char *name)
{
    return QStringLiteral("%1/Data/%2").arg(UserDataDir(), QLatin1String(name));
}

bool writeText(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

QByteArray readText(const QString &path)
{
    QFile file(path);
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly))
        return QByteArray();
    // Running options are a few hundred bytes per colour.
    if (file.size() > kMaxLibraryFileSize)
        return QByteArray();
    return file.readAll();
}

} // namespace

CLibraryStore::CLibraryStore()
{
    SetClock({});
}

QString CLibraryStore::UserLibraryLoadPath()
{
    return loadPath(kUserFile);
}

QString CLibraryStore::UserLibraryPath()
{
    return savePath(kUserFile);
}

QString CLibraryStore::RunningOptionsLoadPath()
{
    return loadPath(kRunningFile);
}

QString CLibraryStore::RunningOptionsPath()
{
    return savePath(kRunningFile);
}

QString CLibraryStore::FactoryLibraryPath()
{
    return AppResourceDir() + QStringLiteral("/Data/defaultMaterial.json");
}

QString CLibraryStore::BackupDir()
{
    return UserDataDir() + QStringLiteral("/Backup/");
}

void CLibraryStore::Load()
{
    const QString userPath = UserLibraryLoadPath();
    const QString factoryPath = FactoryLibraryPath();
    if (!QFileInfo::exists(userPath) && QFileInfo(factoryPath).isFile()) {
        if (QFile::copy(factoryPath, userPath)) {
            // An installed factory file may be read-only; the copy is the user's.
            QFile::setPermissions(userPath, QFile::permissions(userPath) | QFile::WriteOwner
                                                | QFile::ReadOwner);
        }
    }

    m_loaded = true;
    m_userFileHeld = false;
    const LibraryReadResult read = ReadMaterialLibraryFile(userPath, m_user);
    if (!read.ok() && QFileInfo(userPath).isFile()) {
        const QString backup = backUpCorruptFile(userPath);
        if (backup.isEmpty()) {
            m_userFileHeld = true;
            ILog_WriteLogF(3, "Library %s: %s; no backup could be made, it is left as it is",
                           qUtf8Printable(userPath), qUtf8Printable(read.reason()));
        } else {
            ILog_WriteLogF(2, "Library %s: %s; kept as %s", qUtf8Printable(userPath),
                           qUtf8Printable(read.reason()), qUtf8Printable(backup));
        }
    }

    SetRunningOptionsJson(QString::fromUtf8(readText(RunningOptionsLoadPath())));

    m_factory.Clear();
    if (QFileInfo::exists(factoryPath))
        ReadMaterialLibraryFile(factoryPath, m_factory);
}

bool CLibraryStore::Save()
{
    bool ok = true;
    // The unreadable file is gone (a reload deletes what it took over):
    // nothing is left to protect.
    if (m_userFileHeld && !QFileInfo::exists(UserLibraryPath()))
        m_userFileHeld = false;
    if (m_userFileHeld) {
        ILog_WriteLogF(3, "Library not saved: %s is unreadable and has no backup",
                       qUtf8Printable(UserLibraryPath()));
        ok = false;
    } else if (!WriteMaterialLibraryFile(UserLibraryPath(), m_user)) {
        ILog_WriteLogF(3, "Library not saved: cannot write %s", qUtf8Printable(UserLibraryPath()));
        ok = false;
    }
    if (!writeText(RunningOptionsPath(), RunningOptionsJson().toUtf8())) {
        ILog_WriteLogF(3, "Running options not saved: cannot write %s",
                       qUtf8Printable(RunningOptionsPath()));
        ok = false;
    }
    return ok;
}

bool CLibraryStore::BackupAndTakeOver(const QString &path)
{
    if (!QFileInfo::exists(path))
        return false;
    CMaterialLibrary taken;
    const LibraryReadResult read = ReadMaterialLibraryFile(path, taken);
    if (!read.ok()) {
        ILog_WriteLogF(2, "Library %s not taken over: %s", qUtf8Printable(path),
                       qUtf8Printable(read.reason()));
        return false;
    }
    // A failed backup does not stop the take-over.
    if (BackUpUserLibrary().isEmpty() && QFileInfo::exists(UserLibraryPath()))
        ILog_WriteLogF(3, "Library backup of %s failed", qUtf8Printable(UserLibraryPath()));
    m_user = std::move(taken);
    m_userFileHeld = false;
    return Save();
}

bool CLibraryStore::TakeMerged(const CMaterialLibrary &merged)
{
    // A merge builds on what was read, so an unreadable file it would replace
    // must not be overwritten without its backup.
    if (m_userFileHeld && QFileInfo::exists(UserLibraryPath())) {
        ILog_WriteLogF(3, "Library not merged: %s is unreadable and has no backup",
                       qUtf8Printable(UserLibraryPath()));
        return false;
    }
    if (BackUpUserLibrary().isEmpty() && QFileInfo::exists(UserLibraryPath()))
        ILog_WriteLogF(3, "Library backup of %s failed", qUtf8Printable(UserLibraryPath()));
    // The running options are not part of a merge: only "lm.json" is written,
    // so a failure leaves memory and file as they were.
    if (!WriteMaterialLibraryFile(UserLibraryPath(), merged)) {
        ILog_WriteLogF(3, "Library not saved: cannot write %s", qUtf8Printable(UserLibraryPath()));
        return false;
    }
    m_user = merged;
    m_userFileHeld = false;
    return true;
}

bool CLibraryStore::ReloadFactoryLibrary()
{
    const LibraryReadResult read = ReadMaterialLibraryFile(FactoryLibraryPath(), m_factory);
    return read.ok();
}

bool CLibraryStore::WriteUserLibrary(const QString &path) const
{
    return WriteMaterialLibraryFile(path, m_user);
}

QString CLibraryStore::BackUpUserLibrary() const
{
    const QString dir = BackupDir();
    if (!QDir().mkpath(dir))
        return QString();
    const QString source = UserLibraryPath();
    if (!QFileInfo(source).isFile())
        return QString();
    const QString target = dir + m_clock().toString(QLatin1String(kBackupFormat));
    // QFile::copy never replaces: a second backup within the same second is dropped.
    return QFile::copy(source, target) ? target : QString();
}

QString CLibraryStore::backUpCorruptFile(const QString &path) const
{
    const QString dir = BackupDir();
    if (!QDir().mkpath(dir))
        return QString();
    // Unlike the regular backup this one must not be dropped: it may be the
    // only copy of the user's library.
    const QString stamp = m_clock().toString(QStringLiteral("'lib'yyyyMMddHHmmss"));
    for (int n = 1; n <= 100; ++n) {
        const QString target = dir + stamp
            + (n == 1 ? QString() : QLatin1Char('-') + QString::number(n))
            + QStringLiteral(".bck");
        if (!QFileInfo::exists(target) && QFile::copy(path, target))
            return target;
    }
    return QString();
}

bool CLibraryStore::ConfirmDeletion() const
{
    const QString ini = AppResourceDir() + QStringLiteral("/Lang/Chs/LayerMgr.ini");
    const QString group = QStringLiteral("CLayerMgrApp");
    const QString title = ReadIniString(group, QStringLiteral("DEL_TITLE"), QStringLiteral("Tips"),
                                        ini);
    const QString question = ReadIniString(group, QStringLiteral("DEL_TIP"),
                                           QStringLiteral("Confirm deletion?"), ini);
    const CTranslator *translator = CTranslator::GetInstance();
    if (!m_question) {
        ILog_WriteLogF(3, "%s", "Deletion question: nothing to ask it with, taken as confirmed");
        return true;
    }
    return m_question(translator->GetWording(title), translator->GetWording(question));
}

void CLibraryStore::SetClock(Clock clock)
{
    m_clock = clock ? std::move(clock) : Clock(&QDateTime::currentDateTime);
}

void CLibraryStore::SetDeletionQuestion(DeletionQuestion question)
{
    m_question = std::move(question);
}

const CRunningOptions *CLibraryStore::FindRunningOption(quint32 color) const
{
    const auto it = std::find_if(m_runningOptions.cbegin(), m_runningOptions.cend(),
                                 [color](const RunningOptionEntry &e) { return e.color == color; });
    return it == m_runningOptions.cend() ? nullptr : &it->options;
}

void CLibraryStore::SetRunningOption(quint32 color, const CRunningOptions &options)
{
    const auto it = std::find_if(m_runningOptions.begin(), m_runningOptions.end(),
                                 [color](const RunningOptionEntry &e) { return e.color == color; });
    if (it != m_runningOptions.end())
        it->options = options;
    else
        m_runningOptions.push_back({color, options});
}

void CLibraryStore::RemoveRunningOption(quint32 color)
{
    const auto it = std::find_if(m_runningOptions.begin(), m_runningOptions.end(),
                                 [color](const RunningOptionEntry &e) { return e.color == color; });
    if (it != m_runningOptions.end())
        m_runningOptions.erase(it);
}

QString CLibraryStore::RunningOptionsJson() const
{
    return RunningOptionsToJson(m_runningOptions);
}

bool CLibraryStore::SetRunningOptionsJson(const QString &text)
{
    return RunningOptionsFromJson(text, m_runningOptions);
}

void CLibraryStore::Reset()
{
    m_user.Clear();
    m_factory.Clear();
    m_runningOptions.clear();
    SetClock({});
    m_question = {};
    m_userFileHeld = false;
    m_loaded = false;
}
