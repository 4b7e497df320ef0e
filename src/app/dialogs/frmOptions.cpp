#include "app/dialogs/frmOptions.h"
#include "app/WindowFit.h"

#include "app/AppContext.h"
#include "app/dialogs/TextViewer.h"
#include "app/dialogs/clsOptions2.h"
#include "app/platform/Autostart.h"
#include "engine/CalDavAccount.h"
#include "shared/AppPaths.h"
#include "shared/OwnerId.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/StorableText.h"
#include "storage/clsDbXml.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

const QString kNotSet = QStringLiteral("Not Set");

QString S(const char* text) {
    return QString::fromUtf8(text);
}

bool endsWithSeparator(const QString& path) {
    return path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1Char('\\'));
}

} // namespace

frmOptions::frmOptions(AppContext& context, QWidget* parent) : QDialog(parent), m_context(context) {
    setObjectName(QStringLiteral("frmOptions"));
    setWindowTitle(S("Reminder Options"));
    setModal(true);
    buildControls();
    Form_Load();
}

frmOptions::~frmOptions() = default;

void frmOptions::buildControls() {
    // Data folder.
    txtDatapath = new QLineEdit(this);
    txtDatapath->setObjectName(QStringLiteral("txtDatapath"));
    txtDatapath->setToolTip(S("This is the folder where the program will store your data."));
    cmdDatapath = new QPushButton(S(". . ."), this);
    cmdDatapath->setObjectName(QStringLiteral("cmdDatapath"));
    cmdDatapath->setToolTip(S("Select the storage path for your data files"));
    auto* lblDatapath = new QLabel(S("Data path:"), this);
    lblDatapath->setBuddy(txtDatapath);

    // Alarm sound.
    auto* wavBox = new QGroupBox(S("WAV file for alarms"), this);
    txtAlarmWav = new QLineEdit(wavBox);
    txtAlarmWav->setObjectName(QStringLiteral("txtAlarmWav"));
    cmdPickWav = new QPushButton(S(". . ."), wavBox);
    cmdPickWav->setObjectName(QStringLiteral("cmdPickWav"));
    cmdPickWav->setToolTip(S("Choose the sound played for alarms"));
    chkNoSound = new QCheckBox(S("No Sounds"), wavBox);
    chkNoSound->setObjectName(QStringLiteral("chkNoSound"));
    auto* wav = new QHBoxLayout(wavBox);
    wav->addWidget(txtAlarmWav, 1);
    wav->addWidget(cmdPickWav);
    wav->addSpacing(12);
    wav->addWidget(chkNoSound);

    const int browseWidth = cmdDatapath->fontMetrics().horizontalAdvance(S(". . .")) + 24;
    cmdDatapath->setFixedWidth(browseWidth);
    cmdPickWav->setFixedWidth(browseWidth);

    // Mode.
    optSingle = new QRadioButton(S("Single &User"), this);
    optSingle->setObjectName(QStringLiteral("optSingle"));
    optNetworked = new QRadioButton(S("&Networked"), this);
    optNetworked->setObjectName(QStringLiteral("optNetworked"));
    optNetworked->setToolTip(S("You can share events on a LAN"));
    auto* modeGroup = new QButtonGroup(this);
    modeGroup->addButton(optSingle);
    modeGroup->addButton(optNetworked);

    // Network settings: the ID and the way events are shared, then the
    // shared folder's fields and the calendar server's.
    FrameNetwork = new QGroupBox(
        S("Network Settings (Specify path first, click Reload, then add your ID)"), this);
    FrameNetwork->setObjectName(QStringLiteral("FrameNetwork"));
    txtOwner = new QLineEdit(FrameNetwork);
    txtOwner->setObjectName(QStringLiteral("txtOwner"));
    txtOwner->setToolTip(
        S("A short name to identify the user on the network (e.g. Dad, Fred, etc)"));
    auto* lblOwner = new QLabel(S("&ID:"), FrameNetwork);
    lblOwner->setBuddy(txtOwner);
    optFolder = new QRadioButton(S("Shared &folder"), FrameNetwork);
    optFolder->setObjectName(QStringLiteral("optFolder"));
    optCalDav = new QRadioButton(S("Cal&DAV server"), FrameNetwork);
    optCalDav->setObjectName(QStringLiteral("optCalDav"));
    auto* wayGroup = new QButtonGroup(this);
    wayGroup->addButton(optFolder);
    wayGroup->addButton(optCalDav);
    auto* idRow = new QHBoxLayout;
    idRow->addWidget(lblOwner);
    idRow->addWidget(txtOwner, 1);
    idRow->addSpacing(16);
    idRow->addWidget(new QLabel(S("Share through:"), FrameNetwork));
    idRow->addWidget(optFolder);
    idRow->addWidget(optCalDav);

    FrameFolder = new QWidget(FrameNetwork);
    FrameFolder->setObjectName(QStringLiteral("FrameFolder"));
    auto* lblShared =
        new QLabel(S("Path to shared data folder (all users must have write access)"), FrameFolder);
    txtSharedDBPath = new QLineEdit(FrameFolder);
    txtSharedDBPath->setObjectName(QStringLiteral("txtSharedDBPath"));
    txtSharedDBPath->setToolTip(
        S("If you are running a networked version, you must specify the shared data path."));
    lblShared->setBuddy(txtSharedDBPath);
    cmdAddUser = new QPushButton(S("&Add"), FrameFolder);
    cmdAddUser->setObjectName(QStringLiteral("cmdAddUser"));
    lstUsers = new QListWidget(FrameFolder);
    lstUsers->setObjectName(QStringLiteral("lstUsers"));
    lstUsers->setSelectionMode(QAbstractItemView::MultiSelection);
    lstUsers->setFixedHeight(lstUsers->fontMetrics().lineSpacing() * 5 + 8);
    cmdDel = new QPushButton(S("Delete"), FrameFolder);
    cmdDel->setObjectName(QStringLiteral("cmdDel"));
    cmdReload = new QPushButton(S("Reload"), FrameFolder);
    cmdReload->setObjectName(QStringLiteral("cmdReload"));
    cmdReload->setToolTip(
        S("If you change the shared folder, you'll need to reload the user list."));
    auto* lblAddHint = new QLabel(S("Click ADD once your ID is set."), FrameFolder);
    auto* lblUnique =
        new QLabel(S("The ID MUST be unique to each copy of TVO using the shared folder (above)"),
                   FrameFolder);
    lblUnique->setWordWrap(true);

    auto* folder = new QGridLayout(FrameFolder);
    folder->setContentsMargins(0, 0, 0, 0);
    folder->addWidget(lblShared, 0, 0, 1, 3);
    folder->addWidget(txtSharedDBPath, 1, 0, 1, 3);
    folder->addWidget(cmdAddUser, 2, 1);
    folder->addWidget(lblAddHint, 2, 2);
    auto* userButtons = new QVBoxLayout;
    userButtons->addWidget(cmdDel);
    userButtons->addWidget(cmdReload);
    userButtons->addStretch(1);
    folder->addWidget(lstUsers, 3, 0);
    folder->addLayout(userButtons, 3, 1);
    folder->addWidget(lblUnique, 4, 0, 1, 3);
    folder->setColumnStretch(0, 1);
    folder->setColumnStretch(2, 1);

    auto* net = new QVBoxLayout(FrameNetwork);
    net->addLayout(idRow);
    net->addWidget(FrameFolder);
    net->addWidget(buildCalDavControls(FrameNetwork));

    // Date order.
    auto* dateBox = new QGroupBox(S("Date Format"), this);
    optEuroDate = new QRadioButton(S("DD/MM/YYYY"), dateBox);
    optEuroDate->setObjectName(QStringLiteral("optEuroDate"));
    optUSDate = new QRadioButton(S("MM/DD/YYYY"), dateBox);
    optUSDate->setObjectName(QStringLiteral("optUSDate"));
    auto* date = new QVBoxLayout(dateBox);
    date->addWidget(optEuroDate);
    date->addWidget(optUSDate);
    date->addStretch(1);

    // Start-up and backups.
    chkSilentStart = new QCheckBox(S("Silent startup (Show reminders, but not event list)"), this);
    chkSilentStart->setObjectName(QStringLiteral("chkSilentStart"));
    chkSilentStart->setToolTip(
        S("If you set this option you have to right-click the TVO icon in the system "
          "tray to bring up the main screen."));
    chkNoAutoBackups = new QCheckBox(S("No Autobackups"), this);
    chkNoAutoBackups->setObjectName(QStringLiteral("chkNoAutoBackups"));
    chkDisableAutoUpdate =
        new QCheckBox(S("Disable automatic check for new versions of TVO"), this);
    chkDisableAutoUpdate->setObjectName(QStringLiteral("chkDisableAutoUpdate"));
    chkPruneOld = new QCheckBox(S("Prune old backups"), this);
    chkPruneOld->setObjectName(QStringLiteral("chkPruneOld"));
    chkPruneOld->setToolTip(
        S("Normally, autobackups are kept forever. If ticked, TVO will delete backups over "
          "two weeks old"));
    // The desktop: a login entry (its presence is the setting) and
    // notifications beside the reminder windows.
    chkAutostart = new QCheckBox(S("Start Tarvo when I log in"), this);
    chkAutostart->setObjectName(QStringLiteral("chkAutostart"));
    chkNotifications = new QCheckBox(S("Show reminders and alarms as desktop notifications"), this);
    chkNotifications->setObjectName(QStringLiteral("chkNotifications"));
    auto* switches = new QVBoxLayout;
    switches->addWidget(chkAutostart);
    switches->addWidget(chkNotifications);
    switches->addWidget(chkSilentStart);
    switches->addWidget(chkNoAutoBackups);
    switches->addWidget(chkPruneOld);
    switches->addWidget(chkDisableAutoUpdate);
    switches->addStretch(1);

    cmdHomePage = new QPushButton(S("TVO Home Page"), this);
    cmdHomePage->setObjectName(QStringLiteral("cmdHomePage"));
    cmdHomePage->setAutoDefault(false);
    cmdSave = new QPushButton(S("&Save"), this);
    cmdSave->setObjectName(QStringLiteral("cmdSave"));
    cmdSave->setDefault(true);
    cmdAbort = new QPushButton(S("&Cancel"), this);
    cmdAbort->setObjectName(QStringLiteral("cmdAbort"));
    cmdAbort->setAutoDefault(false);
    for (QPushButton* b : {cmdAddUser, cmdDel, cmdReload, cmdDatapath, cmdPickWav, cmdTestCalDav}) {
        b->setAutoDefault(false);
    }

    // Arrangement.
    auto* pathRow = new QHBoxLayout;
    pathRow->addWidget(lblDatapath);
    pathRow->addWidget(txtDatapath, 1);
    pathRow->addWidget(cmdDatapath);

    auto* modeRow = new QHBoxLayout;
    modeRow->addWidget(optSingle);
    modeRow->addWidget(optNetworked);
    modeRow->addStretch(1);

    auto* lowerRow = new QHBoxLayout;
    lowerRow->addWidget(dateBox);
    lowerRow->addSpacing(8);
    lowerRow->addLayout(switches, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdHomePage);
    buttons->addStretch(1);
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdAbort);

    auto* body = new QVBoxLayout;
    body->addLayout(pathRow);
    body->addWidget(wavBox);
    body->addLayout(modeRow);
    body->addWidget(FrameNetwork);
    body->addLayout(lowerRow);
    WindowFit::ScrollBody(this, body, buttons);
    if (width() < 640) {
        WindowFit::Apply(this, QSize(640, height()));
    }

    const QList<QWidget*> order = {txtDatapath,     cmdDatapath,
                                   txtAlarmWav,     cmdPickWav,
                                   chkNoSound,      optSingle,
                                   optNetworked,    txtOwner,
                                   optFolder,       optCalDav,
                                   txtSharedDBPath, cmdAddUser,
                                   lstUsers,        cmdDel,
                                   cmdReload,       txtCalDavUrl,
                                   txtCalDavUser,   txtCalDavPassword,
                                   txtCalDavUsers,  cmdTestCalDav,
                                   optEuroDate,     optUSDate,
                                   chkSilentStart,  chkNoAutoBackups,
                                   chkPruneOld,     chkDisableAutoUpdate,
                                   cmdHomePage,     cmdSave,
                                   cmdAbort};
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
    setTabOrder(optUSDate, chkAutostart);
    setTabOrder(chkAutostart, chkNotifications);
    setTabOrder(chkNotifications, chkSilentStart);

    connect(cmdSave, &QPushButton::clicked, this, &frmOptions::cmdSave_Click);
    connect(cmdAbort, &QPushButton::clicked, this, &frmOptions::cmdAbort_Click);
    connect(cmdAddUser, &QPushButton::clicked, this, &frmOptions::cmdAddUser_Click);
    connect(cmdDel, &QPushButton::clicked, this, &frmOptions::cmdDel_Click);
    connect(cmdReload, &QPushButton::clicked, this, &frmOptions::cmdReload_Click);
    connect(cmdDatapath, &QPushButton::clicked, this, &frmOptions::cmdDatapath_Click);
    connect(cmdPickWav, &QPushButton::clicked, this, &frmOptions::cmdPickWav_Click);
    connect(cmdHomePage, &QPushButton::clicked, this, &frmOptions::cmdHomePage_Click);
    connect(optNetworked, &QRadioButton::toggled, this, &frmOptions::UpdateNetworkFrame);
    connect(optCalDav, &QRadioButton::toggled, this, &frmOptions::UpdateNetworkFrame);
}

