#include "engine/MonthCalendar.h"

#include "shared/cSharedDateSubs.h"

#include <QLocale>

#include <algorithm>

MonthCalendar::MonthCalendar(int year, int month)
    : m_year(std::clamp(year, kMinYear, kMaxYear)), m_month(std::clamp(month, 1, 12)),
      m_first(DateSerial(m_year, m_month, 1)), m_dayCount(DaysInMonth(m_year, m_month)),
      m_firstWeekday(Weekday(m_first, FirstDay::Sunday)) {}

bool MonthCalendar::PassesLayer(const clsEvent& event, int layer) {
    return event.Layer() == layer || layer == kAllLayers || (layer == 0 && event.SharedEvent);
}

void MonthCalendar::AddEvents(const QList<EventPtr>& events, int layer, bool networked) {
    for (const EventPtr& event : events) {
        if (event) {
            AddEvent(*event, layer, networked);
        }
    }
}

void MonthCalendar::AddEvent(clsEvent& event, int layer, bool networked) {
    if (!PassesLayer(event, layer)) {
        return;
    }
    const DateValue last = LastDay();
    auto lineFor = [&](int chars) {
        return Line{event.Desc(),
                    networked ? QStringLiteral(" [") + event.Owner() + QLatin1Char(']') : QString(),
                    chars};
    };

    if (!event.Recurring()) {
        const DateValue due = DateOnly(event.DueDate());
        if (due >= m_first && due <= last) {
            addLine(due, lineFor(kOneOffChars));
        }
        return;
    }

    // Catching up from a due date before the month: one search from the 1st
    // gives the same occurrence as stepping one occurrence at a time (every
    // rule's series, including the rolling anchors of the interval rules, is
    // walked the same way), and costs one call instead of one per occurrence.
    if (DateOnly(event.DueDate()) < m_first) {
        event.CalcNextAfterDate(m_first);
    }
    const Line line = lineFor(kRecurringChars);
    DateValue due = DateOnly(event.DueDate());
    while (due >= m_first && due <= last) {
        addLine(due, line);
        event.CalcNextAfterDate(due + 1);
        const DateValue next = DateOnly(event.DueDate());
        // A search that gave up (hand-edited rule) leaves the date where it
        // was; never list a day twice or loop on it.
        if (next <= due) {
            break;
        }
        due = next;
    }
}

void MonthCalendar::addLine(DateValue day, const Line& line) {
    const int index = static_cast<int>(day - m_first);
    if (index >= 0 && index < m_dayCount) {
        m_lines[static_cast<size_t>(index)].append(line);
    }
}

QStringList MonthCalendar::Lines(int day) const {
    QStringList out;
    if (day >= 1 && day <= m_dayCount) {
        for (const Line& line : m_lines[static_cast<size_t>(day - 1)]) {
            out.append(line.desc.left(line.boxChars) + line.owner);
        }
    }
    return out;
}

QStringList MonthCalendar::FullLines(int day) const {
    QStringList out;
    if (day >= 1 && day <= m_dayCount) {
        for (const Line& line : m_lines[static_cast<size_t>(day - 1)]) {
            QString desc = line.desc;
            desc.replace(QStringLiteral("\r\n"), QStringLiteral(" "))
                .replace(QLatin1Char('\r'), QLatin1Char(' '))
                .replace(QLatin1Char('\n'), QLatin1Char(' '));
            out.append(desc + line.owner);
        }
    }
    return out;
}

int MonthCalendar::TotalLines() const {
    int total = 0;
    for (const QList<Line>& lines : m_lines) {
        total += static_cast<int>(lines.size());
    }
    return total;
}

void MonthCalendar::Clear() {
    for (QList<Line>& lines : m_lines) {
        lines.clear();
    }
}

QString MonthCalendar::MonthTitle() const {
    return cSharedDateSubs::FormatWith(m_first, QStringLiteral("MMMM YYYY"), QLocale());
}

QString MonthCalendar::DayTitle(int day, const QLocale& locale) const {
    return cSharedDateSubs::FormatWith(m_first + day - 1, QStringLiteral("DDD"), locale) +
           QLatin1Char(' ') + QString::number(day);
}

QString MonthCalendar::EventListText() const {
    const QLocale locale;
    QStringList out{QStringLiteral("Events for ") + MonthTitle()};
    for (int day = 1; day <= m_dayCount; ++day) {
        out.append(DayTitle(day, locale) + QLatin1Char('\t') +
                   FullLines(day).join(QStringLiteral("; ")));
    }
    return out.join(QLatin1Char('\n')) + QLatin1Char('\n');
}
