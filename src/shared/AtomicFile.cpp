#include "shared/AtomicFile.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QStorageInfo>

namespace AtomicFile {

namespace {

Result Failure(Status status, const QString& description) {
    switch (status) {
    case Status::AccessDenied:
        return {status, 75, description};
    case Status::DiskFull:
        return {status, 61, description};
    default:
        return {status, 57, description};
    }
}

// Sorts a QSaveFile error into the cases the callers distinguish.
Result Classify(const QSaveFile& file, const QString& path) {
    if (file.error() == QFileDevice::ResourceError) {
        // Qt reports "no space left on device" as a resource error.
        return Failure(Status::DiskFull, file.errorString());
    }
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (file.error() == QFileDevice::OpenError && folder.exists() && !folder.isWritable()) {
        return Failure(Status::AccessDenied, file.errorString());
    }
    if (!folder.exists()) {
        return {Status::OtherError, 76, QStringLiteral("Path not found")};
    }
    return Failure(Status::OtherError, file.errorString());
}

} // namespace

bool IsReadOnly(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && info.isFile() &&
           (!(info.permissions() & QFileDevice::WriteOwner) || !info.isWritable());
}

Result Write(const QString& path, const QByteArray& bytes) {
    if (IsReadOnly(path)) {
        return Failure(Status::AccessDenied, QStringLiteral("Permission denied"));
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return Classify(file, path);
    }
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        const Result r = Classify(file, path);
        file.cancelWriting();
        return r;
    }
    // A write cut short (a full disk, a file size limit) can pass without an
    // error from the file layer; the size of what reached the disk tells.
    if (file.size() != bytes.size()) {
        const qint64 written = file.size();
        file.cancelWriting();
        const QStorageInfo storage(QFileInfo(path).absolutePath());
        if (storage.isValid() && storage.bytesAvailable() < bytes.size()) {
            return Failure(Status::DiskFull, QStringLiteral("No space left on device"));
        }
        return Failure(
            Status::OtherError,
            QStringLiteral("Only %1 of %2 bytes could be written").arg(written).arg(bytes.size()));
    }
    if (!file.commit()) {
        return Classify(file, path);
    }
    return {};
}

bool MakeWritable(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        return true;
    }
    if (!QFile::setPermissions(path, info.permissions() | QFileDevice::WriteOwner)) {
        return false;
    }
    return !IsReadOnly(path);
}

} // namespace AtomicFile
