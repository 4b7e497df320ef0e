#pragma once

#include "engine/CalendarTransfer.h"

#include <QByteArray>

struct AppContext;

// The main window's iCalendar commands and the command-line work that a
// running copy does for a second one, all on the program's own databases so
// that the lists in memory and the files stay one.
namespace CalendarFileCommands {

// File > Export to iCalendar...: asks for a file and writes the events list.
void ExportToCalendar(AppContext& app);
// File > Import from iCalendar...: asks for a file and adds its events; the
// summary (or why nothing was added) is shown. True when events were added.
bool ImportFromCalendar(AppContext& app);

// A request line from the command line (--add, --import); the reply line.
QByteArray HandleRequest(AppContext& app, const QByteArray& request);

inline constexpr const char* kExportCaption = "Export to iCalendar\u2026";
inline constexpr const char* kImportCaption = "Import from iCalendar\u2026";

} // namespace CalendarFileCommands
