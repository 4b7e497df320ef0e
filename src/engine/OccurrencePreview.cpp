#include "engine/OccurrencePreview.h"

#include "model/clsEvent.h"
#include "shared/cSharedDateSubs.h"

OccurrencePreview OccurrencePreview::Of(const EventEditorInput& input, const clsEvent& event,
                                        cSHAREDSettings& settings) {
    EventEditorInput in = input;
    in.timed = false;
    in.makeNoise = false;
    in.emailTo = false;
    in.daysWarning = QStringLiteral("0");
    in.desc = QStringLiteral("-"); // the dates do not depend on the words
    clsEvent copy = event;
    OccurrencePreview preview;
    preview.once = !in.repeat;
    const EventEditorOutcome outcome = EventEditorRules::Save(in, copy, settings);
    if (!outcome.saved) {
        preview.problem = outcome.message;
        return preview;
    }
    const int count = preview.once ? 1 : kCount;
    // A search that finds nothing leaves the due date where it was, before `from`.
    DateValue from = TodayDate();
    copy.setDueDate(from - 1);
    copy.CalcNextDueDate();
    while (copy.DueDate() >= from) {
        preview.dates.append(copy.DueDate());
        if (preview.dates.size() >= count) {
            break;
        }
        // The next one strictly after, as the main window's push takes it.
        from = copy.DueDate() + 1;
        copy.CalcNextAfterDate(from);
    }
    if (preview.dates.isEmpty()) {
        preview.problem = QString::fromLatin1(kNoDate);
    }
    return preview;
}

QString OccurrencePreview::Text(cSharedDateSubs& dateFormat) const {
    if (dates.isEmpty()) {
        return problem;
    }
    QStringList shown;
    for (DateValue d : dates) {
        shown.append(dateFormat.ShortFormatDayDate(d));
    }
    return (once ? QStringLiteral("Once: ") : QStringLiteral("Next: ")) +
           shown.join(QStringLiteral(", "));
}
