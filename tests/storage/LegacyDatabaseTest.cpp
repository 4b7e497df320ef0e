#include "storage/clsDB2.h"

#include "LegacyRecord.h"
#include "StorageFixture.h"
#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"
#include "storage/clsSounds.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>

#include <limits>

namespace {

LegacyRecord FullRecord() {
    LegacyRecord r;
    r.dueDate = D("2009-03-05");
    r.dueTime = D("1899-12-30 10:30");
    r.desc = "  Dentist 10:30, caf\xe9 <&> %  ";
    r.recurring = true;
    r.daysWarning = 3;
    r.minutesWarning = 15;
    r.reserved = D("2001-01-01");
    r.idCode = "123456";
    r.recurrenceType = 4;
    r.alarmSet = true;
    r.weekDays = 2 + 8;
    r.dayOfMonth = 31;
    r.monthNumber = 13;
    r.daynumber = -2;
    r.dayOfWeek = 7;
    r.startDate = D("2008-12-01");
    r.period = 6;
    r.daysLeft = 70000; // beyond 16 bits
    r.layer = 19;
    r.owner = "Ann";
    r.sharedEvent = true;
    r.alarmTime = D("1899-12-30 10:15");
    r.execFile = true;
    r.filename = "C:\\Tools\\run.bat";
    r.email = "ann@example.com";
    return r;
}

TEST(LegacyRecordReading, EveryFieldComesFromItsOffset) {
    const EventPtr e = clsDB2::TransferTypeToObject(FullRecord().bytes());
    EXPECT_FALSE(e->Deleted);
    EXPECT_EQ(e->DueDate(), D("2009-03-05"));
    EXPECT_EQ(e->DueTime(), D("1899-12-30 10:30"));
    // Blanks at either end go; the Windows-1252 e-acute is decoded.
    EXPECT_EQ(e->Desc(), QStringLiteral("Dentist 10:30, caf\u00e9 <&> %"));
    EXPECT_TRUE(e->Recurring());
    EXPECT_EQ(e->DaysWarning(), 3);
    EXPECT_EQ(e->MinutesWarning(), 15);
    EXPECT_EQ(e->IDCode, QStringLiteral("123456"));
    EXPECT_EQ(e->RecurrenceType(), 4);
    EXPECT_TRUE(e->AlarmSet());
    EXPECT_EQ(e->WeekDays(), 10);
    EXPECT_EQ(e->DayOfMonth(), 31);
    EXPECT_EQ(e->MonthNumber(), 13);
    EXPECT_EQ(e->Daynumber(), -2);
    EXPECT_EQ(e->DayOfWeek(), 7);
    EXPECT_EQ(e->StartDate(), D("2008-12-01"));
    EXPECT_EQ(e->Period(), 6);
    EXPECT_EQ(e->DaysLeft(), 70000);
    EXPECT_EQ(e->Layer(), 19);
    EXPECT_EQ(e->Owner(), QStringLiteral("Ann"));
    EXPECT_TRUE(e->SharedEvent);
    EXPECT_EQ(e->AlarmTime(), D("1899-12-30 10:15"));
    EXPECT_TRUE(e->ExecFile);
    EXPECT_EQ(e->Filename, QStringLiteral("C:\\Tools\\run.bat"));
    EXPECT_EQ(e->Email, QStringLiteral("ann@example.com"));
    // Fields the record does not have keep a new event's defaults.
    EXPECT_TRUE(e->WavFile.isEmpty());
    EXPECT_FALSE(e->PlayWav);
    EXPECT_TRUE(e->SharedLayerName.isEmpty());
    EXPECT_FALSE(e->ShareWithSpecific);
    EXPECT_TRUE(e->ShareNames.isEmpty());
}

TEST(LegacyRecordReading, FullWidthTextIsKeptWhole) {
    LegacyRecord r;
    r.desc = QByteArray(199, 'x') + 'y';
    r.email = QByteArray(48, 'm');
    r.idCode = "123456789012";
    const EventPtr e = clsDB2::TransferTypeToObject(r.bytes());
    EXPECT_EQ(e->Desc().size(), 200);
    EXPECT_TRUE(e->Desc().endsWith(QLatin1Char('y')));
    EXPECT_EQ(e->Email.size(), 48);
    EXPECT_EQ(e->IDCode, QStringLiteral("123456789012"));
}

TEST(LegacyRecordReading, AnyNonZeroBooleanIsTrue) {
    QByteArray bytes = LegacyRecord().bytes();
    bytes[218] = 1; // Recurring written as 1 instead of -1
    EXPECT_TRUE(clsDB2::TransferTypeToObject(bytes)->Recurring());
    EXPECT_FALSE(clsDB2::TransferTypeToObject(LegacyRecord().bytes())->Recurring());
}

// A date outside years 100 to 9999 is damage: logged, read as 0, and the
// rest of the record is read all the same.
TEST(LegacyRecordReading, DatesOfYears100To9999AreReadOthersAreDamage) {
    const struct {
        double value;
        bool read;
    } cases[] = {
        {-657434.5, true},  // 0100-01-01 12:00: the fraction counts away from zero
        {-657434.0, true},  // 0100-01-01
        {2958465.99, true}, // 9999-12-31 23:45
        {-657435.0, false}, // 0099-12-31
        {2958466.0, false}, // 10000-01-01
        {1e300, false},     {std::numeric_limits<double>::quiet_NaN(), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        LegacyRecord r = FullRecord();
        r.alarmTime = c.value;
        const qsizetype before = Log().pendingActions().size();
        const EventPtr e = clsDB2::TransferTypeToObject(r.bytes());
        EXPECT_EQ(e->AlarmTime(), c.read ? c.value : 0.0);
        EXPECT_EQ(e->Desc(), QStringLiteral("Dentist 10:30, caf\u00e9 <&> %"))
            << "the rest is read";
        const QStringList logged = Log().pendingActions().mid(before);
        EXPECT_EQ(logged.size(), c.read ? 0 : 1);
        if (!c.read) {
            EXPECT_EQ(
                logged.first(),
                QStringLiteral("Overflow (6) in TransferTypeToObject AlarmTime of module clsDB2"));
        }
    }
}

// A data folder in the home folder with the settings, layers and sound
// table that start-up would hand to the conversion.
class LegacyDatabaseTest : public StorageTest {
protected:
    LegacyDatabaseTest() { layers.setLayer(4, QStringLiteral("Work")); }

    void WriteDat(const QString& name, const QList<LegacyRecord>& records,
                  const QByteArray& tail = {}) {
        QByteArray bytes;
        for (const LegacyRecord& r : records) {
            bytes += r.bytes();
        }
        ASSERT_TRUE(WriteFileBytes(home.file(name), bytes + tail));
    }

    static LegacyRecord Rec(const char* id, const char* desc, const char* owner = "") {
        LegacyRecord r;
        r.idCode = id;
        r.desc = desc;
        r.owner = owner;
        r.dueDate = D("2009-03-05");
        return r;
    }

    QStringList Ids(const QList<EventPtr>& events) const {
        QStringList ids;
        for (const EventPtr& e : events) {
            ids << e->IDCode;
        }
        return ids;
    }

    clsSounds sounds{home.path()};
    clsDB2 db{settings, layers, sounds};
    ScriptedDialogs dialogs;
};

TEST_F(LegacyDatabaseTest, OnlyWholeRecordsAreReadAndTheRestIsLogged) {
    for (const qsizetype extraBytes : {0, 1, 249, 250, 497}) {
        SCOPED_TRACE(extraBytes);
        WriteDat(QStringLiteral("events.dat"), {Rec("111111", "one"), Rec("222222", "two")},
                 Rec("333333", "third").bytes().left(extraBytes));
        db.LoadDB(home.file(QStringLiteral("events.dat")));
        EXPECT_EQ(Ids(db.Events()),
                  QStringList({QStringLiteral("111111"), QStringLiteral("222222")}));
        EXPECT_EQ(Logged(QString::number(extraBytes) + QStringLiteral(" bytes left over")),
                  extraBytes != 0);
    }
}

TEST_F(LegacyDatabaseTest, LoadingFillsOwnerLayerNameAndSoundAndSkipsDeleted) {
    LegacyRecord single = Rec("111111", "single", "Single");
    single.layer = 4;
    LegacyRecord bob = Rec("222222", "bob's", "Bob");
    LegacyRecord deleted = Rec("333333", "gone", "Ann");
    deleted.deleted = true;
    LegacyRecord blank = Rec("444444", "blank owner");
    WriteDat(QStringLiteral("events.dat"), {single, bob, deleted, blank});
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("EventWavs.ini")),
                               "444444,/sounds/gong.wav\r\n111111,\r\n"));

    db.LoadDB(home.file(QStringLiteral("events.dat")));
    ASSERT_EQ(Ids(db.Events()), QStringList({QStringLiteral("111111"), QStringLiteral("222222"),
                                             QStringLiteral("444444")}));
    const EventPtr e1 = db.ReadEvent(QStringLiteral("111111"));
    EXPECT_EQ(e1->Owner(), QStringLiteral("Ann"));
    EXPECT_EQ(e1->SharedLayerName, QStringLiteral("Work"));
    EXPECT_TRUE(e1->WavFile.isEmpty()); // an empty table entry is no sound
    EXPECT_FALSE(e1->PlayWav);
    EXPECT_EQ(db.ReadEvent(QStringLiteral("222222"))->Owner(), QStringLiteral("Bob"));
    EXPECT_EQ(db.ReadEvent(QStringLiteral("222222"))->SharedLayerName, QStringLiteral("Shared"));
    const EventPtr e4 = db.ReadEvent(QStringLiteral("444444"));
    EXPECT_EQ(e4->Owner(), QStringLiteral("Ann"));
    EXPECT_EQ(e4->WavFile, QStringLiteral("/sounds/gong.wav"));
    EXPECT_TRUE(e4->PlayWav);
    EXPECT_EQ(db.ReadEvent(QStringLiteral("333333")), nullptr);
}

