#include "StorageFixture.h"

namespace {

class Layers : public StorageTest {};

TEST_F(Layers, LoadingReadsUserLayersButNeverTheFixedEndsAndSavingWritesAll) {
    settings.sSet(QStringLiteral("LAYER0"), SettingValue(QStringLiteral("Mine")));
    settings.sSet(QStringLiteral("layer7"), SettingValue(QStringLiteral("Garden")));
    settings.sSet(QStringLiteral("Layer20"), SettingValue(QStringLiteral("Everything")));
    layers.LoadLayers();
    EXPECT_EQ(QStringList({layers.Layer(0), layers.Layer(1), layers.Layer(7), layers.Layer(19),
                           layers.Layer(20)}),
              QStringList({"Shared", "Layer 1", "Garden", "Layer 19", "All Categories"}));

    layers.setLayer(3, "Work");
    layers.SaveLayers();
    EXPECT_EQ(settings.sGet("Layer0").toText(), "Shared");
    EXPECT_EQ(settings.sGet("Layer20").toText(), "All Categories");
    clsLayers again(settings);
    again.LoadLayers();
    EXPECT_EQ(again.Layer(3), "Work");

    // An index outside the table is logged and harmless.
    EXPECT_EQ(layers.Layer(21), QString());
    EXPECT_EQ(layers.Layer(-1), QString());
    layers.setLayer(21, "x");
    EXPECT_TRUE(Logged("Subscript out of range (9) in Layer of module clsLayers"));
}

TEST_F(Layers, SeekingANewNameTakesTheHighestFreeSlotAndSaves) {
    layers.LoadLayers();
    EXPECT_EQ(layers.SeekLayerIndex("Work"), 19);
    EXPECT_EQ(settings.sGet("Layer19").toText(), "Work");

    // Found again (trimmed, any case) without taking another slot or saving.
    settings.sSet(QStringLiteral("Layer19"), SettingValue(QStringLiteral("changed behind")));
    EXPECT_EQ(layers.SeekLayerIndex(" work "), 19);
    EXPECT_EQ(settings.sGet("Layer19").toText(), "changed behind");

    EXPECT_EQ(layers.SeekLayerIndex("All Categories"), 20);
    // "Shared" is never layer 0: it takes a slot like any new name.
    EXPECT_EQ(layers.SeekLayerIndex("Shared"), 18);
    EXPECT_EQ(layers.SeekLayerIndex("Shared"), 18);

    // A default-named slot holding own events is not free.
    layers.setOwnEventsTest([](int layer) { return layer == 17 || layer == 15; });
    EXPECT_EQ(layers.SeekLayerIndex("Home"), 16);
    EXPECT_EQ(layers.SeekLayerIndex("Garden"), 14);
    EXPECT_EQ(layers.Layer(17), "Layer 17");
}

TEST_F(Layers, ASlotNamedWithItsOwnDefaultTextIsFreeAndAFullTableAnswersMinusOne) {
    for (int i = 1; i <= 19; ++i) {
        layers.setLayer(i, QStringLiteral("Named %1").arg(i));
    }
    layers.setLayer(4, "Layer 4");  // typed by the user: still free
    layers.setLayer(9, "Layer 10"); // not its own default: taken
    EXPECT_EQ(layers.SeekLayerIndex("New"), 4);
    EXPECT_EQ(layers.SeekLayerIndex("Newer"), -1);
    EXPECT_EQ(layers.Layer(20), "All Categories");
}

} // namespace
