#pragma once

#include <QString>

class cSHAREDSettings;
class clsDbXml;
class clsLayers;
class IFileOpener;
class ISoundPlayer;
class SharedDatabases;
class UserDialogs;

// The process-wide objects, created once by Main and kept until the program
// ends. Windows receive this (or the parts of it they need) instead of
// reaching for globals; tests build their own on a temporary folder.
struct AppContext {
    cSHAREDSettings& settings;
    QString settingsFile; // "Tvo.ini" in the home folder
    clsLayers& layers;
    clsDbXml& events;        // the user's "Events.xml"
    clsDbXml& expired;       // "Expired.xml"
    SharedDatabases& shared; // networked mode: merged set and publishing
    UserDialogs& dialogs;
    IFileOpener& opener;
    ISoundPlayer& player;
};
