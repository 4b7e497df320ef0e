// The event editor offscreen, driven by its controls' names, and the edit
// command around it.
#include "app/dialogs/frmEvent.h"
#include "app/dialogs/EventEditFlow.h"
#include "model/clsEvent.h"
#include "storage/EventXmlCodec.h"
#include "support/ModalHelper.h"
#include <QDir>

#include "DialogsFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>

#include <memory>

namespace {

class EventEditor : public ::testing::Test, protected DialogsFixture {
protected:
    EventEditor() { settings.sSet(QStringLiteral("Owner"), QStringLiteral("Fred")); }

    frmEvent& open(bool editing = false) {
        window = std::make_unique<frmEvent>(context, event, editing);
        return *window;
    }

    QLineEdit* box(const char* name) const { return Control<QLineEdit>(window.get(), name); }
    QCheckBox* check(const char* name) const { return Control<QCheckBox>(window.get(), name); }
    QListWidget* list(const char* name) const { return Control<QListWidget>(window.get(), name); }
    QLabel* label(const char* name) const { return Control<QLabel>(window.get(), name); }
    void tab(int index) const {
        Control<QTabWidget>(window.get(), "TabStrip1")->setCurrentIndex(index);
    }
    void save() const { Control<QPushButton>(window.get(), "cmdSave")->click(); }
    void describe(const QString& text) const {
        Control<QPlainTextEdit>(window.get(), "txtDesc")->setPlainText(text);
    }
    // Networked, with Bob, Jim and Ann in the shared folder's user list.
    void networked() {
        const QString folder = home.file("shared");
        ASSERT_TRUE(QDir().mkpath(folder));
        settings.sSet(QStringLiteral("Networked"), true);
        settings.sSet(QStringLiteral("SharedDatapath"), folder);
        ASSERT_TRUE(WriteFileBytes(folder + "/TVOShared.ini", "Bob\r\nJim\r\nAnn\r\n"));
    }

    FixedClock clock{"2009-03-05 10:00"};
    clsEvent event;
    std::unique_ptr<frmEvent> window;
};

// The line under the tabs shows the dates the rule gives (the engine's, with
// their cases) in the user's date style as it is edited, or the rule's
// fault, and never touches the event being edited. The clock says Thursday
// 5 March 2009.
TEST_F(EventEditor, NextDatesFollowTheRuleAsItIsEdited) {
    settings.sSet(QStringLiteral("DateStyle"), 2);
    event.setDesc("Untouched");
    event.setRecurring(true);
    const clsEvent before = event;
    open(true);
    check("chkDay1")->click();
    check("chkDay5")->click();
    EXPECT_EQ(
        label("lblNextDates")->text(),
        "Next: Fri 03/06/2009, Mon 03/09/2009, Fri 03/13/2009, Mon 03/16/2009, Fri 03/20/2009");
    Control<QRadioButton>(window.get(), "optShowOnce")->click();
    EXPECT_EQ(label("lblNextDates")->text(), "Once: Fri 03/06/2009");
    tab(clsEvent::EveryXDays);
    EXPECT_EQ(label("lblNextDates")->text(), "\u26A0 Please enter a valid starting date");
    EXPECT_TRUE(event == before);
}

// The save checks are the engine's; the editor shows their message, puts the
// focus on the box at fault and stores nothing; corrected, it stores and
// closes.
TEST_F(EventEditor, ARefusedEntryWarnsAndTakesTheFocusUntilCorrected) {
    open().show();
    describe("Call");
    check("chkDay2")->click();
    check("chkTimed")->click();
    box("txtTime")->setText("24:00");
    save();
    EXPECT_EQ(dialogs.lastText(), "Please specify a time in the range of 00:00 to 23:59");
    EXPECT_EQ(window->focusWidget()->objectName(), "txtTime");
    EXPECT_TRUE(window->isVisible() && !window->Saved());
    EXPECT_EQ(event.WeekDays(), 0) << "nothing is stored";

    box("txtTime")->setText("9:30");
    save();
    EXPECT_TRUE(!window->isVisible() && window->Saved());
    EXPECT_EQ(box("txtTime")->text(), "09:30") << "shown back as HH:MM";
    EXPECT_EQ(FormatHM(event.DueTime()), "09:30");
    EXPECT_EQ(event.WeekDays(), 4);
}

// The start dates are picked with the mouse or the keyboard; Return and
// Enter open the picker and go no further (no press of the default "&Save").
TEST_F(EventEditor, StartDatesArePickedByMouseOrKeyboard) {
    for (const char* name : {"lblMonthlyStartDate", "lblWeeklyStartDate", "lblDailyStartDate"}) {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            dialogs.clear();
            open().show();
            dialogs.answerDate(D("2009-04-01"));
            QTest::keyClick(label(name), key);
            ASSERT_EQ(dialogs.texts(), QStringList{"Enter start date for this event"}) << name;
            EXPECT_EQ(label(name)->text(), "01/04/2009") << name;
            EXPECT_TRUE(window->isVisible() && !window->Saved()) << name;
        }
    }
    describe("Call");
    tab(clsEvent::EveryXDays);
    box("txtDailyPeriod")->setText("10");
    dialogs.answerCancel();
    QTest::mouseClick(label("lblDailyStartDate"), Qt::LeftButton);
    EXPECT_EQ(dialogs.shown().last().extra, "2009-04-01") << "starts as shown";
    EXPECT_EQ(label("lblDailyStartDate")->text(), "01/04/2009") << "cancel keeps it";
    save();
    ASSERT_TRUE(window->Saved());
    EXPECT_EQ(event.Period(), 10);
    EXPECT_DOUBLE_EQ(event.StartDate(), D("2009-04-01"));
}

