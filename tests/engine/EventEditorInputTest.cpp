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
    EditorRules() { settings.sSet(QStringLiteral("Owner"), QStringLiteral("Fred")); }

    // A timed one-off "Every X days" input that passes every check.
    EventEditorInput valid() const {
        EventEditorInput in;
        in.desc = QStringLiteral("Dentist");
        in.timed = true;
        in.time = QStringLiteral("09:30");
        in.minutesWarning = QStringLiteral("15");
        in.daysWarning = QStringLiteral("2");
        in.recurrenceType = clsEvent::EveryXDays;
        in.dailyPeriod = QStringLiteral("3");
        in.dailyStart = QStringLiteral("05/03/2009");
        return in;
    }

    EventEditorOutcome save(EventEditorInput& in) { return R::Save(in, event, settings); }

    TempHome home;
    FixedClock clock{QStringLiteral("2009-03-05 10:00")};
    cSHAREDSettings settings;
    clsEvent event;
};

TEST_F(EditorRules, TimeBoxChecks) {
    const struct {
        const char* typed;
        const char* shownAfter; // the box after the save tidied it
        const char* message;    // "" = accepted
    } cases[] = {
        {"09:30", "09:30", ""},
        {"09;30", "09:30", ""},
        {"  09:30  ", "09:30", ""},
        {"23:59", "23:59", ""},
        {"00:00", "00:00", ""},
        {"9:30", "09:30", ""},
        {" 7;05", "07:05", ""},
        {"24:00", "24:00", R::kTimeRange},
        {"12:60", "12:60", R::kTimeRange},
        {"0930", "0930", R::kTimeRange},
        {"09:3O", "09:3O", R::kTimeRange},
        {"HH:MM", "HH:MM", R::kTimeRange},
        {"", "", R::kTimeRange},
        {"09-30", "09-30", R::kTimeRange},
    };
    for (const auto& c : cases) {
        EventEditorInput in = valid();
        in.time = QString::fromLatin1(c.typed);
        const EventEditorOutcome out = save(in);
        EXPECT_EQ(out.saved, *c.message == '\0') << c.typed;
        EXPECT_EQ(out.message, QString::fromLatin1(c.message)) << c.typed;
        EXPECT_EQ(in.time, QString::fromLatin1(c.shownAfter)) << c.typed;
    }
}

TEST_F(EditorRules, TimeThatPassesTheRangeCheckButIsNoTimeGetsItsOwnMessage) {
    EventEditorInput in = valid();
    in.time = QStringLiteral("+9:30");
    const EventEditorOutcome out = save(in);
    EXPECT_FALSE(out.saved);
    EXPECT_EQ(out.message, QStringLiteral("Time field +9:30 is not valid, please correct"));
    EXPECT_EQ(out.title, QStringLiteral("Error"));
}

TEST_F(EditorRules, WarningMinutes) {
    const struct {
        const char* typed;
        const char* message;
        int16_t stored;
    } cases[] = {
        {"60", "", 60}, {"61", R::kMaxWarning, 0}, {"", "", 0},
        {" 5 ", "", 5}, {"ten", R::kDataError, 0},
    };
    for (const auto& c : cases) {
        clsEvent fresh;
        event = fresh;
        EventEditorInput in = valid();
        in.minutesWarning = QString::fromLatin1(c.typed);
        const EventEditorOutcome out = save(in);
        EXPECT_EQ(out.message, QString::fromLatin1(c.message)) << c.typed;
        if (out.saved) {
            EXPECT_EQ(event.MinutesWarning(), c.stored) << c.typed;
        }
    }
}

TEST_F(EditorRules, TimedEventGetsDueTimeAndAlarmTimeByPlainSubtraction) {
    EventEditorInput in = valid();
    in.time = QStringLiteral("00:10");
    in.minutesWarning = QStringLiteral("30");
    ASSERT_TRUE(save(in).saved);
    EXPECT_TRUE(event.AlarmSet());
    EXPECT_DOUBLE_EQ(event.DueTime(), TimeSerial(0, 10));
    EXPECT_EQ(event.MinutesWarning(), 30);
    EXPECT_NEAR(event.AlarmTime(), TimeSerial(0, 10) - 30.0 / 1440.0, 1e-9)
        << "no wrap at midnight";
    EXPECT_LT(event.AlarmTime(), 0.0);
}

