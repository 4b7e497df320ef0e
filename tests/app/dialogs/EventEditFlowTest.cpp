// The add and edit commands around the editor: what reaches the database.
#include "app/dialogs/EventEditFlow.h"
#include "support/ModalHelper.h"

#include "DialogsFixture.h"

#include <QDir>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

class EditFlow : public ::testing::Test, protected DialogsFixture {
protected:
    EditFlow() { settings.sSet(QStringLiteral("Owner"), QStringLiteral("Fred")); }

    // Runs action on the editor once it is up.
    static void whenEditorOpens(std::function<void(QWidget*)> action) {
        WhenModalAppears(std::move(action));
    }
    static void describe(QWidget* editor, const QString& text) {
        editor->findChild<QPlainTextEdit*>(QStringLiteral("txtDesc"))->setPlainText(text);
    }
    static void click(QWidget* editor, const char* name) {
        editor->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }

    FixedClock clock{QStringLiteral("2009-03-05 10:00")};
};

TEST_F(EditFlow, SavedNewEventGetsItsDueDateAndIsWrittenToTheFile) {
    whenEditorOpens([](QWidget* editor) {
        describe(editor, QStringLiteral("Bins out"));
        click(editor, "chkDay4"); // Thursday
        click(editor, "cmdSave");
    });
    const EventPtr added = EventEditFlow::AddNewEvent(context);
    ASSERT_NE(added, nullptr);
    EXPECT_EQ(added->IDCode.size(), 6);
    EXPECT_DOUBLE_EQ(added->DueDate(), D("2009-03-05")) << "today is a Thursday";
    ASSERT_EQ(events.Events().size(), 1);
    EXPECT_EQ(events.Events().first(), added);

    clsDbXml reread(settings, &layers);
    reread.LoadDB(home.file(QStringLiteral("Events.xml")));
    ASSERT_EQ(reread.Events().size(), 1);
    EXPECT_EQ(reread.Events().first()->Desc(), QStringLiteral("Bins out"));
    EXPECT_EQ(reread.Events().first()->IDCode, added->IDCode);
}

TEST_F(EditFlow, AbortedNewEventStoresNothing) {
    whenEditorOpens([](QWidget* editor) {
        describe(editor, QStringLiteral("Never mind"));
        click(editor, "cmdAbort");
    });
    EXPECT_EQ(EventEditFlow::AddNewEvent(context), nullptr);
    EXPECT_TRUE(events.Events().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Events.xml"))));
}

TEST_F(EditFlow, EditedEventIsStoredBackInPlace) {
    auto listed = std::make_shared<clsEvent>();
    listed->setDesc(QStringLiteral("Dentist"));
    listed->setRecurrenceType(clsEvent::EveryXDays);
    listed->setPeriod(7);
    listed->setStartDate(D("2009-03-01"));
    listed->setRecurring(true);
    listed->setDaysLeft(-5); // as an expired copy left it
    events.StoreRecord(listed);
    const QString id = listed->IDCode;

    whenEditorOpens([](QWidget* editor) {
        describe(editor, QStringLiteral("Dentist, new time"));
        click(editor, "cmdSave");
    });
    EXPECT_TRUE(EventEditFlow::EditEvent(context, events, listed));
    ASSERT_EQ(events.Events().size(), 1);
    EXPECT_EQ(events.Events().first(), listed) << "the listed object itself is updated";
    EXPECT_EQ(listed->IDCode, id);
    EXPECT_EQ(listed->Desc(), QStringLiteral("Dentist, new time"));
    EXPECT_DOUBLE_EQ(listed->DueDate(), D("2009-03-08"));
    EXPECT_EQ(listed->DaysLeft(), 3) << "the list shows the new days left, not the old ones";

    clsDbXml reread(settings, &layers);
    reread.LoadDB(home.file(QStringLiteral("Events.xml")));
    ASSERT_EQ(reread.Events().size(), 1);
    EXPECT_EQ(reread.Events().first()->Desc(), QStringLiteral("Dentist, new time"));
}

TEST_F(EditFlow, AbortAfterAFailedSaveLeavesTheListedEventUntouched) {
    auto listed = std::make_shared<clsEvent>();
    listed->setDesc(QStringLiteral("Dentist"));
    listed->setRecurrenceType(clsEvent::EveryXDays);
    listed->setPeriod(7);
    listed->setStartDate(D("2009-03-01"));
    events.StoreRecord(listed);

    whenEditorOpens([](QWidget* editor) {
        describe(editor, QStringLiteral("half typed"));
        editor->findChild<QLineEdit*>(QStringLiteral("txtDailyPeriod"))
            ->setText(QStringLiteral("often"));
        click(editor, "cmdSave"); // fails after the description was written
        click(editor, "cmdAbort");
    });
    EXPECT_FALSE(EventEditFlow::EditEvent(context, events, listed));
    EXPECT_EQ(dialogs.texts(),
              QStringList{QStringLiteral("Please enter a number in the repeat box")});
    EXPECT_EQ(listed->Desc(), QStringLiteral("Dentist"));
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Events.xml"))));
}

TEST_F(EditFlow, NetworkedSavePublishesTheUsersSharedEvents) {
    const QString folder = home.file(QStringLiteral("net"));
    ASSERT_TRUE(QDir().mkpath(folder));
    settings.sSet(QStringLiteral("Networked"), true);
    settings.sSet(QStringLiteral("SharedDatapath"), folder);
    whenEditorOpens([](QWidget* editor) {
        describe(editor, QStringLiteral("Team lunch"));
        click(editor, "chkDay5");
        click(editor, "chkShared");
        click(editor, "cmdSave");
    });
    ASSERT_NE(EventEditFlow::AddNewEvent(context), nullptr);

    clsDbXml published(settings, &layers);
    published.LoadDB(folder + QStringLiteral("/Shared_Fred.xml"));
    ASSERT_EQ(published.Events().size(), 1);
    EXPECT_EQ(published.Events().first()->Desc(), QStringLiteral("Team lunch"));
}

} // namespace
