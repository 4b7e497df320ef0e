// The add and edit commands around the editor: what reaches the files.
#include "app/dialogs/EventEditFlow.h"
#include "support/ModalHelper.h"

#include "DialogsFixture.h"

#include <QDir>
#include <QPlainTextEdit>

namespace {

class EditFlow : public ::testing::Test, protected DialogsFixture {
protected:
    EditFlow() { settings.sSet(QStringLiteral("Owner"), QStringLiteral("Fred")); }

    // Types the description and clicks the named buttons once the editor is up.
    static void whenEditorOpens(const char* desc, std::initializer_list<const char*> clicks,
                                const char* dailyPeriod = nullptr) {
        QList<QString> names;
        for (const char* c : clicks) {
            names << QString::fromLatin1(c);
        }
        WhenModalAppears([desc, names, dailyPeriod](QWidget* editor) {
            editor->findChild<QPlainTextEdit*>(QStringLiteral("txtDesc"))
                ->setPlainText(QString::fromLatin1(desc));
            if (dailyPeriod != nullptr) {
                editor->findChild<QLineEdit*>(QStringLiteral("txtDailyPeriod"))
                    ->setText(QString::fromLatin1(dailyPeriod));
            }
            for (const QString& name : names) {
                editor->findChild<QAbstractButton*>(name)->click();
            }
        });
    }
    QStringList onDisk(const QString& file) {
        clsDbXml reread(settings, &layers);
        reread.LoadDB(file);
        QStringList out;
        for (const EventPtr& e : reread.Events()) {
            out << e->IDCode + QLatin1Char(' ') + e->Desc();
        }
        return out;
    }

    FixedClock clock{QStringLiteral("2009-03-05 10:00")};
};

// A new event gets its due date and is written, and published when shared.
TEST_F(EditFlow, SavedNewEventIsWrittenAndPublished) {
    const QString folder = home.file(QStringLiteral("net"));
    ASSERT_TRUE(QDir().mkpath(folder));
    settings.sSet(QStringLiteral("Networked"), true);
    settings.sSet(QStringLiteral("SharedDatapath"), folder);
    whenEditorOpens("Bins out", {"chkDay4", "chkShared", "cmdSave"}); // today is a Thursday
    const EventPtr added = EventEditFlow::AddNewEvent(context);
    ASSERT_NE(added, nullptr);
    EXPECT_DOUBLE_EQ(added->DueDate(), D("2009-03-05"));
    const QStringList expected{added->IDCode + QStringLiteral(" Bins out")};
    EXPECT_EQ(onDisk(home.file(QStringLiteral("Events.xml"))), expected);
    EXPECT_EQ(onDisk(folder + QStringLiteral("/Shared_Fred.xml")), expected);

    whenEditorOpens("Never mind", {"cmdAbort"});
    EXPECT_EQ(EventEditFlow::AddNewEvent(context), nullptr);
    EXPECT_EQ(events.Events().size(), 1);
}

TEST_F(EditFlow, EditedEventIsStoredBackInPlaceAndAbortLeavesIt) {
    auto listed = std::make_shared<clsEvent>();
    listed->setDesc(QStringLiteral("Dentist"));
    listed->setRecurrenceType(clsEvent::EveryXDays);
    listed->setPeriod(7);
    listed->setStartDate(D("2009-03-01"));
    listed->setRecurring(true);
    listed->setDaysLeft(-5); // as an expired copy left it
    events.StoreRecord(listed);

    // A failed save writes the description into the editor's copy only.
    whenEditorOpens("half typed", {"cmdSave", "cmdAbort"}, "often");
    EXPECT_FALSE(EventEditFlow::EditEvent(context, events, listed));
    EXPECT_EQ(dialogs.texts(),
              QStringList{QStringLiteral("Please enter a number in the repeat box")});
    EXPECT_EQ(listed->Desc(), QStringLiteral("Dentist"));
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Events.xml"))));

    whenEditorOpens("Dentist, new time", {"cmdSave"});
    EXPECT_TRUE(EventEditFlow::EditEvent(context, events, listed));
    EXPECT_EQ(events.Events(), QList<EventPtr>{listed}) << "the listed object itself is updated";
    EXPECT_DOUBLE_EQ(listed->DueDate(), D("2009-03-08"));
    EXPECT_EQ(listed->DaysLeft(), 3) << "the list shows the new days left, not the old ones";
    EXPECT_EQ(onDisk(home.file(QStringLiteral("Events.xml"))),
              QStringList{listed->IDCode + QStringLiteral(" Dentist, new time")});
}

} // namespace
