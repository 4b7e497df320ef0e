// The event editor offscreen, driven by its controls' names.
#include "app/dialogs/frmEvent.h"
#include "model/clsEvent.h"
#include "storage/EventXmlCodec.h"
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

#include <functional>
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

    FixedClock clock{QStringLiteral("2009-03-05 10:00")};
    clsEvent event;
    std::unique_ptr<frmEvent> window;
};

TEST_F(EventEditor, OpensOnTodayWithItsDefaults) {
    settings.sSet(QStringLiteral("DefaultEmail"), QStringLiteral("me@home.test"));
    frmEvent& w = open();
    EXPECT_EQ(list("lstMonthNames")->currentRow(), 2) << "the current month";
    EXPECT_EQ(box("txtDayOfMonth")->text(), QStringLiteral("5")) << "today's day";
    auto* layers = Control<QComboBox>(&w, "cmbLayers");
    EXPECT_EQ(layers->count(), 20) << "\"All Categories\" is no category for an event";
    EXPECT_EQ(label("lblDailyStartDate")->text(), QStringLiteral("DD/MM/YYYY"));
    EXPECT_TRUE(Control<QGroupBox>(&w, "FrameShared")->isHidden()) << "single-user mode";
    check("chkEmailTo")->click();
    EXPECT_EQ(box("txtEmailAlert")->text(), QStringLiteral("me@home.test")) << "the last address";
}

// The line under the tabs shows the dates the rule gives as it is edited (the
// clock says Thursday 5 March 2009), in the user's date style, and never
// touches the event being edited.
TEST_F(EventEditor, NextDatesFollowTheRuleAsItIsEdited) {
    auto start = [this](const char* name, const char* day) {
        dialogs.answerDate(D(QString::fromLatin1(day)));
        QTest::mouseClick(label(name), Qt::LeftButton);
    };
    const struct {
        int dateStyle;
        std::function<void()> enter;
        const char* shown;
    } cases[] = {
        {1,
         [&] {
             check("chkDay1")->click();
             check("chkDay5")->click();
         },
         "Next: Fri 06/03/2009, Mon 09/03/2009, Fri 13/03/2009, Mon 16/03/2009, Fri 20/03/2009"},
        {2,
         [&] {
             check("chkDay5")->click();
             Control<QRadioButton>(window.get(), "optShowOnce")->click();
         },
         "Once: Fri 03/06/2009"},
        {2,
         [&] {
             tab(clsEvent::Weekly);
             box("txtWeeklyPeriod")->setText(QStringLiteral("2"));
             start("lblWeeklyStartDate", "2009-03-03");
         },
         "Next: Tue 03/17/2009, Tue 03/31/2009, Tue 04/14/2009, Tue 04/28/2009, Tue 05/12/2009"},
        {1, [&] { tab(clsEvent::EveryXDays); }, "\u26A0 Please enter a valid starting date"},
    };
    for (const auto& c : cases) {
        settings.sSet(QStringLiteral("DateStyle"), c.dateStyle);
        event = clsEvent();
        event.setDesc(QStringLiteral("Untouched"));
        event.setRecurring(true);
        const clsEvent before = event;
        open(true);
        c.enter();
        EXPECT_EQ(label("lblNextDates")->text(), QString::fromUtf8(c.shown));
        EXPECT_TRUE(event == before) << c.shown;
    }
}

