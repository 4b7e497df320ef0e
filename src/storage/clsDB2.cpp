#include "storage/clsDB2.h"

#include "shared/AppPaths.h"
#include "shared/OwnerId.h"
#include "shared/RuntimeError.h"
#include "shared/TextCodec.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/LegacyFiles.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "storage/clsSounds.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <bit>
#include <cstring>

namespace {

const QString kModule = QStringLiteral("clsDB2");

// Field access on one record; bytes past the end of a short record read as 0.
class RecordReader {
public:
    explicit RecordReader(QByteArrayView record) {
        const qsizetype n = std::min(record.size(), clsDB2::kRecordLength);
        std::memcpy(m_bytes, record.data(), static_cast<size_t>(n));
    }

    int16_t int16(int offset) const { return qFromLittleEndian<qint16>(m_bytes + offset); }
    int32_t int32(int offset) const { return qFromLittleEndian<qint32>(m_bytes + offset); }
    // Written as -1; any other non-zero value counts as true as well.
    bool boolean(int offset) const { return int16(offset) != 0; }

    DateValue date(int offset, const char* field) const {
        const double v = std::bit_cast<double>(qFromLittleEndian<quint64>(m_bytes + offset));
        // A value outside years 100 to 9999 is damage, not a date.
        if (!InDateRange(v)) {
            LogRuntimeError(RuntimeError::overflow(),
                            QStringLiteral("TransferTypeToObject ") + QLatin1String(field),
                            kModule);
            return 0;
        }
        return v;
    }

    // Blank-padded text; a field never written holds zero bytes, which are
    // padding as well.
    QString text(int offset, int length) const {
        const char* begin = m_bytes + offset;
        const char* end = begin + length;
        auto isPad = [](char c) { return c == ' ' || c == '\0'; };
        while (begin < end && isPad(*begin)) {
            ++begin;
        }
        while (end > begin && isPad(end[-1])) {
            --end;
        }
        return TextCodec::FromWindows1252(QByteArray(begin, end - begin));
    }

private:
    char m_bytes[clsDB2::kRecordLength] = {};
};

} // namespace

clsDB2::clsDB2(cSHAREDSettings& settings, clsLayers& layers, clsSounds& sounds)
    : m_settings(settings), m_layers(layers), m_sounds(sounds) {}

EventPtr clsDB2::TransferTypeToObject(QByteArrayView record) {
    const RecordReader r(record);
    auto e = std::make_shared<clsEvent>();
    e->Deleted = r.boolean(0);
    e->setDueDate(r.date(2, "DueDate"));
    e->setDueTime(r.date(10, "DueTime"));
    e->setDesc(r.text(18, 200));
    e->setRecurring(r.boolean(218));
    e->setDaysWarning(r.int16(220));
    e->setMinutesWarning(r.int16(222));
    // 224: a date that nothing reads.
    e->IDCode = r.text(232, 12);
    e->setRecurrenceType(r.int16(244));
    e->setAlarmSet(r.boolean(246));
    e->setWeekDays(r.int16(248));
    e->setDayOfMonth(r.int16(250));
    e->setMonthNumber(r.int16(252));
    e->setDaynumber(r.int16(254));
    e->setDayOfWeek(r.int16(256));
    e->setStartDate(r.date(258, "StartDate"));
    e->setPeriod(r.int16(266));
    e->setDaysLeft(r.int32(268));
    e->setLayer(r.int16(272));
    e->setOwner(r.text(274, 14));
    e->SharedEvent = r.boolean(288);
    e->setAlarmTime(r.date(290, "AlarmTime"));
    e->ExecFile = r.boolean(298);
    e->Filename = r.text(300, 150);
    e->Email = r.text(450, 48);
    return e;
}

