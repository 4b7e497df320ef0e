#pragma once

#include "model/clsEvent.h"

#include <QByteArrayView>
#include <QList>
#include <QString>

class cSHAREDSettings;
class clsLayers;
class clsSounds;
class UserDialogs;

// Reader for the event files of earlier versions ("events.dat",
// "Expired.dat"): fixed records of 498 bytes, no header, little-endian
// numbers, 16-bit booleans (-1/0), dates as doubles, blank-padded
// Windows-1252 text. It loads such a file into an event list once and exports
// it to the XML database; the binary file itself is only ever read.
class clsDB2 {
public:
    static constexpr qsizetype kRecordLength = 498;

    // settings: the "Owner" of events stored as "Single" or without one;
    // layers: the name each event's layer index carries; sounds: the old
    // per-event sound table, deleted after a successful export.
    clsDB2(cSHAREDSettings& settings, clsLayers& layers, clsSounds& sounds);

    void SetDBFilename(const QString& path) { m_fileName = path; }
    QString DBFilename() const { return m_fileName; }
    // Reads every record of path (length / 498, rounded; a short last record
    // reads as far as it goes). Deleted records are skipped; the owner, the
    // layer name and the sound are filled in as for a loaded XML database.
    void LoadDB(const QString& path, bool append = false);
    int32_t RecordCount() const { return static_cast<int32_t>(m_events.size()); }
    // The list's own event with that ID code, or none.
    EventPtr ReadEvent(const QString& idCode) const;
    const QList<EventPtr>& Events() const { return m_events; }

    // Networked mode: an export then does nothing (a shared copy must not
    // become the user's own database).

    // Writes the list, ID codes kept, to a new XML database at xmlPath and
    // then deletes the sound table: the sounds now travel with the events.
    // True when the XML file was written.
    bool ExportToXML(const QString& xmlPath);

    // One record (up to 498 bytes; missing bytes read as zero) as a new
    // event. A date that is not a finite value within the calendar is logged
    // and left at 0; the other fields are still read.
    static EventPtr TransferTypeToObject(QByteArrayView record);

private:
    cSHAREDSettings& m_settings;
    clsLayers& m_layers;
    clsSounds& m_sounds;
    QString m_fileName;
    QList<EventPtr> m_events;
};

// The start-up conversion of one database: when xmlPath does not exist but
// its ".dat" does (found regardless of letter case), the records are loaded
// and exported to xmlPath. With dialogs given, the user is then told about
// the conversion (start-up passes them for "Events.xml" only). The ".dat" is
// left as it is, so deleting the XML file repeats the conversion. True when
// a conversion took place.
bool ConvertLegacyDatabase(const QString& xmlPath, cSHAREDSettings& settings, clsLayers& layers,
                           clsSounds& sounds, UserDialogs* dialogs = nullptr);

// Both conversions in start-up order: "Events.xml" (with the message), then
// "Expired.xml", in dataPath.
void ConvertLegacyDatabases(const QString& dataPath, cSHAREDSettings& settings, clsLayers& layers,
                            UserDialogs& dialogs);
