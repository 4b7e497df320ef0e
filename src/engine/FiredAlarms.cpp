#include "engine/FiredAlarms.h"

#include "model/clsEvent.h"

bool FiredAlarms::FirstInMinute(const clsEvent& event, DateValue now) {
    const DayAndSeconds split = SplitDateValue(now);
    const qint64 minute = split.day * 1440 + split.seconds / 60;
    if (minute != m_minute) {
        m_minute = minute;
        m_fired.clear();
    }
    const QString key = event.Owner() + QLatin1Char('\n') + event.IDCode;
    if (m_fired.contains(key)) {
        return false;
    }
    m_fired.insert(key);
    return true;
}
