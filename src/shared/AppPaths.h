#pragma once

#include <QString>

// Tarvo's home folder (what the settings call the program folder): where
// "Tvo.ini", "log.txt", "Autobackups" and the default data folder live.
//   1. $TARVO_HOME when set;
//   2. otherwise the executable's folder when a "Tvo.ini" lies beside it
//      (a portable install);
//   3. otherwise the per-user data folder.
// The folder is created when missing. Paths come back without a trailing
// separator; join with JoinPath.
namespace AppPaths {

QString HomeFolder();
// The same folder without creating it.
QString HomeFolderPath();
// folder + separator + name, with exactly one separator between them.
QString JoinPath(const QString& folder, const QString& name);
// The name of an existing entry of folder that equals name regardless of
// letter case ("events.dat" for "Events.dat"); name itself when none does.
QString FindCaseInsensitive(const QString& folder, const QString& name);

constexpr const char* kHomeVariable = "TARVO_HOME";

} // namespace AppPaths
