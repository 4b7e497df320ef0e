// The settings file "Tvo.ini", hand-edited or damaged: loaded, its
// categories and folders read, saved, and loaded and saved again; the
// two saves are the same bytes.
#include "fuzz/FuzzTarget.h"

#include "shared/OwnerId.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "storage/clsLayers.h"

TARVO_FUZZ_TARGET(settings_file) {
    const QString folder = Fuzz::FreshFolder();
    cSHAREDSettings settings;
    settings.LoadSettings(Fuzz::Put(folder, "Tvo.ini", input));
    clsLayers layers(settings);
    layers.LoadLayers();
    layers.SeekLayerIndex("Work");
    DataFiles::DataFolder(settings);
    DataFiles::Networked(settings);
    OwnerId::Problem(settings.sGet("Owner").toText());

    const QByteArray first = settings.FileBytes();
    cSHAREDSettings again;
    again.LoadSettings(Fuzz::Put(folder, "Again.ini", first));
    Fuzz::Same(first, again.FileBytes(), "a saved settings file reads back different");
}
