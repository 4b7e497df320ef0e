#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

#include <functional>

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QLabel;
class QRadioButton;
class CalDavSync;
struct AppContext;
struct CalDavAccount;

// The options window: the user's choices (data folder, alarm sound,
// single-user or networked use with an ID, through a shared folder or a
// CalDAV server, date order, start-up and backup switches), read from and
// written to the settings store directly (the CalDAV password goes to the
// desktop's secret store). Also the first-time setup shown before any
// database is loaded.
//
// After exec(): Cancelled() is false when the user saved. The settings file
// has then been written and the owner change applied to the databases; the
// caller reloads its databases and list (Saved signal, or !Cancelled()).
class frmOptions : public QDialog {
    Q_OBJECT
public:
    explicit frmOptions(AppContext& context, QWidget* parent = nullptr);
    ~frmOptions() override;

    bool Cancelled() const { return m_cancelled; }

    // Start-up's first-time setup, while the owner is still "Not Set": logs
    // it, tells the user, and shows the window until an owner is stored.
    // False when the user cancelled; the program then ends. Runs before any
    // database is loaded: databases without a file name are left alone by
    // the owner change.
    static bool RunFirstTimeSetup(AppContext& context, QWidget* parent = nullptr);

    // The user list file for the shared folder typed in the window.
    QString SharedIniPath() const;
    void ReadSharedIni();
    // Read, change and write of the list file under its lock; false (the
    // user told why) when it could not be written.
    bool ChangeSharedIni(const std::function<QStringList(QStringList)>& change);

    void cmdSave_Click();
    void cmdAbort_Click();
    void cmdAddUser_Click();
    void cmdDel_Click();
    void cmdReload_Click();
    void cmdDatapath_Click();
    void cmdPickWav_Click();
    void cmdHomePage_Click();
    void UpdateNetworkFrame();
    // Checks the typed CalDAV account with the server; the answer shows
    // beside the button.
    void cmdTestCalDav_Click();

signals:
    // Emitted by a successful save, before the window hides.
    void Saved();
    // Emitted by a save that leaves CalDAV mode when the user chose to stop
    // sharing there, before any setting changes: the receiver takes back
    // what this user published, with the account and password as they are.
    void calDavSharingStopped();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildControls();
    void Form_Load();
    // The owner change of a save; see the .cpp for the order.
    void ApplyOwnerChange(const QString& newOwner, bool networked, bool calDav);
    // The CalDAV part (frmOptionsCalDav.cpp): its controls, their values
    // from the store, the checks of a save (the password is stored then),
    // and the values written back.
    QWidget* buildCalDavControls(QWidget* parent);
    void loadCalDav();
    CalDavAccount TypedCalDavAccount() const;
    bool CalDavAccepted();
    void saveCalDav(bool networked);
    // The ID stored now ("Not Set" before the first save).
    QString OwnID() const;
    // Whether id may be used beside the listed IDs of the other users: a clash
    // is refused with its reason; a listed ID of the same spelling (this
    // user's own after a reinstall) is taken over only when the user says so.
    // With keptId (the ID stays as it was) a clash is only told.
    bool AcceptId(const QString& id, bool keptId = false);

    AppContext& m_context;
    bool m_cancelled = true;
    QString m_takenOver; // a listed ID the user chose to take over

    QLineEdit* txtDatapath = nullptr;
    QPushButton* cmdDatapath = nullptr;
    QLineEdit* txtAlarmWav = nullptr;
    QPushButton* cmdPickWav = nullptr;
    QCheckBox* chkNoSound = nullptr;
    QRadioButton* optSingle = nullptr;
    QRadioButton* optNetworked = nullptr;
    QGroupBox* FrameNetwork = nullptr;
    QRadioButton* optFolder = nullptr;
    QRadioButton* optCalDav = nullptr;
    QWidget* FrameFolder = nullptr;
    QWidget* FrameCalDav = nullptr;
    QLineEdit* txtCalDavUrl = nullptr;
    QLineEdit* txtCalDavUser = nullptr;
    QLineEdit* txtCalDavPassword = nullptr;
    QLineEdit* txtCalDavUsers = nullptr;
    QPushButton* cmdTestCalDav = nullptr;
    QLabel* lblCalDavTest = nullptr;
    CalDavSync* m_calDavTest = nullptr;
    bool m_passwordEdited = false;
    QLineEdit* txtSharedDBPath = nullptr;
    QLineEdit* txtOwner = nullptr;
    QPushButton* cmdAddUser = nullptr;
    QListWidget* lstUsers = nullptr;
    QPushButton* cmdDel = nullptr;
    QPushButton* cmdReload = nullptr;
    QRadioButton* optEuroDate = nullptr;
    QRadioButton* optUSDate = nullptr;
    QCheckBox* chkSilentStart = nullptr;
    QCheckBox* chkNoAutoBackups = nullptr;
    QCheckBox* chkDisableAutoUpdate = nullptr;
    QCheckBox* chkPruneOld = nullptr;
    QCheckBox* chkAutostart = nullptr;
    QCheckBox* chkNotifications = nullptr;
    QPushButton* cmdHomePage = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdAbort = nullptr;
};
