// The iCalendar mapping: every recurrence type written as a rule that
// libical expands to exactly Tarvo's own dates over five years from tricky
// start days, the X-TARVO fields giving back the same record, calendars in
// other programs' style read into Tarvo's types, and bad files refused.
#include "model/clsEvent.h"
#include "storage/EventXmlCodec.h"
#include "storage/IcsEventMapping.h"
#include "storage/IcsRecurrence.h"
#include "support/TestSupport.h"

#include <libical/ical.h>

#include <algorithm>

using namespace IcsEventMapping;

namespace {

struct Rule {
    const char* name;
    int32_t type;
    int16_t weekDays = 0, dayOfMonth = 0, monthNumber = 0, period = 0, dayOfWeek = 0, daynumber = 0;
    int32_t readAs = -1; // the type read back when another one gives the same dates
};

const Rule kRules[] = {
    {"Mon+Fri", clsEvent::DaysOfWeek, 34},
    {"Sunday", clsEvent::DaysOfWeek, 128, 0, 0, 0, 0, 0, clsEvent::Weekly},
    {"weekend", clsEvent::DaysOfWeek, 192},
    {"day 31 monthly", clsEvent::DayOfMonthType, 0, 31, 13},
    {"day 30 monthly", clsEvent::DayOfMonthType, 0, 30, 13},
    {"day 29 monthly", clsEvent::DayOfMonthType, 0, 29, 13},
    {"day 45 monthly", clsEvent::DayOfMonthType, 0, 45, 13},
    {"day 1 monthly", clsEvent::DayOfMonthType, 0, 1, 13},
    {"31 April", clsEvent::DayOfMonthType, 0, 31, 4},
    {"29 February", clsEvent::DayOfMonthType, 0, 29, 2},
    {"30 February", clsEvent::DayOfMonthType, 0, 30, 2},
    {"31 December", clsEvent::DayOfMonthType, 0, 31, 12},
    {"every month", clsEvent::EveryXMonths, 0, 0, 0, 1},
    {"every 2 months", clsEvent::EveryXMonths, 0, 0, 0, 2},
    {"every 5 months", clsEvent::EveryXMonths, 0, 0, 0, 5},
    {"every 12 months", clsEvent::EveryXMonths, 0, 0, 0, 12},
    {"every 48 months", clsEvent::EveryXMonths, 0, 0, 0, 48},
    {"weekly", clsEvent::Weekly, 0, 0, 0, 1},
    {"every 3 weeks", clsEvent::Weekly, 0, 0, 0, 3},
    {"1st Monday", clsEvent::NthWeekday, 0, 0, 0, 0, 2, 1},
    {"last Friday", clsEvent::NthWeekday, 0, 0, 0, 0, 6, 5},
    {"4th Thursday of November", clsEvent::NthWeekday, 0, 0, 11, 0, 5, 4},
    {"last Sunday of February", clsEvent::NthWeekday, 0, 0, 2, 0, 1, 9},
    {"2nd Saturday", clsEvent::NthWeekday, 0, 0, 0, 0, 7, 2},
    {"day number 0", clsEvent::NthWeekday, 0, 0, 0, 0, 3, 0, clsEvent::DayOfMonthType},
    {"daily", clsEvent::EveryXDays, 0, 0, 0, 1},
    {"every 45 days", clsEvent::EveryXDays, 0, 0, 0, 45},
};

// Month ends, 29 February, week boundaries, a year's end.
const char* const kStarts[] = {"2024-01-31", "2024-02-29", "2023-02-28", "2025-03-31",
                               "2025-08-31", "2025-12-31", "2026-06-01", "2027-01-30"};

EventPtr makeEvent(const Rule& r, DateValue start) {
    auto e = std::make_shared<clsEvent>();
    e->setDesc(QString::fromLatin1(r.name));
    e->setRecurring(true);
    e->setRecurrenceType(r.type);
    e->setWeekDays(r.weekDays);
    e->setDayOfMonth(r.dayOfMonth);
    e->setMonthNumber(r.monthNumber);
    e->setPeriod(r.period);
    e->setDayOfWeek(r.dayOfWeek);
    e->setDaynumber(r.daynumber);
    e->setStartDate(start);
    e->CalcNextDueDate();
    return e;
}

// Tarvo's own dates up to last: each the next occurrence after the one before.
QList<DateValue> tarvoDates(const clsEvent& event, DateValue last) {
    clsEvent e = event;
    QList<DateValue> out;
    for (DateValue d = e.DueDate(); d <= last;) {
        out.append(d);
        e.CalcNextAfterDate(d + 1);
        if (e.DueDate() <= d) {
            break;
        }
        d = e.DueDate();
    }
    return out;
}

DateValue dayOf(const icaltimetype& t) {
    return DateSerial(t.year, t.month, t.day);
}

// libical's expansion of the VEVENT: DTSTART and its RRULE by libical's
// iterator, plus RDATE, less EXDATE.
QList<DateValue> libicalDates(icalcomponent* v, DateValue first, DateValue last) {
    const icaltimetype start = icalcomponent_get_dtstart(v);
    QList<DateValue> out{dayOf(start)};
    if (icalproperty* p = icalcomponent_get_first_property(v, ICAL_RRULE_PROPERTY)) {
        icalrecur_iterator* it = icalrecur_iterator_new(icalproperty_get_rrule(p), start);
        for (icaltimetype t = icalrecur_iterator_next(it);
             !icaltime_is_null_time(t) && dayOf(t) <= last; t = icalrecur_iterator_next(it)) {
            out.append(dayOf(t));
        }
        icalrecur_iterator_free(it);
    }
    for (icalproperty* p = icalcomponent_get_first_property(v, ICAL_RDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(v, ICAL_RDATE_PROPERTY)) {
        out.append(dayOf(icalproperty_get_rdate(p).time));
    }
    for (icalproperty* p = icalcomponent_get_first_property(v, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(v, ICAL_EXDATE_PROPERTY)) {
        out.removeAll(dayOf(icalproperty_get_exdate(p)));
    }
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    out.removeIf([&](DateValue d) { return d < first || d > last; });
    return out;
}

QString recordText(const clsEvent& e) {
    QByteArray out;
    EventXmlCodec::AppendBlock(out, e);
    return QString::fromLatin1(out);
}

} // namespace

TEST(IcsMapping, ExpandedRulesGiveTarvosOwnDatesOverFiveYears) {
    for (const char* startText : kStarts) {
        const DateValue start = D(QString::fromLatin1(startText));
        FixedClock clock(start + TimeSerial(8, 0));
        const DateValue last = DateSerial(YearOf(start) + 5, MonthOf(start), DayOf(start));
        for (const Rule& rule : kRules) {
            const EventPtr event = makeEvent(rule, start);
            const QList<DateValue> expected = tarvoDates(*event, last);
            const IcalComponent v = ToVEvent(*event, QStringLiteral("Work"), {false});
            const QList<DateValue> got = libicalDates(v.get(), start, last);
            ASSERT_GT(expected.size(), 1) << rule.name << " from " << startText;
            EXPECT_EQ(got, expected) << rule.name << " from " << startText;

            // Read back without Tarvo's own fields: the same dates, and a rule
            // of the same type wherever no extra dates were needed.
            const ReadEvent read = FromVEvent(v.get(), start, {false});
            ASSERT_TRUE(read.event) << rule.name;
            if (icalcomponent_get_first_property(v.get(), ICAL_RDATE_PROPERTY) == nullptr) {
                EXPECT_EQ(read.simplified, QString()) << rule.name << " from " << startText;
                EXPECT_EQ(read.event->RecurrenceType(), rule.readAs >= 0 ? rule.readAs : rule.type)
                    << rule.name;
                EXPECT_EQ(tarvoDates(*read.event, last), expected)
                    << rule.name << " from " << startText;
            } else {
                EXPECT_FALSE(read.event->Recurring()) << rule.name;
                EXPECT_EQ(read.event->DueDate(), expected.first()) << rule.name;
            }
        }
    }
}

TEST(IcsMapping, HandEditedRulesWithNoDateAreWrittenAsTheirDueDayOnly) {
    const struct {
        Rule rule;
        const char* why;
    } cases[] = {
        {{"weekday 0", clsEvent::NthWeekday, 0, 0, 0, 0, 0, 1}, "weekday out of range"},
        {{"weekday 8", clsEvent::NthWeekday, 0, 0, 0, 0, 8, 2}, "weekday out of range"},
        {{"no weekday", clsEvent::DaysOfWeek, 1}, "no weekday chosen"},
    };
    for (const auto& c : cases) {
        clsEvent e;
        e.setRecurring(true);
        e.setRecurrenceType(c.rule.type);
        e.setWeekDays(c.rule.weekDays);
        e.setDayOfWeek(c.rule.dayOfWeek);
        e.setDaynumber(c.rule.daynumber);
        e.setDueDate(D(QStringLiteral("2030-06-01")));
        const IcsRecurrence::Pattern p = IcsRecurrence::Write(e);
        EXPECT_EQ(p.inexact, QString::fromLatin1(c.why)) << c.rule.name;
        EXPECT_EQ(p.rule, QByteArray()) << c.rule.name;
        EXPECT_EQ(p.start, e.DueDate()) << c.rule.name;
    }
}

TEST(IcsMapping, TarvoFieldsGiveBackTheSameRecord) {
    FixedClock clock(QStringLiteral("2030-06-01 08:00"));
    auto timed = makeEvent(kRules[0], D(QStringLiteral("2030-06-01")));
    timed->IDCode = QStringLiteral("012345");
    timed->setDesc(QStringLiteral("Dentist, room 4\r\nbring the card; caf\u00e9 after"));
    timed->setOwner(QStringLiteral("Ann & Bob"));
    timed->setLayer(3);
    timed->SharedLayerName = QStringLiteral("Work, home");
    timed->SharedEvent = true;
    timed->ShareWithSpecific = true;
    timed->ShareNames = QStringLiteral("Bob\r\nJim Bob\r\n");
    timed->Email = QStringLiteral("ann@example.org;bob@example.org");
    timed->setAlarmSet(true);
    timed->setDueTime(TimeSerial(0, 10));
    timed->setMinutesWarning(30);
    timed->setAlarmTime(timed->DueTime() - 30 / 1440.0);
    timed->setDaysWarning(2);
    timed->ExecFile = true;
    timed->Filename = QStringLiteral("C:\\Reports\\run me.bat");
    timed->PlayWav = true;
    timed->WavFile = QStringLiteral("/home/ann/sounds/bell.wav");

    // A series whose day moves at a short month.
    auto shifting = makeEvent(kRules[12], D(QStringLiteral("2031-01-31")));
    shifting->IDCode = QStringLiteral("000001");

    for (const EventPtr& e : {timed, shifting}) {
        const IcalComponent v = ToVEvent(*e, QStringLiteral("Work, home"), {true});
        // Through the file's text and back.
        std::vector<IcalComponent> list;
        list.emplace_back(icalcomponent_new_clone(v.get()));
        const Calendar parsed = ParseCalendar(WriteCalendar(std::move(list)));
        ASSERT_EQ(parsed.error, QString());
        ASSERT_EQ(parsed.events.size(), 1);
        const ReadEvent read = FromVEvent(parsed.events.first(), TodayDate(), {true});
        ASSERT_TRUE(read.event);
        EXPECT_TRUE(read.tarvoFields);
        EXPECT_EQ(read.category, QStringLiteral("Work, home"));
        EXPECT_EQ(recordText(*read.event), recordText(*e));
    }
}

TEST(IcsMapping, OtherProgramsEventsBecomeTarvoEvents) {
    FixedClock clock(QStringLiteral("2030-06-01 08:00"));
    struct Case { // type -1: "Show Once"; time "": untimed; minutes, days: of warning
        const char* lines;
        int32_t type;
        const char *due, *time;
        int16_t minutes, daysWarning;
        const char* simplified;
    };
    const Case cases[] = {
        // An all-day birthday with a reminder the day before.
        {"DTSTART;VALUE=DATE:19800612\nRRULE:FREQ=YEARLY\nBEGIN:VALARM\nACTION:DISPLAY\n"
         "TRIGGER:-P1D\nEND:VALARM",
         clsEvent::DayOfMonthType, "2030-06-12", "", 0, 1, ""},
        {"DTSTART:20300603T093000\nRRULE:FREQ=MONTHLY;BYDAY=-1FR\nBEGIN:VALARM\nACTION:AUDIO\n"
         "TRIGGER;RELATED=START:-PT15M\nEND:VALARM",
         clsEvent::NthWeekday, "2030-06-28", "09:30", 15, 0, ""},
        // The last Friday as a set position; an alarm a whole hour ahead
        // stays minutes of warning.
        {"DTSTART:20300603T093000\nRRULE:FREQ=MONTHLY;BYDAY=FR;BYSETPOS=-1\nBEGIN:VALARM\n"
         "ACTION:DISPLAY\nTRIGGER:-PT1H\nEND:VALARM",
         clsEvent::NthWeekday, "2030-06-28", "09:30", 60, 0, ""},
        {"DTSTART;VALUE=DATE:20300129\nRRULE:FREQ=YEARLY", clsEvent::DayOfMonthType, "2031-01-29",
         "", 0, 0, ""},
        {"DTSTART;VALUE=DATE:20300105\nRRULE:FREQ=MONTHLY;BYMONTHDAY=-1", clsEvent::DayOfMonthType,
         "2030-06-30", "", 0, 0, ""},
        {"DTSTART;VALUE=DATE:20300602\nRRULE:FREQ=WEEKLY;INTERVAL=2", clsEvent::Weekly,
         "2030-06-02", "", 0, 0, ""},
        {"DTSTART;VALUE=DATE:20300601\nRRULE:FREQ=WEEKLY;BYDAY=TU,TH", clsEvent::DaysOfWeek,
         "2030-06-04", "", 0, 0, ""},
        {"DTSTART;VALUE=DATE:20300701\nRRULE:FREQ=YEARLY;INTERVAL=2", clsEvent::EveryXMonths,
         "2030-07-01", "", 0, 0, ""},
        // Rules with no Tarvo type become their next occurrence.
        {"DTSTART:20300520T180000\nRRULE:FREQ=WEEKLY;COUNT=4", -1, "2030-06-03", "18:00", 0, 0,
         "COUNT or UNTIL"},
        {"DTSTART;VALUE=DATE:20280229\nRRULE:FREQ=YEARLY", -1, "2032-02-29", "", 0, 0,
         "29 February"},
        {"DTSTART;VALUE=DATE:20300131\nRRULE:FREQ=MONTHLY;BYMONTHDAY=31", -1, "2030-07-31", "", 0,
         0, "day 29-31 skipped in shorter months"},
        {"DTSTART;VALUE=DATE:20300501\nRRULE:FREQ=MONTHLY;BYDAY=1MO,3MO", -1, "2030-06-03", "", 0,
         0, "several weekday positions"},
        {"DTSTART:20300601T090000\nRRULE:FREQ=DAILY;BYSECOND=0,30", -1, "2030-06-01", "09:00", 0, 0,
         "no type for"},
        {"DTSTART;TZID=America/New_York:20300601T090000\nRRULE:FREQ=DAILY", -1, "2030-06-01",
         "13:00", 0, 0, "time zone America/New_York"},
        // A one-off in UTC is converted, not simplified; an early alarm
        // becomes days of warning.
        {"DTSTART:20300610T220000Z\nBEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT2H\nEND:VALARM", -1,
         "2030-06-10", "22:00", 0, 1, "alarm more than 60 minutes"},
    };
    for (const Case& c : cases) {
        const QByteArray text =
            "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Other//EN\r\n"
            "BEGIN:VEVENT\r\nUID:x\r\nSUMMARY:Thing\r\nCATEGORIES:Family,Misc\r\n" +
            QByteArray(c.lines).replace("\n", "\r\n") + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
        const Calendar calendar = ParseCalendar(text);
        ASSERT_EQ(calendar.error, QString()) << c.lines;
        ASSERT_EQ(calendar.events.size(), 1);
        const ReadEvent read = FromVEvent(calendar.events.first(), TodayDate(), {true});
        ASSERT_TRUE(read.event) << c.lines << " skipped: " << read.skipped.toStdString();
        const clsEvent& e = *read.event;
        EXPECT_EQ(read.category, QStringLiteral("Family")) << c.lines;
        EXPECT_EQ(e.Recurring() ? e.RecurrenceType() : -1, c.type) << c.lines;
        EXPECT_EQ(FormatYMD(e.DueDate()), QString::fromLatin1(c.due)) << c.lines;
        EXPECT_EQ(e.AlarmSet() ? FormatHM(e.DueTime()) : QString(), QString::fromLatin1(c.time))
            << c.lines;
        EXPECT_EQ(e.MinutesWarning(), c.minutes) << c.lines;
        EXPECT_EQ(e.DaysWarning(), c.daysWarning) << c.lines;
        EXPECT_TRUE(read.simplified.contains(QString::fromLatin1(c.simplified)))
            << read.simplified.toStdString();
        EXPECT_EQ(read.simplified.isEmpty(), *c.simplified == 0) << c.lines;
    }
}

TEST(IcsMapping, BadCalendarFilesAreRefusedWithAReason) {
    const struct {
        QByteArray bytes;
        const char* message;
    } cases[] = {
        {"Hello, world\r\n", "not an iCalendar file"},
        {"BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:x\r\nEND:VEVENT\r\n", "incomplete"},
        {"BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:caf\xE9\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n",
         "not UTF-8"},
        {"BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:tomorrow\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n",
         "DTSTART"},
    };
    for (const auto& c : cases) {
        const Calendar calendar = ParseCalendar(c.bytes);
        EXPECT_TRUE(calendar.error.contains(QString::fromLatin1(c.message)))
            << calendar.error.toStdString();
        EXPECT_TRUE(calendar.events.isEmpty());
    }
}
