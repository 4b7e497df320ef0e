#include "app/dialogs/frmOptions.h"

#include "app/AppContext.h"
#include "app/dialogs/TextViewer.h"
#include "app/dialogs/clsOptions2.h"
#include "app/platform/Autostart.h"
#include "shared/AppPaths.h"
#include "shared/OwnerId.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/StorableText.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

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

const QString kModule = QStringLiteral("frmOptions");
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
    optSingle = new QRadioButton(S("Single User"), this);
    optSingle->setObjectName(QStringLiteral("optSingle"));
    optNetworked = new QRadioButton(S("Networked"), this);
    optNetworked->setObjectName(QStringLiteral("optNetworked"));
    optNetworked->setToolTip(S("You can share events on a LAN"));
    auto* modeGroup = new QButtonGroup(this);
    modeGroup->addButton(optSingle);
    modeGroup->addButton(optNetworked);

    // Network settings.
    FrameNetwork = new QGroupBox(
        S("Network Settings (Specify path first, click Reload, then add your ID)"), this);
    FrameNetwork->setObjectName(QStringLiteral("FrameNetwork"));
    auto* lblShared = new QLabel(S("Path to shared data folder (all users must have write access)"),
                                 FrameNetwork);
    txtSharedDBPath = new QLineEdit(FrameNetwork);
    txtSharedDBPath->setObjectName(QStringLiteral("txtSharedDBPath"));
    txtSharedDBPath->setToolTip(
        S("If you are running a networked version, you must specify the shared data path."));
    lblShared->setBuddy(txtSharedDBPath);
    txtOwner = new QLineEdit(FrameNetwork);
    txtOwner->setObjectName(QStringLiteral("txtOwner"));
    txtOwner->setToolTip(
        S("A short name to identify the user on the network (e.g. Dad, Fred, etc)"));
    auto* lblOwner = new QLabel(S("ID:"), FrameNetwork);
    lblOwner->setBuddy(txtOwner);
    cmdAddUser = new QPushButton(S("Add"), FrameNetwork);
    cmdAddUser->setObjectName(QStringLiteral("cmdAddUser"));
    lstUsers = new QListWidget(FrameNetwork);
    lstUsers->setObjectName(QStringLiteral("lstUsers"));
    lstUsers->setSelectionMode(QAbstractItemView::MultiSelection);
    lstUsers->setFixedHeight(lstUsers->fontMetrics().lineSpacing() * 5 + 8);
    cmdDel = new QPushButton(S("Delete"), FrameNetwork);
    cmdDel->setObjectName(QStringLiteral("cmdDel"));
    cmdReload = new QPushButton(S("Reload"), FrameNetwork);
    cmdReload->setObjectName(QStringLiteral("cmdReload"));
    cmdReload->setToolTip(
        S("If you change the shared folder, you'll need to reload the user list."));
    auto* lblAddHint = new QLabel(S("Click ADD once your ID is set."), FrameNetwork);
    auto* lblUnique =
        new QLabel(S("The ID MUST be unique to each copy of TVO using the shared folder (above)"),
                   FrameNetwork);
    lblUnique->setWordWrap(true);

    auto* net = new QGridLayout(FrameNetwork);
    net->addWidget(lblShared, 0, 0, 1, 4);
    net->addWidget(txtSharedDBPath, 1, 0, 1, 4);
    net->addWidget(lblOwner, 2, 0);
    net->addWidget(txtOwner, 2, 1);
    net->addWidget(cmdAddUser, 2, 2);
    net->addWidget(lblAddHint, 2, 3);
    auto* userButtons = new QVBoxLayout;
    userButtons->addWidget(cmdDel);
    userButtons->addWidget(cmdReload);
    userButtons->addStretch(1);
    net->addWidget(lstUsers, 3, 1);
    net->addLayout(userButtons, 3, 2);
    net->addWidget(lblUnique, 4, 0, 1, 4);
    net->setColumnStretch(1, 1);
    net->setColumnStretch(3, 1);

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
    for (QPushButton* b : {cmdAddUser, cmdDel, cmdReload, cmdDatapath, cmdPickWav}) {
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

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(pathRow);
    layout->addWidget(wavBox);
    layout->addLayout(modeRow);
    layout->addWidget(FrameNetwork);
    layout->addLayout(lowerRow);
    layout->addLayout(buttons);
    setMinimumWidth(640);

    const QList<QWidget*> order = {txtDatapath,
                                   cmdDatapath,
                                   txtAlarmWav,
                                   cmdPickWav,
                                   chkNoSound,
                                   optSingle,
                                   optNetworked,
                                   txtSharedDBPath,
                                   txtOwner,
                                   cmdAddUser,
                                   lstUsers,
                                   cmdDel,
                                   cmdReload,
                                   optEuroDate,
                                   optUSDate,
                                   chkSilentStart,
                                   chkNoAutoBackups,
                                   chkPruneOld,
                                   chkDisableAutoUpdate,
                                   cmdHomePage,
                                   cmdSave,
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
    if (settings.sGet(QStringLiteral("Networked"), false).toBool()) {
        optNetworked->setChecked(true);
        ReadSharedIni();
    } else {
        optSingle->setChecked(true);
    }
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
}

QString frmOptions::SharedIniPath() const {
    return clsOptions2::WithSeparator(txtSharedDBPath->text()) + QStringLiteral("TVOShared.ini");
}

void frmOptions::ReadSharedIni() {
    lstUsers->clear();
    // No folder typed: no list (rather than a file beside the program).
    if (txtSharedDBPath->text().trimmed().isEmpty()) {
        return;
    }
    lstUsers->addItems(SharedDatabases::ReadUserList(SharedIniPath()));
}

void frmOptions::WriteSharedIni() {
    QStringList names;
    for (int i = 0; i < lstUsers->count(); ++i) {
        names.append(lstUsers->item(i)->text());
    }
    if (!SharedDatabases::WriteUserList(SharedIniPath(), names)) {
        Log().AddAction(QStringLiteral("Unable to write ") + SharedIniPath(),
                        QStringLiteral("WriteSharedIni"), kModule);
        m_context.dialogs.Message(S("Unable to write the user list ") + SharedIniPath() +
                                      S(". Please check the shared data path."),
                                  {}, UserDialogs::Icon::Warning);
    }
}

void frmOptions::cmdReload_Click() {
    ReadSharedIni();
}

void frmOptions::cmdAddUser_Click() {
    const QString id = txtOwner->text().trimmed();
    if (id.isEmpty()) {
        m_context.dialogs.Message(S("You need to enter an ID before you can add it"), {},
                                  UserDialogs::Icon::Warning);
        return;
    }
    if (txtSharedDBPath->text().trimmed().isEmpty()) {
        m_context.dialogs.Message(
            S("You need to supply the shared data path before you can add users to it."), {},
            UserDialogs::Icon::Warning);
        return;
    }
    if (const QString problem = OwnerId::Problem(id); !problem.isEmpty()) {
        m_context.dialogs.Message(problem, {}, UserDialogs::Icon::Warning);
        return;
    }
    ReadSharedIni();
    for (int i = lstUsers->count() - 1; i >= 0; --i) {
        if (lstUsers->item(i)->text().compare(id, Qt::CaseInsensitive) == 0) {
            delete lstUsers->takeItem(i);
        }
    }
    lstUsers->addItem(id);
    WriteSharedIni();
}

void frmOptions::cmdDel_Click() {
    if (lstUsers->selectedItems().isEmpty()) {
        return;
    }
    if (!m_context.dialogs.AskYesNo(S("Are you sure you want to remove these users?"))) {
        return;
    }
    for (int i = lstUsers->count() - 1; i >= 0; --i) {
        if (lstUsers->item(i)->isSelected()) {
            delete lstUsers->takeItem(i);
        }
    }
    WriteSharedIni();
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
    if (networked) {
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
    // The ID names this user's file in the shared folder.
    if (networked) {
        if (const QString problem = OwnerId::Problem(id); !problem.isEmpty()) {
            m_context.dialogs.Message(problem, {}, UserDialogs::Icon::Warning);
            return;
        }
        // Without a folder the shared file would land wherever the program
        // happens to run.
        if (txtSharedDBPath->text().trimmed().isEmpty()) {
            m_context.dialogs.Message(S("Networked use needs the path to the shared data folder."),
                                      {}, UserDialogs::Icon::Warning);
            return;
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
    ApplyOwnerChange(id, networked);
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

// Single user: every local event becomes the single user's and nothing is
// published any more. Networked: the previous ID (and "Single") becomes the
// new one in the local and expired databases, the previous ID's shared file
// is emptied of its events (other users would otherwise keep seeing them
// under the old name), the new ID is stored and this user's shared events
// are published under it. The local database publishes on every save from
// then on. Databases without a file name (first-time setup, before
// anything is loaded) are left alone.
void frmOptions::ApplyOwnerChange(const QString& newOwner, bool networked) {
    cSHAREDSettings& settings = m_context.settings;
    clsDbXml& events = m_context.events;
    const bool eventsLoaded = !events.DBFilename().isEmpty();
    // Each save below writes the local file only; publishing comes last.
    events.setPublisher({});

    if (!networked) {
        settings.sSet(QStringLiteral("Owner"), QStringLiteral("Single"));
        if (eventsLoaded) {
            events.SetAllToSingleUser();
        }
        return;
    }

    const QString oldOwner = settings.sGet(QStringLiteral("Owner"), kNotSet).toText();
    for (clsDbXml* db : {&events, &m_context.expired}) {
        if (!db->DBFilename().isEmpty()) {
            db->RenameOwner(oldOwner, newOwner);
            db->RenameOwner(QStringLiteral("Single"), newOwner);
        }
    }
    if (!OwnerId::Same(oldOwner, newOwner) && OwnerId::Problem(oldOwner).isEmpty()) {
        const QString oldFile =
            AppPaths::JoinPath(settings.sGet(QStringLiteral("SharedDataPath"), QString()).toText(),
                               SharedDatabases::SharedFileName(oldOwner.trimmed()));
        if (QFileInfo::exists(oldFile)) {
            clsDbXml previous(settings, &m_context.layers);
            previous.SetDBFilename(oldFile);
            previous.WipeRecordsByOwner(oldOwner);
        }
    }
    settings.sSet(QStringLiteral("Owner"), newOwner);
    if (eventsLoaded) {
        m_context.shared.AttachTo(events);
        m_context.shared.PublishSharedEvents(events);
    }
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
