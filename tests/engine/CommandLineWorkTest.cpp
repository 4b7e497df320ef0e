// The command line's work without a process around it: --add through the
// editor's rules, the agenda's lines, imports that add everything or change
// nothing, also when sent as a request line to a running copy, and --sync.
#include "engine/CommandLineWork.h"
#include "engine/CalDavPassword.h"
#include "engine/CalendarTransfer.h"
#include "engine/CommandLineSync.h"
#include "shared/cSHAREDSettings.h"
#include "storage/IcsEventMapping.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "support/TestSupport.h"

namespace {

class CommandLineWorkTest : public ::testing::Test {
protected:
    CommandLineWorkTest() {
        settings.sSet(QStringLiteral("Owner"), QStringLiteral("Ann"));
        settings.sSet(QStringLiteral("DateStyle"), 1);
        layers.setLayer(3, "Work");
        events.SetDBFilename(home.file("Events.xml"));
    }

    QByteArray eventsFile() const { return ReadFileBytes(home.file("Events.xml")); }
    QString writeCalendar(const QByteArray& vevents) {
        const QString path = home.file("in.ics");
        WriteFileBytes(path, "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//x//EN\r\n" + vevents +
                                 "END:VCALENDAR\r\n");
        return path;
    }

    TempHome home;
    FixedClock clock{"2030-06-01 08:30"};
    cSHAREDSettings settings;
    clsLayers layers{settings};
    clsDbXml events{settings, &layers};
    EventStore store{settings, home.file("Tvo.ini"), layers, events};
};

} // namespace

TEST_F(CommandLineWorkTest, AddChecksLikeTheEditorAndChangesNothingOnBadInput) {
    using CommandLineWork::AddRequest;
    const struct {
        AddRequest request;
        int code;
        const char* message;
    } cases[] = {
        {{"Dentist", "03/06/2030", "09:30", "work"}, 0, "Added \"Dentist\" on 03/06/2030 09:30."},
        {{"Bills", "2030-06-05", "", ""}, 0, "Added \"Bills\" on 05/06/2030."},
        {{"Tea", "2030-06-06", "", "shared"}, 0, "Added \"Tea\" on 06/06/2030."},
        {{"x", "06/31/2030", "", ""},
         1,
         "\"06/31/2030\" is not a date: use DD/MM/YYYY or YYYY-MM-DD."},
        {{"x", "2030-05-31", "", ""}, 1, "The date 31/05/2030 lies in the past."},
        {{"x", "2030-06-05", "24:00", ""},
         1,
         "Please specify a time in the range of 00:00 to 23:59"},
        {{" ", "2030-06-05", "", ""}, 1, "The description is empty."},
    };
    for (const auto& c : cases) {
        const QByteArray before = eventsFile();
        // Through the request line, as a running copy receives it.
        const CommandResult r = CommandLineWork::ReplyResult(CommandLineWork::Perform(
            CommandLineWork::AddRequestLine(c.request), store, TodayDate()));
        EXPECT_EQ(r.exitCode, c.code) << c.message;
        EXPECT_EQ(r.message, QString::fromUtf8(c.message));
        if (c.code != 0) {
            EXPECT_EQ(eventsFile(), before) << c.message;
        }
    }
    ASSERT_EQ(events.RecordCount(), 3);
    const clsEvent& dentist = *events.Events().first();
    EXPECT_EQ(dentist.DueDate(), D("2030-06-03"));
    EXPECT_EQ(dentist.Layer(), 3) << "the category found by its name in any case";
    EXPECT_EQ(dentist.MinutesWarning(), 30) << "the editor's warning before a timed event";
    EXPECT_TRUE(eventsFile().contains("<Desc>Bills</Desc>"));
}

TEST_F(CommandLineWorkTest, AgendaListsEveryOccurrenceInOrder) {
    // One-offs are of type 1; a rule with week days repeats.
    auto make = [](const char* desc, const char* due, const RuleFields& rule = {1}) {
        auto e = std::make_shared<clsEvent>(RepeatingEvent(rule, QString::fromLatin1(desc)));
        e->setRecurring(rule.weekDays != 0);
        e->setDueDate(D(QString::fromLatin1(due)));
        return e;
    };
    // Monday and Friday, not rolled on yet.
    auto gym = make("Gym", "2030-05-27", {clsEvent::DaysOfWeek, 2 | 32});
    gym->setLayer(3);
    auto call = make("Call\r\nMum", "2030-06-03");
    call->setAlarmSet(true);
    call->setDueTime(TimeSerial(7, 5));
    const QList<EventPtr> list = {gym, call, make("Later", "2030-06-09"),
                                  make("Gone", "2030-05-31"), make("Post", "2030-06-07")};
    auto bobs = make("Picnic", "2030-06-07"); // another user's, by where it came from
    bobs->setOwner(" Bob ");
    EXPECT_EQ(CommandLineWork::Agenda(list, {bobs}, layers, TodayDate(), 7, 1),
              (QStringList{
                  "Mon 03/06/2030        Gym  [Work]", "Mon 03/06/2030 07:05  Call / Mum  [Shared]",
                  "Fri 07/06/2030        Gym  [Work]", "Fri 07/06/2030        Post  [Shared]",
                  "Fri 07/06/2030        Picnic  [Shared]  from Bob"}));
}

