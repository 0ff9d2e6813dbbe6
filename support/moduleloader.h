#pragma once

#include <QString>

// Loads a sibling plug-in by name and returns the interface its NewInterface
// creates, or null. The extra argument is kept for the host's calling
// convention and unused.
void *LoadModule(const QString &name, bool showErrors, void *reserved = nullptr);
// Gives an interface back to its library and unloads it. Always true.
bool ReleaseModule(void *module);
// Releases every loaded module, last loaded first.
void ReleaseAllModules();
// The error text of the last failed load, with the library's own reason
// after it; empty after a successful load.
QString LastModuleError();

// Shows a failed load to the user (title, text). The loader itself knows no
// widgets; the plug-in installs a message box when it starts.
using ModuleErrorPresenter = void (*)(const QString &title, const QString &text);
void SetModuleErrorPresenter(ModuleErrorPresenter show);
