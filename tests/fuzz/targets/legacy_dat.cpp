// An old fixed-record "events.dat" with its sounds table, converted to the
// XML events file. The old file is only read, and the new one holds still
// when it is loaded and saved again.
#include "fuzz/FuzzTarget.h"

#include "shared/cSHAREDSettings.h"
#include "storage/StorableText.h"
#include "storage/clsDB2.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "storage/clsSounds.h"

#include <algorithm>

TARVO_FUZZ_TARGET(legacy_dat) {
    const QString folder = Fuzz::FreshFolder();
    const QList<QByteArray> parts = Fuzz::Parts(input, 2);
    const QString dat = Fuzz::Put(folder, "events.dat", parts.at(0));
    if (parts.size() > 1) {
        Fuzz::Put(folder, "EventWavs.ini", parts.at(1));
    }
    cSHAREDSettings settings;
    settings.sSet("Owner", SettingValue("Ann"));
    clsLayers layers(settings);
    clsSounds sounds(folder);
    clsDB2 records(settings, layers, sounds);
    records.LoadDB(dat);
    const auto& list = records.Events();
    // A "<" in a field kept as it is cannot be converted faithfully; the old
    // file stays for such records.
    const bool storable = std::all_of(list.begin(), list.end(), [](const EventPtr& e) {
        return StorableText::EventStorable(*e);
    });
    const QString xml = folder + "/Events.xml";
    ConvertLegacyDatabase(xml, settings, layers, sounds);
    if (Fuzz::Get(dat) != parts.at(0)) {
        Fuzz::Fail("the conversion changed the old file");
    }

    clsDbXml events(settings);
    events.LoadDB(xml);
    const QString again = folder + "/Again.xml";
    events.SetDBFilename(again);
    events.SaveDB();
    if (storable) {
        Fuzz::Same(Fuzz::Get(xml), Fuzz::Get(again),
                   "the converted events file reads back different");
    }
}
