// The main window offscreen with a temporary home folder and scripted
// dialogs: the commands it offers, what they refuse, undo, search, the
// filter, the calendar files, closing, and the first start. Opening the other
// windows and help are driven through the real program by tests/e2e.
#include "app/frmMain.h"
#include "app/EventListModel.h"
#include "app/EventListView.h"
#include "app/StartUp.h"
#include "app/dialogs/DialogsFixture.h"
#include "app/dialogs/frmOptions.h"
#include "shared/AppPaths.h"
#include "shared/cSHAREDZipFiles.h"
#include "storage/BackupArchive.h"
#include "support/ModalHelper.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTcpServer>
#include <QTest>
#include <QUndoStack>

namespace {

class MainWindow : public ::testing::Test, protected DialogsFixture {
protected:
    MainWindow() {
        settings.sSet("Owner", QStringLiteral("Ann"));
        settings.sSet("DataPath", home.path());
        settings.sSet("SharedDatapath", home.path());
    }

    // Ann's event in category 3.
    EventPtr add(clsDbXml& db, const QString& desc, const QString& due,
                 const QString& owner = "Ann") {
        return DialogsFixture::add(db, desc, due, owner, 3);
    }
    // Bob publishes one event in the shared folder; the window sees it as "S".
    void addBobsSharedEvent() {
        settings.sSet("Networked", true);
        WriteFileBytes(home.file("TVOShared.ini"), "Ann\r\nBob\r\nCarol\r\n");
        cSHAREDSettings bobs;
        bobs.sSet("Owner", QStringLiteral("Bob"));
        clsDbXml bobFile(bobs);
        bobFile.SetDBFilename(home.file("Shared_Bob.xml"));
        add(bobFile, "Bob's party", "2009-03-20", "Bob")->SharedEvent = true;
        bobFile.SaveDB();
    }
    int rowOf(const QString& desc) {
        for (int r = 0; r < window->model().rowCount(); ++r) {
            if (window->model().cellText(r, EventListModel::ColEvent) == desc) {
                return r;
            }
        }
        return -1;
    }
    void select(std::initializer_list<QString> descs) {
        window->list().clearSelection();
        for (const QString& d : descs) {
            window->list().selectionModel()->select(window->model().index(rowOf(d), 0),
                                                    QItemSelectionModel::Select |
                                                        QItemSelectionModel::Rows);
        }
    }
    void open() {
        window = std::make_unique<frmMain>(context);
        window->FillEvents();
    }

