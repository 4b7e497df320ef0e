#pragma once

#include "model/clsEvent.h"
#include "shared/DateValue.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>

struct icalrecurrencetype;

// Tarvo's recurrence rules in iCalendar (RFC 5545) terms, both ways. Writing
// reproduces the dates Tarvo itself steps through, month-end behaviour
// included; reading accepts only rules that one of Tarvo's types repeats
// exactly and says why for the others.
namespace IcsRecurrence {

// The occurrences of an event as iCalendar states them: a first day, a
// rule from it and, where the rule alone cannot say it, extra and excluded
// days. Days only; the caller adds the time of day.
struct Pattern {
    DateValue start = 0;       // DTSTART
    QByteArray rule;           // RRULE value; empty for a single occurrence
    QList<DateValue> extra;    // RDATE
    QList<DateValue> excluded; // EXDATE
    // Why a recurring event could only be written as its next occurrence;
    // empty when the pattern is exact.
    QString inexact;
};

// The pattern of event from its next occurrence on (its DueDate, or the
// first occurrence after it when DueDate is not one). A "Show Once" event is
// a single occurrence on its DueDate.
Pattern Write(const clsEvent& event);

// The recurrence fields of one Tarvo rule.
struct Rule {
    int32_t type = clsEvent::DaysOfWeek;
    int16_t weekDays = 0;
    int16_t dayOfMonth = 0;
    int16_t monthNumber = 0;
    int16_t daynumber = 0;
    int16_t dayOfWeek = 0;
    int16_t period = 0;
};

// The Tarvo rule whose dates from start are exactly those of rule (an RRULE
// without COUNT or UNTIL, in local time); empty, with the reason in why,
// when no type repeats it exactly.
std::optional<Rule> Read(const icalrecurrencetype& rule, DateValue start, QString* why);

// Sets the recurrence fields of event to rule (and Recurring).
void Apply(const Rule& rule, clsEvent& event);

// An every-period-months series from first that reaches a month too short
// for its day moves to the first days of the month after, for good. The
// dates before that move and the first date after it; nothing when the
// series never moves.
struct MonthShift {
    QList<DateValue> before;
    DateValue moved = 0;
};
std::optional<MonthShift> MonthSeriesShift(DateValue first, int period);

} // namespace IcsRecurrence
