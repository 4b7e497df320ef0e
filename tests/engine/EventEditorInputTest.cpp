// The event editor's save rules, without the dialog.
#include "engine/EventEditorInput.h"
#include "engine/OccurrencePreview.h"
#include "model/clsEvent.h"
#include "shared/cSHAREDSettings.h"
#include "support/TestSupport.h"

namespace {

namespace R = EventEditorRules;

class EditorRules : public ::testing::Test {
protected:
    EditorRules() { settings.sSet("Owner", "Fred"); }

    // A timed one-off "Every X days" input that passes every check.
    EventEditorInput valid() const {
        EventEditorInput in;
        in.desc = "Dentist";
        in.timed = true;
        in.time = "09:30";
        in.minutesWarning = "15";
        in.daysWarning = "2";
        in.recurrenceType = clsEvent::EveryXDays;
        in.dailyPeriod = "3";
        in.dailyStart = "05/03/2009";
        return in;
    }

    EventEditorOutcome save(EventEditorInput& in) { return R::Save(in, event, settings); }

    TempHome home;
    FixedClock clock{"2009-03-05 10:00"};
    cSHAREDSettings settings;
    clsEvent event;
};

TEST_F(EditorRules, TimeBoxChecks) {
    // Accepted, and the box tidied: typed -> shown.
    const char* const accepted[][2] = {
        {"09:30", "09:30"}, {"09;30", "09:30"}, {"  09:30  ", "09:30"}, {"23:59", "23:59"},
        {"00:00", "00:00"}, {"9:30", "09:30"},  {" 7;05", "07:05"}};
    for (const auto& [typed, shown] : accepted) {
        EventEditorInput in = valid();
        in.time = QString::fromLatin1(typed);
        EXPECT_TRUE(save(in).saved) << typed;
        EXPECT_EQ(in.time, QString::fromLatin1(shown));
    }
    // Refused, the box left as typed.
    for (const char* typed : {"24:00", "12:60", "0930", "09:3O", "HH:MM", "", "09-30"}) {
        EventEditorInput in = valid();
        in.time = QString::fromLatin1(typed);
        const EventEditorOutcome out = save(in);
        EXPECT_EQ(std::tie(out.message, out.focus, in.time),
                  std::make_tuple(QString(R::kTimeRange), QString("txtTime"), QString(typed)));
    }
}

// Every refusal names the fault and puts the focus on the box to correct.
TEST_F(EditorRules, RefusalsNameTheFaultAndTheBoxToCorrect) {
    const auto lessThan = [](const char* field) {
        return QStringLiteral("The %1 cannot contain \"<\": please remove it.")
            .arg(QLatin1String(field));
    };
    using In = EventEditorInput;
    const struct {
        QString In::*box;
        const char* typed;
        QString message;
        const char* focus;
        const char* title = ""; // "" = the program's own
        int type = clsEvent::EveryXDays;
    } cases[] = {
        {&In::desc, "", R::kNoDescription, "txtDesc"},
        {&In::desc, "   ", R::kNoDescription, "txtDesc"},
        {&In::desc, "\r\n\t ", R::kNoDescription, "txtDesc"},
        {&In::time, "+9:30", "Time field +9:30 is not valid, please correct", "txtTime", "Error"},
        {&In::minutesWarning, "61", R::kMaxWarning, "txtMinutesWarning"},
        {&In::minutesWarning, "ten", R::kDataError, "", "Error"},
        {&In::dailyStart, "DD/MM/YYYY", R::kBadStartDate, "lblDailyStartDate"},
        {&In::dailyStart, "31/02/2009", R::kBadStartDate, "lblDailyStartDate"},
        {&In::monthlyPeriod, "", R::kBadPeriod, "txtMonthlyPeriod", "", clsEvent::EveryXMonths},
        {&In::monthlyPeriod, "x", R::kBadPeriod, "txtMonthlyPeriod", "", clsEvent::EveryXMonths},
        {&In::weeklyStart, "DD/MM/YYYY", R::kBadStartDate, "lblWeeklyStartDate", "",
         clsEvent::Weekly},
        {&In::desc, "no day ticked", R::kNoWeekday, "chkDay1", "", clsEvent::DaysOfWeek},
        {&In::dayOfMonth, "first", R::kBadDayOfMonth, "txtDayOfMonth", "",
         clsEvent::DayOfMonthType},
        // Fields the events file keeps as they are would read back cut at a "<".
        {&In::wavFile, "/tmp/a<b.wav", lessThan("sound file"), "cmdPickWav", "Error"},
        {&In::execFile, "/tmp/a<b", lessThan("file to run"), "cmdPickFile", "Error"},
        {&In::email, "<a@b.c>", lessThan("e-mail address"), "txtEmailAlert", "Error"},
    };
    for (const auto& c : cases) {
        EventEditorInput in = valid();
        in.makeNoise = in.runFile = in.emailTo = true;
        in.monthlyStart = "05/03/2009";
        in.weeklyPeriod = "x"; // the start date is checked first
        in.recurrenceType = c.type;
        in.*c.box = QString::fromLatin1(c.typed);
        const EventEditorOutcome out = save(in);
        EXPECT_EQ(std::tie(out.saved, out.message, out.focus, out.title),
                  std::make_tuple(false, c.message, QString(c.focus), QString(c.title)))
            << c.typed;
        if (c.message == R::kNoDescription) { // the first rows: the event is still new
            EXPECT_TRUE(event.Desc().isEmpty()) << "a refused description writes nothing";
        }
    }
    settings.sSet("Owner", "Fred<"); // a hand-edited owner
    EventEditorInput in = valid();
    EXPECT_EQ(save(in).message, lessThan("user ID in the options"));
}

// The alarm time is the due time less the warning, by plain subtraction: an
// alarm before midnight is not wrapped round.
TEST_F(EditorRules, TimedEventGetsDueTimeWarningAndAlarmTime) {
    for (const auto& [typed, minutes] : {std::pair{"30", 30}, {"60", 60}, {"", 0}, {" 5 ", 5}}) {
        EventEditorInput in = valid();
        in.time = "00:10";
        in.minutesWarning = QString::fromLatin1(typed);
        ASSERT_TRUE(save(in).saved) << typed;
        EXPECT_DOUBLE_EQ(event.DueTime(), TimeSerial(0, 10));
        EXPECT_EQ(event.MinutesWarning(), minutes) << typed;
        EXPECT_NEAR(event.AlarmTime(), TimeSerial(0, 10) - minutes / 1440.0, 1e-9) << typed;
    }
}

TEST_F(EditorRules, RecurrenceTabsWriteTheirFields) {
    EventEditorInput in = valid();
    in.recurrenceType = clsEvent::DaysOfWeek;
    in.days.at(1) = in.days.at(7) = true; // Monday and Sunday
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(event.WeekDays(), 130);

    in.recurrenceType = clsEvent::DayOfMonthType;
    in.dayOfMonth = "31";
    in.monthNamesIndex = 12; // "Every Month"
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(QList<int>({event.DayOfMonth(), event.MonthNumber()}), QList<int>({31, 13}));
    in.monthNamesIndex = 0; // January
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(event.MonthNumber(), 1);

    in.recurrenceType = clsEvent::NthWeekday;
    in.dayNumberIndex = 4; // "Last"
    in.dayNameIndex = 0;   // Sunday
    in.monthsIndex = 0;    // "Every Month"
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(QList<int>({event.Daynumber(), event.DayOfWeek(), event.MonthNumber()}),
              QList<int>({5, 1, 0}));
    in.monthsIndex = 12; // December
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(event.MonthNumber(), 12);

    in.recurrenceType = clsEvent::Weekly;
    in.weeklyPeriod = "2";
    in.weeklyStart = "17/03/2009";
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(event.Period(), 2);
    // The picked date replaces today; start dates follow the date style, and ISO
    // dates are read whatever the style.
    for (const auto& [style, typed, start] : {std::tuple{1, "17/03/2009", "2009-03-17"},
                                              {2, "03/18/2009", "2009-03-18"},
                                              {2, "2009-03-05", "2009-03-05"}}) {
        settings.sSet("DateStyle", style);
        in.weeklyStart = QString::fromLatin1(typed);
        ASSERT_TRUE(save(in).saved) << typed;
        EXPECT_DOUBLE_EQ(event.StartDate(), D(start)) << typed;
    }
}

TEST_F(EditorRules, AFailedCheckLeavesEarlierFieldsWrittenAndLaterOnesAlone) {
    event.setDesc("old");
    event.setDaysWarning(9);
    EventEditorInput in = valid();
    in.dailyStart = "DD/MM/YYYY";
    EXPECT_FALSE(save(in).saved);
    EXPECT_EQ(std::make_tuple(event.Desc(), event.DaysWarning(), event.Period()),
              std::make_tuple(QString("Dentist"), int16_t(2), int16_t(0)))
        << "the failing tab wrote nothing";

    clsEvent untouched;
    untouched.setDesc("old");
    event = untouched;
    in.time = "25:00";
    EXPECT_FALSE(save(in).saved);
    EXPECT_EQ(event.Desc(), "old") << "the time check comes before the description";
}

TEST_F(EditorRules, OneOffUntimedEventTakesTodayOwnerAndEmptyBoxesAsZero) {
    EventEditorInput in;
    in.desc = "Pay rent";
    in.repeat = false;
    in.minutesWarning.clear();
    in.daysWarning = "  ";
    in.layer = 3;
    in.days.at(3) = true; // the weekday tab is checked even for a one-off
    ASSERT_TRUE(save(in).saved);
    EXPECT_FALSE(event.AlarmSet());
    EXPECT_DOUBLE_EQ(event.StartDate(), D("2009-03-05"));
    EXPECT_EQ(QList<int>({event.DaysWarning(), event.Layer()}), QList<int>({0, 3}));
    EXPECT_EQ(QStringList({event.Owner(), in.minutesWarning, in.daysWarning}),
              QStringList({"Fred", "0", "0"}));

    cSHAREDSettings empty;
    EXPECT_TRUE(R::Save(in, event, empty).saved);
    EXPECT_EQ(event.Owner(), "Not Set");
}

TEST_F(EditorRules, SharingAndEmail) {
    event.ShareNames = "Old\r\n";
    const struct {
        bool shared, specific;
        const char* names;
    } cases[] = {{true, true, "Bob\r\nJim\r\n"}, {true, false, ""}, {false, true, ""}};
    for (const auto& c : cases) {
        EventEditorInput in = valid();
        in.shared = c.shared;
        in.specificShare = c.specific;
        in.selectedUsers = {"Bob", "Jim"};
        in.emailTo = c.specific;
        in.email = "fred@home.test";
        ASSERT_TRUE(save(in).saved);
        EXPECT_EQ(
            std::tie(event.SharedEvent, event.ShareWithSpecific, event.ShareNames, event.Email),
            std::make_tuple(c.shared, c.shared && c.specific, QString(c.names),
                            c.specific ? in.email : QString()));
    }
    EXPECT_EQ(settings.sGet("DefaultEmail").toText(), "fred@home.test")
        << "remembered as the default";
}

TEST_F(EditorRules, SoundAndFileToRun) {
    const QString chosen = home.file("bell.wav");
    ASSERT_TRUE(WriteFileBytes(chosen, "RIFF"));
    EventEditorInput in = valid();
    in.makeNoise = in.runFile = true;
    in.wavFile = chosen;
    in.execFile = "/tmp/report.txt";
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(QStringList({event.WavFile, event.Filename}), QStringList({chosen, in.execFile}));

    in.wavFile = home.file("gone.wav");
    ASSERT_TRUE(save(in).saved);
    EXPECT_NE(event.WavFile, home.file("gone.wav")) << "a missing sound gives the default";
    EXPECT_EQ(in.wavFile, event.WavFile) << "the label shows the sound used";

    in.makeNoise = in.runFile = false;
    ASSERT_TRUE(save(in).saved);
    EXPECT_FALSE(event.PlayWav || event.ExecFile);
    EXPECT_TRUE(event.WavFile.isEmpty() && in.wavFile.isEmpty());
}

// The line under the tabs counts today when the rule gives today, and every
// following day when the rule gives every day.
TEST_F(EditorRules, PreviewStartsWithTodayWhenTheRuleGivesToday) {
    EventEditorInput in = valid();
    in.dailyPeriod = "1";
    const DateValue today = D("2009-03-05");
    EXPECT_EQ(OccurrencePreview::Of(in, event, settings).dates,
              (QList<DateValue>{today, today + 1, today + 2, today + 3, today + 4}));
    EXPECT_TRUE(event.Desc().isEmpty()) << "the edited event is left alone";

    in.recurrenceType = clsEvent::DaysOfWeek; // no day ticked
    EXPECT_EQ(OccurrencePreview::Of(in, event, settings).problem,
              QString::fromLatin1(R::kNoWeekday));
}

TEST(EditorAlarmAdvice, ShowsTheAlarmMomentOnATwelveHourClock) {
    const char* const cases[][3] = {{"23:00", "30", "(Alarm will sound at 10:30pm)"},
                                    {"09;05", "0", "(Alarm will sound at 9:05am)"},
                                    {"12:00", "", "(Alarm will sound at 12:00pm)"},
                                    {"00:10", "30", "(Alarm will sound at 11:40pm)"},
                                    {"00:30", "30", "(Alarm will sound at 12:00am)"},
                                    {"HH:MM", "30", ""},
                                    {"10:00", "soon", ""}};
    for (const auto& [time, minutes, advice] : cases) {
        EXPECT_EQ(R::AlarmAdvice(QString::fromLatin1(time), QString::fromLatin1(minutes)),
                  QString::fromLatin1(advice))
            << time << " - " << minutes;
    }
}

} // namespace
