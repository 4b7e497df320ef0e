#include "app/CalendarFileCommands.h"

#include "app/AppContext.h"
#include "engine/CommandLineWork.h"
#include "shared/AppPaths.h"
#include "shared/UserDialogs.h"
#include "storage/clsDbXml.h"

namespace CalendarFileCommands {

namespace {

const QString kFilter = QStringLiteral("iCalendar files (*.ics)|*.ics|All files (*)|*");

EventStore storeOf(AppContext& app) {
    return {app.settings, app.settingsFile, app.layers, app.events};
}

void tell(AppContext& app, const CommandResult& result) {
    app.dialogs.Message(result.message, {},
                        result.exitCode == CommandResult::kDone ? UserDialogs::Icon::Information
                                                                : UserDialogs::Icon::Warning);
}

} // namespace

void ExportToCalendar(AppContext& app) {
    const std::optional<QString> file = app.dialogs.ChooseSaveFile(
        QStringLiteral("Export to iCalendar"),
        AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("Tarvo.ics")), kFilter);
    if (file) {
        tell(app, CalendarTransfer::Export(app.events.Events(), app.layers, *file));
    }
}

bool ImportFromCalendar(AppContext& app) {
    const std::optional<QString> file = app.dialogs.ChooseOpenFile(
        QStringLiteral("Import from iCalendar"), AppPaths::HomeFolder(), kFilter);
    if (!file) {
        return false;
    }
    EventStore store = storeOf(app);
    const CommandResult result = CalendarTransfer::Import(*file, store, TodayDate());
    tell(app, result);
    return result.exitCode == CommandResult::kDone;
}

QByteArray HandleRequest(AppContext& app, const QByteArray& request) {
    EventStore store = storeOf(app);
    return CommandLineWork::Perform(request, store, TodayDate());
}

} // namespace CalendarFileCommands
