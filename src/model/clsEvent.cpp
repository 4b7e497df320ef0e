#include "model/clsEvent.h"

#include <cmath>

bool clsEvent::NameInShared(const QString& name) const {
    return ShareNames.contains(name + QStringLiteral("\r\n"), Qt::CaseInsensitive);
}

void clsEvent::CalcNextDueDate() {
    CalcDueDate(TodayDate());
}

void clsEvent::CalcNextAfterDate(DateValue after) {
    CalcDueDate(after);
}

void clsEvent::CalcDaysLeft() {
    CalcDaysLeft(TodayDate());
}

void clsEvent::CalcDaysLeft(DateValue today) {
    m_DaysLeft = static_cast<int32_t>(std::llround(m_DueDate - today));
}