TEST_F(EditorRules, RecurrenceTabsWriteTheirFields) {
    {
        EventEditorInput in = valid();
        in.recurrenceType = clsEvent::DaysOfWeek;
        in.days.at(1) = true; // Monday
        in.days.at(7) = true; // Sunday
        ASSERT_TRUE(save(in).saved);
        EXPECT_EQ(event.WeekDays(), 130);
    }
    {
        EventEditorInput in = valid();
        in.recurrenceType = clsEvent::DayOfMonthType;
        in.dayOfMonth = QStringLiteral("31");
        in.monthNamesIndex = 12; // "Every Month"
        ASSERT_TRUE(save(in).saved);
        EXPECT_EQ(event.DayOfMonth(), 31);
        EXPECT_EQ(event.MonthNumber(), 13);
        in.monthNamesIndex = 0; // January
        ASSERT_TRUE(save(in).saved);
        EXPECT_EQ(event.MonthNumber(), 1);
    }
    {
        EventEditorInput in = valid();
        in.recurrenceType = clsEvent::NthWeekday;
        in.dayNumberIndex = 4; // "Last"
        in.dayNameIndex = 0;   // Sunday
        in.monthsIndex = 0;    // "Every Month"
        ASSERT_TRUE(save(in).saved);
        EXPECT_EQ(event.Daynumber(), 5);
        EXPECT_EQ(event.DayOfWeek(), 1);
        EXPECT_EQ(event.MonthNumber(), 0);
        in.monthsIndex = 12; // December
        ASSERT_TRUE(save(in).saved);
        EXPECT_EQ(event.MonthNumber(), 12);
    }
    {
        EventEditorInput in = valid();
        in.recurrenceType = clsEvent::Weekly;
        in.weeklyPeriod = QStringLiteral("2");
        in.weeklyStart = QStringLiteral("17/03/2009");
        ASSERT_TRUE(save(in).saved);
        EXPECT_EQ(event.RecurrenceType(), clsEvent::Weekly);
        EXPECT_EQ(event.Period(), 2);
        EXPECT_DOUBLE_EQ(event.StartDate(), D("2009-03-17")) << "the picked date replaces today";
    }
}

TEST_F(EditorRules, IntervalTabsNeedAStartDateThenANumber) {
    const struct {
        int type;
        const char* start;
        const char* period;
        const char* message;
    } cases[] = {
        {clsEvent::EveryXDays, "DD/MM/YYYY", "3", R::kBadStartDate},
        {clsEvent::EveryXDays, "31/02/2009", "3", R::kBadStartDate},
        {clsEvent::EveryXMonths, "05/03/2009", "", R::kBadPeriod},
        {clsEvent::EveryXMonths, "05/03/2009", "x", R::kBadPeriod},
        {clsEvent::Weekly, "DD/MM/YYYY", "x", R::kBadStartDate},
        {clsEvent::EveryXMonths, "2009-03-05", "1", ""},
    };
    for (const auto& c : cases) {
        EventEditorInput in = valid();
        in.recurrenceType = c.type;
        in.monthlyStart = in.weeklyStart = in.dailyStart = QString::fromLatin1(c.start);
        in.monthlyPeriod = in.weeklyPeriod = in.dailyPeriod = QString::fromLatin1(c.period);
        EXPECT_EQ(save(in).message, QString::fromLatin1(c.message)) << c.start << " " << c.period;
    }
}

TEST_F(EditorRules, DescriptionMustHoldMoreThanBlanks) {
    for (const char* desc : {"", "   ", "\r\n\t "}) {
        EventEditorInput in = valid();
        in.desc = QString::fromLatin1(desc);
        const EventEditorOutcome out = save(in);
        EXPECT_FALSE(out.saved);
        EXPECT_EQ(out.message, QString::fromLatin1(R::kNoDescription));
        EXPECT_EQ(out.focus, QStringLiteral("txtDesc"));
        EXPECT_TRUE(event.Desc().isEmpty()) << "nothing written";
    }
}

TEST_F(EditorRules, DayOfMonthMustBeANumber) {
    EventEditorInput in = valid();
    in.recurrenceType = clsEvent::DayOfMonthType;
    in.dayOfMonth = QStringLiteral("first");
    EXPECT_EQ(save(in).message, QString::fromLatin1(R::kBadDayOfMonth));
}

TEST_F(EditorRules, StartDatesFollowTheDateStyle) {
    settings.sSet(QStringLiteral("DateStyle"), 2);
    EventEditorInput in = valid();
    in.dailyStart = QStringLiteral("03/17/2009");
    ASSERT_TRUE(save(in).saved);
    EXPECT_DOUBLE_EQ(event.StartDate(), D("2009-03-17"));
}

