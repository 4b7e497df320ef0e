#pragma once

#include "model/clsEvent.h"
#include "shared/DateValue.h"

#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>

#include <array>

// One calendar month as the month view shows it: where each day sits in the
// 6 x 7 grid of day boxes (Sunday first) and which event lines fall on each
// day, recurring events expanded to every occurrence in the month. Window-free
// so the same expansion serves the view, its printouts and the benchmark.
class MonthCalendar {
public:
    static constexpr int kBoxCount = 42;
    // Lengths of description kept in a day box: recurring events get more
    // room than one-off events. The difference is how it has always looked.
    // The event lists (viewed and printed) show whole descriptions.
    static constexpr int kRecurringChars = 22;
    static constexpr int kOneOffChars = 12;
    static constexpr int kAllLayers = 20;

    // year 100..9999, month 1..12 (anything else is brought into range).
    MonthCalendar(int year, int month);

    int year() const { return m_year; }
    int month() const { return m_month; }
    DateValue FirstDay() const { return m_first; }
    DateValue LastDay() const { return m_first + m_dayCount - 1; }
    int DayCount() const { return m_dayCount; }

    // Box of day d (1-based) of the month: w - 2 + d with w the weekday of the
    // 1st counted Sunday = 1, so a month starting on a Sunday puts the 1st in
    // box 0 and one starting on a Saturday in box 6.
    int BoxOfDay(int day) const { return m_firstWeekday - 2 + day; }

    // An event is shown under a layer filter when it is in that layer, when
    // the filter is 20 (all layers), or when the filter is 0 (shared) and the
    // event is flagged shared.
    static bool PassesLayer(const clsEvent& event, int layer);

    // Adds the lines of every event that passes the filter, in list order.
    // Recurring events are walked through their occurrences with
    // CalcNextAfterDate, which moves their DueDate (and StartDate): pass the
    // view's own copies, never the program's database. networked adds
    // " [owner]" to each line.
    void AddEvents(const QList<EventPtr>& events, int layer, bool networked);
    void AddEvent(clsEvent& event, int layer, bool networked);

    // The event lines of day d (1-based) as its day box shows them, each
    // description cut short; empty outside the month.
    QStringList Lines(int day) const;
    // The same lines with whole descriptions (line breaks as blanks), for
    // the event lists.
    QStringList FullLines(int day) const;
    int TotalLines() const;
    void Clear();

    // "MMMM YYYY" in the default locale ("March 2009").
    QString MonthTitle() const;
    // Day d with its weekday name: "Sun 1".
    QString DayTitle(int day, const QLocale& locale = QLocale()) const;
    // The month as plain text: "Events for " + title, then per day its
    // weekday name ("Sun"), a blank, the day, a tab and its full event lines.
    QString EventListText() const;

private:
    struct Line {
        QString desc;
        QString owner; // " [owner]" in networked mode, else empty
        int boxChars;  // how much of desc the day box shows
    };
    void addLine(DateValue day, const Line& line);

    int m_year;
    int m_month;
    DateValue m_first;
    int m_dayCount;
    int m_firstWeekday;
    std::array<QList<Line>, 31> m_lines;
};