// An event with every field set, for each recurrence type, shown and saved
// unchanged, comes back the same (StartDate is today for the types that do
// not pick one).
TEST_F(EventEditor, EditedEventRoundTripsEveryField) {
    networked();
    const QString wav = home.file("bell.wav");
    ASSERT_TRUE(WriteFileBytes(wav, "RIFF"));

    // type, week days, day of month, month, period, day of week, day number, start
    const RuleFields rules[] = {
        {0, 2 + 8 + 64, 0, 0, 0, 0, 0, "2009-03-05"}, {1, 0, 31, 13, 0, 0, 0, "2009-03-05"},
        {2, 0, 0, 0, 6, 0, 0, "2008-11-30"},          {3, 0, 0, 0, 6, 0, 0, "2008-11-30"},
        {4, 0, 0, 11, 0, 3, 5, "2009-03-05"},         {5, 0, 0, 0, 6, 0, 0, "2008-11-30"}};
    for (const RuleFields& rule : rules) {
        const int type = rule.type;
        clsEvent original = RepeatingEvent(rule, "Line one\nLine two");
        original.IDCode = "123456";
        original.setLayer(7);
        original.setAlarmSet(true);
        original.setDueTime(TimeSerial(18, 45));
        original.setMinutesWarning(20);
        original.setAlarmTime(TimeSerial(18, 25));
        original.setDaysWarning(4);
        original.setRecurring(type % 2 == 0);
        original.PlayWav = true;
        original.WavFile = wav;
        original.ExecFile = true;
        original.Filename = "/data/notes.txt";
        original.Email = "fred@home.test";
        original.SharedEvent = true;
        original.ShareWithSpecific = true;
        original.ShareNames = "Bob\r\nAnn\r\n";
        original.setOwner("Fred");
        original.setDueDate(D("2009-05-31"));

        event = original;
        dialogs.clear();
        open(true);
        EXPECT_EQ(Control<QTabWidget>(window.get(), "TabStrip1")->currentIndex(), type);
        EXPECT_TRUE(window->findChild<QGroupBox*>("FrameShared")->isVisibleTo(window.get()));
        save();
        ASSERT_TRUE(window->Saved()) << "type " << type << ": " << dialogs.lastText().toStdString();

        QByteArray saved, expected;
        EventXmlCodec::AppendBlock(saved, event);
        EventXmlCodec::AppendBlock(expected, original);
        EXPECT_EQ(saved, expected) << type;
        EXPECT_DOUBLE_EQ(event.DueDate(), original.DueDate()) << "the caller computes the due date";
    }
}

