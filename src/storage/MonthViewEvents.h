#pragma once

#include "storage/clsDbXml.h"

#include <QList>
#include <QString>

class cSHAREDSettings;
class clsLayers;

// The month view's own copy of the events: the user's database and the
// shared databases named in the shared folder's user list, read fresh from
// disk for every month shown. Nothing here is ever written back, so the view
// may move these events through their occurrences freely.
class MonthViewEvents {
public:
    // layers: maps shared events' layer names to local layers (may be null).
    MonthViewEvents(cSHAREDSettings& settings, clsLayers* layers);

    // Loads eventsFile (the user's "Events.xml", as it is: nothing filtered,
    // no layer mapped) and, when the setting "SharedDatapath" names a folder,
    // the users listed in its "TVOShared.ini" (in the calendar-server mode
    // the cache file instead). Missing files give no events.
    void Load(const QString& eventsFile);

    // Local events first, then the shared ones, each in file order.
    QList<EventPtr> Events() const;
    // The setting "Networked".
    bool Networked() const;

private:
    cSHAREDSettings& m_settings;
    clsDbXml m_local;
    clsDbXml m_shared;
};
