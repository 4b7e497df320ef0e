// The main window's File menu writes its events to an iCalendar file and
// reads such a file back into the list.
#include "app/EventListModel.h"
#include "app/dialogs/DialogsFixture.h"
#include "app/frmMain.h"

#include <QAction>

TEST(CalendarFileCommands, FileMenuExportsAndImportsTheList) {
    DialogsFixture f;
    FixedClock clock(QStringLiteral("2030-06-01 10:00"));
    f.settings.sSet(QStringLiteral("Owner"), QStringLiteral("Ann"));
    auto e = std::make_shared<clsEvent>();
    e->setDesc(QStringLiteral("Dentist"));
    e->setDueDate(D(QStringLiteral("2030-06-03")));
    e->setOwner(QStringLiteral("Ann"));
    f.events.StoreRecord(e);
    frmMain window(f.context);
    window.FillEvents();

    auto* exportAction = window.findChild<QAction*>(QStringLiteral("mnuExportCalendar"));
    auto* importAction = window.findChild<QAction*>(QStringLiteral("mnuImportCalendar"));
    ASSERT_TRUE(exportAction && importAction);

    const QString file = f.home.file(QStringLiteral("mine.ics"));
    f.dialogs.answerText(file);
    exportAction->trigger();
    EXPECT_EQ(f.dialogs.lastText(), QStringLiteral("Exported 1 event to ") + file + '.');

    f.dialogs.answerText(file);
    importAction->trigger();
    EXPECT_EQ(f.dialogs.lastText(), QStringLiteral("Imported 1 event from ") + file + '.');
    EXPECT_EQ(window.model().rowCount(), 2);
    EXPECT_TRUE(f.dialogs.allAnswersUsed());
}