void frmOptions::Form_Load() {
    const cSHAREDSettings& settings = m_context.settings;
    const QString dataPath = DataFiles::DataFolder(settings);
    const QString localFile = m_context.events.DBFilename();
    const QString localFolder =
        localFile.isEmpty() ? dataPath : QFileInfo(localFile).absolutePath();

    txtSharedDBPath->setText(clsOptions2::WithSeparator(
        settings.sGet(QStringLiteral("SharedDataPath"), localFolder).toText()));
    txtOwner->setText(settings.sGet(QStringLiteral("Owner"), kNotSet).toText());
    (settings.sGet(QStringLiteral("DateStyle"), 1).toInt16() == 1 ? optEuroDate : optUSDate)
        ->setChecked(true);
    const bool calDav = settings.sGet(QString::fromLatin1(CalDavAccount::kModeKey), QString())
                            .toText()
                            .compare(QLatin1String("caldav"), Qt::CaseInsensitive) == 0;
    (calDav ? optCalDav : optFolder)->setChecked(true);
    if (settings.sGet(QStringLiteral("Networked"), false).toBool()) {
        optNetworked->setChecked(true);
        if (!calDav) {
            ReadSharedIni();
        }
    } else {
        optSingle->setChecked(true);
    }
    loadCalDav();
    txtDatapath->setText(dataPath);
    txtAlarmWav->setText(
        settings.sGet(QStringLiteral("WavFile"), clsOptions2::DefaultAlarmFile()).toText());
    chkNoSound->setChecked(settings.sGet(QStringLiteral("NoSounds"), false).toBool());
    chkSilentStart->setChecked(settings.sGet(QStringLiteral("SilentStart"), false).toBool());
    // The first start offers the login entry.
    chkAutostart->setChecked(Autostart::IsEnabled() || txtOwner->text() == kNotSet);
    chkNotifications->setChecked(
        settings.sGet(QStringLiteral("DesktopNotifications"), true).toBool());
    chkNoAutoBackups->setChecked(settings.sGet(QStringLiteral("NoAutoBackups"), false).toBool());
    chkDisableAutoUpdate->setChecked(
        settings.sGet(QStringLiteral("DisableAutoUpdateCheck"), true).toBool());
    UpdateNetworkFrame();
}

