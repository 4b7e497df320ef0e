#include "app/dialogs/EventEditFlow.h"

#include "app/AppContext.h"
#include "app/dialogs/frmEvent.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"

namespace EventEditFlow {

void StoreSavedEvent(AppContext& context, clsDbXml& db, const EventPtr& event) {
    event->CalcNextDueDate();
    event->CalcDaysLeft(); // the list's "Left" column and expired marker read it
    db.StoreRecord(event);
    db.SaveDB();
    // The shared folder's publishing; a calendar server's sync is started
    // by the database's publisher only.
    if (&db == &context.events && !db.Publishing() && DataFiles::Networked(context.settings) &&
        !DataFiles::CalDavMode(context.settings)) {
        context.shared.PublishSharedEvents(db);
    }
}

EventPtr AddNewEvent(AppContext& context, QWidget* parent) {
    auto event = std::make_shared<clsEvent>();
    frmEvent editor(context, *event, false, parent);
    editor.exec();
    if (!editor.Saved()) {
        return nullptr;
    }
    StoreSavedEvent(context, context.events, event);
    return event;
}

bool EditEvent(AppContext& context, clsDbXml& db, const EventPtr& event, QWidget* parent) {
    if (!event) {
        return false;
    }
    clsEvent copy = *event;
    frmEvent editor(context, copy, true, parent);
    editor.exec();
    if (!editor.Saved()) {
        return false;
    }
    *event = copy;
    StoreSavedEvent(context, db, event);
    return true;
}

} // namespace EventEditFlow
