// The options window and clsOptions2 offscreen, on a throw-away home folder.
// Run through the real program instead: the first start with the defaults and
// Cancel there (tests/e2e/first_start.sh), IDs that clash with listed ones and
// taking one over (networked_family_ids.sh), leaving networked mode with its
// question (networked_family_events.sh).
#include "app/dialogs/frmOptions.h"
#include "app/dialogs/TextViewer.h"
#include "app/platform/Autostart.h"

#include "DialogsFixture.h"

#include <QCheckBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>

#include <memory>

namespace {

class OptionsWindow : public ::testing::Test, protected DialogsFixture {
protected:
    // The default sound file exists, so that saving gives no sound message.
    OptionsWindow() { EXPECT_TRUE(WriteFileBytes(home.file("alarm.wav"), "RIFF")); }

    frmOptions& open() {
        window = std::make_unique<frmOptions>(context);
        return *window;
    }
    // Networked use as owner of a shared folder holding that user list.
    QString networked(const QString& owner, const QByteArray& list) {
        const QString folder = home.file("net");
        EXPECT_TRUE(QDir().mkpath(folder));
        EXPECT_TRUE(WriteFileBytes(folder + "/TVOShared.ini", list));
        settings.sSet(QStringLiteral("SharedDataPath"), folder);
        settings.sSet(QStringLiteral("Owner"), owner);
        settings.sSet(QStringLiteral("Networked"), true);
        return folder;
    }

    QLineEdit* box(const char* name) const { return Control<QLineEdit>(window.get(), name); }
    QCheckBox* check(const char* name) const { return Control<QCheckBox>(window.get(), name); }
    QAbstractButton* button(const char* name) const {
        return Control<QAbstractButton>(window.get(), name);
    }
    QListWidget* users() const { return Control<QListWidget>(window.get(), "lstUsers"); }
    QStringList userNames() const {
        QStringList names;
        for (int i = 0; i < users()->count(); ++i) {
            names << users()->item(i)->text();
        }
        return names;
    }

