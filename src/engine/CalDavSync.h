#pragma once

#include "engine/CalDavAccount.h"
#include "model/clsEvent.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

class cSHAREDSettings;

// What one sync did.
struct CalDavSyncResult {
    bool ok = false;          // every request the sync needed was answered as asked
    bool unreachable = false; // the server gave no answer at all (working offline)
    QString error;            // one line for the user, with the server's answer; "" when ok
    int published = 0;        // resources written (new or changed)
    int removed = 0;          // resources deleted
    int usersRead = 0;        // collections read (other users', and this user's own)
    int eventsRead = 0;       // events in the merged set written to the cache
    int requests = 0;         // requests sent to the server

    // "Published 2, removed 1; read 2 users, 14 events"
    QString Summary() const;
};

// Networked mode through a calendar server. One sync publishes this user's
// shared events as <CalDAVUrl><CalDAVUser>/tarvo/<IDCode>.ics (only what
// changed since the last sync, as kept in the state file; resources that
// another program put there are never touched), then reads every listed
// user's collection and this user's own (for events that other programs put
// there), and writes the merged set to the cache file, which the shared
// databases load like the merged shared files. All network work is
// asynchronous: Start returns at once and finished follows.
class CalDavSync : public QObject {
    Q_OBJECT
public:
    CalDavSync(cSHAREDSettings& settings, QObject* parent = nullptr);
    ~CalDavSync() override;

    // Starts a sync of the given events (this user's events database; its
    // shared events are picked as the shared folder mode picks them, and
    // copied, so the list may change while the sync runs). A call while a
    // sync runs makes one more sync after it, with the events of the latest call.
    void Start(const QList<EventPtr>& localEvents, const QString& password);
    bool Running() const;

    // Checks the account: "Connected as Ann; 3 of 3 users' calendars
    // readable" (the users of CalDAVUsers, this user's own collection not
    // counted: the first sync makes it), or what went wrong. done(ok, line)
    // follows later.
    void TestConnection(const CalDavAccount& account, const QString& password,
                        std::function<void(bool ok, const QString& line)> done);

    // Takes back what this user published on the server (the resources the
    // state file at stateFile records for this account; another program's
    // resources stay), using the account and password given: those in force
    // before a change of mode. The state file then records nothing
    // published, so a later sync publishes afresh; collections read stay
    // recorded. Nothing is read. done(ok, line) follows later, the line also
    // logged: "Stopped sharing on the CalDAV server: removed 2 events", or
    // the server's refusal (the events not removed stay recorded).
    void StopSharing(const CalDavAccount& account, const QString& password,
                     const QString& stateFile,
                     std::function<void(bool ok, const QString& line)> done);


signals:
    void started();
    void finished(const CalDavSyncResult& result);

private:
    struct Impl;
    cSHAREDSettings& m_settings;
    Impl* m_impl = nullptr;
};
