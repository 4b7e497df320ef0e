#include "shared/Clock.h"

#include <QDateTime>
#include <QElapsedTimer>

namespace {

enum class Mode { System, Fixed, Running };

struct ClockState {
    Mode mode = Mode::System;
    DateValue base = 0;  // the fixed moment, or the start of a running clock
    QElapsedTimer since; // real time since base, for a running clock
};

ClockState& state() {
    static ClockState s;
    return s;
}

} // namespace

DateValue Clock::now() {
    ClockState& s = state();
    switch (s.mode) {
    case Mode::Fixed:
        return s.base;
    case Mode::Running:
        return s.base + static_cast<double>(s.since.elapsed()) / 86400000.0;
    case Mode::System:
        break;
    }
    return FromQDateTime(QDateTime::currentDateTime());
}

void Clock::setFixed(DateValue v) {
    state().mode = Mode::Fixed;
    state().base = v;
}

void Clock::setStart(DateValue v) {
    state().mode = Mode::Running;
    state().base = v;
    state().since.start();
}

void Clock::advance(double seconds) {
    ClockState& s = state();
    if (s.mode == Mode::System) {
        setStart(now());
    }
    s.base += seconds / 86400.0;
}

void Clock::reset() {
    state().mode = Mode::System;
}

bool Clock::initFromEnvironment() {
    const QString text = qEnvironmentVariable(kEnvironmentVariable);
    if (text.isEmpty()) {
        return true;
    }
    const std::optional<DateValue> start = ParseDateValue(text);
    if (!start) {
        return false;
    }
    setStart(*start);
    return true;
}
