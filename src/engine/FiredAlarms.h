#pragma once

#include "shared/DateValue.h"

#include <QSet>
#include <QString>

class clsEvent;

// The alarms raised in the current minute. The refresh tick comes twice in
// most minutes; remembering what fired lets each event's alarm (its window
// line, or its file) be raised once per alarm minute however many ticks see
// that minute. The memory is dropped when the minute changes.
class FiredAlarms {
public:
    // True the first time event is asked about in the minute of now; false
    // when its alarm was already raised in that minute.
    bool FirstInMinute(const clsEvent& event, DateValue now);

private:
    qint64 m_minute = -1;
    QSet<QString> m_fired; // owner and ID code: shared events of two owners may share an ID
};
