// The main window's commands: the toolbar dispatch, the guarded list
// commands, search, backups, help. The rules they apply live in
// EventCommands; this file wires them to the window and the dialogs.
#include "app/AppBackup.h"
#include "app/EventListModel.h"
#include "app/EventListView.h"
#include "app/UndoCommands.h"
#include "app/dialogs/EventEditFlow.h"
#include "app/dialogs/TextViewer.h"
#include "app/dialogs/frmEditLayers.h"
#include "app/dialogs/frmMonthView.h"
#include "app/dialogs/frmOptions.h"
#include "app/dialogs/frmShareWith.h"
#include "app/dialogs/frmTasks.h"
#include "app/frmMain.h"
#include "engine/CalDavAccount.h"
#include "engine/CalDavPassword.h"
#include "engine/CalDavSync.h"
#include "engine/ShareableUsers.h"
#include "engine/clsReminder.h"
#include "shared/AppInfo.h"
#include "shared/AppPaths.h"
#include "shared/IFileOpener.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "shared/cSharedLogging.h"
#include "storage/BackupArchive.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"

#include <QDir>
#include <QMenu>
#include <QStatusBar>
#include <QToolBar>
#include <QUndoStack>

using EventCommands::ListRow;

namespace {
// How long the status bar shows what a push did.
constexpr int kPushMessageMs = 6000;
} // namespace

void frmMain::Toolbar1_ButtonClick(const QString& key) {
    // The keys are distinct, so the order of the comparisons is only the
    // order in which they have always been listed.
    if (key == QLatin1String("exit")) {
        Quit();
    } else if (key == QLatin1String("tasklist")) {
        Tasklist();
    } else if (key == QLatin1String("monthview")) {
        MonthView();
    } else if (key == QLatin1String("editlayers")) {
        EditLayers();
    } else if (key == QLatin1String("options")) {
        popupUnderButton(m_settingMenu, key);
    } else if (key == QLatin1String("refresh")) {
        FillEvents();
    } else if (key == QLatin1String("pushevent")) {
        PushSelectedEvent();
    } else if (key == QLatin1String("deleteevent")) {
        DeleteSelectedEvents();
    } else if (key == QLatin1String("editevent")) {
        EditSelectedEvent();
    } else if (key == QLatin1String("addevent")) {
        AddEvent();
    } else if (key == QLatin1String("help")) {
        popupUnderButton(m_helpMenu, key);
    } else if (key == QLatin1String("log")) {
        ViewLog();
    }
}

void frmMain::popupUnderButton(QMenu* menu, const QString& key) {
    auto* bar = findChild<QToolBar*>(QStringLiteral("Toolbar1"));
    QWidget* button = bar->widgetForAction(action(key));
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
}

bool frmMain::guard(const QString& refusal) {
    if (refusal.isEmpty()) {
        return true;
    }
    Log().LogEvent(QStringLiteral("Refused: ") + refusal);
    m_app.dialogs.Message(refusal);
    return false;
}

void frmMain::PushSelectedEvent() {
    const int row = SelectedRow();
    if (row < 0) {
        return;
    }
    const ListRow target = m_model->listRow(row);
    if (!guard(EventCommands::PushRefusal(target))) {
        return;
    }
    // No question first: the push can be undone, and the status bar says so.
    EventChange change;
    const EventPtr pushed = EventCommands::PushToNextOccurrence(m_services, target, &change);
    if (!pushed) {
        return;
    }
    if (!change.IsEmpty()) {
        statusBar()->showMessage(QStringLiteral("Pushed %1 to %2 \u2014 Ctrl+Z to undo")
                                     .arg(EventChangeCommand::Quoted(*pushed),
                                          cSharedDateSubs::ForSettings(m_app.settings)
                                              .ShortFormatDayDate(pushed->DueDate())),
                                 kPushMessageMs);
    }
    record(new PushEventCommand(std::move(change), *pushed, stepDone()));
    FillEvents();
    SelectRow(m_model->FindRow(target.idCode, target.marker == EventCommands::kExpiredMarker
                                                  ? EventListModel::Source::Expired
                                                  : EventListModel::Source::Local));
}

