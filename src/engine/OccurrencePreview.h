#pragma once

#include "engine/EventEditorInput.h"

#include <QList>
#include <QString>

class clsEvent;
class cSHAREDSettings;
class cSharedDateSubs;

// The event editor's line under the recurrence tabs: the next dates the
// event will fall on with the rule as it stands in the controls, worked out
// by the same next-date computation the program uses, on a copy of the event
// (the event being edited is never touched).
struct OccurrencePreview {
    static constexpr int kCount = 5;
    static constexpr const char* kNoDate = "These settings never produce a date";

    QList<DateValue> dates; // the due date first, then the following ones
    bool once = false;      // "Show Once": just the one date
    QString problem;        // why there is no date: a save check's message or kNoDate

    // Applies the rule parts of input to a copy of event as a save would
    // (the time, sound and e-mail boxes are left out, and nothing is written
    // to the settings), then asks it for its next date and, repeating, up
    // to kCount dates after that one.
    static OccurrencePreview Of(const EventEditorInput& input, const clsEvent& event,
                                cSHAREDSettings& settings);

    // "Next: Fri 28/03/2025, Fri 25/04/2025, ...", "Once: Fri 28/03/2025", or
    // the problem; dates as dateFormat writes them.
    QString Text(cSharedDateSubs& dateFormat) const;
};