TEST_F(CommandLineWorkTest, ImportAddsAllOrNothing) {
    const QByteArray good =
        "BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:Walk\r\nDTSTART;VALUE=DATE:20300610\r\n"
        "CATEGORIES:Outdoor\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:2\r\nSUMMARY:Old\r\nDTSTART;VALUE=DATE:20200610\r\nEND:VEVENT\r\n";
    const QByteArray bad = "BEGIN:VEVENT\r\nUID:3\r\nSUMMARY:Run it\r\nDTSTART:20300611T100000\r\n"
                           "X-TARVO-FILE:C:\\a<b.bat\r\nEND:VEVENT\r\n";
    const QString both = writeCalendar(good + bad);
    CommandResult r = CalendarTransfer::Import(both, store, TodayDate());
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.message, QStringLiteral("Nothing imported: the run file of \"Run it\" contains "
                                        "\"<\", which the event file cannot hold."));
    EXPECT_FALSE(QFile::exists(home.file("Events.xml")));
    EXPECT_EQ(layers.Layer(19), "Layer 19");

    r = CalendarTransfer::Import(writeCalendar(good), store, TodayDate());
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.message,
              "Imported 1 event from " + home.file("in.ics") + ". Skipped 1: 1 in the past.");
    ASSERT_EQ(events.RecordCount(), 1);
    EXPECT_EQ(events.Events().first()->Layer(), 19); // a new category took a free layer
    EXPECT_EQ(events.Events().first()->IDCode.size(), 6);
    EXPECT_TRUE(eventsFile().contains("<Desc>Walk</Desc>"));
    EXPECT_TRUE(ReadFileBytes(home.file("Tvo.ini")).contains("LAYER19,Outdoor"));
    // A category that names no layer of its own goes to the first one.
    ASSERT_TRUE(QFile::remove(home.file("Tvo.ini")));
    r = CalendarTransfer::Import(
        writeCalendar("BEGIN:VEVENT\r\nUID:4\r\nSUMMARY:Odd\r\nDTSTART;VALUE=DATE:20300612\r\n"
                      "CATEGORIES:All Categories\r\nEND:VEVENT\r\n"),
        store, TodayDate());
    EXPECT_TRUE(r.message.endsWith("No free category was left for All Categories."));
    EXPECT_EQ(events.Events().last()->Layer(), 1);
    EXPECT_FALSE(QFile::exists(home.file("Tvo.ini")));
}

// The iCalendar library writes no date after the year 3000: such an event is
// neither imported nor exported, and the export says it left it out.
TEST_F(CommandLineWorkTest, DatesAfterTheYear3000StayOutOfCalendarFiles) {
    const CommandResult imported = CalendarTransfer::Import(
        writeCalendar("BEGIN:VEVENT\r\nUID:a\r\nSUMMARY:Far\r\nDTSTART;VALUE=DATE:30010101\r\n"
                      "END:VEVENT\r\nBEGIN:VEVENT\r\nUID:b\r\nSUMMARY:Near\r\n"
                      "DTSTART;VALUE=DATE:30001231\r\nEND:VEVENT\r\n"),
        store, TodayDate());
    ASSERT_EQ(events.RecordCount(), 1) << imported.message.toStdString();
    auto far = std::make_shared<clsEvent>(*events.Events().first());
    far->setDueDate(D("3001-01-01"));
    const QString out = home.file("out.ics");
    const CommandResult exported =
        CalendarTransfer::Export({events.Events().first(), far}, layers, out);
    EXPECT_TRUE(exported.message.startsWith("Exported 1 event to "));
    EXPECT_TRUE(exported.message.endsWith(
        " 1 event dated after the year 3000 left out: iCalendar files cannot hold them here."));
    const IcsEventMapping::Calendar written = IcsEventMapping::ParseCalendar(ReadFileBytes(out));
    EXPECT_EQ(written.error, QString());
    EXPECT_EQ(written.events.size(), 1);
}

// --sync and the sync after --add: what is not set up is said before any
// network work; an unreachable server keeps a saved change's exit code 0.
TEST_F(CommandLineWorkTest, SyncSaysWhatIsMissingAndKeepsAnOfflineChange) {
    settings.sSet(QStringLiteral("Networked"), true);
    settings.sSet(QStringLiteral("CalDAVUser"), QStringLiteral("ann"));
    const struct {
        // password: nullptr: none stored
        // error: "": unreachable (nothing listens on the discard port)
        const char *mode, *url, *password, *error;
    } cases[] = {
        {"folder", "http://127.0.0.1:9/", "pw", "Tarvo does not share through a CalDAV server"},
        {"caldav", "", "pw", "The CalDAV account is incomplete: No CalDAV server address is set."},
        {"caldav", "http://127.0.0.1:9/", nullptr,
         "Store it in Settings or set TARVO_CALDAV_PASSWORD."},
        {"caldav", "http://127.0.0.1:9/", "pw", ""},
    };
    for (const auto& c : cases) {
        settings.sSet(QStringLiteral("NetworkMode"), c.mode);
        settings.sSet(QStringLiteral("CalDAVUrl"), c.url);
        c.password != nullptr ? qputenv(CalDavPassword::kEnvironmentVariable, c.password)
                              : qunsetenv(CalDavPassword::kEnvironmentVariable);
        const CalDavSyncResult r = CommandLineSync::Run(settings, events.Events());
        EXPECT_FALSE(r.ok);
        EXPECT_EQ(r.unreachable, *c.error == 0) << r.error.toStdString();
        EXPECT_TRUE(r.error.contains(QString::fromUtf8(c.error))) << r.error.toStdString();
        EXPECT_EQ(CommandLineSync::SyncResult(r).exitCode, 2);
        EXPECT_EQ(CommandLineSync::AfterChange(r).exitCode, r.unreachable ? 0 : 2);
    }
    qunsetenv(CalDavPassword::kEnvironmentVariable);
}
