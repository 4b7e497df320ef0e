// The recurrence rules of clsEvent: how DueDate moves to the next occurrence
// for each RecurrenceType. The rules carry deliberate asymmetries that users'
// data depends on (where the day-of-month rule starts searching, the rolling
// StartDate of the interval rules, month ends handled differently per rule);
// they are kept exactly. Long walks are replaced by arithmetic where the
// result is provably the same.
#include "model/clsEvent.h"

#include "shared/Clock.h"
#include "shared/RuntimeError.h"
#include "shared/cSharedLogging.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const QString kModule = QStringLiteral("clsEvent");

// Thrown when a search can never end on the event's (hand-edited) fields.
struct SearchGaveUp {};

// Upper bound for the step-by-step searches. A valid event needs at most one
// step per month between years 100 and 9999 (about 120,000); anything that
// would need more is treated as endless.
constexpr int kMaxSearchSteps = 200000;

// Date serial (y, m, 1) of the month of v.
DateValue firstOfMonth(DateValue v) {
    return DateSerial(YearOf(v), MonthOf(v), 1);
}

// Day d of month (y, m), walked back into that month when d overflows it.
// The walk compares only the month number, so a day overflowing by a whole
// year or more lands in the same month of a later year; kept as it always was.
DateValue clampedDayOfMonth(int y, int m, int d) {
    const DateValue first = DateSerial(y, m, 1);
    const int month = MonthOf(first);
    if (d <= DaysInMonth(YearOf(first), month)) {
        return first + (d - 1);
    }
    DateValue due = DateSerial(y, m, d);
    while (MonthOf(due) != month) {
        due -= 1;
    }
    return due;
}

} // namespace

// The Nth weekday of the month, throwing when the walk could never stop.
static DateValue dayCountDateOrThrow(DateValue d, int16_t daynumber, int16_t dayOfWeek) {
    if (DayOf(d) != 1) {
        d = firstOfMonth(d);
    }
    if (daynumber < clsEvent::kLastWeekday) {
        if (daynumber <= 0) {
            return d; // the search loop does not run: the 1st
        }
        if (dayOfWeek < 1 || dayOfWeek > 7) {
            throw SearchGaveUp{};
        }
        // First matching weekday, then whole weeks for the 2nd to 4th.
        const int ahead = (dayOfWeek - Weekday(d, FirstDay::Sunday) + 7) % 7;
        return d + ahead + 7 * (daynumber - 1);
    }
    if (dayOfWeek < 1 || dayOfWeek > 7) {
        throw SearchGaveUp{};
    }
    DateValue e = d + (DaysInMonth(YearOf(d), MonthOf(d)) - 1); // last day of the month
    const int back = (Weekday(e, FirstDay::Sunday) - dayOfWeek + 7) % 7;
    return e - back;
}

DateValue clsEvent::DayCountDate(DateValue d) {
    try {
        return dayCountDateOrThrow(d, m_Daynumber, m_DayOfWeek);
    } catch (const RuntimeError& e) {
        LogRuntimeError(e, QStringLiteral("DayCountDate"), kModule);
    } catch (const SearchGaveUp&) {
        Log().AddAction(QStringLiteral("Weekday out of range for event: ") + m_Desc,
                        QStringLiteral("DayCountDate"), kModule);
    }
    return d;
}

