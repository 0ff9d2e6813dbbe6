#pragma once

#include <QString>

// A small library merge to picture the import summary: writes the user
// library "lm.json" into dataDir as a copy of the factory library with one
// set the user changed, and importFile as another copy that changes that set
// (a conflict), changes two values of another material's set and adds a
// thickness. The host never reads the plug-in's code: this edits the JSON.
bool WriteMergeSample(const QString &factoryFile, const QString &dataDir, const QString &importFile,
                      QString *error);
