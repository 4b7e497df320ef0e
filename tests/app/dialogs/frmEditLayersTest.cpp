// The layer name editor offscreen.
#include "app/dialogs/frmEditLayers.h"

#include "DialogsFixture.h"

#include <QLabel>
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

// The fixed names cannot be edited; the others are stored as typed, written
// to the settings file and shown trimmed. Cancel stores nothing.
TEST_F(LayerEditor, NamesAreStoredAsTypedAndShownTrimmed) {
    open();
    EXPECT_EQ(box(0)->text() + QLatin1Char('|') + box(20)->text(),
              QStringLiteral("Shared|All Categories"));
    EXPECT_FALSE(box(0)->isEnabled() || box(20)->isEnabled()) << "fixed names";
    box(2)->setText(QStringLiteral("Garden"));
    Control<QPushButton>(window.get(), "cmdAbort")->click();
    EXPECT_EQ(layers.Layer(2), QStringLiteral("Layer 2"));
    EXPECT_EQ(settings.SettingsCount(), 0);

    open();
    box(3)->setText(QStringLiteral(" Work "));
    Control<QPushButton>(window.get(), "cmdAccept")->click();
    EXPECT_EQ(layers.Layer(3), QStringLiteral(" Work "));
    cSHAREDSettings reread;
    reread.LoadSettings(context.settingsFile);
    EXPECT_EQ(reread.sGet(QStringLiteral("Layer3")).toText(), QStringLiteral(" Work "));
    open();
    EXPECT_EQ(box(3)->text(), QStringLiteral("Work"));
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
