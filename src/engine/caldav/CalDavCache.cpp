#include "engine/caldav/CalDavCache.h"

#include "storage/clsDbXml.h"

namespace CalDavCache {

Events Load(cSHAREDSettings& settings, const QString& path, CalDavState& state) {
    clsDbXml db(settings);
    db.LoadDB(path);
    const QList<EventPtr>& list = db.Events();
    Events out;
    qsizetype next = 0;
    bool matches = true;
    for (const CalDavState::Collection& c : state.collections) {
        QHash<QString, EventPtr>& events = out[c.user];
        for (const CalDavState::Entry& e : c.entries) {
            if (e.id.isEmpty()) {
                continue; // a resource that gave no event
            }
            if (next >= list.size() || list.at(next)->IDCode != e.id ||
                list.at(next)->Owner() != e.owner) {
                matches = false;
                break;
            }
            events.insert(e.href, list.at(next++));
        }
    }
    if (!matches || next != list.size()) {
        state.collections.clear();
        return {};
    }
    return out;
}

QList<EventPtr> InStateOrder(const CalDavState& state, const Events& events) {
    QList<EventPtr> out;
    for (const CalDavState::Collection& c : state.collections) {
        const QHash<QString, EventPtr> mine = events.value(c.user);
        for (const CalDavState::Entry& e : c.entries) {
            if (!e.id.isEmpty() && mine.contains(e.href)) {
                out.append(mine.value(e.href));
            }
        }
    }
    return out;
}

QString Save(cSHAREDSettings& settings, const QString& path, const QList<EventPtr>& events) {
    clsDbXml db(settings);
    db.SetDBFilename(path);
    for (const EventPtr& e : events) {
        db.InsertRecord(db.RecordCount(), e); // ID codes of different users may repeat
    }
    db.SaveDB();
    return db.HasUnsavedChanges()
               ? QStringLiteral("The cache file %1 could not be written.").arg(path)
               : QString();
}

} // namespace CalDavCache
