#include "shared/DateValue.h"

#include "shared/Clock.h"
#include "shared/RuntimeError.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 kSecondsPerDay = 86400;
// Julian day number of 1899-12-30, day 0 of the date value.
const qint64 kEpochJulian = QDate(1899, 12, 30).toJulianDay();
// Values beyond this are garbage (the representable range is far smaller);
// they are clamped so that conversions stay defined.
constexpr double kClampDays = 4.0e6;

using Parts = DayAndSeconds;

Parts split(DateValue v) {
    return SplitDateValue(v);
}

DateValue join(qint64 day, qint64 seconds) {
    return JoinDateValue(day, seconds);
}

QDate dayToQDate(qint64 day) {
    return QDate::fromJulianDay(day + kEpochJulian);
}

} // namespace

DayAndSeconds SplitDateValue(DateValue v) {
    if (!std::isfinite(v)) {
        v = 0;
    }
    v = std::clamp(v, -kClampDays, kClampDays);
    double whole = 0;
    const double frac = std::modf(v, &whole);
    DayAndSeconds p{static_cast<qint64>(whole), std::llround(std::fabs(frac) * kSecondsPerDay)};
    if (p.seconds >= kSecondsPerDay) {
        // Rounded up to the next midnight: one calendar day later whatever the sign.
        p.seconds -= kSecondsPerDay;
        p.day += 1;
    }
    return p;
}

DateValue JoinDateValue(qint64 day, qint64 seconds) {
    const double t = static_cast<double>(seconds) / kSecondsPerDay;
    return day >= 0 ? static_cast<double>(day) + t : static_cast<double>(day) - t;
}

DateValue DateSerialDays(int year, int month, qint64 day) {
    // Normalise the month first, then count days from the 1st of that month.
    qint64 m0 = static_cast<qint64>(month) - 1;
    qint64 y = year + (m0 >= 0 ? m0 / 12 : -((11 - m0) / 12));
    m0 -= (y - year) * 12;
    if (y < kMinYear - 1 || y > kMaxYear + 1) {
        throw RuntimeError::invalidArgument();
    }
    const QDate first(static_cast<int>(y), static_cast<int>(m0) + 1, 1);
    const qint64 julian = first.toJulianDay() + (day - 1);
    const QDate result = QDate::fromJulianDay(julian);
    if (!result.isValid() || result.year() < kMinYear || result.year() > kMaxYear) {
        throw RuntimeError::invalidArgument();
    }
    return static_cast<double>(julian - kEpochJulian);
}

DateValue DateSerial(int year, int month, int day) {
    return DateSerialDays(year, month, day);
}

DateValue TimeSerial(int hours, int minutes, int seconds) {
    const qint64 total =
        static_cast<qint64>(hours) * 3600 + static_cast<qint64>(minutes) * 60 + seconds;
    return static_cast<double>(total) / kSecondsPerDay;
}

int YearOf(DateValue v) {
    return dayToQDate(split(v).day).year();
}
int MonthOf(DateValue v) {
    return dayToQDate(split(v).day).month();
}
int DayOf(DateValue v) {
    return dayToQDate(split(v).day).day();
}
int HourOf(DateValue v) {
    return static_cast<int>(split(v).seconds / 3600);
}
int MinuteOf(DateValue v) {
    return static_cast<int>(split(v).seconds / 60 % 60);
}

int Weekday(DateValue v, FirstDay first) {
    const int iso = dayToQDate(split(v).day).dayOfWeek(); // Monday 1 .. Sunday 7
    return first == FirstDay::Monday ? iso : iso % 7 + 1;
}

int DaysInMonth(int year, int month) {
    return QDate(year, month, 1).daysInMonth();
}

DateValue DateOnly(DateValue v) {
    return static_cast<double>(split(v).day);
}

DateValue TimeOnly(DateValue v) {
    return join(0, split(v).seconds);
}

DateValue Now() {
    return Clock::now();
}

DateValue TodayDate() {
    return DateOnly(Now());
}

bool IsBeforeDate(DateValue d) {
    return IsBeforeDate(d, TodayDate());
}

bool InDateRange(DateValue v) {
    return std::isfinite(v) && std::trunc(v) >= kFirstDayValue && v < kLastDayValue + 1;
}

bool IsBeforeDate(DateValue d, DateValue ref) {
    return DateOnly(d) < DateOnly(ref);
}

QDate ToQDate(DateValue v) {
    return dayToQDate(split(v).day);
}

QDateTime ToQDateTime(DateValue v) {
    const Parts p = split(v);
    return QDateTime(dayToQDate(p.day), QTime(0, 0).addSecs(static_cast<int>(p.seconds)));
}

DateValue FromQDate(const QDate& d) {
    return static_cast<double>(d.toJulianDay() - kEpochJulian);
}

DateValue FromQTime(const QTime& t) {
    return join(0, t.msecsSinceStartOfDay() / 1000);
}

DateValue FromQDateTime(const QDateTime& dt) {
    return join(dt.date().toJulianDay() - kEpochJulian, dt.time().msecsSinceStartOfDay() / 1000);
}

QString FormatYMD(DateValue v) {
    return ToQDate(v).toString(QStringLiteral("yyyy-MM-dd"));
}

QString FormatHM(DateValue v) {
    const Parts p = split(v);
    return QStringLiteral("%1:%2")
        .arg(p.seconds / 3600, 2, 10, QLatin1Char('0'))
        .arg(p.seconds / 60 % 60, 2, 10, QLatin1Char('0'));
}

QString FormatYMDHM(DateValue v) {
    return FormatYMD(v) + QLatin1Char(' ') + FormatHM(v);
}

std::optional<DateValue> ParseDateValue(const QString& text) {
    static const QRegularExpression re(QStringLiteral(
        R"(^\s*(\d{1,4})-(\d{1,2})-(\d{1,2})(?:[ T]+(\d{1,2}):(\d{1,2})(?::(\d{1,2}))?)?\s*$)"));
    const QRegularExpressionMatch m = re.match(text);
    if (!m.hasMatch()) {
        return std::nullopt;
    }
    const QDate date(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    if (!date.isValid() || date.year() < kMinYear) {
        return std::nullopt;
    }
    qint64 seconds = 0;
    if (m.hasCaptured(4)) {
        const int h = m.captured(4).toInt();
        const int mi = m.captured(5).toInt();
        const int s = m.hasCaptured(6) ? m.captured(6).toInt() : 0;
        if (h > 23 || mi > 59 || s > 59) {
            return std::nullopt;
        }
        seconds = h * 3600 + mi * 60 + s;
    }
    return join(date.toJulianDay() - kEpochJulian, seconds);
}
