// Every date the program shows follows the user's "DateStyle": the event
// list, the editor's start dates, printouts, log lines and the reminder
// windows' titles.
#include "app/EventListModel.h"
#include "app/dialogs/DialogsFixture.h"
#include "app/dialogs/PrintSetup.h"
#include "app/dialogs/frmEvent.h"
#include "app/dialogs/frmTasks.h"
#include "engine/ReminderServices.h"
#include "engine/clsReminder.h"
#include "storage/TaskListFile.h"
#include "support/LogLines.h"

#include <QLabel>
#include <QPushButton>

namespace {

class DateStyle : public ::testing::Test, protected DialogsFixture {
protected:
    DateStyle() { settings.sSet(QStringLiteral("Owner"), QStringLiteral("Ann")); }

    QString listedDate() {
        auto e = std::make_shared<clsEvent>();
        e->setDueDate(D(QStringLiteral("2009-03-17")));
        EventListModel model(context);
        model.FillFromLists({e}, nullptr, nullptr, EventListModel::kAllLayers);
        return model.cellText(0, EventListModel::ColDate);
    }
    QString editorStartDate() {
        clsEvent e;
        e.setRecurrenceType(clsEvent::EveryXDays);
        e.setPeriod(2);
        e.setStartDate(D(QStringLiteral("2009-03-17")));
        frmEvent editor(context, e, true);
        return Control<QLabel>(&editor, "lblDailyStartDate")->text();
    }
    QString printedTaskList() {
        TaskListFile(home.path()).Save({QStringLiteral("Buy milk")});
        frmTasks tasks(settings, dialogs);
        const QString pdf = home.file(QStringLiteral("tasks.pdf"));
        PdfPrintSetup setup(pdf);
        tasks.setPrintSetup(&setup);
        Control<QPushButton>(&tasks, "cmd_print")->click();
        return PdfText(pdf);
    }
    // The expired-event log lines and the captions of the windows shown.
    QStringList engineTexts() {
        auto gym = std::make_shared<clsEvent>();
        gym->setDesc(QStringLiteral("Gym"));
        gym->setRecurring(true);
        gym->setRecurrenceType(clsEvent::EveryXDays);
        gym->setPeriod(7);
        gym->setStartDate(D(QStringLiteral("2009-03-16")));
        gym->setDueDate(D(QStringLiteral("2009-03-16")));
        events.StoreRecord(gym);
        auto call = std::make_shared<clsEvent>();
        call->setDesc(QStringLiteral("Call"));
        call->setDueDate(D(QStringLiteral("2009-03-17")));
        call->setAlarmSet(true);
        call->setAlarmTime(TimeSerial(8, 0));
        events.StoreRecord(call);
        FakeReminderWindowFactory windows;
        ReminderServices services{settings, events, expired, nullptr, windows, opener, dialogs};
        ShowReminders(services);
        CheckAlarms(services);
        QStringList texts = LoggedTexts().filter(QStringLiteral("Event expired"));
        for (const FakeReminderWindow* w : windows.shown()) {
            texts << w->caption;
        }
        return texts;
    }

    FixedClock clock{QStringLiteral("2009-03-17 08:00")};
};

TEST_F(DateStyle, EveryShownDateFollowsTheSetting) {
    const struct {
        int style; // 0: not set
        const char* today;
        const char* dayMonth;
        const char* yesterday;
    } cases[] = {{0, "17/03/2009", "17/03", "16/03/2009"},
                 {1, "17/03/2009", "17/03", "16/03/2009"},
                 {2, "03/17/2009", "03/17", "03/16/2009"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.style);
        if (c.style == 0) {
            settings.DeleteSettingByName(QStringLiteral("DateStyle"));
        } else {
            settings.sSet(QStringLiteral("DateStyle"), c.style);
        }
        const QString today = QString::fromLatin1(c.today);
        EXPECT_EQ(listedDate(), QString::fromLatin1(c.dayMonth));
        EXPECT_EQ(editorStartDate(), today);
        EXPECT_TRUE(printedTaskList().contains(QStringLiteral("Printed ") + today));
        const QStringList engine = engineTexts();
        EXPECT_TRUE(engine.contains(QStringLiteral("Event expired and updated: ") +
                                    QString::fromLatin1(c.yesterday) + QStringLiteral(" Gym")));
        EXPECT_TRUE(engine.contains(QStringLiteral("TODAY! - ") + today));
        EXPECT_TRUE(
            engine.contains(QStringLiteral("ALARM! - ") + today + QStringLiteral(" 08:00")));
    }
}

} // namespace
