#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>

// The program's date value: days since 1899-12-30 as a double, the fraction
// being the time of day. Negative values follow the OLE Automation rule: the
// integer part (toward zero) is the day and the magnitude of the fraction the
// time of that day, so -1.25 is 1899-12-29 06:00. "Date" fields hold whole
// days, "time" fields a time of day with day part 0.
//
// These are the only date primitives; everything else builds on them.
using DateValue = double;

enum class FirstDay { Sunday, Monday };

// Representable years, as the files and the platform value allow.
constexpr int kMinYear = 100;
constexpr int kMaxYear = 9999;
// The first and the last representable day: 0100-01-01 and 9999-12-31.
constexpr DateValue kFirstDayValue = -657434.0;
constexpr DateValue kLastDayValue = 2958465.0;
// Whether v is a moment of a representable day. The day is the integer part
// toward zero, so 0100-01-01 12:00 (-657434.5) is in range; NaN is not.
bool InDateRange(DateValue v);

// Date with month and day rolling over: month 13 of 2009 is January 2010, day 0
// is the last day of the month before, day 31 of April is 1 May. Throws
// RuntimeError (5) when the result falls outside years 100..9999.
DateValue DateSerial(int year, int month, int day);
// Like DateSerial, but with the day offset as a 64-bit count (for long steps).
DateValue DateSerialDays(int year, int month, qint64 day);
// A time of day from hours, minutes and seconds (may roll past midnight).
DateValue TimeSerial(int hours, int minutes, int seconds = 0);

int YearOf(DateValue v);
int MonthOf(DateValue v);
int DayOf(DateValue v);
int HourOf(DateValue v);
int MinuteOf(DateValue v);
// 1..7 counted from first: Sunday-first gives Sunday 1 .. Saturday 7,
// Monday-first gives Monday 1 .. Sunday 7.
int Weekday(DateValue v, FirstDay first = FirstDay::Sunday);
int DaysInMonth(int year, int month);

// A value taken apart: the calendar day (days from 1899-12-30) and the whole
// seconds of that day, rounded to the second as a general date text shows it.
struct DayAndSeconds {
    qint64 day;
    qint64 seconds;
};
DayAndSeconds SplitDateValue(DateValue v);
// The value of a calendar day and seconds of that day (the OLE rule for
// days before 1899-12-30).
DateValue JoinDateValue(qint64 day, qint64 seconds);

// The date part (time dropped), correct for negative values too.
DateValue DateOnly(DateValue v);
// The time-of-day part, as a time value (day part 0).
DateValue TimeOnly(DateValue v);
// Now, from the clock (see Clock.h).
DateValue Now();
// DateOnly(Now()).
DateValue TodayDate();
// True when the date part of d lies before the date part of ref (default today).
bool IsBeforeDate(DateValue d);
bool IsBeforeDate(DateValue d, DateValue ref);

QDate ToQDate(DateValue v);
QDateTime ToQDateTime(DateValue v); // local time
DateValue FromQDate(const QDate& d);
DateValue FromQDateTime(const QDateTime& dt);
DateValue FromQTime(const QTime& t);

// "YYYY-MM-DD", "YYYY-MM-DD HH:MM" and "HH:MM" (seconds dropped, not rounded).
QString FormatYMD(DateValue v);
QString FormatYMDHM(DateValue v);
QString FormatHM(DateValue v);
// Reads "YYYY-MM-DD" or "YYYY-MM-DD HH:MM" (optionally ":SS"), blanks around
// allowed. Empty when the text is not such a date or names no real day.
std::optional<DateValue> ParseDateValue(const QString& text);