void clsEvent::CalcDueDate(DateValue from) {
    MailSent = false;
    const DateValue oldDue = m_DueDate;
    const DateValue oldStart = m_StartDate;
    try {
        switch (m_RecurrenceType) {
        case DaysOfWeek: {
            // The first day on or after from whose weekday bit (Monday 2^1 ..
            // Sunday 2^7) is in the mask; a week covers every weekday. The
            // search ends with the last representable day.
            DateValue due = DateOnly(from);
            for (int i = 0; i < 7 && due <= kLastDayValue; ++i, due += 1) {
                if (m_WeekDays & (1 << Weekday(due, FirstDay::Monday))) {
                    m_DueDate = due;
                    return;
                }
            }
            throw SearchGaveUp{};
        }
        case DayOfMonthType: {
            // Searches from the clock's month and year, not from `from`, and
            // compares with from's time of day included.
            if (m_DayOfMonth < 1) {
                throw SearchGaveUp{}; // the walk back into the month never ends
            }
            const DateValue now = Clock::now();
            const bool everyMonth = m_MonthNumber == kEveryMonthType1;
            int m = everyMonth ? MonthOf(now) : m_MonthNumber;
            int y = YearOf(now);
            for (int step = 0; step < kMaxSearchSteps; ++step) {
                const DateValue due = clampedDayOfMonth(y, m, m_DayOfMonth);
                if (due >= from) {
                    m_DueDate = due;
                    return;
                }
                if (everyMonth) {
                    if (++m == 13) {
                        m = 1;
                        ++y;
                    }
                } else {
                    ++y;
                }
            }
            throw SearchGaveUp{};
        }
        case EveryXMonths: {
            // Each step starts from the previous result, so a day that
            // overflows a short month moves the series for good.
            const DateValue target = DateOnly(from);
            DateValue due = m_StartDate;
            if (due < target && m_Period < 1) {
                throw SearchGaveUp{};
            }
            for (int step = 0; due < target; ++step) {
                if (step >= kMaxSearchSteps) {
                    throw SearchGaveUp{};
                }
                const int y = YearOf(due);
                const int mon = MonthOf(due);
                const int d = DayOf(due);
                if (d <= 28) {
                    // No month overflows day 28: skip whole periods that still
                    // end before the target month.
                    const int gap = (YearOf(target) * 12 + MonthOf(target)) - (y * 12 + mon);
                    const int skip = gap / m_Period - 1;
                    if (skip > 0) {
                        due = DateSerial(y, mon + skip * m_Period, d);
                        continue;
                    }
                }
                due = DateSerial(y, mon + m_Period, d);
            }
            m_DueDate = due;
            m_StartDate = due;
            return;
        }
        case Weekly:
        case EveryXDays: {
            const DateValue target = DateOnly(from);
            DateValue due = m_StartDate;
            if (due < target) {
                int step = m_Period;
                if (m_RecurrenceType == Weekly) {
                    // The week step is a 16-bit product in the stored format.
                    step = m_Period * 7;
                    if (step > std::numeric_limits<int16_t>::max() ||
                        step < std::numeric_limits<int16_t>::min()) {
                        throw RuntimeError::overflow();
                    }
                }
                if (step < 1) {
                    throw SearchGaveUp{};
                }
                // Stepping by whole days from `due` is plain addition; jump
                // straight to the first step on or after the target.
                const double steps = std::ceil((target - due) / step);
                due += steps * step;
                if (YearOf(due) > kMaxYear) {
                    throw RuntimeError::invalidArgument();
                }
            }
            m_DueDate = due;
            m_StartDate = due;
            return;
        }
        case NthWeekday: {
            DateValue a = from;
            // Each round moves at least one month on; twelve reach any month.
            for (int round = 0; round < 30; ++round) {
                const DateValue day = DateOnly(a);
                DateValue due = dayCountDateOrThrow(DateSerial(YearOf(day), MonthOf(day), 1),
                                                    m_Daynumber, m_DayOfWeek);
                while (due < day) {
                    due = dayCountDateOrThrow(DateSerial(YearOf(due), MonthOf(due) + 1, 1),
                                              m_Daynumber, m_DayOfWeek);
                }
                a = due + 1;
                if (m_MonthNumber == kEveryMonthType4 || MonthOf(due) == m_MonthNumber) {
                    m_DueDate = due;
                    return;
                }
            }
            throw SearchGaveUp{};
        }
        default:
            return; // unknown rule: DueDate stays as it is
        }
    } catch (const RuntimeError& e) {
        LogRuntimeError(e, QStringLiteral("CalcDueDate"), kModule);
    } catch (const SearchGaveUp&) {
        Log().AddAction(QStringLiteral("No next due date can be found for event: ") + m_Desc,
                        QStringLiteral("CalcDueDate"), kModule);
    }
    m_DueDate = oldDue;
    m_StartDate = oldStart;
}
