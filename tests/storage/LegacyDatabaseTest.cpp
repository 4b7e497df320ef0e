// The old fixed-length event files: records built byte by byte from the layout
// itself, read back, and converted once to the XML files at start-up.
#include "storage/clsDB2.h"

#include "StorageFixture.h"
#include "storage/clsSounds.h"
#include "support/ScriptedDialogs.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <bit>
#include <limits>

namespace {

struct LegacyRecord {
    bool deleted = false, recurring = false, alarmSet = false, sharedEvent = false,
         execFile = false;
    double dueDate = 0, dueTime = 0, startDate = 0, alarmTime = 0;
    int16_t daysWarning = 0, minutesWarning = 0, recurrenceType = 0, weekDays = 0, dayOfMonth = 0,
            monthNumber = 0, daynumber = 0, dayOfWeek = 0, period = 0, layer = 0;
    int32_t daysLeft = 0;
    QByteArray desc{}, idCode{}, owner{}, filename{}, email{};

    // The 498 bytes of one record: little-endian numbers, -1 for true,
    // blank-padded text.
    QByteArray bytes() const {
        QByteArray r(498, '\0');
        // clang-format off
        for (const auto& [at, v] : {std::pair{0, -int(deleted)}, {218, -int(recurring)},
                {220, int(daysWarning)}, {222, int(minutesWarning)}, {244, int(recurrenceType)},
                {246, -int(alarmSet)}, {248, int(weekDays)}, {250, int(dayOfMonth)},
                {252, int(monthNumber)}, {254, int(daynumber)}, {256, int(dayOfWeek)},
                {266, int(period)}, {272, int(layer)}, {288, -int(sharedEvent)},
                {298, -int(execFile)}}) {
            qToLittleEndian<qint16>(static_cast<qint16>(v), r.data() + at);
        }
        qToLittleEndian<qint32>(daysLeft, r.data() + 268);
        for (const auto& [at, v] :
             {std::pair{2, dueDate}, {10, dueTime}, {258, startDate}, {290, alarmTime}}) {
            qToLittleEndian<quint64>(std::bit_cast<quint64>(v), r.data() + at);
        }
        for (const auto& [at, size, v] : {std::tuple{18, 200, desc}, {232, 12, idCode},
                {274, 14, owner}, {300, 150, filename}, {450, 48, email}}) {
            r.replace(at, size, v.left(size).leftJustified(size, ' '));
        }
        // clang-format on
        return r;
    }
};

// Every field set, in the order of the layout (the days left beyond 16 bits).
// clang-format off
LegacyRecord FullRecord() { return {
    false, true, true, true, true,
    D("2009-03-05"), D("1899-12-30 10:30"), D("2008-12-01"), D("1899-12-30 10:15"),
    3, 15, 4, 2 + 8, 31, 13, -2, 7, 6, 19, 70000,
    "  Dentist 10:30, caf\xe9 <&> %  ", "123456", "Ann", "C:\\Tools\\run.bat", "ann@example.com"}; }
// clang-format on

TEST(LegacyRecordReading, EveryFieldComesFromItsOffset) {
    QByteArray bytes = FullRecord().bytes();
    bytes[218] = 1; // a boolean written as 1 instead of -1 is true all the same
    bytes[219] = 0;
    const EventPtr e = clsDB2::TransferTypeToObject(bytes);
    EXPECT_TRUE(!e->Deleted && e->Recurring() && e->AlarmSet() && e->SharedEvent && e->ExecFile);
    EXPECT_EQ(QList<DateValue>({e->DueDate(), e->DueTime(), e->StartDate(), e->AlarmTime()}),
              QList<DateValue>({D("2009-03-05"), D("1899-12-30 10:30"), D("2008-12-01"),
                                D("1899-12-30 10:15")}));
    EXPECT_EQ(QList<int>({e->DaysWarning(), e->MinutesWarning(), e->RecurrenceType(), e->WeekDays(),
                          e->DayOfMonth(), e->MonthNumber(), e->Daynumber(), e->DayOfWeek(),
                          e->Period(), e->DaysLeft(), e->Layer()}),
              QList<int>({3, 15, 4, 10, 31, 13, -2, 7, 6, 70000, 19}));
    // Blanks at either end go; the Windows-1252 e-acute is decoded.
    EXPECT_EQ(QStringList({e->Desc(), e->IDCode, e->Owner(), e->Filename, e->Email}),
              QStringList({"Dentist 10:30, caf\u00e9 <&> %", "123456", "Ann", "C:\\Tools\\run.bat",
                           "ann@example.com"}));

    // Text filling its whole width is kept whole.
    const LegacyRecord full{
        .desc = QByteArray(199, 'x') + 'y', .idCode = "123456789012", .email = QByteArray(48, 'm')};
    const EventPtr f = clsDB2::TransferTypeToObject(full.bytes());
    EXPECT_EQ(QStringList({f->Desc(), f->Email, f->IDCode}),
              QStringList({QString::fromLatin1(full.desc), QString(48, 'm'), "123456789012"}));
}

// A date outside years 100 to 9999 is damage: logged, read as 0, and the
// rest of the record is read all the same.
TEST(LegacyRecordReading, DatesOfYears100To9999AreReadOthersAreDamage) {
    const std::pair<double, bool> cases[] = {
        {-657434.5, true},  // 0100-01-01 12:00: the fraction counts away from zero
        {-657434.0, true},  // 0100-01-01
        {2958465.99, true}, // 9999-12-31 23:45
        {-657435.0, false}, // 0099-12-31
        {2958466.0, false}, // 10000-01-01
        {1e300, false},     {std::numeric_limits<double>::quiet_NaN(), false},
    };
    for (const auto& [value, read] : cases) {
        SCOPED_TRACE(value);
        LegacyRecord r = FullRecord();
        r.alarmTime = value;
        const qsizetype before = Log().pendingActions().size();
        const EventPtr e = clsDB2::TransferTypeToObject(r.bytes());
        EXPECT_EQ(e->AlarmTime(), read ? value : 0.0);
        EXPECT_EQ(e->Desc(), "Dentist 10:30, caf\u00e9 <&> %");
        EXPECT_EQ(Log().pendingActions().mid(before),
                  read ? QStringList()
                       : QStringList{QStringLiteral(
                             "Overflow (6) in TransferTypeToObject AlarmTime of module clsDB2")});
    }
}

// A data folder with the settings, layers and sound table that start-up
// would hand to the conversion.
class LegacyDatabaseTest : public StorageTest {
protected:
    LegacyDatabaseTest() { layers.setLayer(4, "Work"); }

