#pragma once

#include "model/clsEvent.h"

class QWidget;
class clsDbXml;
struct AppContext;

// The main window's add and edit commands around the event editor: show the
// editor modally, and when the user saves, give the event its next due date,
// store it in its database and write the file (which in networked mode also
// publishes the user's shared events). Abort changes nothing.
namespace EventEditFlow {

// A new event in the local database; the stored event (with its new ID
// code), or null when the user aborted.
EventPtr AddNewEvent(AppContext& context, QWidget* parent = nullptr);

// Edits event, which db holds (the local or the expired database). The
// editor works on a copy, so an aborted or half-validated edit leaves the
// listed object untouched; a save copies the result into it and stores it
// back by its ID code. True when the user saved.
bool EditEvent(AppContext& context, clsDbXml& db, const EventPtr& event, QWidget* parent = nullptr);

// What both commands do after a save: next due date, store, save and, for
// the local database in networked mode when it does not publish on its own,
// publish.
void StoreSavedEvent(AppContext& context, clsDbXml& db, const EventPtr& event);

} // namespace EventEditFlow
