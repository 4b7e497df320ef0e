// The iCalendar mapping: every recurrence type written as a rule that
// libical expands to exactly Tarvo's own dates over five years from tricky
// start days, the X-TARVO fields giving back the same record, and calendar
// files in other programs' style (calendars/) read into Tarvo's types or
// refused.
#include "model/clsEvent.h"
#include "storage/EventXmlCodec.h"
#include "storage/IcsEventMapping.h"
#include "storage/IcsRecurrence.h"
#include "support/TestSupport.h"

#include <libical/ical.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace IcsEventMapping;

namespace {

struct Rule {
    const char* name;
    RuleFields fields;
    int32_t readAs = -1; // the type read back when another one gives the same dates
};

// clang-format off
const Rule kRules[] = {
    {"Mon+Fri", {.type = clsEvent::DaysOfWeek, .weekDays = 34}},
    {"Sunday", {.type = clsEvent::DaysOfWeek, .weekDays = 128}, clsEvent::Weekly},
    {"weekend", {.type = clsEvent::DaysOfWeek, .weekDays = 192}},
    {"day 31 monthly", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 31, .monthNumber = 13}},
    {"day 30 monthly", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 30, .monthNumber = 13}},
    {"day 29 monthly", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 29, .monthNumber = 13}},
    {"day 45 monthly", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 45, .monthNumber = 13}},
    {"day 1 monthly", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 1, .monthNumber = 13}},
    {"31 April", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 31, .monthNumber = 4}},
    {"29 February", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 29, .monthNumber = 2}},
    {"30 February", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 30, .monthNumber = 2}},
    {"31 December", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 31, .monthNumber = 12}},
    {"every month", {.type = clsEvent::EveryXMonths, .period = 1}},
    {"every 2 months", {.type = clsEvent::EveryXMonths, .period = 2}},
    {"every 5 months", {.type = clsEvent::EveryXMonths, .period = 5}},
    {"every 12 months", {.type = clsEvent::EveryXMonths, .period = 12}},
    {"every 48 months", {.type = clsEvent::EveryXMonths, .period = 48}},
    {"weekly", {.type = clsEvent::Weekly, .period = 1}},
    {"every 3 weeks", {.type = clsEvent::Weekly, .period = 3}},
    {"1st Monday", {.type = clsEvent::NthWeekday, .dayOfWeek = 2, .daynumber = 1}},
    {"last Friday", {.type = clsEvent::NthWeekday, .dayOfWeek = 6, .daynumber = 5}},
    {"4th Thursday of November", {.type = clsEvent::NthWeekday, .monthNumber = 11, .dayOfWeek = 5, .daynumber = 4}},
    {"last Sunday of February", {.type = clsEvent::NthWeekday, .monthNumber = 2, .dayOfWeek = 1, .daynumber = 9}},
    {"2nd Saturday", {.type = clsEvent::NthWeekday, .dayOfWeek = 7, .daynumber = 2}},
    {"day number 0", {.type = clsEvent::NthWeekday, .dayOfWeek = 3}, clsEvent::DayOfMonthType},
    {"daily", {.type = clsEvent::EveryXDays, .period = 1}},
    {"every 45 days", {.type = clsEvent::EveryXDays, .period = 45}},
};
// clang-format on

// Month ends, 29 February, week boundaries, a year's end.
const char* const kStarts[] = {"2024-01-31", "2024-02-29", "2023-02-28", "2025-03-31",
                               "2025-08-31", "2025-12-31", "2026-06-01", "2027-01-30"};

EventPtr makeEvent(const Rule& r, DateValue start) {
    auto e = std::make_shared<clsEvent>(RepeatingEvent(r.fields, QString::fromLatin1(r.name)));
    e->setStartDate(start);
    e->CalcNextDueDate();
    return e;
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
            const QList<DateValue> expected = DueDatesUpTo(*event, last);
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
                EXPECT_EQ(read.event->RecurrenceType(),
                          rule.readAs >= 0 ? rule.readAs : rule.fields.type)
                    << rule.name;
                EXPECT_EQ(DueDatesUpTo(*read.event, last), expected)
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
        RuleFields rule;
        const char* why;
    } cases[] = {
        {{.type = clsEvent::NthWeekday, .dayOfWeek = 0, .daynumber = 1}, "weekday out of range"},
        {{.type = clsEvent::NthWeekday, .dayOfWeek = 8, .daynumber = 2}, "weekday out of range"},
        {{.type = clsEvent::DaysOfWeek, .weekDays = 1}, "no weekday chosen"},
    };
    for (const auto& c : cases) {
        clsEvent e = RepeatingEvent(c.rule);
        e.setDueDate(D(QStringLiteral("2030-06-01")));
        const IcsRecurrence::Pattern p = IcsRecurrence::Write(e);
        EXPECT_EQ(p.inexact, QString::fromLatin1(c.why)) << c.why;
        EXPECT_EQ(p.rule, QByteArray()) << c.why;
        EXPECT_EQ(p.start, e.DueDate()) << c.why;
    }
}

TEST(IcsMapping, TarvoFieldsGiveBackTheSameRecord) {
    FixedClock clock(QStringLiteral("2030-06-01 08:00"));
    // A due time just after midnight puts the alarm on the day before.
    const EventPtr timed = EventWithEveryField();
    timed->setDueTime(TimeSerial(0, 10));
    timed->setAlarmTime(timed->DueTime() - 30 / 1440.0);

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

// Calendar files in calendars/, each read on 1 June 2030 into what its
// .expected file holds: for every VEVENT its category, why a repeating rule
// became its next occurrence, why it was skipped, and the event read; or the
// reason the whole file was refused. TARVO_WRITE_EXPECTED starts a new case.
TEST(IcsMapping, CalendarFilesReadAsExpected) {
    FixedClock clock(QStringLiteral("2030-06-01 08:00"));
    const QDir dir(QFileInfo(QStringLiteral(__FILE__)).dir().filePath(QStringLiteral("calendars")));
    const QStringList files = dir.entryList({QStringLiteral("*.ics")});
    ASSERT_FALSE(files.isEmpty()) << dir.path().toStdString();
    for (const QString& name : files) {
        const Calendar calendar = ParseCalendar(ReadFileBytes(dir.filePath(name)));
        QByteArray got =
            calendar.error.isEmpty() ? QByteArray() : "refused: " + calendar.error.toUtf8();
        for (icalcomponent* v : calendar.events) {
            const ReadEvent read = FromVEvent(v, TodayDate(), {true});
            got += "category: " + read.category.toUtf8() +
                   "; simplified: " + read.simplified.toUtf8() +
                   "; skipped: " + read.skipped.toUtf8() + "\r\n";
            if (read.event) {
                EventXmlCodec::AppendBlock(got, *read.event);
            }
        }
        const QString expected = dir.filePath(QFileInfo(name).completeBaseName() + ".expected");
        if (qEnvironmentVariableIsSet("TARVO_WRITE_EXPECTED") && !QFileInfo::exists(expected)) {
            WriteFileBytes(expected, got); // review it by hand
        }
        EXPECT_EQ(got, ReadFileBytes(expected)) << name.toStdString();
    }
    // The parser's own complaint (its wording is the library's) names the property.
    EXPECT_TRUE(
        ParseCalendar("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:tomorrow\r\nEND:VEVENT\r\n"
                      "END:VCALENDAR\r\n")
            .error.contains("DTSTART"));
}
