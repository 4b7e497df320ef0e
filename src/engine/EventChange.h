#pragma once

#include "model/clsEvent.h"

#include <QList>

class clsDbXml;

// One change the user made to the event databases (an add, an edit, a
// delete, a push, a new way of sharing), recorded so that it can be undone
// and redone. For every event it touched it keeps the event's place in its
// database's list and all its fields, before and after; undoing puts the
// "before" places and fields back and saves each database touched, so the
// files come back byte for byte (and in networked mode the shared file is
// published again by the save, as after the change itself).
//
// The records are the list's own objects. A database that has been loaded
// again since the change holds other objects, so the change then refuses to
// apply (the caller forgets its history).
class EventChange {
public:
    // Before the change: notes where event is in db now and what it holds.
    // An event that is not in db's list counts as absent there.
    void Watch(clsDbXml& db, const EventPtr& event);
    // After the fact, for an event the change added to db: absent before.
    void WatchAdded(clsDbXml& db, const EventPtr& event);
    // After the change: notes the new places and fields, and forgets the
    // events whose place and fields stayed as they were.
    void Finish();

    bool IsEmpty() const { return m_records.isEmpty(); }
    // The events the change touched (after Finish).
    int Count() const { return static_cast<int>(m_records.size()); }
    QList<EventPtr> Events() const;

    // Put the state before (Undo) or after (Redo) back and save each
    // database touched. False, changing nothing, when a database was loaded
    // again since the change.
    bool Undo();
    bool Redo();

private:
    struct State {
        qsizetype index = -1; // place in the list; -1 absent
        clsEvent fields;
    };
    struct Record {
        clsDbXml* db;
        EventPtr event;
        State before;
        State after;
        quint64 generation = 0;
    };
    void watch(clsDbXml& db, const EventPtr& event, bool absent);
    bool apply(bool undo);

    QList<Record> m_records;
};
