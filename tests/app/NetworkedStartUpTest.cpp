// Users sharing one folder, each started through the program's own start-up
// path: a user's own events load as they are (nothing filtered, no layer
// moved), and another's published events are listed under "Shared" while
// networked. (Saving, restarting and the editor's "Shared" are run by
// tests/e2e/networked_shared_category.sh; who may read what, by the shared
// folder's own tests.)
#include "app/EventListModel.h"
#include "app/StartUp.h"
#include "app/dialogs/DialogsFixture.h"
#include "app/frmMain.h"

#include <QDir>

namespace {

// One user's process-wide objects in a home of their own, started the way
// Main starts them.
struct User : DialogsFixture {
    User(const QString& name, const QString& sharedFolder) {
        const QString ini = QStringLiteral("OWNER,%1\r\nNETWORKED,-1 \r\nSHAREDDATAPATH,%2/\r\n"
                                           "DATAPATH,%3\r\nNOAUTOBACKUPS,-1 \r\nLAYER3,Work\r\n")
                                .arg(name, sharedFolder, home.path());
        WriteFileBytes(context.settingsFile, ini.toLatin1());
    }
    bool Start() {
        return StartUp(context, [](AppContext&) { return false; }).Run();
    }
};

TEST(NetworkedStartUp, OwnEventsStayWhereTheyAreAndOthersAreListedAsShared) {
    TempHome home;
    FixedClock clock("2009-03-05 10:00");
    const QString folder = home.file("shared");
    QDir().mkpath(folder);
    WriteFileBytes(folder + "/TVOShared.ini", "Ann\r\nBob\r\n");
    User ann("Ann", folder);
    // As a publish leaves them: "For Carl" is shared with Carl only, and
    // "Renamed" was published before its category was renamed "Work".
    QByteArray bytes;
    for (const char* fields :
         {"<Desc>Dinner</Desc><Layer>0</Layer><SharedLayerName>Shared</SharedLayerName>",
          "<Desc>For%20Carl</Desc><Layer>3</Layer><SharedLayerName>Work</SharedLayerName>"
          "<SharedEvent>-1</SharedEvent><ShareWithSpecific>-1</ShareWithSpecific>"
          "<ShareNames>Carl%0D%0A</ShareNames>",
          "<Desc>Renamed</Desc><Layer>3</Layer><SharedLayerName>Old name</SharedLayerName>"
          "<SharedEvent>-1</SharedEvent>"}) {
        bytes += QByteArray("<TVO2><EVENT><Owner>Ann</Owner><DueDate>2009-03-20</DueDate>") +
                 fields + "</EVENT></TVO2>\r\n";
    }
    WriteFileBytes(ann.home.file("Events.xml"), bytes);

    ASSERT_TRUE(ann.Start());
    QStringList own;
    for (const EventPtr& e : ann.events.Events()) {
        own << e->Desc() + QLatin1Char('@') + QString::number(e->Layer());
    }
    EXPECT_EQ(own, (QStringList{"Dinner@0", "For Carl@3", "Renamed@3"}));
    EXPECT_EQ(ann.layers.Layer(19), "Layer 19") << "no category was created";
    ann.events.SaveDB(); // publishes

    User bob("Bob", folder);
    ASSERT_TRUE(bob.Start());
    frmMain bobWindow(bob.context);
    EventListModel& list = bobWindow.model();
    list.FillEvents(0, false); // the "Shared" filter
    QStringList rows;
    for (int r = 0; r < list.rowCount(); ++r) {
        for (const int col :
             {EventListModel::ColEvent, EventListModel::ColLayer, EventListModel::ColOwner}) {
            rows << list.cellText(r, col);
        }
    }
    EXPECT_EQ(rows.join(QLatin1Char('|')), "Dinner|Shared|Ann|Renamed|Work|Ann");
    bob.settings.sSet("Networked", false); // leaving the network hides them
    list.FillEvents(0, false);
    EXPECT_EQ(list.rowCount(), 0);
}

} // namespace
