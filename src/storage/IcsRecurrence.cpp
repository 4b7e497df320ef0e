#include "storage/IcsRecurrence.h"

#include "shared/RuntimeError.h"

#include <libical/ical.h>

#include <algorithm>
#include <vector>

namespace IcsRecurrence {

namespace {

// Weekday codes, Sunday first (the order of DayOfWeek and of libical).
constexpr const char* kDayCodes[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

// The days of a month as BYMONTHDAY states Tarvo's rule "day D, or the
// month's last day when it is shorter": D itself up to 28, else the days
// from 28 to D of which the last that exists is taken.
QByteArray monthDayPart(int day) {
    if (day <= 28) {
        return "BYMONTHDAY=" + QByteArray::number(day);
    }
    QByteArray days = "BYMONTHDAY=28";
    for (int d = 29; d <= std::min(day, 31); ++d) {
        days += ',' + QByteArray::number(d);
    }
    return days + ";BYSETPOS=-1";
}

// Every month, or once a year in the given month.
QByteArray monthlyOrYearly(bool everyMonth, int month, const QByteArray& days) {
    if (everyMonth) {
        return "FREQ=MONTHLY;" + days;
    }
    return "FREQ=YEARLY;BYMONTH=" + QByteArray::number(month) + ';' + days;
}

QByteArray interval(int period) {
    return period > 1 ? ";INTERVAL=" + QByteArray::number(period) : QByteArray();
}

// Why a rule cannot produce any date (only hand-edited records have these),
// or nullptr when it can.
const char* invalidRule(const clsEvent& e) {
    switch (e.RecurrenceType()) {
    case clsEvent::DaysOfWeek:
        return (e.WeekDays() & 0xFE) == 0 ? "no weekday chosen" : nullptr;
    case clsEvent::DayOfMonthType:
        // Past day 365 the month-end walk lands in a later year.
        if (e.DayOfMonth() < 1 || e.DayOfMonth() > 365) {
            return "day of the month out of range";
        }
        return e.MonthNumber() < 1 || e.MonthNumber() > 13 ? "month out of range" : nullptr;
    case clsEvent::EveryXMonths:
    case clsEvent::EveryXDays:
        return e.Period() < 1 ? "repeat period below 1" : nullptr;
    case clsEvent::Weekly:
        return e.Period() < 1 || e.Period() * 7 > 32767 ? "repeat period out of range" : nullptr;
    case clsEvent::NthWeekday:
        if (e.Daynumber() >= 1 && (e.DayOfWeek() < 1 || e.DayOfWeek() > 7)) {
            return "weekday out of range";
        }
        return e.MonthNumber() < 0 || e.MonthNumber() > 12 ? "month out of range" : nullptr;
    default:
        return "unknown recurrence type";
    }
}

void writeEveryXMonths(Pattern& p, int period) {
    const std::optional<MonthShift> shift = MonthSeriesShift(p.start, period);
    p.rule = "FREQ=MONTHLY" + interval(period);
    if (!shift) {
        return;
    }
    // The series moves from day 29-31 to day 1-3 of a later month. No single
    // rule says that, so the rule runs in the moved series from a start day
    // at or before the first date, the moved series' days before its real
    // start are excluded, and the dates before the move are listed.
    const int y = YearOf(shift->moved);
    const int m = MonthOf(shift->moved);
    const int d = DayOf(shift->moved);
    int back = 1;
    while (DateSerial(y, m - back * period, d) > p.start) {
        ++back;
    }
    for (int i = back; i >= 1; --i) {
        p.excluded.append(DateSerial(y, m - i * period, d));
    }
    p.extra = shift->before;
    p.start = p.excluded.first();
}

struct ByDay {
    int position;
    int weekday; // 1 = Sunday .. 7 = Saturday
};

template <std::size_t N> std::vector<int> listOf(const short (&values)[N]) {
    std::vector<int> out;
    for (std::size_t i = 0; i < N && values[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i) {
        out.push_back(values[i]);
    }
    return out;
}

std::vector<ByDay> byDays(const icalrecurrencetype& r) {
    std::vector<ByDay> out;
    for (int v : listOf(r.by_day)) {
        out.push_back(
            {icalrecurrencetype_day_position(static_cast<short>(v)),
             static_cast<int>(icalrecurrencetype_day_day_of_week(static_cast<short>(v)))});
    }
    return out;
}

// Tarvo's Daynumber for a BYDAY position (1st..4th, -1 = last); 0 = none.
int16_t daynumberOf(int position) {
    if (position >= 1 && position <= 4) {
        return static_cast<int16_t>(position);
    }
    return position == -1 ? clsEvent::kLastWeekday : 0;
}

// The day D of "BYMONTHDAY=28,...,D;BYSETPOS=-1" or of a single BYMONTHDAY
// (-1 being day 31); 0 when the days say something else.
int monthDayOf(const std::vector<int>& days, const std::vector<int>& setPos) {
    if (setPos.empty() && days.size() == 1) {
        return days[0] == -1 ? 31 : (days[0] >= 1 ? days[0] : 0);
    }
    std::vector<int> sorted = days;
    std::sort(sorted.begin(), sorted.end());
    if (setPos != std::vector<int>{-1} || sorted.size() < 2 || sorted.front() != 28 ||
        sorted.back() > 31) {
        return 0;
    }
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        if (sorted[i] != sorted[i - 1] + 1) {
            return 0;
        }
    }
    return sorted.back();
}

// Whether a single day D of month M (1..12) falls in every year.
bool inEveryYear(int day, int month) {
    return day >= 1 && day <= DaysInMonth(2001, month);
}

} // namespace

std::optional<MonthShift> MonthSeriesShift(DateValue first, int period) {
    const int day = DayOf(first);
    if (day <= 28 || period < 1) {
        return std::nullopt;
    }
    // The calendar repeats every 400 years (4800 months).
    MonthShift shift;
    DateValue due = first;
    try {
        for (int step = 0; step <= 4800 / period + 1; ++step) {
            shift.before.append(due);
            const DateValue next = DateSerial(YearOf(due), MonthOf(due) + period, day);
            if (DayOf(next) != day) {
                shift.moved = next;
                return shift;
            }
            due = next;
        }
    } catch (const RuntimeError&) {
        // Past the last representable year: no move within the calendar.
    }
    return std::nullopt;
}

Pattern Write(const clsEvent& event) {
    Pattern p;
    p.start = event.DueDate();
    if (!event.Recurring()) {
        return p;
    }
    if (const char* why = invalidRule(event)) {
        p.inexact = QString::fromLatin1(why);
        return p;
    }
    clsEvent first = event;
    first.CalcNextAfterDate(event.DueDate());
    p.start = first.DueDate();

    switch (event.RecurrenceType()) {
    case clsEvent::DaysOfWeek: {
        QByteArray days;
        for (int bit = 1; bit <= 7; ++bit) { // Monday .. Sunday
            if (event.WeekDays() & (1 << bit)) {
                days += (days.isEmpty() ? "" : ",") + QByteArray(kDayCodes[bit % 7]);
            }
        }
        p.rule = "FREQ=WEEKLY;BYDAY=" + days;
        break;
    }
    case clsEvent::DayOfMonthType: {
        const QByteArray days = monthDayPart(std::min<int>(event.DayOfMonth(), 31));
        p.rule = monthlyOrYearly(event.MonthNumber() == clsEvent::kEveryMonthType1,
                                 event.MonthNumber(), days);
        break;
    }
    case clsEvent::EveryXMonths:
        writeEveryXMonths(p, event.Period());
        break;
    case clsEvent::Weekly:
        p.rule = "FREQ=WEEKLY" + interval(event.Period());
        break;
    case clsEvent::NthWeekday: {
        // Daynumber 0 or below finds the 1st of the month.
        const int n = event.Daynumber();
        QByteArray days = "BYMONTHDAY=1";
        if (n >= 1) {
            days = "BYDAY=" + QByteArray::number(n >= clsEvent::kLastWeekday ? -1 : n) +
                   kDayCodes[event.DayOfWeek() - 1];
        }
        p.rule = monthlyOrYearly(event.MonthNumber() == clsEvent::kEveryMonthType4,
                                 event.MonthNumber(), days);
        break;
    }
    case clsEvent::EveryXDays:
        p.rule = "FREQ=DAILY" + interval(event.Period());
        break;
    default:
        break;
    }
    return p;
}

std::optional<Rule> Read(const icalrecurrencetype& r, DateValue start, QString* why) {
    auto no = [why](const char* reason) -> std::optional<Rule> {
        if (why != nullptr) {
            *why = QString::fromLatin1(reason);
        }
        return std::nullopt;
    };
    if (r.freq < ICAL_DAILY_RECURRENCE || r.freq > ICAL_YEARLY_RECURRENCE) {
        return no("hourly or finer rule");
    }
    if (r.count > 0 || !icaltime_is_null_time(r.until)) {
        return no("rule with an end (COUNT or UNTIL)");
    }
    const std::vector<ByDay> days = byDays(r);
    const std::vector<int> monthDays = listOf(r.by_month_day);
    const std::vector<int> months = listOf(r.by_month);
    const std::vector<int> setPos = listOf(r.by_set_pos);
    if (r.rscale != nullptr || !listOf(r.by_second).empty() || !listOf(r.by_minute).empty() ||
        !listOf(r.by_hour).empty() || !listOf(r.by_year_day).empty() ||
        !listOf(r.by_week_no).empty() || months.size() > 1) {
        return no("rule Tarvo has no type for");
    }
    const int every = std::max<int>(r.interval, 1);
    const int startDay = DayOf(start);
    Rule rule;

    if (r.freq == ICAL_DAILY_RECURRENCE) {
        if (!days.empty() || !monthDays.empty() || !months.empty() || !setPos.empty()) {
            return no("rule Tarvo has no type for");
        }
        rule.type = clsEvent::EveryXDays;
        rule.period = static_cast<int16_t>(every);
        return rule;
    }

    if (r.freq == ICAL_WEEKLY_RECURRENCE) {
        if (!monthDays.empty() || !months.empty() || !setPos.empty() ||
            std::any_of(days.begin(), days.end(), [](const ByDay& d) { return d.position != 0; })) {
            return no("rule Tarvo has no type for");
        }
        if (days.empty() ||
            (days.size() == 1 && days[0].weekday == Weekday(start, FirstDay::Sunday))) {
            if (every * 7 > 32767) {
                return no("rule Tarvo has no type for");
            }
            rule.type = clsEvent::Weekly;
            rule.period = static_cast<int16_t>(every);
            return rule;
        }
        if (every != 1) {
            return no("several weekdays every few weeks");
        }
        rule.type = clsEvent::DaysOfWeek;
        for (const ByDay& d : days) {
            const int mondayFirst = d.weekday == 1 ? 7 : d.weekday - 1;
            rule.weekDays = static_cast<int16_t>(rule.weekDays | (1 << mondayFirst));
        }
        return rule;
    }

    // Monthly and yearly rules.
    const bool yearly = r.freq == ICAL_YEARLY_RECURRENCE;
    if (days.empty() && monthDays.empty() && setPos.empty() &&
        (months.empty() || (yearly && months[0] == MonthOf(start)))) {
        // Every N months (or years) on DTSTART's day.
        if (!months.empty() && !yearly) {
            return no("rule Tarvo has no type for");
        }
        if (yearly && every == 1) {
            if (MonthOf(start) == 2 && startDay == 29) {
                return no("29 February every year");
            }
            rule.type = clsEvent::DayOfMonthType;
            rule.dayOfMonth = static_cast<int16_t>(startDay);
            rule.monthNumber = static_cast<int16_t>(MonthOf(start));
            return rule;
        }
        const int period = yearly ? every * 12 : every;
        if (period > 32767 || MonthSeriesShift(start, period)) {
            return no("day 29-31 every few months");
        }
        rule.type = clsEvent::EveryXMonths;
        rule.period = static_cast<int16_t>(period);
        return rule;
    }
    if (every != 1 || (yearly && months.empty()) || (!yearly && !months.empty())) {
        return no("rule Tarvo has no type for");
    }
    const int month = yearly ? months[0] : 0;

    if (!days.empty()) {
        if (days.size() > 1) {
            return no("several weekday positions");
        }
        int16_t n = 0;
        if (!monthDays.empty()) {
            return no("rule Tarvo has no type for");
        }
        if (days[0].position != 0 && setPos.empty()) {
            n = daynumberOf(days[0].position);
        } else if (days[0].position == 0 && setPos.size() == 1) {
            n = daynumberOf(setPos[0]);
        }
        if (n == 0) {
            return no("rule Tarvo has no type for");
        }
        rule.type = clsEvent::NthWeekday;
        rule.daynumber = n;
        rule.dayOfWeek = static_cast<int16_t>(days[0].weekday);
        rule.monthNumber = static_cast<int16_t>(month);
        return rule;
    }

    const int day = monthDayOf(monthDays, setPos);
    const bool lastDayForm = setPos.size() == 1 || (monthDays.size() == 1 && monthDays[0] == -1);
    if (day == 0) {
        return no("rule Tarvo has no type for");
    }
    // A plain day 29-31 is skipped by months that lack it; Tarvo would use
    // their last day instead.
    if (!lastDayForm && day > 28 && (!yearly || !inEveryYear(day, month))) {
        return no(yearly && month == 2 && day == 29 ? "29 February every year"
                                                    : "day 29-31 skipped in shorter months");
    }
    rule.type = clsEvent::DayOfMonthType;
    rule.dayOfMonth = static_cast<int16_t>(day);
    rule.monthNumber = static_cast<int16_t>(yearly ? month : clsEvent::kEveryMonthType1);
    return rule;
}

void Apply(const Rule& rule, clsEvent& event) {
    event.setRecurrenceType(rule.type);
    event.setWeekDays(rule.weekDays);
    event.setDayOfMonth(rule.dayOfMonth);
    event.setMonthNumber(rule.monthNumber);
    event.setDaynumber(rule.daynumber);
    event.setDayOfWeek(rule.dayOfWeek);
    event.setPeriod(rule.period);
    event.setRecurring(true);
}

} // namespace IcsRecurrence
