#pragma once

#include <QString>
#include <QStringList>

// Packs a list of files into one ZIP archive. Files are collected one path at
// a time and written together by MakeZipFile; the outcome of the last step is
// kept as a message for the caller's log.
class cSHAREDZipFiles {
public:
    void setZipFileName(const QString& path) { m_zipFileName = path; }

    // Adds a path to the list, to be stored under its file name only; a path
    // already there (same file, however spelled) is refused with "File is
    // already in Zip List".
    bool AddFile(const QString& path);

    // Writes the archive from the list, replacing an archive of that name
    // only once the new one is complete. Listed files that do not exist are
    // left out. False, with the reason in GetLastMessage, when the archive
    // could not be written or nothing was there to put in it; the previous
    // archive then stays as it was.
    bool MakeZipFile();

    QString GetLastMessage() const { return m_lastMessage; }

    // Names the entries of an existing archive, in archive order (empty when
    // it cannot be opened).
    static QStringList ListEntries(const QString& zipPath);

private:
    int indexOf(const QString& path) const;

    QString m_zipFileName;
    QStringList m_files;
    QString m_lastMessage;
};
