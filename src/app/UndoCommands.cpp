#include "app/UndoCommands.h"

namespace {
constexpr int kLongestDescription = 40;
}

EventChangeCommand::EventChangeCommand(EventChange change, UndoStepDone done)
    : m_change(std::move(change)), m_done(std::move(done)) {}

QString EventChangeCommand::Quoted(const clsEvent& event) {
    QString desc = event.Desc().trimmed().section(QLatin1Char('\n'), 0, 0).trimmed();
    if (desc.size() > kLongestDescription) {
        desc = desc.left(kLongestDescription - 1).trimmed() + QChar(0x2026);
    }
    return QLatin1Char('\'') + desc + QLatin1Char('\'');
}

void EventChangeCommand::undo() {
    const bool applied = m_change.Undo();
    m_done(m_change.Events(), applied);
}

void EventChangeCommand::redo() {
    if (m_made) {
        m_made = false;
        return;
    }
    const bool applied = m_change.Redo();
    m_done(m_change.Events(), applied);
}

AddEventCommand::AddEventCommand(EventChange change, const clsEvent& added, UndoStepDone done)
    : EventChangeCommand(std::move(change), std::move(done)) {
    setText(QStringLiteral("Add ") + Quoted(added));
}

EditEventCommand::EditEventCommand(EventChange change, const clsEvent& edited, UndoStepDone done)
    : EventChangeCommand(std::move(change), std::move(done)) {
    setText(QStringLiteral("Edit ") + Quoted(edited));
}

DeleteEventsCommand::DeleteEventsCommand(EventChange change, UndoStepDone done)
    : EventChangeCommand(std::move(change), std::move(done)) {
    const QList<EventPtr> events = this->change().Events();
    setText(events.size() == 1 ? QStringLiteral("Delete ") + Quoted(*events.first())
                               : QStringLiteral("Delete %1 events").arg(events.size()));
}

PushEventCommand::PushEventCommand(EventChange change, const clsEvent& pushed, UndoStepDone done)
    : EventChangeCommand(std::move(change), std::move(done)) {
    setText(QStringLiteral("Push ") + Quoted(pushed));
}

ShareWithCommand::ShareWithCommand(EventChange change, const clsEvent& shared, UndoStepDone done)
    : EventChangeCommand(std::move(change), std::move(done)) {
    setText(QStringLiteral("Share ") + Quoted(shared));
}

RenameCategoriesCommand::RenameCategoriesCommand(CategoryRename rename, std::function<void()> done)
    : m_rename(std::move(rename)), m_done(std::move(done)) {
    const QList<int> changed = m_rename.Changed();
    setText(changed.size() == 1 ? QStringLiteral("Rename category '%1' to '%2'")
                                      .arg(m_rename.OldName(changed.first()).trimmed(),
                                           m_rename.NewName(changed.first()).trimmed())
                                : QStringLiteral("Rename %1 categories").arg(changed.size()));
}

void RenameCategoriesCommand::undo() {
    m_rename.Undo();
    m_done();
}

void RenameCategoriesCommand::redo() {
    if (m_made) {
        m_made = false;
        return;
    }
    m_rename.Redo();
    m_done();
}
