#pragma once

#include <QString>
#include <QStringList>

class cSHAREDSettings;

// The table of per-event sounds that earlier versions kept beside the event
// file: "EventWavs.ini" in the data folder, one line per event, ID code ","
// sound path, lines joined with CR LF. Events now carry their sound
// themselves; the table is read when a legacy database is converted.
class clsSounds {
public:
    // dataPath: the data folder (setting "DataPath").
    explicit clsSounds(QString dataPath);

    // Gives idCode the sound path: its line is replaced in place, or a line
    // is added at the end.
    void AddorChange(const QString& idCode, const QString& soundPath);
    // Removes idCode's line, if any.
    void Delete(const QString& idCode);
    // The text between the first and a second comma of idCode's line (the
    // rest of the line when there is no second comma), so a path holding a
    // comma comes back cut short; "" when idCode has no line.
    QString GetWavName(const QString& idCode);
    // Reads the file into the line list (a missing file is an empty table).
    void Initialise();
    QString EventWavsFilename() const;
    // 0-based line of idCode (blanks and letter case ignored), or -1. Lines without a comma
    // never match.
    int IDCodePresent(const QString& idCode);

    // The line list as loaded (a file ending in CR LF gives a last empty
    // line, so writing the list back reproduces the file).
    QStringList Lines() const { return m_lines; }

private:
    void ensureLoaded();
    bool save();

    QString m_dataPath;
    QStringList m_lines;
    bool m_loaded = false;
};

// The alarm sound: the "WavFile" setting, defaulting to "alarm.wav" in the
// home folder. When the named file does not exist the home folder's
// "alarm.wav" is used instead and stored back into "WavFile"; that file is
// written from the built-in sound when it is missing too.
QString DefaultWavFile(cSHAREDSettings& settings);

// Writes the built-in alarm sound to path unless a file is already there.
// True when the file exists afterwards.
bool WriteDefaultAlarmWav(const QString& path);