void clsDB2::LoadDB(const QString& path, bool append) {
    const QString proc = QStringLiteral("LoadAllEvents");
    m_fileName = path;
    if (!append) {
        m_events.clear();
    }

    QFile file(path);
    if (!file.exists()) {
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        Log().AddAction(file.errorString() + QStringLiteral(": ") + path, proc, kModule);
        return;
    }
    const QByteArray bytes = file.readAll();
    // Only whole records are read: the fields of a record cut short would
    // come out as zeros and blanks that were never written.
    const qsizetype count = bytes.size() / kRecordLength;
    if (const qsizetype rest = bytes.size() % kRecordLength; rest != 0) {
        Log().AddAction(QString::number(rest) +
                            QStringLiteral(" bytes left over after the last whole record of ") +
                            path,
                        proc, kModule);
    }

    const QString owner =
        m_settings.sGet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Not Set"))).toText();
    for (qsizetype i = 0; i < count; ++i) {
        const QByteArrayView all(bytes);
        EventPtr e = TransferTypeToObject(all.sliced(i * kRecordLength, kRecordLength));
        // Blank as the XML reader sees it, so the converted file reads back
        // with the same owner.
        if (e->Owner().trimmed().isEmpty() || OwnerId::Same(e->Owner(), QStringLiteral("Single"))) {
            e->setOwner(owner);
        }
        // A layer index out of range is logged by the table and gives "".
        e->SharedLayerName = m_layers.Layer(e->Layer());
        const QString wav = m_sounds.GetWavName(e->IDCode);
        if (!wav.isEmpty()) {
            // The old program played an event's table sound whenever it had
            // one, so the converted event plays it too.
            e->WavFile = wav;
            e->PlayWav = true;
        }
        if (!e->Deleted) {
            m_events.append(e);
        }
    }
}

EventPtr clsDB2::ReadEvent(const QString& idCode) const {
    for (const EventPtr& e : m_events) {
        if (e->IDCode == idCode) {
            return e;
        }
    }
    return nullptr;
}

bool clsDB2::ExportToXML(const QString& xmlPath) {
    clsDbXml db(m_settings, &m_layers);
    db.SetDBFilename(xmlPath);
    for (const EventPtr& e : std::as_const(m_events)) {
        db.StoreRecord(e, false);
    }
    db.SaveDB();
    if (!QFileInfo::exists(xmlPath)) {
        Log().AddAction(QStringLiteral("Unable to write ") + xmlPath, QStringLiteral("ExportToXML"),
                        kModule);
        return false;
    }
    // Only once the events are safe in the new file does the table go.
    QFile::remove(m_sounds.EventWavsFilename());
    return true;
}

bool ConvertLegacyDatabase(const QString& xmlPath, cSHAREDSettings& settings, clsLayers& layers,
                           clsSounds& sounds, UserDialogs* dialogs) {
    if (QFileInfo::exists(xmlPath)) {
        return false;
    }
    const QString datPath = LegacyFiles::DatPathFor(xmlPath);
    if (!QFileInfo(datPath).isFile()) {
        return false;
    }
    clsDB2 legacy(settings, layers, sounds);
    legacy.LoadDB(datPath, false);
    if (!legacy.ExportToXML(xmlPath)) {
        return false;
    }
    if (dialogs != nullptr) {
        dialogs->Message(
            QStringLiteral("Your TVO2 database has been converted to the new XML format "
                           "(events.xml)\r\n"
                           "If you are using TVO in networked mode, other users' shared events "
                           "won't show up until they also update to this new version.\r\n"
                           "IMPORTANT: If you see any errors in your event list, simply delete "
                           "events.xml and restart TVO to recreate it from your original "
                           "events.dat file."));
    }
    return true;
}

void ConvertLegacyDatabases(const QString& dataPath, cSHAREDSettings& settings, clsLayers& layers,
                            UserDialogs& dialogs) {
    clsSounds sounds(dataPath);
    ConvertLegacyDatabase(AppPaths::JoinPath(dataPath, QStringLiteral("Events.xml")), settings,
                          layers, sounds, &dialogs);
    ConvertLegacyDatabase(AppPaths::JoinPath(dataPath, QStringLiteral("Expired.xml")), settings,
                          layers, sounds, nullptr);
}
