#pragma once

#include <QByteArray>
#include <QString>

// Writes a whole data file atomically (QSaveFile: a new file put in place of
// the old one), so a crash or a failed write leaves the old file untouched,
// and says why a write failed in the terms the save-failure rules need.
namespace AtomicFile {

enum class Status {
    Saved,
    AccessDenied, // the file is read-only, or the folder refuses a new file
    DiskFull,
    OtherError,
};

struct Result {
    Status status = Status::Saved;
    int errorNumber = 0; // 0 when saved; otherwise the traditional error number
    QString description; // what went wrong, for logs and reports

    bool ok() const { return status == Status::Saved; }
};

// A file counts as read-only when its owner write bit is clear (the way a
// read-only attribute shows on every platform), even for a user who could
// write it anyway.
bool IsReadOnly(const QString& path);

// Replaces path's contents by bytes. A read-only file is refused
// (AccessDenied) and stays as it was.
Result Write(const QString& path, const QByteArray& bytes);

// Clears a file's read-only state (sets the owner write bit); true when the
// file is writable afterwards or does not exist.
bool MakeWritable(const QString& path);

} // namespace AtomicFile
