// Due-date rules: worked examples for what a day-by-day search cannot show
// (the clock's month, century leap years, the largest steps, future starts),
// then agreement with that search for every rule, then termination on
// hand-edited data.
#include "model/clsEvent.h"
#include "shared/Clock.h"
#include "shared/cSharedLogging.h"
#include "support/LogLines.h"
#include "support/TestSupport.h"

#include <random>

namespace {

struct Case {
    const char* what;
    RuleFields rule;
    const char* clock; // the moment the clock shows
    const char* from;  // nullptr: CalcNextDueDate (from today)
    const char* due;
};

// clang-format off
const Case kCases[] = {
    // 0: days of the week
    {"time of day ignored", {.type = 0, .weekDays = 1 << 5}, "2009-01-01 00:00", "2009-03-06 23:00", "2009-03-06"},
    // 1: day of month, yearly or every month (13), searched from the clock's month
    {"31st on 30 April at midnight", {.type = 1, .dayOfMonth = 31, .monthNumber = 13}, "2009-04-30 09:00", "2009-04-30 00:00", "2009-04-30"},
    {"31st after 30 April 09:00", {.type = 1, .dayOfMonth = 31, .monthNumber = 13}, "2009-04-30 09:00", "2009-04-30 09:00", "2009-05-31"},
    {"31st after the last day of the year", {.type = 1, .dayOfMonth = 31, .monthNumber = 13}, "2009-12-31 12:00", "2009-12-31 12:00", "2010-01-31"},
    {"29 Feb yearly, past: next year", {.type = 1, .dayOfMonth = 29, .monthNumber = 2}, "2009-03-10 09:00", nullptr, "2010-02-28"},
    {"29 Feb yearly into 2000", {.type = 1, .dayOfMonth = 29, .monthNumber = 2}, "1999-03-01 09:00", nullptr, "2000-02-29"},
    {"30 Feb yearly into 2100", {.type = 1, .dayOfMonth = 30, .monthNumber = 2}, "2099-03-01 09:00", nullptr, "2100-02-28"},
    {"search starts at the clock's month, not from's", {.type = 1, .dayOfMonth = 20, .monthNumber = 13}, "2009-04-10 09:00", "2009-01-15", "2009-04-20"},
    {"from years ahead of the clock", {.type = 1, .dayOfMonth = 20, .monthNumber = 13}, "2009-04-10 09:00", "2011-07-25", "2011-08-20"},
    {"yearly, from years behind the clock", {.type = 1, .dayOfMonth = 1, .monthNumber = 6}, "2009-04-10 09:00", "2005-01-01", "2009-06-01"},
    // 2: every Period months; an overflowing day moves the series for good
    {"31 Jan monthly from 1 March", {.type = 2, .period = 1, .start = "2009-01-31"}, "2009-03-01 09:00", nullptr, "2009-03-03"},
    {"29 Feb yearly", {.type = 2, .period = 12, .start = "2000-02-29"}, "2001-01-01 09:00", nullptr, "2001-03-01"},
    {"start in the future taken as it is", {.type = 2, .period = 1, .start = "2030-05-05"}, "2009-03-01 09:00", nullptr, "2030-05-05"},
    {"start equal to from accepted", {.type = 2, .period = 12, .start = "2009-03-01"}, "2009-03-01 09:00", nullptr, "2009-03-01"},
    {"zero months, start equal to from", {.type = 2, .period = 0, .start = "2009-03-01"}, "2009-03-01 09:00", nullptr, "2009-03-01"},
    // 3: every Period weeks
    {"fortnightly Tuesday, on the day", {.type = 3, .period = 2, .start = "2009-03-03"}, "2009-03-17 09:00", nullptr, "2009-03-17"},
    {"largest week step", {.type = 3, .period = 4681, .start = "2009-01-01"}, "2009-01-02 09:00", nullptr, "2098-09-18"},
    // 4: the Nth weekday of a month (MonthNumber 0 = every month)
    {"last Sunday of February 2100", {.type = 4, .monthNumber = 2, .dayOfWeek = 1, .daynumber = 5}, "2100-01-01 09:00", nullptr, "2100-02-28"},
    {"Daynumber 9 means last", {.type = 4, .monthNumber = 0, .dayOfWeek = 3, .daynumber = 9}, "2009-03-01 09:00", nullptr, "2009-03-31"},
    {"Daynumber 0 gives the 1st", {.type = 4, .monthNumber = 0, .dayOfWeek = 3, .daynumber = 0}, "2009-03-10 09:00", nullptr, "2009-04-01"},
    // 5: every Period days
    {"daily for years", {.type = 5, .period = 1, .start = "2009-01-01"}, "2026-11-21 12:00", nullptr, "2026-11-21"},
    {"future start", {.type = 5, .period = 7, .start = "2009-12-25"}, "2009-12-20 09:00", nullptr, "2009-12-25"},
    // unknown types leave the due date alone
    {"type -1", {.type = -1}, "2009-03-05 10:00", nullptr, "1899-12-30"},
    {"type 9", {.type = 9}, "2009-03-05 10:00", nullptr, "1899-12-30"},
};
// clang-format on

TEST(Recurrence, WorkedExamples) {
    for (const Case& c : kCases) {
        FixedClock clock(QString::fromLatin1(c.clock));
        clsEvent e = RepeatingEvent(c.rule);
        e.MailSent = true;
        auto calc = [&] {
            c.from == nullptr ? e.CalcNextDueDate()
                              : e.CalcNextAfterDate(D(QString::fromLatin1(c.from)));
        };
        calc();
        EXPECT_EQ(FormatYMD(e.DueDate()), QString::fromLatin1(c.due)) << c.what;
        EXPECT_FALSE(e.MailSent) << c.what << ": every recomputation re-arms the mail alert";
        if (c.rule.type == 2 || c.rule.type == 3 || c.rule.type == 5) {
            EXPECT_EQ(e.StartDate(), e.DueDate()) << c.what << ": the series moves on with it";
        }
        // Recomputing with the same argument gives the same answer.
        const DateValue first = e.DueDate();
        calc();
        EXPECT_EQ(e.DueDate(), first) << c.what << " (second time)";
    }
}

TEST(Recurrence, WeekStepOverflowIsLoggedNotFatal) {
    FixedClock clock("2009-03-05 10:00");
    clsEvent e = RepeatingEvent({.type = 3, .period = 4682, .start = "2009-01-01"});
    e.setDueDate(D("2009-02-01"));
    e.CalcNextDueDate();
    EXPECT_EQ(LoggedTexts().constLast(), "Overflow (6) in CalcDueDate of module clsEvent");
    EXPECT_EQ(FormatYMD(e.DueDate()), "2009-02-01");
    EXPECT_EQ(FormatYMD(e.StartDate()), "2009-01-01");

    // A start on or after the search start needs no step, so no overflow.
    e.setStartDate(D("2009-04-01"));
    e.CalcNextDueDate();
    EXPECT_EQ(FormatYMD(e.DueDate()), "2009-04-01");
}

TEST(Recurrence, EndlessSearchesStopAndLogTheEvent) {
    // clang-format off
    const struct {
        const char* what;
        RuleFields rule;
    } bad[] = {
        {"empty day mask", {.type = 0, .weekDays = 0}}, {"unused bit", {.type = 0, .weekDays = 1}},
        {"day of month 0", {.type = 1, .dayOfMonth = 0, .monthNumber = 13}},
        {"negative day of month", {.type = 1, .dayOfMonth = -3, .monthNumber = 5}},
        {"negative months", {.type = 2, .period = -2}}, {"zero weeks", {.type = 3, .period = 0}},
        {"zero days", {.type = 5, .period = 0}},
        {"weekday 0", {.type = 4, .dayOfWeek = 0, .daynumber = 2}},
        {"weekday 8, last", {.type = 4, .dayOfWeek = 8, .daynumber = 5}},
        {"month 13, Nth weekday", {.type = 4, .monthNumber = 13, .dayOfWeek = 2, .daynumber = 1}},
    };
    // clang-format on
    FixedClock clock("2009-03-05 10:00");
    for (const auto& b : bad) {
        clsEvent e = RepeatingEvent(b.rule, "Broken: " + QString::fromLatin1(b.what));
        e.setDueDate(D("2008-06-01"));
        const DateValue start = e.StartDate();
        e.CalcNextDueDate();
        EXPECT_EQ(FormatYMD(e.DueDate()), "2008-06-01") << b.what;
        EXPECT_EQ(e.StartDate(), start) << b.what;
        EXPECT_TRUE(LoggedTexts().constLast().contains(e.Desc()))
            << b.what << ": " << LoggedTexts().constLast().toStdString();
    }
    // Running past the last representable day is such a search too.
    clsEvent late = RepeatingEvent({.type = 0, .weekDays = 2}, "Past 9999"); // Mondays
    late.setDueDate(D("9999-12-27"));
    late.CalcNextAfterDate(D("9999-12-28"));
    EXPECT_EQ(FormatYMD(late.DueDate()), "9999-12-27");
    EXPECT_TRUE(LoggedTexts().constLast().contains("Past 9999"));
}

// ---- Brute-force oracles: the first day on or after the start that fits. ----

bool isNthWeekday(DateValue d, int n, int dow) {
    if (Weekday(d, FirstDay::Sunday) != dow) {
        return false;
    }
    const int day = DayOf(d);
    return n >= 5 ? day + 7 > DaysInMonth(YearOf(d), MonthOf(d)) : (day - 1) / 7 == n - 1;
}

template <typename Fits> DateValue firstFitting(DateValue from, Fits fits) {
    for (DateValue d = DateOnly(from);; d += 1) {
        if (fits(d)) {
            return d;
        }
    }
}

TEST(Recurrence, AgreesWithADayByDaySearch) {
    std::mt19937 rng(20261121);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    const DateValue base = D("2023-01-01");
    for (int i = 0; i < 3000; ++i) {
        const int type = i % 6;
        // The day-of-month rule searches from the clock's day: today counts.
        DateValue from = base + pick(0, 3 * 366) + pick(0, 23) / 24.0;
        if (type == 1) {
            from = DateOnly(from);
        }
        FixedClock clock(DateOnly(from));
        clsEvent e;
        e.setDesc("sweep");
        e.setRecurrenceType(type);
        const DateValue start = base - pick(0, 4000);
        e.setStartDate(start);
        DateValue expected = 0;
        if (type == 0) {
            e.setWeekDays(static_cast<int16_t>(pick(1, 127) << 1));
            expected = firstFitting(from, [&](DateValue d) {
                return (e.WeekDays() >> Weekday(d, FirstDay::Monday)) & 1;
            });
        } else if (type == 1) {
            e.setDayOfMonth(static_cast<int16_t>(pick(1, 31)));
            e.setMonthNumber(static_cast<int16_t>(pick(0, 1) ? 13 : pick(1, 12)));
            expected = firstFitting(from, [&](DateValue d) {
                const int dim = DaysInMonth(YearOf(d), MonthOf(d));
                const bool month = e.MonthNumber() == 13 || MonthOf(d) == e.MonthNumber();
                return month && DayOf(d) == std::min<int>(e.DayOfMonth(), dim);
            });
        } else if (type == 4) {
            e.setDaynumber(static_cast<int16_t>(pick(1, 5)));
            e.setDayOfWeek(static_cast<int16_t>(pick(1, 7)));
            e.setMonthNumber(static_cast<int16_t>(pick(0, 1) ? 0 : pick(1, 12)));
            expected = firstFitting(from, [&](DateValue d) {
                return (e.MonthNumber() == 0 || MonthOf(d) == e.MonthNumber()) &&
                       isNthWeekday(d, e.Daynumber(), e.DayOfWeek());
            });
        } else {
            // Reference: the literal walk from the start, month by month or day by day.
            const int period = pick(1, type == 2 ? 14 : 20);
            e.setPeriod(static_cast<int16_t>(period));
            for (expected = start; expected < DateOnly(from);) {
                expected = type == 2 ? DateSerial(YearOf(expected), MonthOf(expected) + period,
                                                  DayOf(expected))
                                     : expected + period * (type == 3 ? 7 : 1);
            }
        }
        type == 1 ? e.CalcNextDueDate() : e.CalcNextAfterDate(from);
        EXPECT_EQ(e.DueDate(), expected)
            << "type " << type << " from " << FormatYMDHM(from).toStdString();
        if (type == 2 || type == 3 || type == 5) {
            EXPECT_EQ(e.StartDate(), e.DueDate()) << "the anchor rolls to the new date";
        }
    }
}

} // namespace
