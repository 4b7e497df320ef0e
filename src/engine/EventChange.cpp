#include "engine/EventChange.h"

#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"

#include <algorithm>

void EventChange::Watch(clsDbXml& db, const EventPtr& event) {
    watch(db, event, false);
}

void EventChange::WatchAdded(clsDbXml& db, const EventPtr& event) {
    watch(db, event, true);
}

void EventChange::watch(clsDbXml& db, const EventPtr& event, bool absent) {
    if (!event) {
        return;
    }
    for (const Record& r : std::as_const(m_records)) {
        if (r.db == &db && r.event == event) {
            return;
        }
    }
    Record r{&db, event, {}, {}, db.ListGeneration()};
    r.before.index = absent ? -1 : db.Events().indexOf(event);
    r.before.fields = *event;
    m_records.append(r);
}

void EventChange::Finish() {
    QList<Record> changed;
    for (Record& r : m_records) {
        if (r.db->ListGeneration() != r.generation) {
            continue; // loaded again during the change: nothing to put back
        }
        r.after.index = r.db->Events().indexOf(r.event);
        r.after.fields = *r.event;
        if (r.after.index != r.before.index ||
            (r.after.index >= 0 && !(r.after.fields == r.before.fields))) {
            changed.append(r);
        }
    }
    m_records = changed;
}

QList<EventPtr> EventChange::Events() const {
    QList<EventPtr> out;
    for (const Record& r : m_records) {
        out.append(r.event);
    }
    return out;
}

bool EventChange::Undo() {
    return apply(true);
}

bool EventChange::Redo() {
    return apply(false);
}

bool EventChange::apply(bool undo) {
    for (const Record& r : std::as_const(m_records)) {
        if (r.db->ListGeneration() != r.generation) {
            Log().AddAction(QStringLiteral("Database loaded again since the change: not undone"),
                            undo ? QStringLiteral("Undo") : QStringLiteral("Redo"),
                            QStringLiteral("EventChange"));
            return false;
        }
    }
    // Take every touched event out, then put each back at its place in
    // ascending order: the untouched events keep their order, so each
    // insertion lands where the recorded list had it.
    QList<clsDbXml*> databases;
    QList<const Record*> order;
    for (const Record& r : std::as_const(m_records)) {
        r.db->TakeRecord(r.event);
        *r.event = undo ? r.before.fields : r.after.fields;
        if (!databases.contains(r.db)) {
            databases.append(r.db);
        }
        order.append(&r);
    }
    auto target = [undo](const Record* r) { return undo ? r->before.index : r->after.index; };
    std::stable_sort(order.begin(), order.end(),
                     [&](const Record* a, const Record* b) { return target(a) < target(b); });
    for (const Record* r : std::as_const(order)) {
        if (target(r) >= 0) {
            r->db->InsertRecord(target(r), r->event);
        }
    }
    for (clsDbXml* db : std::as_const(databases)) {
        db->SaveDB();
    }
    return true;
}