TEST_F(LegacyDatabaseTest, ChangeDetectionFollowsTheFile) {
    const QString path = home.file(QStringLiteral("events.dat"));
    db.LoadDB(path);
    EXPECT_EQ(db.RecordCount(), 0);
    EXPECT_FALSE(db.DatabaseChanged());
    WriteDat(QStringLiteral("events.dat"), {Rec("111111", "one")});
    EXPECT_TRUE(db.DatabaseChanged());
    db.LoadDBIfChanged(path);
    EXPECT_EQ(db.RecordCount(), 1);
    EXPECT_FALSE(db.DatabaseChanged());
}

TEST_F(LegacyDatabaseTest, ExportKeepsIdsAndOrderAndRemovesTheSoundTable) {
    WriteDat(QStringLiteral("events.dat"), {Rec("222222", "second by id, first in file"),
                                            Rec("111111", "other"), Rec("", "no id yet")});
    ASSERT_TRUE(WriteFileBytes(sounds.EventWavsFilename(), "111111,/bell.wav\r\n"));
    db.LoadDB(home.file(QStringLiteral("events.dat")));
    const QString xml = home.file(QStringLiteral("Events.xml"));
    ASSERT_TRUE(db.ExportToXML(xml));

    EXPECT_FALSE(QFileInfo::exists(sounds.EventWavsFilename()));
    clsDbXml loaded(settings, &layers);
    loaded.LoadDB(xml);
    ASSERT_EQ(loaded.RecordCount(), 3);
    EXPECT_EQ(loaded.Events()[0]->IDCode, QStringLiteral("222222"));
    EXPECT_EQ(loaded.Events()[1]->IDCode, QStringLiteral("111111"));
    EXPECT_EQ(loaded.Events()[1]->WavFile, QStringLiteral("/bell.wav"));
    EXPECT_TRUE(loaded.Events()[1]->PlayWav);
    EXPECT_EQ(loaded.Events()[2]->IDCode.size(), 6); // given a code on the way
    EXPECT_EQ(loaded.Events()[2]->Desc(), QStringLiteral("no id yet"));
}

