// The layer name editor offscreen.
#include "app/dialogs/frmEditLayers.h"

#include "DialogsFixture.h"

#include <QPushButton>
#include <QTest>

#include <memory>

namespace {

class LayerEditor : public ::testing::Test, protected DialogsFixture {
protected:
    frmEditLayers& open() {
        window = std::make_unique<frmEditLayers>(context);
        return *window;
    }
    QLineEdit* box(int i) const {
        return Control<QLineEdit>(window.get(),
                                  QStringLiteral("txtDesc%1").arg(i).toLatin1().constData());
    }
    std::unique_ptr<frmEditLayers> window;
};

TEST_F(LayerEditor, DefaultTableIsShownWithTheFixedEndsLocked) {
    frmEditLayers& w = open();
    EXPECT_EQ(w.windowTitle(), QStringLiteral("Category Names"));
    EXPECT_EQ(box(0)->text(), QStringLiteral("Shared"));
    EXPECT_EQ(box(1)->text(), QStringLiteral("Layer 1"));
    EXPECT_EQ(box(19)->text(), QStringLiteral("Layer 19"));
    EXPECT_EQ(box(20)->text(), QStringLiteral("All Categories"));
    EXPECT_FALSE(box(0)->isEnabled() || box(20)->isEnabled()) << "fixed names";
    EXPECT_TRUE(box(1)->isEnabled() && box(19)->isEnabled());
}

TEST_F(LayerEditor, NamesAreStoredAsTypedAndShownTrimmed) {
    open();
    box(3)->setText(QStringLiteral(" Work "));
    box(5)->setText(QStringLiteral("Home"));
    Control<QPushButton>(window.get(), "cmdAccept")->click();
    EXPECT_TRUE(window->Accepted());
    EXPECT_EQ(layers.Layer(3), QStringLiteral(" Work "));
    EXPECT_EQ(settings.sGet(QStringLiteral("Layer3")).toText(), QStringLiteral(" Work "));
    EXPECT_EQ(settings.sGet(QStringLiteral("Layer5")).toText(), QStringLiteral("Home"));

    cSHAREDSettings reread;
    reread.LoadSettings(context.settingsFile);
    EXPECT_EQ(reread.sGet(QStringLiteral("Layer5")).toText(), QStringLiteral("Home"))
        << "the file is written";

    open();
    EXPECT_EQ(box(3)->text(), QStringLiteral("Work"));
}

TEST_F(LayerEditor, CancelStoresNothing) {
    open();
    box(2)->setText(QStringLiteral("Garden"));
    box(0)->setText(QStringLiteral("Everyone"));
    Control<QPushButton>(window.get(), "cmdAbort")->click();
    EXPECT_FALSE(window->Accepted());
    EXPECT_EQ(layers.Layer(2), QStringLiteral("Layer 2"));
    EXPECT_EQ(layers.Layer(0), QStringLiteral("Shared"));
    EXPECT_EQ(settings.SettingsCount(), 0);
}

TEST_F(LayerEditor, RenamingBackToTheDefaultFreesTheLayer) {
    layers.setLayer(19, QStringLiteral("Work"));
    open();
    box(19)->setText(QStringLiteral("Layer 19"));
    Control<QPushButton>(window.get(), "cmdAccept")->click();
    EXPECT_EQ(layers.SeekLayerIndex(QStringLiteral("Sport")), 19);
}

TEST_F(LayerEditor, EnteringABoxSelectsItsText) {
    open();
    window->show();
    QApplication::setActiveWindow(window.get());
    box(4)->setFocus();
    QTest::qWait(20);
    EXPECT_EQ(box(4)->selectedText(), QStringLiteral("Layer 4"));
}

} // namespace
