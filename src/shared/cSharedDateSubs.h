#pragma once

#include "shared/DateValue.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

class cSHAREDSettings;

// Shows dates the way the user's system writes them: learns the order of day,
// month and year and the separator from the system's short-date text of one
// probe date, 25 December 2001, and builds the format strings from it.
//
// Every date the program shows goes through here: the list, the editor, the
// printouts, the reminder windows and the log use ForSettings, which follows
// the user's "DateStyle" setting instead of the system.
//
// Format strings use the traditional letters: YYYY / YY year, MMMM / MMM month
// name, MM month number, DDDD / DDD weekday name, DD day, HH:MM hours and minutes;
// other characters are written as they are.
class cSharedDateSubs {
public:
    // probeText: the short-date text of 25 December 2001 to learn from; empty
    // asks locale. locale also gives the month names. Runs the
    // initialisation at once.
    explicit cSharedDateSubs(const QString& probeText = {}, const QLocale& locale = QLocale());

    bool RemoveSeconds = false;
    // Positions 1-3 of year, month and day in the short date.
    int16_t SysDateYearField = 0;
    int16_t SysDateMonthField = 0;
    int16_t SysDateDayField = 0;
    QString TrueStr;
    QString FalseStr;
    QString DateFormatString;             // e.g. "DD/MM/YYYY"
    QString FullDateFormatString;         // e.g. "DD/MMM/YYYY"
    QString FullDateFormatPlusTimeString; // FullDateFormatString + " HH:MM"
    QString DateSeparator;

    // With FullDateFormatString.
    QString FormatDate(DateValue date);
    // Also with FullDateFormatString, so no time is shown: the callers rely on
    // this, and FullDateFormatPlusTimeString is not used here.
    QString FormatDatePlusTime(DateValue date);
    // The short-date format string (DateFormatString).
    QString LocalDateFormat();
    // With DateFormatString.
    QString ShortFormatDate(DateValue date);
    // ShortFormatDate followed by a blank and "HH:MM".
    QString ShortFormatDateTime(DateValue date);
    // The short weekday name, a blank and ShortFormatDate: "Fri 28/03/2025".
    QString ShortFormatDayDate(DateValue date);
    // The short date without its year ("DD/MM", "MM/DD"); built without a
    // format string, as the event list needs it for every row.
    QString DayMonth(DateValue date);
    QString DayMonth(const QDate& date);
    // Reads a date typed in the short-date order with any of the separators
    // "/", "." or "-"; a two-digit year below 30 is 20xx, otherwise 19xx.
    // std::nullopt when the text is not such a date.
    std::optional<DateValue> ConvertMyDateVar(const QString& text);

    // Runs the initialisation when it has not run yet.
    void Initialise();

    // The formatter for a "DateStyle" value: 1 writes the day before the
    // month ("DD/MM/YYYY"), any other value the month first ("MM/DD/YYYY").
    // One instance per style for the life of the process.
    static cSharedDateSubs& ForDateStyle(int dateStyle);
    // ForDateStyle of the setting "DateStyle" (default 1).
    static cSharedDateSubs& ForSettings(const cSHAREDSettings& settings);

    // The system's short-date text of 25 December 2001 for locale.
    static QString SystemProbeText(const QLocale& locale = QLocale());
    // date written with a format string of the letters above; month names
    // from locale.
    static QString FormatWith(DateValue date, const QString& format, const QLocale& locale);

private:
    QString fDateSeparator() const;
    QString fLocalDateFormatString();
    QString fLocalFullDateFormat() const;
    QString format(DateValue date, const QString& formatString, const char* procedure);

    QString m_probe;
    QLocale m_locale;
    bool m_initialised = false;
};