// The save checks are the engine's; the editor shows their message, puts the
// focus on the box at fault and stores nothing, or stores and closes.
TEST_F(EventEditor, RefusedEntriesWarnAndTakeTheFocus) {
    const struct {
        const char* desc;
        const char* time; // "" = untimed
        const char* daysWarning;
        const char* message; // "" = saved
        const char* focus;
    } cases[] = {
        {" \n ", "9:30", "1", "Please enter a description of the event", "txtDesc"},
        {"Call", "24:00", "1", "Please specify a time in the range of 00:00 to 23:59", "txtTime"},
        {"Call", "", "a week", "An error occurred.  Please check the data fields.", ""},
        {"Call", "9:30", "1", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        dialogs.clear();
        event = clsEvent();
        frmEvent& w = open();
        w.show();
        describe(QString::fromLatin1(c.desc));
        if (*c.time != '\0') {
            check("chkTimed")->click();
            box("txtTime")->setText(QString::fromLatin1(c.time));
        }
        box("txtDaysWarning")->setText(QString::fromLatin1(c.daysWarning));
        check("chkDay2")->click();
        save();
        EXPECT_EQ(dialogs.lastText(), QString::fromLatin1(c.message));
        EXPECT_EQ(w.Saved(), *c.message == '\0');
        EXPECT_EQ(w.isVisible(), *c.message != '\0');
        if (*c.focus != '\0') {
            EXPECT_EQ(w.focusWidget()->objectName(), QString::fromLatin1(c.focus));
            EXPECT_EQ(event.WeekDays(), 0) << "nothing is stored";
        }
    }
    EXPECT_EQ(box("txtTime")->text(), QStringLiteral("09:30")) << "shown back as HH:MM";
    EXPECT_EQ(FormatHM(event.DueTime()), QStringLiteral("09:30"));
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
            EXPECT_EQ(label(name)->text(), QStringLiteral("01/04/2009")) << name;
            EXPECT_TRUE(window->isVisible() && !window->Saved()) << name;
        }
    }
    describe(QStringLiteral("Call"));
    tab(clsEvent::EveryXDays);
    box("txtDailyPeriod")->setText(QStringLiteral("10"));
    dialogs.answerCancel();
    QTest::mouseClick(label("lblDailyStartDate"), Qt::LeftButton);
    EXPECT_EQ(dialogs.shown().last().extra, QStringLiteral("2009-04-01")) << "starts as shown";
    EXPECT_EQ(label("lblDailyStartDate")->text(), QStringLiteral("01/04/2009"))
        << "cancel keeps it";
    save();
    ASSERT_TRUE(window->Saved());
    EXPECT_EQ(event.Period(), 10);
    EXPECT_DOUBLE_EQ(event.StartDate(), D("2009-04-01"));
}

TEST_F(EventEditor, AbortLeavesTheEventAsItWas) {
    event.setDesc(QStringLiteral("Keep me"));
    open(true);
    describe(QStringLiteral("Changed"));
    Control<QPushButton>(window.get(), "cmdAbort")->click();
    EXPECT_FALSE(window->Saved());
    EXPECT_EQ(event.Desc(), QStringLiteral("Keep me"));
}

// An event with every field set, for each recurrence type, shown and saved
// unchanged, comes back the same (StartDate is today for the types that do
// not pick one).
TEST_F(EventEditor, EditedEventRoundTripsEveryField) {
    settings.sSet(QStringLiteral("Networked"), true);
    const QString sharedFolder = home.file(QStringLiteral("shared"));
    ASSERT_TRUE(QDir().mkpath(sharedFolder));
    settings.sSet(QStringLiteral("SharedDatapath"), sharedFolder);
    ASSERT_TRUE(SharedDatabases::WriteUserList(
        sharedFolder + QStringLiteral("/TVOShared.ini"),
        {QStringLiteral("Bob"), QStringLiteral("Jim"), QStringLiteral("Ann")}));
    const QString wav = home.file(QStringLiteral("bell.wav"));
    ASSERT_TRUE(WriteFileBytes(wav, "RIFF"));

    for (int type = 0; type <= 5; ++type) {
        clsEvent original;
        original.IDCode = QStringLiteral("123456");
        original.setDesc(QStringLiteral("Line one\nLine two"));
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
        original.Filename = QStringLiteral("/data/notes.txt");
        original.Email = QStringLiteral("fred@home.test");
        original.SharedEvent = true;
        original.ShareWithSpecific = true;
        original.ShareNames = QStringLiteral("Bob\r\nAnn\r\n");
        original.setOwner(QStringLiteral("Fred"));
        original.setRecurrenceType(type);
        original.setWeekDays(type == 0 ? 2 + 8 + 64 : 0);
        original.setDayOfMonth(type == 1 ? 31 : 0);
        original.setMonthNumber(type == 1 ? 13 : type == 4 ? 11 : 0);
        original.setDaynumber(type == 4 ? 5 : 0);
        original.setDayOfWeek(type == 4 ? 3 : 0);
        original.setPeriod(type == 2 || type == 3 || type == 5 ? 6 : 0);
        original.setStartDate(type == 2 || type == 3 || type == 5 ? D("2008-11-30")
                                                                  : D("2009-03-05"));
        original.setDueDate(D("2009-05-31"));

        event = original;
        dialogs.clear();
        open(true);
        EXPECT_EQ(Control<QTabWidget>(window.get(), "TabStrip1")->currentIndex(), type);
        EXPECT_TRUE(window->findChild<QGroupBox*>(QStringLiteral("FrameShared"))
                        ->isVisibleTo(window.get()));
        save();
        ASSERT_TRUE(window->Saved()) << "type " << type << ": " << dialogs.lastText().toStdString();

        QByteArray saved;
        QByteArray expected;
        EventXmlCodec::AppendBlock(saved, event);
        EventXmlCodec::AppendBlock(expected, original);
        EXPECT_EQ(saved, expected) << type;
        EXPECT_DOUBLE_EQ(event.DueDate(), original.DueDate()) << "the caller computes the due date";
    }
}