void frmOptions::UpdateNetworkFrame() {
    FrameNetwork->setEnabled(optNetworked->isChecked());
    FrameFolder->setEnabled(optFolder->isChecked());
    FrameCalDav->setEnabled(optCalDav->isChecked());
}

void frmOptions::cmdDatapath_Click() {
    const std::optional<QString> folder = m_context.dialogs.ChooseFolder(
        S("Select the storage path for your data files"), txtDatapath->text());
    if (folder && !folder->isEmpty()) {
        txtDatapath->setText(*folder);
    }
}

void frmOptions::cmdPickWav_Click() {
    const QString current = txtAlarmWav->text();
    const std::optional<QString> file = m_context.dialogs.ChooseOpenFile(
        S("Select the alarm sound"),
        current.isEmpty() ? AppPaths::HomeFolder() : QFileInfo(current).absolutePath(),
        S("WAV files (*.wav)|*.wav"));
    if (file && !file->isEmpty()) {
        txtAlarmWav->setText(*file);
    }
}

void frmOptions::cmdHomePage_Click() {
    // The program's own page is the "About" section of its built-in help.
    TextViewer::ShowHelp(this, QStringLiteral("about"));
}

void frmOptions::cmdSave_Click() {
    cSHAREDSettings& settings = m_context.settings;
    const bool networked = optNetworked->isChecked();
    const bool calDav = networked && optCalDav->isChecked();
    if (networked && !calDav) {
        txtSharedDBPath->setText(clsOptions2::WithSeparator(txtSharedDBPath->text()));
    }
    // The alarm sound becomes new events' sound and the ID every event's
    // owner: fields the events file keeps as they are.
    for (QLineEdit* box : {txtAlarmWav, txtOwner}) {
        const QString problem = StorableText::AsIsProblem(
            box == txtOwner ? S("user ID") : S("alarm sound"), box->text());
        if (!problem.isEmpty()) {
            m_context.dialogs.Message(problem, {}, UserDialogs::Icon::Warning);
            box->setFocus();
            return;
        }
    }
    if (!QFileInfo::exists(txtAlarmWav->text()) && !chkNoSound->isChecked()) {
        m_context.dialogs.Message(S("Cannot find specified WAV file. Sounds disabled."), {},
                                  UserDialogs::Icon::Warning);
        chkNoSound->setChecked(true);
    }
    const QString id = txtOwner->text().trimmed();
    if (id.isEmpty()) {
        m_context.dialogs.Message(S("You must specify a user ID"), {}, UserDialogs::Icon::Warning);
        return;
    }
    // The ID names this user's file in the shared folder, and is the owner
    // the other users see on this user's events either way.
    if (networked) {
        if (const QString problem = OwnerId::Problem(id); !problem.isEmpty()) {
            m_context.dialogs.Message(problem, {}, UserDialogs::Icon::Warning);
            return;
        }
    }
    const bool wasFolderMode = DataFiles::Networked(settings) && !DataFiles::CalDavMode(settings);
    if (calDav) {
        // Last of the checks: it stores a typed password.
        if (!CalDavAccepted()) {
            return;
        }
    } else if (networked) {
        // Without a folder the shared file would land wherever the program
        // happens to run.
        if (txtSharedDBPath->text().trimmed().isEmpty()) {
            m_context.dialogs.Message(S("Networked use needs the path to the shared data folder."),
                                      {}, UserDialogs::Icon::Warning);
            return;
        }
        // An ID kept as it was is not refused (the list may hold a clash
        // from before these checks): the user is told, and saves the rest.
        const bool keptId = id == OwnID().trimmed() && wasFolderMode;
        if (!AcceptId(id, keptId)) {
            return;
        }
    }
    if (wasFolderMode && (!networked || calDav)) {
        // Leaving the shared folder (for single use or a calendar server):
        // the published copy would otherwise stay visible to the others,
        // alarms and all, for good.
        const QString ownId = OwnID();
        if (m_context.dialogs.AskYesNo(S("Stop sharing your events with the other users?"))) {
            if (const QString error = m_context.shared.StopSharing(ownId); !error.isEmpty()) {
                m_context.dialogs.Message(error, {}, UserDialogs::Icon::Warning);
            }
        } else {
            m_context.dialogs.Message(
                S("Your shared events stay in the shared folder as they are now, and the "
                  "other users keep seeing them. The shared copy will no longer be updated."));
        }
    }
    if (DataFiles::CalDavMode(settings) && !calDav) {
        // Leaving the calendar server: the same question. The window does
        // not wait for the server; its owner takes the events back with the
        // account as it still stands in the settings.
        if (m_context.dialogs.AskYesNo(S("Stop sharing your events with the other users?"))) {
            emit calDavSharingStopped();
        } else {
            m_context.dialogs.Message(
                S("Your shared events stay on the CalDAV server as they are now, and the other "
                  "users keep seeing them. They will no longer be updated."));
        }
    }

    settings.sSet(QStringLiteral("DisableAutoUpdateCheck"), chkDisableAutoUpdate->isChecked());
    settings.sSet(QStringLiteral("SilentStart"), chkSilentStart->isChecked());
    settings.sSet(QStringLiteral("NoAutoBackups"), chkNoAutoBackups->isChecked());
    settings.sSet(QStringLiteral("DesktopNotifications"), chkNotifications->isChecked());
    if (!Autostart::Apply(chkAutostart->isChecked(), QCoreApplication::applicationFilePath())) {
        m_context.dialogs.Message(S("Unable to change ") + Autostart::EntryPath() +
                                      S(", so starting at login stays as it was."),
                                  {}, UserDialogs::Icon::Warning);
    }
    m_cancelled = false;
    settings.sSet(QStringLiteral("SharedDataPath"), txtSharedDBPath->text());
    ApplyOwnerChange(id, networked, calDav);
    saveCalDav(networked);
    settings.sSet(QStringLiteral("DateStyle"),
                  static_cast<int32_t>(optEuroDate->isChecked() ? 1 : 2));
    settings.sSet(QStringLiteral("Networked"), networked);
    QString dataPath = txtDatapath->text();
    if (dataPath.size() > 1 && endsWithSeparator(dataPath)) {
        dataPath.chop(1);
    }
    settings.sSet(QStringLiteral("DataPath"), DataFiles::DataPathValue(dataPath));
    settings.sSet(QStringLiteral("WavFile"), txtAlarmWav->text());
    settings.sSet(QStringLiteral("NoSounds"), chkNoSound->isChecked());
    settings.SaveSettings(m_context.settingsFile);
    emit Saved();
    hide();
    done(QDialog::Accepted);
}

void frmOptions::cmdAbort_Click() {
    m_cancelled = true;
    hide();
    done(QDialog::Rejected);
}

void frmOptions::closeEvent(QCloseEvent* event) {
    m_cancelled = true;
    QDialog::closeEvent(event);
}

bool frmOptions::RunFirstTimeSetup(AppContext& context, QWidget* parent) {
    Log().LogEvent(QStringLiteral("Reminder options not set. First time setup."));
    context.dialogs.Message(S("Reminder options not set. Please type in requested information."));
    while (context.settings.sGet(QStringLiteral("Owner"), kNotSet).toText() == kNotSet) {
        frmOptions window(context, parent);
        window.exec();
        if (window.Cancelled()) {
            return false;
        }
    }
    return true;
}
