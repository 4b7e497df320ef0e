#pragma once

#include <QString>

// Who the program says it is, in one place: the title used for message boxes
// and the log header, the version text, and the files it keeps in its home
// folder.
namespace AppInfo {

// The application's title (message boxes, log header "App: ").
QString Title();
// "major.minor.revision".
QString VersionText();
// Name and version of the operating system, for the log header and reports.
QString OperatingSystemText();
// What build this is, beside the version: the toolkit it was built with
// (first line of an error report).
QString BuildText();

} // namespace AppInfo
