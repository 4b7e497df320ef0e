#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// The task list on disk: "tasklist.xml" in the data folder, one TASK element
// holding a DETAILS line per task, and the older plain-text "tasklist.dat"
// (one task per line) that is converted once. Task texts are stored raw, with
// no escaping, and read back the same way.
class TaskListFile {
public:
    static constexpr const char* kXmlName = "tasklist.xml";
    static constexpr const char* kLegacyName = "tasklist.dat";

    // dataFolder: the setting "Datapath" (the home folder when empty).
    explicit TaskListFile(QString dataFolder);

    QString XmlPath() const;
    QString LegacyPath() const;

    // The tasks, in order. Reads the XML file, unless only the legacy file is
    // there: then its lines are taken and the XML file is written; the legacy
    // file is removed only when the XML file reads back with the same tasks,
    // so the next load reads XML. Missing files give no tasks.
    // A damaged XML file (see DamagedFile) gives the tasks that could be
    // read, and the next Save keeps a copy of it before replacing it.
    QStringList Load();
    // Rewrites the XML file whole and atomically, making a read-only file
    // writable first; false on failure (logged, told to the user once
    // through SaveFailures), the old file then staying as it was.
    bool Save(const QStringList& tasks);

    // The file's bytes for a list (Windows-1252, CR LF).
    static QByteArray Format(const QStringList& tasks);
    // The tasks in an XML file's bytes: the DETAILS lines inside TASK elements.
    static QStringList Parse(const QByteArray& bytes);
    // The lines of a legacy file (a final line end adds no empty task).
    static QStringList ParseLegacy(const QByteArray& bytes);

private:
    QString m_folder;
    bool m_damaged = false; // the XML file read last was damaged
};
