#pragma once

#include <QString>

// Tells the user when a file of theirs cannot be saved: once per file, not at
// every save, through the error report (cSHAREDShowError), naming the file,
// why and what to do. The caller keeps its data in memory, so a later save
// succeeds once the cause is gone; after a successful save the next failure
// is reported again.
namespace SaveFailures {

// The reason given for a read-only file that could not be made writable.
inline const QString kReadOnly =
    QStringLiteral("the file is read-only and cannot be made writable");

// A save of path failed for the reason why.
void Failed(const QString& path, const QString& why);
// A save of path succeeded.
void Saved(const QString& path);

// The texts of the report for path (for tests and for the log).
QString ReportText(const QString& path, const QString& why);
QString AdviceText();

} // namespace SaveFailures
