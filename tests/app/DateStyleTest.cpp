// Every date the program shows follows the user's "DateStyle": the event
// list, printouts (the numbered task list) and the reminder windows' titles (the editor's start
// dates are the engine's and tested there).
#include "app/EventListModel.h"
#include "app/dialogs/DialogsFixture.h"
#include "app/dialogs/PrintSetup.h"
#include "app/dialogs/frmTasks.h"
#include "engine/ReminderServices.h"
#include "engine/clsReminder.h"
#include "storage/TaskListFile.h"

#include <QPushButton>

namespace {

class DateStyle : public ::testing::Test, protected DialogsFixture {
protected:
    DateStyle() { settings.sSet("Owner", QStringLiteral("Ann")); }

    QString listedDate() {
        EventListModel model(context);
        model.FillFromLists({TestEvent("Listed", "2009-03-17")}, nullptr, nullptr,
                            EventListModel::kAllLayers);
        return model.cellText(0, EventListModel::ColDate);
    }
    QString printedTaskList() {
        TaskListFile(home.path()).Save({"Buy milk", "Fix bike"});
        frmTasks tasks(settings, dialogs);
        const QString pdf = home.file("tasks.pdf");
        PdfPrintSetup setup(pdf);
        tasks.setPrintSetup(&setup);
        Control<QPushButton>(&tasks, "cmd_print")->click();
        return PdfText(pdf);
    }
    // The captions of the reminder and alarm windows shown.
    QStringList captions() {
        EventPtr call = add(events, "Call", "2009-03-17");
        call->setAlarmSet(true);
        call->setAlarmTime(TimeSerial(8, 0));
        FakeReminderWindowFactory windows;
        ReminderServices services{settings, events, expired, nullptr, windows, opener, dialogs};
        ShowReminders(services);
        CheckAlarms(services);
        QStringList texts;
        for (const FakeReminderWindow* w : windows.shown()) {
            texts << w->caption;
        }
        return texts;
    }

    FixedClock clock{"2009-03-17 08:00"};
};

TEST_F(DateStyle, EveryShownDateFollowsTheSetting) {
    // Without the setting, day first: the event list, month view and e2e tests
    // show that.
    const struct {
        int style;
        const char* today;
        const char* dayMonth;
    } cases[] = {{1, "17/03/2009", "17/03"}, {2, "03/17/2009", "03/17"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.style);
        settings.sSet("DateStyle", c.style);
        const QString today = QString::fromLatin1(c.today);
        EXPECT_EQ(listedDate(), c.dayMonth);
        const QString printed = printedTaskList();
        for (const QString& line :
             QStringList{"Tarvo task list", "Printed " + today, "1) Buy milk", "2) Fix bike"}) {
            EXPECT_TRUE(printed.contains(line)) << printed.toStdString();
        }
        EXPECT_EQ(captions(), (QStringList{"TODAY! - " + today, "ALARM! - " + today + " 08:00"}));
    }
}

} // namespace
