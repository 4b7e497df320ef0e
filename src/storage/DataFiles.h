#pragma once

#include <QString>

class cSHAREDSettings;
class clsDbXml;
class SharedDatabases;

// Where the user's data files are, by the settings, and (re)loading the
// process-wide databases from them: at start-up and after the options change.
namespace DataFiles {

// The setting "DataPath" as a folder: a relative value lies in the home
// folder ("." is the home folder itself), so a copied or moved home keeps
// its data; an absent or empty value is the home folder.
QString DataFolder(const cSHAREDSettings& settings);
// The "DataPath" value for a folder: relative to the home folder when it lies
// inside it, otherwise the absolute path.
QString DataPathValue(const QString& folder);
// Called at start-up, before the data folder is used. An absolute "DataPath"
// inside the home folder becomes relative. One that an older settings file
// holds for a home folder that was since copied or moved (the last folder of
// the home's name in the path, followed by the same subfolders, holds
// "Events.xml" beside the new home; and the old path is gone or its home
// still has its "Tvo.ini") is taken to the new home. Logs what it changes.
void AdoptDataFolder(cSHAREDSettings& settings);
QString EventsFile(const cSHAREDSettings& settings);  // data folder + "Events.xml"
QString ExpiredFile(const cSHAREDSettings& settings); // data folder + "Expired.xml"
// The setting "Networked".
bool Networked(const cSHAREDSettings& settings);
// Networked and the setting "NetworkMode" is "caldav": the other users'
// events come from a calendar server (through the cache file) instead of
// the shared folder.
bool CalDavMode(const cSHAREDSettings& settings);
// Data folder + "CalDAVShared.xml": the merged set read from the calendar
// server, in the event-file format (written by the sync, read like the
// merged shared files).
QString CalDavCacheFile(const cSHAREDSettings& settings);
// Data folder + "CalDAVState.json": what this user published to the server
// (names and ETags) and each collection's sync token and resources.
QString CalDavStateFile(const cSHAREDSettings& settings);

// Binds and loads the events and expired databases (as in single-user mode,
// and keeping a list whose changes could not be saved yet); in networked mode
// also loads the other users' shared events and makes every save of the
// events database publish this user's shared events to the shared folder.
// In the calendar-server mode the shared events come from the cache file and
// the events database is left without a publisher (the caller attaches one
// that starts a sync). With logProgress, start-up's
// progress lines are logged between the steps.
void LoadDatabases(cSHAREDSettings& settings, clsDbXml& events, clsDbXml& expired,
                   SharedDatabases& shared, bool logProgress = false);

} // namespace DataFiles