// A new event opens on today; controls follow the boxes they depend on, and
// the pickers fill their labels.
TEST_F(EventEditor, DependentControlsFollowTheirBoxesAndPickersFillTheirLabels) {
    settings.sSet(QStringLiteral("DefaultEmail"), QStringLiteral("me@home.test"));
    open();
    EXPECT_EQ(list("lstMonthNames")->currentRow(), 2) << "the current month";
    EXPECT_EQ(box("txtDayOfMonth")->text(), "5") << "today's day";
    EXPECT_TRUE(Control<QGroupBox>(window.get(), "FrameShared")->isHidden()) << "single-user";
    EXPECT_EQ(Control<QComboBox>(window.get(), "cmbLayers")->count(), 20)
        << "\"All Categories\" is no category for an event";
    check("chkEmailTo")->click();
    EXPECT_EQ(box("txtEmailAlert")->text(), "me@home.test") << "the last address";
    for (const bool ticked : {false, true}) {
        EXPECT_EQ(box("txtTime")->isEnabled(), ticked);
        EXPECT_EQ(box("txtMinutesWarning")->isEnabled(), ticked);
        EXPECT_EQ(Control<QPushButton>(window.get(), "cmdPickFile")->isEnabled(), ticked);
        check("chkTimed")->click();
        check("chkRunFile")->click();
    }
    check("chkTimed")->click();
    box("txtTime")->setText("23:00");
    EXPECT_EQ(label("lblAlarmAdvice")->text(), "(Alarm will sound at 10:30pm)");
    box("txtMinutesWarning")->setText("5");
    EXPECT_EQ(label("lblAlarmAdvice")->text(), "(Alarm will sound at 10:55pm)");

    dialogs.answerText("/sounds/gong.wav");
    check("chkMakeNoise")->click(); // with no file yet it asks for one
    EXPECT_EQ(dialogs.shown().last().extra, "WAV files (*.wav)|*.wav");
    EXPECT_EQ(label("lblWavFile")->text(), "/sounds/gong.wav");
    check("chkRunFile")->click();
    dialogs.answerText("/data/plan.txt");
    Control<QPushButton>(window.get(), "cmdPickFile")->click();
    Control<QPushButton>(window.get(), "cmdPickFile")->click(); // cancelled
    EXPECT_EQ(label("lblExecFile")->text(), "/data/plan.txt");

    networked();
    open();
    EXPECT_FALSE(check("chkSpecificShare")->isEnabled());
    check("chkShared")->click();
    EXPECT_TRUE(check("chkSpecificShare")->isEnabled());
    // Through a calendar server the users offered are the ones whose events are shown.
    settings.sSet(QStringLiteral("NetworkMode"), QStringLiteral("caldav"));
    settings.sSet(QStringLiteral("CalDAVUsers"), QStringLiteral("Carol, Dave"));
    open();
    ASSERT_EQ(list("lstUsers")->count(), 2);
    EXPECT_EQ(list("lstUsers")->item(1)->text(), "Dave");
}

// The edit command around the editor: a failed save and Abort leave the
// listed event and the file alone; a save updates the listed object itself,
// with its new due date and days left, and writes it. (Adding and
// publishing through the real program: tests/e2e/networked_shared_category.sh.)
TEST_F(EventEditor, EditCommandStoresTheListedEventInPlace) {
    auto listed = std::make_shared<clsEvent>(
        RepeatingEvent({clsEvent::EveryXDays, 0, 0, 0, 7, 0, 0, "2009-03-01"}, "Dentist"));
    listed->setDaysLeft(-5); // as an expired copy left it
    events.StoreRecord(listed);
    auto whenEditorOpens = [](const char* desc, QStringList clicks, const char* period = "7") {
        WhenModalAppears([=](QWidget* editor) {
            editor->findChild<QPlainTextEdit*>("txtDesc")->setPlainText(QString::fromLatin1(desc));
            editor->findChild<QLineEdit*>("txtDailyPeriod")->setText(QString::fromLatin1(period));
            for (const QString& name : clicks) {
                editor->findChild<QPushButton*>(name)->click();
            }
        });
    };

    whenEditorOpens("half typed", {"cmdSave", "cmdAbort"}, "often");
    EXPECT_FALSE(EventEditFlow::EditEvent(context, events, listed));
    EXPECT_EQ(dialogs.texts(), QStringList{"Please enter a number in the repeat box"});
    EXPECT_EQ(listed->Desc(), "Dentist");
    EXPECT_FALSE(QFileInfo::exists(events.DBFilename()));

    whenEditorOpens("Dentist, new time", {"cmdSave"});
    EXPECT_TRUE(EventEditFlow::EditEvent(context, events, listed));
    EXPECT_EQ(events.Events(), QList<EventPtr>{listed}) << "the listed object itself is updated";
    EXPECT_DOUBLE_EQ(listed->DueDate(), D("2009-03-08"));
    EXPECT_EQ(listed->DaysLeft(), 3) << "the list shows the new days left, not the old ones";
    EXPECT_TRUE(ReadFileBytes(events.DBFilename()).contains("<Desc>Dentist,%20new%20time<"));
}

} // namespace