    void WriteDat(const QString& name, const QList<LegacyRecord>& records,
                  const QByteArray& tail = {}) {
        QByteArray bytes;
        for (const LegacyRecord& r : records) {
            bytes += r.bytes();
        }
        ASSERT_TRUE(WriteFileBytes(home.file(name), bytes + tail));
    }
    static LegacyRecord Rec(const char* id, const char* desc, const char* owner = "",
                            bool deleted = false) {
        return {.deleted = deleted,
                .dueDate = D("2009-03-05"),
                .desc = desc,
                .idCode = id,
                .owner = owner};
    }
    static QStringList Ids(const QList<EventPtr>& events) {
        QStringList ids;
        for (const EventPtr& e : events) {
            ids << e->IDCode;
        }
        return ids;
    }
    QStringList XmlIds(const char* name) { return Ids(LoadEvents(home.file(name))); }

    clsSounds sounds{home.path()};
    clsDB2 db{settings, layers, sounds};
    ScriptedDialogs dialogs;
};

TEST_F(LegacyDatabaseTest, OnlyWholeRecordsAreReadAndTheRestIsLogged) {
    for (const qsizetype extraBytes : {0, 1, 249, 250, 497}) {
        SCOPED_TRACE(extraBytes);
        WriteDat("events.dat", {Rec("111111", "one"), Rec("222222", "two")},
                 Rec("333333", "third").bytes().left(extraBytes));
        db.LoadDB(home.file("events.dat"));
        EXPECT_EQ(Ids(db.Events()), QStringList({"111111", "222222"}));
        EXPECT_EQ(Logged(QString::number(extraBytes) + " bytes left over"), extraBytes != 0);
    }
}

const QString kConvertedMessage = QStringLiteral(
    "Your TVO2 database has been converted to the new XML format (events.xml)\r\n"
    "If you are using TVO in networked mode, other users' shared events won't show up until "
    "they also update to this new version.\r\n"
    "IMPORTANT: If you see any errors in your event list, simply delete events.xml and restart "
    "TVO to recreate it from your original events.dat file.");

TEST_F(LegacyDatabaseTest, StartUpConvertsEachFileOnceAndTellsTheUserOnce) {
    // A fresh install, then one with only an expired legacy file: nothing to tell.
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_FALSE(QFileInfo::exists(home.file("Events.xml")));
    WriteDat("Expired.dat", {Rec("444444", "Last year"), Rec("555555", "Older")});
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_FALSE(QFileInfo::exists(home.file("Events.xml")));
    EXPECT_EQ(dialogs.count(), 0);

    // The old lower-case name; file order, not code order; one deleted, one
    // without a code. Single-user records and blank owners become this
    // user's, layers get their names and sounds come from the old table (an
    // empty entry is no sound).
    LegacyRecord single = Rec("222222", "Dentist", "Single");
    single.layer = 4;
    WriteDat("events.dat", {single, Rec("111111", "Gym", "Bob"), Rec("333333", "deleted", "", true),
                            Rec("", "no id yet")});
    ASSERT_TRUE(WriteFileBytes(sounds.EventWavsFilename(), "111111,/bell.wav\r\n222222,\r\n"));
    const QByteArray eventsDat = ReadFileBytes(home.file("events.dat"));
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);

