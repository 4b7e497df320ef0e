// The reminder window offscreen, driven tick by tick.
#include "app/reminders/frmReminder.h"
#include "shared/cSHAREDSettings.h"
#include "support/FakeReminderWindows.h"
#include "support/TestSupport.h"

#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include <memory>
#include <vector>

namespace {

class ReminderWindow : public ::testing::Test {
protected:
    ReminderWindow() { settings.sSet("WavFile", home.file("alarm.wav")); }
    ~ReminderWindow() override { delete window.data(); }

    void tick(int times = 1) {
        for (int i = 0; i < times; ++i) {
            window->Timer1_Timer();
        }
    }

    TempHome home;
    cSHAREDSettings settings;
    FakeSoundPlayer player;
    QPointer<frmReminder> window = new frmReminder(settings, player);
};

TEST_F(ReminderWindow, EachNewWindowComesUpBelowTheOthersWithEveryTitleInSight) {
    std::vector<std::unique_ptr<frmReminder>> more;
    QList<frmReminder*> shown{window.data()};
    tick(); // the first window comes up
    for (int i = 0; i < 3; ++i) {
        frmReminder* w = more.emplace_back(std::make_unique<frmReminder>(settings, player)).get();
        // Windows made by a pass that found nothing never take a place.
        frmReminder(settings, player).Unload();
        w->Timer1_Timer();
        shown << w;
    }
    for (int older = 0; older < shown.size(); ++older) {
        const QRect title(shown[older]->geometry().topLeft(), QSize(shown[older]->width(), 30));
        EXPECT_EQ(shown[older]->slot(), older);
        for (int newer = older + 1; newer < shown.size(); ++newer) {
            EXPECT_FALSE(shown[newer]->geometry().intersects(title)) << older << " under " << newer;
        }
    }
    // A window that goes frees its place for the next one to come up.
    more.back().reset();
    auto last = std::make_unique<frmReminder>(settings, player);
    last->Timer1_Timer();
    EXPECT_EQ(last->slot(), 3);
}

TEST_F(ReminderWindow, LinesOrderedByDayCountNewestFirstAmongEquals) {
    for (const char* line : {"In 5 days: A", "In 2 days: B", "In 5 days: C", "Plain",
                             "In 40000 days: far", "In 1 day: D"}) {
        window->AddToList(QString::fromLatin1(line));
    }
    EXPECT_EQ(window->lines(), (QStringList{"Plain", "In 1 day: D", "In 2 days: B", "In 5 days: C",
                                            "In 5 days: A", "In 40000 days: far"}));
}

// Continue closing the window is clicked by tests/e2e/small_screens.sh.
TEST_F(ReminderWindow, ComesUpNagsWithItsSoundAndTheCloseBoxUnloads) {
    window->setSoundFlag(true);
    tick();
    EXPECT_TRUE(window->isVisible());
    tick();
    EXPECT_EQ(player.played.size(), 2) << "the sound repeats with every nag";

    window->setSoundOnce(true); // a missed-alarms list
    tick(2);
    EXPECT_EQ(player.played.size(), 3) << "once, then silent nags";

    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
}

TEST_F(ReminderWindow, SleepHidesForTheFullMinutesThenStaysWithoutRepeats) {
    const struct {
        const char* entry;
        int minutes;
    } cases[] = {{"2", 2}, {"1440", 1440}, {"soon", 10}, {"0", 10}};
    for (const auto& c : cases) {
        delete window.data();
        window = new frmReminder(settings, player);
        window->setSoundFlag(true);
        tick();
        player.played.clear();
        // Typed over the whole entry; the box keeps only whole minutes 1 to
        // 1440 and stays at 10 when nothing valid is typed.
        auto* box = window->findChild<QSpinBox*>("txtSleep");
        box->selectAll();
        QTest::keyClicks(box, QString::fromLatin1(c.entry));
        QTest::mouseClick(window->findChild<QPushButton*>("cmdRemindMe"), Qt::LeftButton);
        EXPECT_FALSE(window->isVisible()) << c.entry;

        tick(c.minutes * 60 - 1);
        EXPECT_FALSE(window->isVisible()) << c.entry << ": one second early";
        tick();
        EXPECT_TRUE(window->isVisible()) << c.entry << ": back after the full minutes";
        EXPECT_EQ(player.played.size(), 1) << c.entry;
        EXPECT_FALSE(window->timer().isActive()) << c.entry << ": no more repeats";
    }
}

TEST_F(ReminderWindow, SoundRules) {
    // A sound file that is gone falls back to the default, written when missing.
    window->setSoundFile(home.file("deleted.wav"));
    window->PlayReminderSound();
    EXPECT_EQ(player.played.last(), home.file("alarm.wav"));
    EXPECT_FALSE(ReadFileBytes(home.file("alarm.wav")).isEmpty());

    player.played.clear();
    settings.sSet("NoSounds", true);
    window->PlayReminderSound();
    settings.sSet("NoSounds", false);
    player.available = false;
    window->PlayReminderSound();
    EXPECT_TRUE(player.played.isEmpty()) << "silent with NoSounds or without an output device";
}

} // namespace