TEST_F(EditorRules, AFailedCheckLeavesEarlierFieldsWrittenAndLaterOnesAlone) {
    event.setDesc(QStringLiteral("old"));
    event.setDaysWarning(9);
    EventEditorInput in = valid();
    in.dailyStart = QStringLiteral("DD/MM/YYYY");
    EXPECT_FALSE(save(in).saved);
    EXPECT_EQ(event.Desc(), QStringLiteral("Dentist"));
    EXPECT_EQ(event.DaysWarning(), 2);
    EXPECT_EQ(event.Period(), 0) << "the failing tab wrote nothing";

    clsEvent untouched;
    untouched.setDesc(QStringLiteral("old"));
    event = untouched;
    in.time = QStringLiteral("25:00");
    EXPECT_FALSE(save(in).saved);
    EXPECT_EQ(event.Desc(), QStringLiteral("old")) << "the time check comes before the description";
}

TEST_F(EditorRules, OneOffUntimedEventTakesTodayOwnerAndEmptyBoxesAsZero) {
    EventEditorInput in;
    in.desc = QStringLiteral("Pay rent");
    in.repeat = false;
    in.minutesWarning.clear();
    in.daysWarning = QStringLiteral("  ");
    in.layer = 3;
    in.days.at(3) = true;
    ASSERT_TRUE(save(in).saved);
    EXPECT_FALSE(event.Recurring());
    EXPECT_FALSE(event.AlarmSet());
    EXPECT_DOUBLE_EQ(event.StartDate(), D("2009-03-05"));
    EXPECT_EQ(event.Owner(), QStringLiteral("Fred"));
    EXPECT_EQ(event.DaysWarning(), 0);
    EXPECT_EQ(event.Layer(), 3);
    EXPECT_EQ(in.minutesWarning, QStringLiteral("0"));
    EXPECT_EQ(in.daysWarning, QStringLiteral("0"));

    cSHAREDSettings empty;
    EXPECT_TRUE(R::Save(in, event, empty).saved);
    EXPECT_EQ(event.Owner(), QStringLiteral("Not Set"));
}

TEST_F(EditorRules, SharingFields) {
    event.ShareNames = QStringLiteral("Old\r\n");
    EventEditorInput in = valid();
    in.shared = true;
    in.specificShare = true;
    in.selectedUsers = {QStringLiteral("Bob"), QStringLiteral("Jim")};
    ASSERT_TRUE(save(in).saved);
    EXPECT_TRUE(event.SharedEvent);
    EXPECT_TRUE(event.ShareWithSpecific);
    EXPECT_EQ(event.ShareNames, QStringLiteral("Bob\r\nJim\r\n"));

    in.specificShare = false;
    ASSERT_TRUE(save(in).saved);
    EXPECT_TRUE(event.SharedEvent);
    EXPECT_FALSE(event.ShareWithSpecific);
    EXPECT_TRUE(event.ShareNames.isEmpty());

    in.shared = false;
    in.specificShare = true;
    ASSERT_TRUE(save(in).saved);
    EXPECT_FALSE(event.SharedEvent);
    EXPECT_FALSE(event.ShareWithSpecific);
    EXPECT_TRUE(event.ShareNames.isEmpty());
}

TEST_F(EditorRules, EmailIsRememberedAsTheDefault) {
    EventEditorInput in = valid();
    in.emailTo = true;
    in.email = QStringLiteral("fred@home.test");
    ASSERT_TRUE(save(in).saved);
    EXPECT_EQ(event.Email, QStringLiteral("fred@home.test"));
    EXPECT_EQ(settings.sGet(QStringLiteral("DefaultEmail")).toText(),
              QStringLiteral("fred@home.test"));
    in.emailTo = false;
    ASSERT_TRUE(save(in).saved);
    EXPECT_TRUE(event.Email.isEmpty());
}