    std::unique_ptr<frmOptions> window;
};

// An ID that cannot be used, networked use without a shared folder, or a
// server address, user name or password (the tests have no secret store)
// that cannot be used, is refused with a warning, the box to mend in focus,
// and nothing is stored.
TEST_F(OptionsWindow, RefusedSavesStoreNothing) {
    const struct {
        // focus: "" = not checked
        const char *way, *id, *folder, *url, *user, *password, *says, *focus;
    } cases[] = {
        {"optSingle", "  ", "net", "", "", "", "You must specify a user ID", ""},
        {"optNetworked", "..\\..\\Fred", "net", "", "", "", "shared folder", ""},
        {"optNetworked", "Fred", " ", "", "", "",
         "Networked use needs the path to the shared data folder.", ""},
        {"optCalDav", "Ann", "", "http://example.com", "ann", "",
         "Plain http:// would send the password readable", "txtCalDavUrl"},
        {"optCalDav", "Ann", "", "http:///tarvo", "ann", "",
         "The CalDAV server address is not a web address: http:///tarvo", "txtCalDavUrl"},
        {"optCalDav", "Ann", "", "ftp://cloud.test/", "ann", "", "must start with https://",
         "txtCalDavUrl"},
        {"optCalDav", "Ann", "", "http://127.0.0.1:5232", " ", "", "needs your user name there",
         "txtCalDavUser"},
        {"optCalDav", "Ann", "", "http://127.0.0.1:5232", "ann", "s3cret",
         "The password for ann at http://127.0.0.1:5232/ cannot be stored in the secret store: ",
         "txtCalDavPassword"},
    };
    QDir().mkpath(home.file("net"));
    for (const auto& c : cases) {
        dialogs.clear();
        open();
        if (c.way[3] == 'C') {
            button("optNetworked")->click();
        }
        button(c.way)->click();
        box("txtOwner")->setText(QString::fromLatin1(c.id));
        box("txtSharedDBPath")->setText(*c.folder == 'n' ? home.file("net") : " ");
        box("txtCalDavUrl")->setText(QString::fromLatin1(c.url));
        box("txtCalDavUser")->setText(QString::fromLatin1(c.user));
        QTest::keyClicks(box("txtCalDavPassword"), QString::fromLatin1(c.password));
        check("chkSilentStart")->click();
        button("cmdSave")->click();
        ASSERT_EQ(dialogs.count(), 1) << c.says;
        EXPECT_TRUE(dialogs.lastText().contains(c.says)) << dialogs.lastText().toStdString();
        EXPECT_EQ(dialogs.shown().last().icon, UserDialogs::Icon::Warning);
        if (*c.focus) {
            EXPECT_EQ(window->focusWidget(), box(c.focus));
        }
        EXPECT_TRUE(window->Cancelled());
        EXPECT_EQ(settings.SettingsCount(), 0);
        EXPECT_FALSE(QFileInfo::exists(context.settingsFile));
    }
}

// The stored values and the shared list are shown; adding the typed ID to
// the list tells its refusals and grows the list file, removing asks first.
TEST_F(OptionsWindow, SharedListShownAddedToAndRemovedFrom) {
    const QString folder = networked("Fred", "Fred\r\nBob\r\n");
    const QString list = folder + "/TVOShared.ini";
    settings.sSet(QStringLiteral("DateStyle"), 2);
    settings.sSet(QStringLiteral("NoSounds"), true);
    open();
    EXPECT_EQ(QStringList({box("txtSharedDBPath")->text(), box("txtOwner")->text()}) + userNames(),
              (QStringList{folder + QLatin1Char('/'), "Fred", "Fred", "Bob"}));
    EXPECT_TRUE(button("optUSDate")->isChecked() && check("chkNoSound")->isChecked());
    EXPECT_TRUE(Control<QGroupBox>(window.get(), "FrameNetwork")->isEnabled());

    const struct {
        const char* id;
        bool folder;      // false: the box emptied
        const char* says; // "" = added without a word
    } cases[] = {
        {" ", true, "You need to enter an ID before you can add it"},
        {"Carl", false, "You need to supply the shared data path before you can add users to it."},
        {"../Fred", true, "cannot be used"},
        {"Carl", true, ""},
    };
    for (const auto& c : cases) {
        dialogs.clear();
        box("txtOwner")->setText(QString::fromUtf8(c.id));
        box("txtSharedDBPath")->setText(c.folder ? folder : QString());
        button("cmdAddUser")->click();
        EXPECT_EQ(dialogs.count(), *c.says ? 1 : 0) << c.id;
        EXPECT_TRUE(dialogs.lastText().contains(c.says))
            << c.id << ": " << dialogs.lastText().toStdString();
    }
    EXPECT_EQ(ReadFileBytes(list), QByteArray("Fred\r\nBob\r\nCarl\r\n"));
    users()->item(0)->setSelected(true);
    users()->item(2)->setSelected(true);
    for (const bool yes : {false, true}) {
        yes ? dialogs.answerYes() : dialogs.answerNo();
        button("cmdDel")->click();
    }
    EXPECT_EQ(dialogs.lastText(), "Are you sure you want to remove these users?");
    EXPECT_EQ(userNames(), QStringList{"Bob"});
    EXPECT_EQ(ReadFileBytes(list), QByteArray("Bob\r\n"));

    box("txtSharedDBPath")->setText(home.path());
    button("cmdReload")->click();
    EXPECT_EQ(users()->count(), 0) << "no list file there: an empty list";
    button("optSingle")->click();
    EXPECT_FALSE(Control<QGroupBox>(window.get(), "FrameNetwork")->isEnabled());

    // A clash listed from before is told, but the user's own ID kept as it
    // was does not stop the other settings from being saved.
    WriteFileBytes(list, "Fred\r\nAlfred\r\n");
    settings.sSet(QStringLiteral("Owner"), QStringLiteral("Alfred"));
    open();
    dialogs.clear();
    button("cmdSave")->click();
    EXPECT_FALSE(window->Cancelled());
    EXPECT_TRUE(dialogs.lastText().contains("stays as it is")) << dialogs.lastText().toStdString();
}

TEST_F(OptionsWindow, SaveStoresEveryChoiceAndWritesTheFileAndMissesTheSoundFile) {
    frmOptions& w = open();
    QSignalSpy saved(&w, &frmOptions::Saved);
    box("txtDatapath")->setText(home.file("data/"));
    button("optUSDate")->click();
    const struct {
        const char *box, *key;
        bool stored; // after a click on the box as a first start shows it
    } checks[] = {{"chkSilentStart", "SilentStart", true},
                  {"chkNoAutoBackups", "NoAutoBackups", true},
                  {"chkDisableAutoUpdate", "DisableAutoUpdateCheck", false},
                  {"chkNotifications", "DesktopNotifications", false}};
    for (const auto& c : checks) {
        check(c.box)->click();
    }
    button("cmdSave")->click();
    EXPECT_EQ(dialogs.count(), 0);
    EXPECT_EQ(saved.count(), 1);
    cSHAREDSettings reread;
    reread.LoadSettings(context.settingsFile);
    for (const auto& c : checks) {
        EXPECT_EQ(reread.sGet(QString::fromLatin1(c.key)).toBool(), c.stored) << c.key;
    }
    EXPECT_EQ(reread.sGet("Datapath").toText(), "data")
        << "stored relative to the home folder, without the separator";
    EXPECT_EQ(reread.sGet("Owner").toText(), "Single");
    EXPECT_EQ(reread.sGet("DateStyle").toInt(), 2);
    EXPECT_EQ(reread.sGet("WavFile").toText(), home.file("alarm.wav"));
    EXPECT_TRUE(Autostart::IsEnabled()) << "a first start offers the login entry ticked";

    open(); // a backslash path loses only its last separator
    EXPECT_TRUE(check("chkAutostart")->isChecked());
    check("chkAutostart")->click();
    box("txtDatapath")->setText("C:\\Data\\");
    button("cmdSave")->click();
    EXPECT_FALSE(Autostart::IsEnabled());
    EXPECT_EQ(settings.sGet("DataPath").toText(), "C:\\Data");

    open(); // a missing sound file turns sounds off, unless they are off already
    box("txtAlarmWav")->setText(home.file("nothing.wav"));
    button("cmdSave")->click();
    EXPECT_EQ(dialogs.texts(), QStringList{"Cannot find specified WAV file. Sounds disabled."});
    EXPECT_TRUE(settings.sGet("NoSounds").toBool());
    dialogs.clear();
    open();
    EXPECT_TRUE(check("chkNoSound")->isChecked());
    button("cmdSave")->click();
    EXPECT_EQ(dialogs.count(), 0);
}

// Networked use through a CalDAV server: each way's fields are usable only
// in its mode; the choice is stored, the password never, and the shared
// folder is left as when leaving it.
TEST_F(OptionsWindow, CalDavServerChoiceIsStoredWithoutThePassword) {
    const QString folder = networked("Ann", "Bob\r\nAnn\r\n");
    open();
    for (const bool calDav : {true, false, true}) {
        button(calDav ? "optCalDav" : "optFolder")->click();
        EXPECT_EQ(box("txtSharedDBPath")->isEnabled(), !calDav);
        EXPECT_EQ(box("txtCalDavUrl")->isEnabled(), calDav);
    }
    box("txtCalDavUrl")->setText("http://example.com");
    button("cmdTestCalDav")->click();
    EXPECT_TRUE(Control<QLabel>(window.get(), "lblCalDavTest")->text().endsWith("for example.com"));

    dialogs.answerYes();
    QTest::keyClicks(box("txtCalDavPassword"), "s3cret");
    box("txtCalDavPassword")->clear(); // emptied: the stored one stays
    box("txtCalDavUrl")->setText("http://127.0.0.1:5232");
    box("txtCalDavUser")->setText("ann");
    box("txtCalDavUsers")->setText(" bob, carol ");
    button("cmdSave")->click();
    EXPECT_EQ(dialogs.texts(), QStringList{"Stop sharing your events with the other users?"});
    EXPECT_EQ(ReadFileBytes(folder + "/TVOShared.ini"), QByteArray("Bob\r\n"));
    const QByteArray ini = ReadFileBytes(context.settingsFile);
    for (const char* line : {"NETWORKMODE,caldav\r\n", "CALDAVURL,http://127.0.0.1:5232\r\n",
                             "CALDAVUSER,ann\r\n", "CALDAVUSERS,bob, carol\r\n", "OWNER,Ann\r\n"}) {
        EXPECT_TRUE(ini.contains(line)) << line << " in " << ini.toStdString();
    }
    EXPECT_FALSE(ini.contains("s3cret"));
}

// Leaving the calendar server asks the shared folder's question; only Yes
// has the window's owner take the events back (the server part is
// CalDavSyncTest's), No says they stay.
TEST_F(OptionsWindow, LeavingCalDavAsksWhetherToStopSharing) {
    for (const bool yes : {false, true}) {
        settings.sSet(QStringLiteral("Networked"), true);
        settings.sSet(QStringLiteral("NetworkMode"), QStringLiteral("caldav"));
        settings.sSet(QStringLiteral("Owner"), QStringLiteral("ann"));
        open();
        QSignalSpy stopped(window.get(), &frmOptions::calDavSharingStopped);
        button("optSingle")->click();
        dialogs.clear();
        yes ? dialogs.answerYes() : dialogs.answerNo();
        button("cmdSave")->click();
        EXPECT_EQ(dialogs.texts().value(0), "Stop sharing your events with the other users?");
        EXPECT_EQ(dialogs.texts().value(1).startsWith("Your shared events stay on the CalDAV"),
                  !yes);
        EXPECT_EQ(stopped.size(), yes ? 1 : 0);
    }
}

// Leaving networked use (its question and the emptied shared file are run by
// networked_family_events.sh) makes the owner "Single", events and all.
TEST_F(OptionsWindow, SwitchingToSingleUserStoresSingleAndTakesOverTheEvents) {
    const QString folder = networked("Fred", "Fred\r\n");
    auto team = TestEvent("Team", "2030-01-01", "Fred");
    team->SharedEvent = true;
    events.StoreRecord(team);
    open();
    button("optSingle")->click();
    dialogs.answerYes();
    button("cmdSave")->click();
    EXPECT_EQ(settings.sGet("Owner").toText(), "Single");
    EXPECT_TRUE(ReadFileBytes(home.file("Events.xml")).contains("<Owner>Single</Owner>"));
    EXPECT_FALSE(QFileInfo::exists(folder + "/Shared_Single.xml"));
}

TEST_F(OptionsWindow, BrowseButtonsAndHomePageAndClosingStoresNothing) {
    open();
    dialogs.answerText("/srv/tarvo");
    button("cmdDatapath")->click();
    EXPECT_EQ(box("txtDatapath")->text(), "/srv/tarvo");
    dialogs.answerText("/srv/bell.wav");
    button("cmdPickWav")->click();
    button("cmdPickWav")->click(); // cancelled
    EXPECT_EQ(dialogs.shown().last().extra, "WAV files (*.wav)|*.wav");
    EXPECT_EQ(box("txtAlarmWav")->text(), "/srv/bell.wav");

    button("cmdHomePage")->click();
    auto* page = window->findChild<TextViewer*>("frmHelp");
    ASSERT_NE(page, nullptr) << "the home page is the built-in help's About section";
    QCoreApplication::processEvents();
    EXPECT_GT(page->browser()->verticalScrollBar()->value(), 0) << "scrolled to the section";

    window->show();
    window->close();
    EXPECT_TRUE(window->Cancelled());
    EXPECT_EQ(settings.SettingsCount(), 0);
}

} // namespace
