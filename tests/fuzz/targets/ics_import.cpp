// An iCalendar file imported into the events file: whatever it holds, the
// events stored read back the same, and exporting them gives a calendar that
// parses again.
#include "fuzz/FuzzTarget.h"

#include "engine/CalendarTransfer.h"
#include "shared/cSHAREDSettings.h"
#include "storage/IcsEventMapping.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

TARVO_FUZZ_TARGET(ics_import) {
    const QString folder = Fuzz::FreshFolder();
    cSHAREDSettings settings;
    settings.sSet("Owner", SettingValue("Ann"));
    clsLayers layers(settings);
    clsDbXml events(settings, &layers);
    const QString file = folder + "/Events.xml";
    events.SetDBFilename(file);
    EventStore store{settings, folder + "/Tvo.ini", layers, events};
    const QString ics = Fuzz::Put(folder, "in.ics", input);
    CalendarTransfer::Import(ics, store, 46188); // 2026-06-15
    if (events.RecordCount() == 0) {
        return;
    }

    clsDbXml again(settings);
    again.LoadDB(file);
    const QString copy = folder + "/Again.xml";
    again.SetDBFilename(copy);
    again.SaveDB();
    Fuzz::Same(Fuzz::Get(file), Fuzz::Get(copy), "imported events read back different");
    const QString out = folder + "/out.ics";
    CalendarTransfer::Export(again.Events(), layers, out);
    const IcsEventMapping::Calendar exported = IcsEventMapping::ParseCalendar(Fuzz::Get(out));
    qsizetype writable = 0;
    for (const EventPtr& e : again.Events()) {
        writable += !e->Deleted && IcsEventMapping::Writable(*e) ? 1 : 0;
    }
    if (!exported.error.isEmpty() || exported.events.size() != writable) {
        Fuzz::Fail("an exported calendar does not read back: " + exported.error);
    }
}