// The rows the user may not delete are named before the question, so that
// no one confirms a deletion that then does not happen.
void frmMain::DeleteSelectedEvents() {
    QList<ListRow> allowed;
    for (const QString& refusal :
         EventCommands::DeleteRefusals(m_services, SelectedRows(), &allowed)) {
        guard(refusal);
    }
    if (allowed.isEmpty() || !m_app.dialogs.AskYesNo(EventCommands::kDeleteQuestion, {}, false)) {
        return;
    }
    EventChange change;
    EventCommands::DeleteRows(m_services, allowed, &change);
    record(new DeleteEventsCommand(std::move(change), stepDone()));
    FillEvents();
}

void frmMain::mnuFind_Click(int index) {
    if (index == 0 || m_searchTerm.isEmpty()) {
        const std::optional<QString> term = m_app.dialogs.InputBox(
            QStringLiteral("Enter search term"), QStringLiteral("Search"), m_searchTerm);
        if (!term || term->isEmpty()) {
            return;
        }
        m_searchTerm = *term;
    }
    const int start = index == 1 ? SelectedRow() + 1 : 0;
    const int found = m_model->FindText(m_searchTerm, start);
    if (found >= 0) {
        statusBar()->clearMessage();
        m_list->clearSelection();
        SelectRow(found);
        return;
    }
    // The search does not wrap; the status bar says why nothing moved.
    statusBar()->showMessage((start > 0 ? QStringLiteral("No further event contains \"%1\"")
                                        : QStringLiteral("No event contains \"%1\""))
                                 .arg(m_searchTerm),
                             kPushMessageMs);
}

void frmMain::ManualBackup() {
    QString reason;
    if (!BackUpData(m_app, QString::fromLatin1(kManualBackupKind), &reason)) {
        m_app.dialogs.Message(QStringLiteral("Backup failed: ") + reason +
                                  QStringLiteral("\r\nNo archive was written to the AutoBackups "
                                                 "folder in ") +
                                  AppPaths::HomeFolder() + QLatin1Char('.'),
                              {}, UserDialogs::Icon::Warning);
        return;
    }
    m_app.dialogs.Message(
        QStringLiteral("Backup complete. Your files were zipped to the AutoBackups folder in ") +
        AppPaths::HomeFolder());
}

void frmMain::ViewBackups() {
    const QString folder =
        AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("Autobackups"));
    QDir().mkpath(folder);
    if (!m_app.opener.OpenDocument(folder)) {
        m_app.dialogs.Message(QStringLiteral("No file manager could be started to show your "
                                             "backups. They are in this folder:\r\n") +
                              QDir::toNativeSeparators(folder));
    }
}

void frmMain::CheckForUpdate() {
    m_app.dialogs.Message(QStringLiteral("This copy of Tarvo has no update source to check "
                                         "against, so it cannot look for new versions.\r\n"
                                         "You are running version ") +
                          AppInfo::VersionText() + QLatin1Char('.'));
}

void frmMain::ShowHelp() {
    TextViewer::ShowHelp(this);
}

void frmMain::ShowAbout() {
    m_app.dialogs.Message(QStringLiteral("Tarvo ") + AppInfo::VersionText() +
                          QStringLiteral("\r\nA reminder and calendar program.\r\n\r\n"
                                         "Your data is in ") +
                          DataFiles::DataFolder(m_app.settings) + QLatin1Char('.'));
}

void frmMain::ViewLog() {
    TextViewer::ShowLog(this);
}

void frmMain::ReloadDatabases() {
    DataFiles::LoadDatabases(m_app.settings, m_app.events, m_app.expired, m_app.shared);
    m_services.shared = DataFiles::Networked(m_app.settings) ? &m_app.shared.SharedSet() : nullptr;
    m_history->clear(); // its objects belong to the lists just replaced
    StartCalDav();
    FillCategories();
    FillEvents();
    emit optionsReloaded();
}