TEST_F(EventEditor, DependentControlsFollowTheirBoxesAndPickersFillTheirLabels) {
    open();
    for (const bool ticked : {false, true}) {
        EXPECT_EQ(box("txtTime")->isEnabled(), ticked);
        EXPECT_EQ(box("txtMinutesWarning")->isEnabled(), ticked);
        EXPECT_EQ(Control<QPushButton>(window.get(), "cmdPickFile")->isEnabled(), ticked);
        check("chkTimed")->click();
        check("chkRunFile")->click();
    }
    check("chkTimed")->click();
    box("txtTime")->setText(QStringLiteral("23:00"));
    EXPECT_EQ(label("lblAlarmAdvice")->text(), QStringLiteral("(Alarm will sound at 10:30pm)"));
    box("txtMinutesWarning")->setText(QStringLiteral("5"));
    EXPECT_EQ(label("lblAlarmAdvice")->text(), QStringLiteral("(Alarm will sound at 10:55pm)"));

    dialogs.answerText(QStringLiteral("/sounds/gong.wav"));
    check("chkMakeNoise")->click(); // with no file yet it asks for one
    EXPECT_EQ(dialogs.shown().last().extra, QStringLiteral("WAV files (*.wav)|*.wav"));
    EXPECT_EQ(label("lblWavFile")->text(), QStringLiteral("/sounds/gong.wav"));
    check("chkRunFile")->click();
    dialogs.answerText(QStringLiteral("/data/plan.txt"));
    Control<QPushButton>(window.get(), "cmdPickFile")->click();
    Control<QPushButton>(window.get(), "cmdPickFile")->click(); // cancelled
    EXPECT_EQ(label("lblExecFile")->text(), QStringLiteral("/data/plan.txt"));
}

TEST_F(EventEditor, SharingFrameInNetworkedMode) {
    settings.sSet(QStringLiteral("Networked"), true);
    const QString folder = home.file(QStringLiteral("net"));
    ASSERT_TRUE(QDir().mkpath(folder));
    settings.sSet(QStringLiteral("SharedDatapath"), folder);
    ASSERT_TRUE(WriteFileBytes(folder + QStringLiteral("/TVOShared.ini"), "Bob\r\nJim\r\nAnn\r\n"));
    open();
    describe(QStringLiteral("Call"));
    check("chkDay1")->click();
    QListWidget* users = list("lstUsers");
    ASSERT_EQ(users->count(), 3);

    EXPECT_FALSE(check("chkSpecificShare")->isEnabled());
    check("chkShared")->click();
    EXPECT_TRUE(check("chkSpecificShare")->isEnabled());
    check("chkSpecificShare")->click();
    users->item(2)->setSelected(true);
    users->item(0)->setSelected(true);
    save();
    ASSERT_TRUE(window->Saved());
    EXPECT_EQ(event.ShareNames, QStringLiteral("Bob\r\nAnn\r\n")) << "in list order";

    // Through a calendar server: the users whose events are shown.
    settings.sSet(QStringLiteral("NetworkMode"), QStringLiteral("caldav"));
    settings.sSet(QStringLiteral("CalDAVUsers"), QStringLiteral("Carol, Dave"));
    open();
    ASSERT_EQ(list("lstUsers")->count(), 2);
    EXPECT_EQ(list("lstUsers")->item(1)->text(), QStringLiteral("Dave"));
}

} // namespace
