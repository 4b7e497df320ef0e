#pragma once

#include "model/clsEvent.h"

#include <QList>
#include <QString>

struct ReminderServices;

// Alarms whose minute passed while no refresh tick looked: the computer
// slept, the process stalled, or the program was not running. They are not
// dropped: one "MISSED" window lists them with their date and time, with the
// alarm sound once, and the log names each. A run-a-file event is listed
// too, but its file is never run late.
namespace MissedAlarms {

struct Missed {
    DateValue when; // the alarm's day and minute
    EventPtr event;
};

// The alarms of events whose minute lies strictly after the minute of
// `after` and strictly before the minute of `before` (ticks looked at those
// two), in time order. A recurring event counts each of its occurrences in
// the gap. Deleted events, and alarm times that are no time of a single day,
// never count.
QList<Missed> Find(const QList<EventPtr>& events, DateValue after, DateValue before);

// Finds the missed alarms of the events database (and in networked mode of
// the shared one) between after and before, at most kMaxDays back from
// before; logs each, shows one "MISSED" window whose first line is intro, and
// sends the same to the desktop's notifications. Returns how many were found.
int Show(ReminderServices& services, DateValue after, DateValue before, const QString& intro);

// How far back missed alarms are looked for.
inline constexpr double kMaxDays = 7;

inline constexpr const char* kAsleep = "Missed while the computer was asleep:";
inline constexpr const char* kNotRunning = "Missed while Tarvo was not running:";

} // namespace MissedAlarms