    EXPECT_EQ(dialogs.texts(), QStringList(kConvertedMessage));
    settings.sSet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Zoe"))); // read as saved
    const QList<EventPtr> events = LoadEvents(home.file("Events.xml"));
    const QStringList ids = Ids(events);
    // The last one is given a code on the way.
    EXPECT_EQ(std::tuple(ids.size(), ids.mid(0, 2), ids.value(2).size()),
              std::tuple(3, QStringList({"222222", "111111"}), 6));
    QStringList seen;
    for (const EventPtr& e : events) {
        seen << e->Owner() + ' ' + e->SharedLayerName + ' ' + e->WavFile +
                    (e->PlayWav ? " play" : "");
    }
    EXPECT_EQ(seen, QStringList({"Ann Work ", "Bob Shared /bell.wav play", "Ann Shared "}));
    EXPECT_FALSE(QFileInfo::exists(sounds.EventWavsFilename())) << "the table is in the XML now";
    EXPECT_EQ(XmlIds("Expired.xml"), QStringList({"444444", "555555"}));
    // The old files are left for the user to fall back on.
    EXPECT_EQ(ReadFileBytes(home.file("events.dat")), eventsDat);

    // Next start: the XML files exist, so a newer .dat is ignored.
    const QByteArray xmlBefore = ReadFileBytes(home.file("Events.xml"));
    WriteDat("events.dat", {Rec("111111", "Dentist"), Rec("666666", "newer")});
    dialogs.clear();
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_EQ(dialogs.count(), 0);
    EXPECT_EQ(ReadFileBytes(home.file("Events.xml")), xmlBefore);

    // Deleting Events.xml repeats its conversion from the .dat.
    QFile::remove(home.file("Events.xml"));
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_EQ(dialogs.texts(), QStringList(kConvertedMessage));
    EXPECT_EQ(XmlIds("Events.xml"), QStringList({"111111", "666666"}));
}

} // namespace
