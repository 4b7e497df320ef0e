#pragma once

#include "engine/CategoryRename.h"
#include "engine/EventChange.h"

#include <QUndoCommand>

#include <functional>

// The main window's undoable changes, one command class per kind. A command
// is pushed onto the window's QUndoStack after its change was made, so the
// redo that the push runs does nothing; later undos and redos go through the
// engine's recorded change (EventChange, CategoryRename), which saves the
// files, and then call back so the window refills its lists.

// After an undo or redo: the events it touched, and false when the change
// could not be applied because the databases were loaded again since.
using UndoStepDone = std::function<void(const QList<EventPtr>& touched, bool applied)>;

class EventChangeCommand : public QUndoCommand {
public:
    bool IsEmpty() const { return m_change.IsEmpty(); }
    void undo() override;
    void redo() override;

    // 'Dentist': the description's first line, shortened, in quotes.
    static QString Quoted(const clsEvent& event);

protected:
    EventChangeCommand(EventChange change, UndoStepDone done);
    const EventChange& change() const { return m_change; }

private:
    EventChange m_change;
    UndoStepDone m_done;
    bool m_made = true; // the change was made before the push
};

class AddEventCommand : public EventChangeCommand {
public:
    AddEventCommand(EventChange change, const clsEvent& added, UndoStepDone done);
};

class EditEventCommand : public EventChangeCommand {
public:
    EditEventCommand(EventChange change, const clsEvent& edited, UndoStepDone done);
};

// One row or several, from the events and the expired database.
class DeleteEventsCommand : public EventChangeCommand {
public:
    DeleteEventsCommand(EventChange change, UndoStepDone done);
};

class PushEventCommand : public EventChangeCommand {
public:
    PushEventCommand(EventChange change, const clsEvent& pushed, UndoStepDone done);
};

class ShareWithCommand : public EventChangeCommand {
public:
    ShareWithCommand(EventChange change, const clsEvent& shared, UndoStepDone done);
};

class RenameCategoriesCommand : public QUndoCommand {
public:
    RenameCategoriesCommand(CategoryRename rename, std::function<void()> done);
    void undo() override;
    void redo() override;

private:
    CategoryRename m_rename;
    std::function<void()> m_done;
    bool m_made = true;
};
