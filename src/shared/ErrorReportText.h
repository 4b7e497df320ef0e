#pragma once

#include <QString>

// The texts of an error report: the full report written to "FullLog.txt", the
// mail link that submits it, and the log as the report shows it. Kept apart
// from the window so the layouts can be checked without one.
namespace ErrorReportText {

// Shown instead of the log when there is no log file.
inline constexpr const char* kNoLogFile = "No log file";

// The current log file's text (buffered log lines are written out first), or
// "No log file".
QString CurrentLogText();

// Encodes text for a mail link: "%" first (so no sign is encoded twice), then
// "?", "&", "#", every line break (CR LF, lone LF, lone CR) as "%0D%0A", and
// blanks.
QString EncodeForMailLink(const QString& text);

// The full report: "Error Report: " + version, build and operating system;
// the error, the comments (when any) and the log, joined by CR LF; then the
// instructions for mailing it by hand between two lines of 75 "-".
QString FullReport(const QString& error, const QString& comments, const QString& log);

// "mailto:" + address + "?subject=Bug Report (version - title)&body=" + the
// encoded body + "&attachment=" + the encoded log file path.
QString MailLink(const QString& error, const QString& comments, const QString& log,
                 const QString& logFilePath);

} // namespace ErrorReportText
