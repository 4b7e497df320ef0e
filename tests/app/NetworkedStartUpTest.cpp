// Three users share one folder; each starts through the program's own
// start-up path. A user's own events load as they are (nothing filtered, no
// layer moved), what is published reaches exactly the people it is meant for,
// and the "Shared" category is the same layer 0 on every machine.
#include "app/AppContext.h"
#include "app/EventListModel.h"
#include "app/StartUp.h"
#include "app/dialogs/frmEvent.h"
#include "app/dialogs/frmMonthView.h"
#include "app/frmMain.h"
#include "shared/cSHAREDSettings.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "support/FakeReminderWindows.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QComboBox>
#include <QDir>

namespace {

// One user's process-wide objects, started the way Main starts them.
struct User {
    User(const QString& name, const QString& home, const QString& sharedFolder) {
        QDir().mkpath(home);
        const QString ini = QStringLiteral("OWNER,%1\r\nNETWORKED,-1 \r\nSHAREDDATAPATH,%2/\r\n"
                                           "DATAPATH,%3\r\nNOAUTOBACKUPS,-1 \r\nLAYER3,Work\r\n")
                                .arg(name, sharedFolder, home);
        WriteFileBytes(context.settingsFile = home + QStringLiteral("/Tvo.ini"), ini.toLatin1());
    }
    bool Start() {
        return StartUp(context, [](AppContext&) { return false; }).Run();
    }
    QStringList Descriptions(const clsDbXml& db) const {
        QStringList out;
        for (const EventPtr& e : db.Events()) {
            out << e->Desc() + QLatin1Char('@') + QString::number(e->Layer());
        }
        return out;
    }

    ScriptedDialogs dialogs;
    cSHAREDSettings settings{&dialogs};
    clsLayers layers{settings};
    clsDbXml events{settings, &layers};
    clsDbXml expired{settings, &layers};
    SharedDatabases shared{settings, layers};
    FakeFileOpener opener;
    FakeSoundPlayer player;
    AppContext context{settings, {}, layers, events, expired, shared, dialogs, opener, player};
};

// Ann's Events.xml as a publish leaves it: each event carries the name of its
// layer. "Renamed" was published before its category was renamed "Work".
QByteArray AnnsEvents() {
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
    return bytes;
}

// The "Layer" cell of the row with that description.
QString LayerShown(const EventListModel& model, const QString& desc) {
    for (int r = 0; r < model.rowCount(); ++r) {
        if (model.cellText(r, EventListModel::ColEvent) == desc) {
            return model.cellText(r, EventListModel::ColLayer);
        }
    }
    return QStringLiteral("(not listed)");
}

TEST(NetworkedStartUp, OwnEventsStayWhereTheyAreAndReachWhoTheyAreFor) {
    TempHome home;
    FixedClock clock(QStringLiteral("2009-03-05 10:00"));
    const QString folder = home.file(QStringLiteral("shared"));
    QDir().mkpath(folder);
    WriteFileBytes(folder + QStringLiteral("/TVOShared.ini"), "Ann\r\nBob\r\nCarl\r\n");
    User ann(QStringLiteral("Ann"), home.file(QStringLiteral("ann")), folder);
    WriteFileBytes(home.file(QStringLiteral("ann/Events.xml")), AnnsEvents());

    ASSERT_TRUE(ann.Start());
    const QStringList own = {QStringLiteral("Dinner@0"), QStringLiteral("For Carl@3"),
                             QStringLiteral("Renamed@3")};
    EXPECT_EQ(ann.Descriptions(ann.events), own);
    EXPECT_EQ(ann.layers.Layer(19), QStringLiteral("Layer 19")) << "no category was created";
    ann.events.SaveDB(); // the next save publishes what the others read below

    frmEvent editor(ann.context, *ann.events.Events().first(), true);
    EXPECT_EQ(editor.findChild<QComboBox*>(QStringLiteral("cmbLayers"))->currentText(),
              QStringLiteral("Shared"));

    User bob(QStringLiteral("Bob"), home.file(QStringLiteral("bob")), folder);
    User carl(QStringLiteral("Carl"), home.file(QStringLiteral("carl")), folder);
    ASSERT_TRUE(bob.Start());
    ASSERT_TRUE(carl.Start());
    EXPECT_EQ(bob.Descriptions(bob.shared.SharedSet()),
              (QStringList{QStringLiteral("Dinner@0"), QStringLiteral("Renamed@3")}));
    EXPECT_EQ(carl.Descriptions(carl.shared.SharedSet()), own);
    EXPECT_EQ(bob.layers.Layer(19), QStringLiteral("Layer 19")) << "\"Shared\" is layer 0";

    frmMain bobWindow(bob.context);
    bobWindow.model().FillEvents(0, false); // the "Shared" filter
    EXPECT_EQ(bobWindow.model().rowCount(), 2);
    EXPECT_EQ(LayerShown(bobWindow.model(), QStringLiteral("Dinner")), QStringLiteral("Shared"));
    EXPECT_EQ(bobWindow.model().cellText(0, EventListModel::ColOwner), QStringLiteral("Ann"));
    frmMonthView month(bob.context);
    month.Form_Load();
    month.LoadMonth(0);
    EXPECT_EQ(month.BoxText(month.Calendar().BoxOfDay(20)),
              QStringLiteral("20\nDinner [Ann]\nRenamed [Ann]\n"));
    bob.settings.sSet(QStringLiteral("Networked"), false); // leaving the network hides them
    bobWindow.model().FillEvents(0, false);
    EXPECT_EQ(bobWindow.model().rowCount(), 0);
}

} // namespace
