#include "moduleloader.h"

#include "ilog.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QThread>

#include <memory>
#include <vector>

namespace {

using NewInterfaceFn = void *(*)();
using ReleaseInterfaceFn = void (*)(void *);

struct LoadedModule
{
    std::unique_ptr<QLibrary> library;
    NewInterfaceFn create = nullptr;
    ReleaseInterfaceFn release = nullptr;
    void *module = nullptr;
};

std::vector<std::unique_ptr<LoadedModule>> &modules()
{
    static std::vector<std::unique_ptr<LoadedModule>> list;
    return list;
}

ModuleErrorPresenter &presenter()
{
    static ModuleErrorPresenter show = nullptr;
    return show;
}

QString &lastError()
{
    static QString text;
    return text;
}

// A bare name is looked for beside the application first: a host's plug-ins
// live in its bin/, which the dynamic linker does not search by itself.
bool loadLibrary(QLibrary &library, const QString &name)
{
    if (QCoreApplication::instance() && QDir::isRelativePath(name)) {
        library.setFileName(QCoreApplication::applicationDirPath() + QLatin1Char('/') + name);
        if (library.load())
            return true;
    }
    library.setFileName(name);
    return library.load();
}

// Qt shares one handle among all QLibrary objects of a file, and one unload()
// closes it for all of them: a library another record still uses stays.
void unloadUnlessShared(QLibrary &library)
{
    if (!library.isLoaded())
        return;
    for (const auto &other : modules()) {
        if (other->library.get() != &library && other->library->isLoaded()
            && other->library->fileName() == library.fileName())
            return;
    }
    library.unload();
}

} // namespace

void *LoadModule(const QString &name, bool showErrors, void *reserved)
{
    Q_UNUSED(reserved);
    auto record = std::make_unique<LoadedModule>();
    record->library = std::make_unique<QLibrary>();

    QString error;
    if (!loadLibrary(*record->library, name)) {
        error = QStringLiteral("Load %1 failed! \n");
    } else {
        record->create = reinterpret_cast<NewInterfaceFn>(record->library->resolve("NewInterface"));
        if (!record->create) {
            error = QStringLiteral("Load %1 faile2! \n");
        } else {
            record->release
                = reinterpret_cast<ReleaseInterfaceFn>(record->library->resolve("ReleaseInterface"));
            if (record->release)
                record->module = record->create();
            if (!record->release || !record->module)
                error = QStringLiteral("Load %1 faile3! \n");
        }
    }

    if (error.isEmpty()) {
        lastError().clear();
        void *module = record->module;
        modules().push_back(std::move(record));
        return module;
    }

    const QString text = error.arg(name);
    const QByteArray reason = record->library->errorString().toLocal8Bit();
    lastError() = text + QString::fromLocal8Bit(reason);
    ILog_WriteLogF(3, "%s%s", text.toUtf8().constData(), reason.constData());
    if (showErrors && presenter() && QCoreApplication::instance()
        && QThread::currentThread() == QCoreApplication::instance()->thread()) {
        presenter()(QStringLiteral("Tips"), text);
    }
    unloadUnlessShared(*record->library);
    return nullptr;
}

bool ReleaseModule(void *module)
{
    auto &list = modules();
    for (auto it = list.rbegin(); it != list.rend(); ++it) {
        LoadedModule &record = **it;
        if (record.module != module)
            continue;
        if (record.library && record.release && record.module) {
            record.release(record.module);
            unloadUnlessShared(*record.library);
        }
        list.erase(std::next(it).base());
        break;
    }
    return true;
}

void ReleaseAllModules()
{
    auto &list = modules();
    while (!list.empty())
        ReleaseModule(list.back()->module);
}

void SetModuleErrorPresenter(ModuleErrorPresenter show)
{
    presenter() = show;
}

QString LastModuleError()
{
    return lastError();
}
