#pragma once

#include <QString>

class cSHAREDSettings;
class clsDbXml;
class SharedDatabases;

// Where the user's data files are, by the settings, and (re)loading the
// process-wide databases from them: at start-up and after the options change.
namespace DataFiles {

// The setting "DataPath", the home folder when absent.
QString DataFolder(const cSHAREDSettings& settings);
QString EventsFile(const cSHAREDSettings& settings);  // data folder + "Events.xml"
QString ExpiredFile(const cSHAREDSettings& settings); // data folder + "Expired.xml"
// The setting "Networked".
bool Networked(const cSHAREDSettings& settings);

// Binds and loads the events and expired databases; in networked mode also
// loads the other users' shared events and makes every save of the events
// database publish this user's shared events. With logProgress, start-up's
// progress lines are logged between the steps.
void LoadDatabases(cSHAREDSettings& settings, clsDbXml& events, clsDbXml& expired,
                   SharedDatabases& shared, bool logProgress = false);

} // namespace DataFiles