TEST_F(LegacyDatabaseTest, NetworkedObjectDoesNotExport) {
    WriteDat(QStringLiteral("events.dat"), {Rec("111111", "one")});
    ASSERT_TRUE(WriteFileBytes(sounds.EventWavsFilename(), "111111,/bell.wav\r\n"));
    db.LoadDB(home.file(QStringLiteral("events.dat")));
    db.setNetworked(true);
    EXPECT_FALSE(db.ExportToXML(home.file(QStringLiteral("Events.xml"))));
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Events.xml"))));
    EXPECT_TRUE(QFileInfo::exists(sounds.EventWavsFilename()));
}

const QString kConvertedMessage = QStringLiteral(
    "Your TVO2 database has been converted to the new XML format (events.xml)\r\n"
    "If you are using TVO in networked mode, other users' shared events won't show up until "
    "they also update to this new version.\r\n"
    "IMPORTANT: If you see any errors in your event list, simply delete events.xml and restart "
    "TVO to recreate it from your original events.dat file.");

TEST_F(LegacyDatabaseTest, StartUpConvertsBothFilesOnceAndTellsTheUserOnce) {
    LegacyRecord deleted = Rec("333333", "deleted");
    deleted.deleted = true;
    // 996 bytes in the old lower-case name: two records, one of them deleted.
    WriteDat(QStringLiteral("events.dat"), {Rec("111111", "Dentist"), deleted});
    WriteDat(QStringLiteral("Expired.dat"), {Rec("444444", "Last year"), Rec("555555", "Older")});
    const QByteArray eventsDat = ReadFileBytes(home.file(QStringLiteral("events.dat")));
    ASSERT_EQ(eventsDat.size(), 996);

    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);

    EXPECT_EQ(dialogs.texts(), QStringList(kConvertedMessage));
    clsDbXml events(settings, &layers);
    events.LoadDB(home.file(QStringLiteral("Events.xml")));
    EXPECT_EQ(Ids(events.Events()), QStringList(QStringLiteral("111111")));
    clsDbXml expired(settings, &layers);
    expired.LoadDB(home.file(QStringLiteral("Expired.xml")));
    EXPECT_EQ(Ids(expired.Events()),
              QStringList({QStringLiteral("444444"), QStringLiteral("555555")}));
    // The old files are left for the user to fall back on.
    EXPECT_EQ(ReadFileBytes(home.file(QStringLiteral("events.dat"))), eventsDat);

    // Next start: the XML files exist, so a newer .dat is ignored.
    const QByteArray xmlBefore = ReadFileBytes(home.file(QStringLiteral("Events.xml")));
    WriteDat(QStringLiteral("events.dat"), {Rec("111111", "Dentist"), Rec("666666", "newer")});
    dialogs.clear();
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_EQ(dialogs.count(), 0);
    EXPECT_EQ(ReadFileBytes(home.file(QStringLiteral("Events.xml"))), xmlBefore);

    // Deleting Events.xml repeats its conversion from the .dat.
    QFile::remove(home.file(QStringLiteral("Events.xml")));
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_EQ(dialogs.texts(), QStringList(kConvertedMessage));
    events.LoadDB(home.file(QStringLiteral("Events.xml")));
    EXPECT_EQ(Ids(events.Events()),
              QStringList({QStringLiteral("111111"), QStringLiteral("666666")}));
}

TEST_F(LegacyDatabaseTest, NothingToConvertShowsNothing) {
    // A fresh install, and an install with only an expired legacy file.
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Events.xml"))));
    WriteDat(QStringLiteral("Expired.dat"), {Rec("444444", "Last year")});
    ConvertLegacyDatabases(home.path(), settings, layers, dialogs);
    EXPECT_TRUE(QFileInfo::exists(home.file(QStringLiteral("Expired.xml"))));
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Events.xml"))));
    EXPECT_EQ(dialogs.count(), 0);
}

} // namespace