    FixedClock clock{"2009-03-05 10:00"};
    std::unique_ptr<frmMain> window;
};

TEST_F(MainWindow, EveryShortcutBelongsToOneActionOnly) {
    open();
    QHash<QKeySequence, QString> owner;
    for (const QAction* a : window->findChildren<QAction*>()) {
        for (const QKeySequence& key : a->shortcuts()) {
            EXPECT_FALSE(owner.contains(key)) << key.toString().toStdString();
            owner.insert(key, a->objectName());
        }
    }
}

TEST_F(MainWindow, BackupsAreZippedAndTheirFolderShown) {
    add(events, "Keep safe", "2009-03-10");
    events.SaveDB();
    open();
    window->ManualBackup();
    const QString archive = BackupArchivePath(QString::fromLatin1(kManualBackupKind), TodayDate());
    EXPECT_TRUE(cSHAREDZipFiles::ListEntries(archive).contains("Events.xml"));
    EXPECT_EQ(dialogs.lastText(),
              "Backup complete. Your files were zipped to the AutoBackups folder in " +
                  AppPaths::HomeFolder());

    const QString folder = home.file("Autobackups");
    window->ViewBackups();
    EXPECT_EQ(opener.opened, QStringList{folder});
    opener.accepts = false; // no file manager: the folder is named instead
    window->ViewBackups();
    EXPECT_TRUE(dialogs.lastText().endsWith(QDir::toNativeSeparators(folder)));

    QDir(folder).removeRecursively(); // a file in the folder's place
    WriteFileBytes(folder, "in the way");
    window->ManualBackup();
    EXPECT_TRUE(
        dialogs.lastText().startsWith("Backup failed: Unable to create the folder " + folder));
}

// Other users' rows in a mixed selection are refused before any question,
// which is then asked for the user's own rows.
TEST_F(MainWindow, OtherUsersRowsAreGuarded) {
    addBobsSharedEvent();
    add(events, "Mine", "2009-03-10");
    open();
    const QString question = "Are you sure you want to delete the selected event(s)?";
    const QString others = "You can't delete events belonging to another user";
    for (const bool yes : {false, true}) { // No keeps everything
        dialogs.clear();
        select({"Bob's party", "Mine"});
        yes ? dialogs.answerYes() : dialogs.answerNo();
        window->Toolbar1_ButtonClick("deleteevent");
        EXPECT_EQ(dialogs.texts(), (QStringList{others, question}));
        EXPECT_EQ(std::pair(rowOf("Mine") < 0, rowOf("Bob's party") >= 0), std::pair(yes, true));
    }
}

// Every kind of change made from the window is undone and redone through the
// Edit menu: undo gives the files back byte for byte, redo gives the bytes of
// the change itself, and undoing everything gives the files we started with.
TEST_F(MainWindow, UndoAndRedoEveryKindOfChange) {
    settings.sSet("DateStyle", 1);
    addBobsSharedEvent();
    EventPtr gym = add(events, "Gym", "2009-03-06");
    gym->setRecurring(true);
    gym->setRecurrenceType(clsEvent::Weekly);
    gym->setPeriod(1);
    gym->setStartDate(D("2009-03-06"));
    add(events, "Tax", "2009-04-30");
    add(expired, "Old", "2009-02-01")->setDaysLeft(-32);
    events.SaveDB();
    expired.SaveDB();
    settings.SaveSettings(context.settingsFile);
    open();
    window->findChild<QCheckBox*>("chkExpired")->setChecked(true);
    auto* undo = window->findChild<QAction*>("mnuUndo");
    auto* redo = window->findChild<QAction*>("mnuRedo");
    auto files = [&] {
        return QList<QByteArray>{ReadFileBytes(events.DBFilename()),
                                 ReadFileBytes(expired.DBFilename()),
                                 ReadFileBytes(context.settingsFile)};
    };
    auto editor = [](const char* desc) {
        return [desc](QWidget* modal) {
            modal->findChild<QPlainTextEdit*>("txtDesc")->setPlainText(QString::fromLatin1(desc));
            modal->findChild<QCheckBox*>("chkDay5")->setChecked(true);
            modal->findChild<QPushButton*>("cmdSave")->click();
        };
    };
    const QList<QPair<const char*, std::function<void()>>> kinds = {
        {"Undo Add 'Dentist'",
         [&] {
             WhenModalAppears(editor("Dentist"));
             window->AddEvent();
         }},
        {"Undo Edit 'Gym at 7'", // moves it to the end of the file; undo puts it back
         [&] {
             select({"Gym"});
             WhenModalAppears(editor("Gym at 7"));
             window->EditSelectedEvent();
         }},
        {"Undo Push 'Gym at 7'",
         [&] {
             select({"Gym at 7"});
             window->PushSelectedEvent();
             EXPECT_EQ(window->statusBar()->currentMessage(),
                       "Pushed 'Gym at 7' to Fri 13/03/2009 \u2014 Ctrl+Z to undo");
             EXPECT_EQ(window->SelectedRow(), rowOf("Gym at 7"));
         }},
        {"Undo Share 'Tax'",
         [&] {
             select({"Tax"});
             WhenModalAppears([](QWidget* modal) {
                 modal->findChild<QCheckBox*>("chkShared")->setChecked(true);
                 modal->findChild<QRadioButton*>("optSpecific")->setChecked(true);
                 auto* users = modal->findChild<QListWidget*>("lstShareUsers");
                 ASSERT_EQ(users->count(), 3);
                 users->item(2)->setCheckState(Qt::Checked);
                 static_cast<QDialog*>(modal)->accept();
             });
             window->ShareWith();
             EXPECT_EQ(window->model().cellText(rowOf("Tax"), EventListModel::ColSharedWith),
                       "Carol");
             EXPECT_TRUE(ReadFileBytes(events.DBFilename()).contains("Carol"));
         }},
        {"Undo Delete 3 events",
         [&] {
             select({"Gym at 7", "Old", "Tax"});
             dialogs.answerYes();
             window->Toolbar1_ButtonClick("deleteevent");
         }},
        {"Undo Rename category 'Layer 3' to 'Work'",
         [&] {
             WhenModalAppears([](QWidget* modal) {
                 modal->findChild<QLineEdit*>("txtDesc3")->setText("Work");
                 modal->findChild<QPushButton*>("cmdAccept")->click();
             });
             window->EditLayers();
         }},
    };
    const QList<QByteArray> initial = files();
    for (const auto& [undoText, change] : kinds) {
        const QList<QByteArray> before = files();
        change();
        const QList<QByteArray> after = files();
        ASSERT_NE(after, before) << undoText;
        EXPECT_EQ(undo->text().remove(QLatin1Char('&')), QString::fromLatin1(undoText));
        undo->trigger();
        EXPECT_EQ(files(), before) << undoText;
        redo->trigger();
        EXPECT_EQ(files(), after) << undoText;
    }
    EXPECT_EQ(rowOf("Old"), -1);
    EXPECT_TRUE(window->refreshTimer().isActive()) << "back on after the editor";
    while (window->history().canUndo()) {
        undo->trigger();
    }
    EXPECT_EQ(files(), initial);
    EXPECT_GE(rowOf("Old"), 0) << "the list is refilled";
}

TEST_F(MainWindow, FindAndFindNext) {
    for (const char* d : {"Dentist", "Pay rent", "Dentist again", "Rent party"}) {
        add(events, QString::fromLatin1(d), "2009-03-10");
    }
    open();
    dialogs.answerText("RENT");
    window->mnuFind_Click(1); // Find Next with no term yet asks for one
    EXPECT_EQ(dialogs.lastText(), "Enter search term");
    EXPECT_EQ(window->SelectedRow(), rowOf("Pay rent"));
    window->mnuFind_Click(1);
    EXPECT_EQ(window->SelectedRow(), rowOf("Rent party"));
    EXPECT_EQ(dialogs.count(), 1) << "Find Next reuses the kept term";
    window->mnuFind_Click(1);
    EXPECT_EQ(window->SelectedRow(), rowOf("Rent party"));
    EXPECT_EQ(window->statusBar()->currentMessage(), "No further event contains \"RENT\"");
    dialogs.answerText("zoo");
    window->mnuFind_Click(0);
    EXPECT_EQ(window->statusBar()->currentMessage(), "No event contains \"zoo\"");

    // Enter on a selected row opens it in the editor, as a double-click does.
    QString opened;
    WhenModalAppears([&opened](QWidget* modal) {
        opened = modal->objectName();
        modal->close();
    });
    QTest::keyClick(&window->list(), Qt::Key_Return);
    EXPECT_EQ(opened, "frmEvent");
}

// The chosen category filter, "Shared" even, survives new category names and
// saved options.
TEST_F(MainWindow, CategoryFilter) {
    add(events, "In three", "2009-03-10");
    add(events, "In five", "2009-03-10")->setLayer(5);
    open();
    auto* combo = window->findChild<QComboBox*>("cmbCategories");
    EXPECT_EQ(window->model().rowCount(), 2);
    combo->setCurrentIndex(5);
    emit combo->activated(5);
    ASSERT_EQ(window->model().rowCount(), 1);
    EXPECT_EQ(window->model().cellText(0, EventListModel::ColEvent), "In five");
    combo->setCurrentIndex(0);
    for (const bool options : {false, true}) {
        WhenModalAppears([options](QWidget* modal) {
            modal->findChild<QPushButton*>(options ? "cmdSave" : "cmdAccept")->click();
        });
        options ? window->EditOptions() : window->EditLayers();
        EXPECT_EQ(combo->currentIndex(), 0) << options;
    }
}

TEST_F(MainWindow, CloseHidesAndQuitKeepsTheNormalSizeAndTheMaximisedState) {
    open();
    window->show();
    window->close();
    EXPECT_FALSE(window->isVisible());
    window->Runner_ShowWindow();
    EXPECT_TRUE(window->isVisible());
    for (const bool maximised : {false, true}) {
        SCOPED_TRACE(maximised);
        open();
        window->show();
        window->resize(700, 450);
        if (maximised) {
            window->showMaximized();
        }
        window->Quit();
        cSHAREDSettings saved; // what the next start reads
        saved.LoadSettings(context.settingsFile);
        EXPECT_EQ(saved.sGet("MainWindowMaximised").toBool(), maximised);
        open();
        window->FormLoad(false);
        EXPECT_EQ(window->isMaximized(), maximised);
        EXPECT_EQ(window->normalGeometry().size(), QSize(700, 450));
        window->Quit();
    }
}

TEST_F(MainWindow, FileMenuExportsAndImportsTheList) {
    add(events, "Dentist", "2009-03-10");
    open();
    const QString file = home.file("mine.ics");
    dialogs.answerText(file).answerText(file);
    window->findChild<QAction*>("mnuExportCalendar")->trigger();
    EXPECT_EQ(dialogs.lastText(), "Exported 1 event to " + file + '.');
    window->findChild<QAction*>("mnuImportCalendar")->trigger();
    EXPECT_EQ(dialogs.lastText(), "Imported 1 event from " + file + '.');
    EXPECT_EQ(window->model().rowCount(), 2);
}

// A calendar server that takes the connection and never answers: the
// refresh timer keeps ticking while the sync waits, and the status bar says
// a sync is running.
TEST_F(MainWindow, AServerThatNeverAnswersDoesNotHoldTheWindow) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QSignalSpy held(&server, &QTcpServer::newConnection); // kept open as pending connections
    settings.sSet("Networked", true);
    settings.sSet("NetworkMode", QStringLiteral("caldav"));
    settings.sSet("CalDAVUrl", QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort()));
    settings.sSet("CalDAVUser", QStringLiteral("ann"));
    settings.sSet("CalDAVUsers", QStringLiteral("bob"));
    qputenv("TARVO_CALDAV_PASSWORD", "pw");
    qputenv("TARVO_REFRESH_MS", "100");
    open();
    window->StartCalDav();
    window->refreshTimer().start(100);
    QSignalSpy ticks(&window->refreshTimer(), &QTimer::timeout);
    const bool asked = QTest::qWaitFor([&] { return !held.isEmpty(); }, 5000);
    ticks.clear();
    QTest::qWait(1000);
    qunsetenv("TARVO_CALDAV_PASSWORD");
    qunsetenv("TARVO_REFRESH_MS");
    EXPECT_TRUE(asked) << "the sync sent no request to the server";
    EXPECT_GE(ticks.count(), 5);
    EXPECT_EQ(window->findChild<QLabel*>("lblCalDav")->text(),
              "Syncing with the CalDAV server\u2026");
}

// The first start says why the options come up, before any database is
// opened. (Cancel and save through the real program: tests/e2e/first_start.sh.)
TEST_F(MainWindow, FirstStartSaysWhyTheOptionsComeUp) {
    events.SetDBFilename(QString());
    WhenModalAppears(
        [](QWidget* options) { options->findChild<QPushButton*>("cmdAbort")->click(); });
    EXPECT_FALSE(
        StartUp(context, [](AppContext& c) { return frmOptions::RunFirstTimeSetup(c); }).Run());
    EXPECT_EQ(dialogs.texts(),
              QStringList{QStringLiteral(
                  "Reminder options not set. Please type in requested information.")});
    EXPECT_EQ(events.DBFilename(), QString());
}

} // namespace
