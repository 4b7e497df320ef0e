#pragma once

#include "shared/DateValue.h"

#include <QString>
#include <QStringList>

#include <array>
#include <optional>

class clsEvent;
class cSHAREDSettings;
class cSharedDateSubs;

// What the event editor's controls hold, as plain values, so that the rules
// that turn them into an event run (and are tested) without a window. Texts
// the rules tidy up (the time, the warning boxes, the sound file) are written
// back here, and the editor puts them back into its boxes.
struct EventEditorInput {
    QString desc;
    int layer = 1;
    bool timed = false;
    QString time = QStringLiteral("HH:MM");
    QString minutesWarning = QStringLiteral("30");
    QString daysWarning;
    bool repeat = true; // "Repeat Forever" rather than "Show Once"
    bool makeNoise = false;
    QString wavFile;
    bool runFile = false;
    QString execFile;
    bool emailTo = false;
    QString email;
    bool shared = false;
    bool specificShare = false;
    QStringList selectedUsers; // in list order
    int recurrenceType = 0;
    std::array<bool, 8> days{}; // 1 = Monday .. 7 = Sunday; 0 unused
    QString dayOfMonth;
    int monthNamesIndex = 0; // 0..11 the months, 12 "Every Month"
    QString monthlyPeriod;
    QString monthlyStart;
    QString weeklyPeriod;
    QString weeklyStart;
    QString dailyPeriod;
    QString dailyStart;
    int dayNumberIndex = 0; // "1st" .. "Last"
    int dayNameIndex = 0;   // "Sunday" .. "Saturday"
    int monthsIndex = 0;    // "Every Month", "January" .. "December"
};

// The result of a save: either saved, or the message (and its box title;
// empty = the application's title) that tells the user what to correct, and
// the control (by name) that holds the entry to correct, if one does.
struct EventEditorOutcome {
    bool saved = false;
    QString message;
    QString title;
    QString focus;
};

// The editor's rules: checking the controls in order and writing them into
// an event, and the small conversions the editor shows.
namespace EventEditorRules {

inline constexpr const char* kNoDescription = "Please enter a description of the event";
inline constexpr const char* kTimeRange = "Please specify a time in the range of 00:00 to 23:59";
inline constexpr const char* kMaxWarning = "Maximum warning is 60 minutes";
inline constexpr const char* kBadDayOfMonth = "Please enter a valid day of the month";
inline constexpr const char* kBadStartDate = "Please enter a valid starting date";
inline constexpr const char* kBadPeriod = "Please enter a number in the repeat box";
inline constexpr const char* kNoWeekday = "Please select at least one day of the week";
inline constexpr const char* kDataError = "An error occurred.  Please check the data fields.";
inline constexpr const char* kErrorTitle = "Error";

// Validates input and writes it into event, step by step; the first failing
// check stops there, leaving the fields written before it changed (callers
// edit a copy when that matters). Stores a non-empty e-mail address as the
// setting "DefaultEmail"; reads "Owner" and the default alarm sound.
EventEditorOutcome Save(EventEditorInput& input, clsEvent& event, cSHAREDSettings& settings);

// "Time field " + text + " is not valid, please correct".
QString BadTimeMessage(const QString& text);

// The time box after the editor's tidying: ";" read as ":", blanks trimmed,
// a one-digit hour given its leading zero ("9:30" is "09:30").
QString NormaliseTime(const QString& text);
// Whether the tidied text passes the range check: "HH:MM", hours 0..23 and
// minutes 0..59 (each two characters read as a number).
bool TimeInRange(const QString& text);
// The time of day of an "HH:MM" text; empty when it is not a real time.
std::optional<DateValue> TimeValue(const QString& text);

// A number as the editor's boxes accept it (blanks around allowed, decimal
// point, sign); empty when the text is not a number.
std::optional<double> Number(const QString& text);

// A start-date label's text as a day, read in the order of the user's date
// style; "YYYY-MM-DD" is accepted too. Empty for anything else (the format
// text the label shows before a date is picked included).
std::optional<DateValue> ParseStartDate(const QString& text, cSharedDateSubs& dates);

// "(Alarm will sound at H:MMam/pm)" for a time box and a warning box, or
// "" when the time is not valid. The shown time wraps round midnight.
QString AlarmAdvice(const QString& time, const QString& minutesWarning);

} // namespace EventEditorRules
