#pragma once

#include <QString>
#include <QStringList>

// Packs a list of files into one ZIP archive. Files are collected one path at
// a time and written together by MakeZipFile; the outcome of the last step is
// kept as a message for the caller's log.
class cSHAREDZipFiles {
public:
    // Clears the file list, the archive name and the message; options back to
    // their defaults.
    void Setup();

    QString ZipFileName() const { return m_zipFileName; }
    void setZipFileName(const QString& path) { m_zipFileName = path; }

    // Number of paths in the list.
    int ZipFileCount() const { return static_cast<int>(m_files.size()); }
    QStringList Files() const { return m_files; }

    // With a root directory, files below it are stored under their path
    // relative to it (when paths are kept).
    QString RootDirectory() const { return m_rootDirectory; }
    void setRootDirectory(const QString& folder) { m_rootDirectory = folder; }

    // True (the default): entries are stored by file name only. False: by
    // their path (relative to RootDirectory when below it).
    bool IgnorePath() const { return m_ignorePath; }
    void setIgnorePath(bool ignore) { m_ignorePath = ignore; }

    // Adds a path to the list; a path already there (same file, however
    // spelled) is refused with "File is already in Zip List".
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
    QString entryName(const QString& path) const;

    QString m_zipFileName;
    QString m_rootDirectory;
    bool m_ignorePath = true;
    QStringList m_files;
    QString m_lastMessage;
};
