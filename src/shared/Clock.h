#pragma once

#include "shared/DateValue.h"

#include <QString>

// The one source of "now". Normally the system's local time; tests fix it or
// move it, and the binary can start from a chosen moment given in TARVO_NOW
// ("YYYY-MM-DD HH:MM"), from which it then runs forward in real time.
class Clock {
public:
    static DateValue now();

    // Stands still at v until moved or reset.
    static void setFixed(DateValue v);
    // Starts at v and runs forward with real time.
    static void setStart(DateValue v);
    // Moves the clock by a number of seconds (fixed or running).
    static void advance(double seconds);
    // Back to the system time.
    static void reset();

    // Applies TARVO_NOW when set. Returns false, leaving the system time,
    // when the variable is set but not a valid "YYYY-MM-DD HH:MM".
    static bool initFromEnvironment();
    static constexpr const char* kEnvironmentVariable = "TARVO_NOW";
};
