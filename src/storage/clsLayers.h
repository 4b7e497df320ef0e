#pragma once

#include <QString>

#include <array>
#include <functional>

class cSHAREDSettings;

// The table of layer (category) names: index 0 is always "Shared", 1 to 19
// are named by the user, 20 is "All Categories" (no filter in the lists).
// Kept in the settings store under "Layer0" .. "Layer20".
class clsLayers {
public:
    static constexpr int kCount = 21;
    static constexpr int kShared = 0;
    static constexpr int kAllCategories = 20;

    // Starts with the default names; LoadLayers reads the store.
    explicit clsLayers(cSHAREDSettings& settings);

    // The name at index; an index outside 0..20 is logged and gives "".
    QString Layer(int index) const;
    // Sets the name at index (in memory); outside 0..20 is logged and ignored.
    void setLayer(int index, const QString& name);

    // Writes every entry 0..20 to the settings store (the store's file is
    // written by whoever saves the settings).
    void SaveLayers();
    // Reads 1..19 with their default names as defaults; 0 and 20 are fixed.
    void LoadLayers();
    // The index of the layer with this name (trimmed, case ignored; 1..20,
    // never 0). A name not known yet takes the highest user layer that still
    // has its default name and holds none of the user's own events (see
    // setOwnEventsTest), and the table is saved. -1 when no layer is free.
    int SeekLayerIndex(const QString& name);
    // Tells SeekLayerIndex which layers hold the user's own events, so that
    // another user's category name never takes over a slot the user already
    // files events in, even while it still has its default name. Without a
    // test every default-named slot counts as free.
    void setOwnEventsTest(std::function<bool(int)> holdsOwnEvents) {
        m_holdsOwnEvents = std::move(holdsOwnEvents);
    }
    // The local layer for another user's event by the layer name it was
    // published with: "Shared" is layer 0 everywhere, so it stays the
    // publishing category on every machine; any other name as SeekLayerIndex.
    int LocalLayerFor(const QString& sharedLayerName);

    // "Shared", "Layer N" or "All Categories".
    static QString DefaultName(int index);
    static QString SettingKey(int index);

private:
    cSHAREDSettings& m_settings;
    std::array<QString, kCount> m_names;
    std::function<bool(int)> m_holdsOwnEvents;
};
