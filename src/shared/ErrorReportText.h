#pragma once

#include <QString>

// The texts of an error report: the full report (written to "FullLog.txt" and
// to the file the user saves it to) and the log as the report shows it. Kept apart
// from the window so the layouts can be checked without one.
namespace ErrorReportText {

// Shown instead of the log when there is no log file.
inline constexpr const char* kNoLogFile = "No log file";

// The current log file's text (buffered log lines are written out first), or
// "No log file".
QString CurrentLogText();

// The full report: "Error Report: " + version, build and operating system;
// the error, the comments (when any) and the log, joined by CR LF; then what
// to do with the report, between two lines of 75 "-".
QString FullReport(const QString& error, const QString& comments, const QString& log);

} // namespace ErrorReportText