void frmMain::AddEvent() {
    m_refreshTimer.stop();
    const EventPtr added = EventEditFlow::AddNewEvent(m_app, this);
    m_refreshTimer.start(RefreshTick::IntervalMs());
    if (added) {
        EventChange change;
        change.WatchAdded(m_app.events, added);
        change.Finish();
        record(new AddEventCommand(std::move(change), *added, stepDone()));
        FillEvents();
        SelectRow(m_model->FindRow(added->IDCode));
    }
}

void frmMain::EditSelectedEvent() {
    // The list must not be rebuilt under the user while the editor is open.
    m_refreshTimer.stop();
    const int row = SelectedRow();
    if (row >= 0) {
        const ListRow target = m_model->listRow(row);
        const bool expired = target.marker == EventCommands::kExpiredMarker;
        const EventPtr e = m_model->event(row);
        clsDbXml& db = expired ? m_app.expired : m_app.events;
        EventChange change;
        change.Watch(db, e);
        if (guard(EventCommands::EditRefusal(target)) && e &&
            EventEditFlow::EditEvent(m_app, db, e, this)) {
            change.Finish();
            record(new EditEventCommand(std::move(change), *e, stepDone()));
            FillEvents();
            m_list->clearSelection();
            SelectRow(m_model->FindRow(target.idCode, expired ? EventListModel::Source::Expired
                                                              : EventListModel::Source::Local));
        }
    }
    m_refreshTimer.start(RefreshTick::IntervalMs());
}

void frmMain::EditLayers() {
    CategoryRename rename(m_app.layers, m_app.settings, m_app.settingsFile,
                          CategoryRename::Names(m_app.layers));
    frmEditLayers editor(m_app, this);
    editor.exec();
    if (editor.Accepted()) {
        if (rename.Finish()) {
            m_history->push(new RenameCategoriesCommand(std::move(rename), [this] {
                FillCategories();
                FillEvents();
            }));
        }
        FillCategories();
        FillEvents();
    }
}

void frmMain::EditOptions() {
    m_refreshTimer.stop();
    frmOptions options(m_app, this);
    connect(&options, &frmOptions::calDavSharingStopped, this, &frmMain::StopCalDavSharing);
    options.exec();
    if (!options.Cancelled()) {
        ReloadDatabases();
    }
    m_refreshTimer.start(RefreshTick::IntervalMs());
}

void frmMain::StopCalDavSharing() {
    const CalDavAccount account = CalDavAccount::FromSettings(m_app.settings);
    const QString stateFile = DataFiles::CalDavStateFile(m_app.settings);
    auto* sync = new CalDavSync(m_app.settings, this);
    auto shown = [this, sync](bool, const QString& line) {
        statusBar()->showMessage(line, kNoticeMs);
        sync->deleteLater();
    };
    CalDavPassword::Read(account, sync, [=](const QString& password, const QString& error) {
        if (error.isEmpty()) {
            sync->StopSharing(account, password, stateFile, shown);
            return;
        }
        const QString line =
            QStringLiteral("Could not stop sharing on the CalDAV server: ") + error;
        Log().AddAction(line, QStringLiteral("StopCalDavSharing"), QStringLiteral("frmMain"));
        shown(false, line);
    });
}

void frmMain::Tasklist() {
    ShowTaskList(m_app, this);
}

void frmMain::MonthView() {
    ShowMonthView(m_app, this);
}

void frmMain::ShareWith() {
    const int row = SelectedRow();
    if (row < 0) {
        return;
    }
    const ListRow target = m_model->listRow(row);
    if (!guard(EventCommands::EditRefusal(target))) {
        return;
    }
    if (target.marker == EventCommands::kExpiredMarker) {
        m_app.dialogs.Message(QStringLiteral("Expired events can't be shared"));
        return;
    }
    const EventPtr e = m_app.events.ReadEvent(target.idCode);
    if (!e) {
        return;
    }
    frmShareWith dialog(*e, ShareableUsers::For(m_app.settings), this);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    EventChange change;
    change.Watch(m_app.events, e);
    dialog.ApplyTo(*e);
    m_app.events.SaveDB(); // publishes the shared events in networked mode
    change.Finish();
    record(new ShareWithCommand(std::move(change), *e, stepDone()));
    FillEvents();
    SelectRow(m_model->FindRow(target.idCode));
}
