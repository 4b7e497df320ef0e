// The events file: load, next due dates and days left, save, reload, save
// again. The format may change a value once (a field that did not convert
// falls back to its default) but must then hold still: the two saves are
// byte for byte the same for every event whose values the format can keep.
#include "fuzz/FuzzTarget.h"

#include "shared/cSHAREDSettings.h"
#include "storage/StorableText.h"
#include "storage/clsDbXml.h"

#include <algorithm>

TARVO_FUZZ_TARGET(event_file) {
    const QString folder = Fuzz::FreshFolder();
    cSHAREDSettings settings;
    settings.sSet("Owner", SettingValue("Ann"));

    clsDbXml events(settings);
    events.LoadDB(Fuzz::Put(folder, "Events.xml", input));
    for (const EventPtr& e : events.Events()) {
        if (e->Recurring()) {
            e->CalcNextDueDate();
        }
        e->CalcDaysLeft();
    }
    const QString first = folder + "/First.xml";
    events.SetDBFilename(first);
    events.SaveDB();

    clsDbXml again(settings);
    again.LoadDB(first);
    const QString second = folder + "/Second.xml";
    again.SetDBFilename(second);
    again.SaveDB();

    const auto& list = events.Events();
    if (!std::all_of(list.begin(), list.end(),
                     [](const EventPtr& e) { return StorableText::EventStorable(*e); })) {
        return; // a value the editor refuses; the file keeps it as it reads
    }
    Fuzz::Same(Fuzz::Get(first), Fuzz::Get(second), "a saved events file reads back different");
}
