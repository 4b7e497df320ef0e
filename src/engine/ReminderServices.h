#pragma once

class clsDbXml;
class cSHAREDSettings;
class IDesktopNotifier;
class IFileOpener;
class IReminderWindowFactory;
class UserDialogs;

// What the reminder engine works on: the process-wide settings and databases,
// and the seams through which it shows windows and notifications, opens files
// and asks the user.
struct ReminderServices {
    cSHAREDSettings& settings;
    clsDbXml& events;  // the user's "Events.xml"
    clsDbXml& expired; // "Expired.xml"
    clsDbXml* shared;  // other users' shared events (networked mode), or null
    IReminderWindowFactory& windows;
    IFileOpener& opener;
    UserDialogs& dialogs;
    IDesktopNotifier* notifier = nullptr; // the desktop's notifications, or none
};
