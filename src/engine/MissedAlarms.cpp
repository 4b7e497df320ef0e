#include "engine/MissedAlarms.h"

#include "engine/IDesktopNotifier.h"
#include "engine/IReminderWindow.h"
#include "engine/ReminderServices.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMinutesPerDay = 1440;
// A daily alarm over the longest gap looked at, with room to spare; also
// the stop for a rule that does not move on.
constexpr int kMaxOccurrences = 64;

// Minutes since the start of the date count, of the minute v falls in.
qint64 minuteIndex(DateValue v) {
    return static_cast<qint64>(std::floor(v * kMinutesPerDay + 1e-6));
}

// Minute of the day of an alarm time, or -1 when it is no time of a single
// day (the editor's plain subtraction can push an alarm before midnight);
// such an alarm never fires, so it is never missed either.
int alarmMinute(DateValue time) {
    const double minutes = time * kMinutesPerDay;
    const double rounded = std::round(minutes);
    if (rounded < 0 || rounded >= kMinutesPerDay || std::abs(minutes - rounded) > 1e-6) {
        return -1;
    }
    return static_cast<int>(rounded);
}

// "Sat 01/06/2030 08:00  Dentist", the date in the user's order. Starting
// with the weekday's name keeps the window's day count of every line at 0.
QString lineFor(const MissedAlarms::Missed& m, bool dayFirst) {
    const QLocale locale;
    QString line = locale.dayName(Weekday(m.when, FirstDay::Monday), QLocale::ShortFormat) +
                   QLatin1Char(' ') +
                   cSharedDateSubs::FormatWith(m.when,
                                               dayFirst ? QStringLiteral("DD/MM/YYYY HH:MM")
                                                        : QStringLiteral("MM/DD/YYYY HH:MM"),
                                               locale) +
                   QStringLiteral("  ") + m.event->Desc();
    if (m.event->ExecFile) {
        line += QStringLiteral(" (its file was not opened)");
    }
    return line;
}

} // namespace

namespace MissedAlarms {

QList<Missed> Find(const QList<EventPtr>& events, DateValue after, DateValue before) {
    const qint64 first = minuteIndex(after) + 1;
    const qint64 last = minuteIndex(before) - 1;
    QList<Missed> out;
    if (last < first) {
        return out;
    }
    const DateValue firstDay = std::floor(static_cast<double>(first) / kMinutesPerDay);
    for (const EventPtr& e : events) {
        const int minute = alarmMinute(e->AlarmTime());
        if (e->Deleted || !e->AlarmSet() || minute < 0) {
            continue;
        }
        // A copy walks the occurrences; the event itself is left as it is.
        clsEvent occurrence = *e;
        if (occurrence.Recurring() && DateOnly(occurrence.DueDate()) < firstDay) {
            occurrence.CalcDueDate(firstDay);
        }
        for (int i = 0; i < kMaxOccurrences; ++i) {
            const DateValue day = DateOnly(occurrence.DueDate());
            const qint64 at = std::llround(day) * kMinutesPerDay + minute;
            if (at > last) {
                break;
            }
            if (at >= first) {
                out.append({static_cast<double>(at) / kMinutesPerDay, e});
            }
            if (!occurrence.Recurring()) {
                break;
            }
            occurrence.CalcDueDate(day + 1);
            if (DateOnly(occurrence.DueDate()) <= day) {
                break; // a rule that cannot move on
            }
        }
    }
    std::stable_sort(out.begin(), out.end(),
                     [](const Missed& a, const Missed& b) { return a.when < b.when; });
    return out;
}

int Show(ReminderServices& services, DateValue after, DateValue before, const QString& intro) {
    after = std::max(after, before - kMaxDays);
    QList<Missed> missed = Find(services.events.Events(), after, before);
    if (services.shared != nullptr &&
        services.settings.sGet(QStringLiteral("Networked"), false).toBool()) {
        missed += Find(services.shared->Events(), after, before);
        std::stable_sort(missed.begin(), missed.end(),
                         [](const Missed& a, const Missed& b) { return a.when < b.when; });
    }
    if (missed.isEmpty()) {
        return 0;
    }

    Log().LogEvent(QStringLiteral("Showing missed alarms"));
    // Read as the event list reads it, so both show a date the same way.
    const bool dayFirst = services.settings.sGet(QStringLiteral("DateStyle"), 0).toInt() == 1;
    QStringList lines;
    for (const Missed& m : missed) {
        Log().LogEvent(
            QStringLiteral("Missed alarm: ") + FormatYMDHM(m.when) + QLatin1Char(' ') +
            m.event->Desc() +
            (m.event->ExecFile ? QStringLiteral(" - its file is not run late") : QString()));
        lines << lineFor(m, dayFirst);
    }
    IReminderWindow& window = *services.windows.CreateReminderWindow();
    window.ClearList();
    // The window puts a line above those with the same day count, and every
    // line here counts 0: so they go in last first, the intro at the end.
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        window.AddToList(*line);
    }
    window.AddToList(intro);
    window.Heading(QStringLiteral("MISSED"));
    window.setSoundFile(QString()); // the alarm sound
    window.setSoundFlag(true);
    window.setSoundOnce(true);
    window.MakeTopmost();
    NotifyDesktop(services, QStringLiteral("MISSED"), QStringList{intro} + lines, true);
    return static_cast<int>(missed.size());
}

} // namespace MissedAlarms