TEST_F(EditorRules, SoundAndFileToRun) {
    const QString chosen = home.file(QStringLiteral("bell.wav"));
    ASSERT_TRUE(WriteFileBytes(chosen, "RIFF"));
    EventEditorInput in = valid();
    in.makeNoise = true;
    in.wavFile = chosen;
    in.runFile = true;
    in.execFile = QStringLiteral("/tmp/report.txt");
    ASSERT_TRUE(save(in).saved);
    EXPECT_TRUE(event.PlayWav);
    EXPECT_EQ(event.WavFile, chosen);
    EXPECT_TRUE(event.ExecFile);
    EXPECT_EQ(event.Filename, QStringLiteral("/tmp/report.txt"));

    in.wavFile = home.file(QStringLiteral("gone.wav"));
    ASSERT_TRUE(save(in).saved);
    EXPECT_NE(event.WavFile, home.file(QStringLiteral("gone.wav")))
        << "a missing sound gives the default";
    EXPECT_FALSE(event.WavFile.isEmpty());
    EXPECT_EQ(in.wavFile, event.WavFile) << "the label shows the sound used";

    in.makeNoise = false;
    in.runFile = false;
    ASSERT_TRUE(save(in).saved);
    EXPECT_FALSE(event.PlayWav);
    EXPECT_TRUE(event.WavFile.isEmpty());
    EXPECT_TRUE(in.wavFile.isEmpty());
    EXPECT_FALSE(event.ExecFile);
}

// The line under the tabs counts today when the rule gives today, and every
// following day when the rule gives every day.
TEST_F(EditorRules, PreviewStartsWithTodayWhenTheRuleGivesToday) {
    EventEditorInput in = valid();
    in.dailyPeriod = QStringLiteral("1");
    const OccurrencePreview daily = OccurrencePreview::Of(in, event, settings);
    QStringList days;
    for (const DateValue d : daily.dates) {
        days << FormatYMD(d);
    }
    EXPECT_EQ(days,
              (QStringList{"2009-03-05", "2009-03-06", "2009-03-07", "2009-03-08", "2009-03-09"}));
    EXPECT_TRUE(event.Desc().isEmpty()) << "the edited event is left alone";

    in.recurrenceType = clsEvent::DaysOfWeek; // no day ticked
    EXPECT_EQ(OccurrencePreview::Of(in, event, settings).problem,
              QString::fromLatin1(R::kNoWeekday));
}

TEST(EditorAlarmAdvice, ShowsTheAlarmMomentOnATwelveHourClock) {
    const struct {
        const char* time;
        const char* minutes;
        const char* advice;
    } cases[] = {
        {"23:00", "30", "(Alarm will sound at 10:30pm)"},
        {"09;05", "0", "(Alarm will sound at 9:05am)"},
        {"12:00", "", "(Alarm will sound at 12:00pm)"},
        {"00:10", "30", "(Alarm will sound at 11:40pm)"},
        {"00:30", "30", "(Alarm will sound at 12:00am)"},
        {"HH:MM", "30", ""},
        {"10:00", "soon", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(EventEditorRules::AlarmAdvice(QString::fromLatin1(c.time),
                                                QString::fromLatin1(c.minutes)),
                  QString::fromLatin1(c.advice))
            << c.time << " - " << c.minutes;
    }
}

} // namespace

// Fields the events file keeps as they are would read back cut at a "<".
TEST_F(EditorRules, ALessThanInAFieldKeptAsItIsIsRefusedNamingTheField) {
    const QString odd = home.file(QStringLiteral("a<b.wav"));
    ASSERT_TRUE(WriteFileBytes(odd, "RIFF"));
    const struct {
        void (*fill)(EventEditorInput&, const QString&);
        const char* field;
        const char* focus;
    } cases[] = {
        {[](EventEditorInput& in, const QString& v) { in.makeNoise = true, in.wavFile = v; },
         "sound file", "cmdPickWav"},
        {[](EventEditorInput& in, const QString& v) { in.runFile = true, in.execFile = v; },
         "file to run", "cmdPickFile"},
        {[](EventEditorInput& in, const QString&) { in.emailTo = true, in.email = "<a@b.c>"; },
         "e-mail address", "txtEmailAlert"},
    };
    for (const auto& c : cases) {
        EventEditorInput in = valid();
        c.fill(in, odd);
        const EventEditorOutcome outcome = save(in);
        EXPECT_FALSE(outcome.saved) << c.field;
        EXPECT_EQ(outcome.message, QStringLiteral("The %1 cannot contain \"<\": please remove it.")
                                       .arg(QLatin1String(c.field)));
        EXPECT_EQ(outcome.focus, QLatin1String(c.focus));
    }
    settings.sSet(QStringLiteral("Owner"), QStringLiteral("Fred<"));
    EventEditorInput in = valid();
    EXPECT_TRUE(save(in).message.contains(QStringLiteral("user ID"))) << "a hand-edited owner";
}
