// The options window's calendar-server part: the account's fields, the
// connection test, the checks of a save and the values it stores. The
// password never goes to Tvo.ini: a typed one is handed to the secret store
// when the window is saved, and an untouched field keeps the stored one.
#include "app/AppContext.h"
#include "app/dialogs/frmOptions.h"
#include "engine/CalDavAccount.h"
#include "engine/CalDavPassword.h"
#include "engine/CalDavSync.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

QString S(const char* text) {
    return QString::fromUtf8(text);
}

QString key(const char* name) {
    return QString::fromLatin1(name);
}

} // namespace

QWidget* frmOptions::buildCalDavControls(QWidget* parent) {
    FrameCalDav = new QWidget(parent);
    FrameCalDav->setObjectName(QStringLiteral("FrameCalDav"));
    auto box = [this](const char* name, const char* tip) {
        auto* edit = new QLineEdit(FrameCalDav);
        edit->setObjectName(QString::fromLatin1(name));
        edit->setToolTip(S(tip));
        return edit;
    };
    txtCalDavUrl = box("txtCalDavUrl", "The address of the calendar server, as its owner gave it");
    txtCalDavUrl->setPlaceholderText(S("https://calendar.example.org/"));
    txtCalDavUser = box("txtCalDavUser", "Your user name on the calendar server");
    txtCalDavPassword =
        box("txtCalDavPassword", "Kept in the desktop's secret store; leave it empty to keep the "
                                 "stored one");
    txtCalDavPassword->setEchoMode(QLineEdit::Password);
    txtCalDavPassword->setPlaceholderText(S("(unchanged)"));
    txtCalDavUsers =
        box("txtCalDavUsers", "The user names on the server whose shared events you see, "
                              "separated by commas");
    cmdTestCalDav = new QPushButton(S("&Test connection"), FrameCalDav);
    cmdTestCalDav->setObjectName(QStringLiteral("cmdTestCalDav"));
    lblCalDavTest = new QLabel(FrameCalDav);
    lblCalDavTest->setObjectName(QStringLiteral("lblCalDavTest"));
    lblCalDavTest->setWordWrap(true);
    lblCalDavTest->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* grid = new QGridLayout(FrameCalDav);
    grid->setContentsMargins(0, 0, 0, 0);
    auto label = [this, grid](const char* text, QLineEdit* buddy, int row, int column) {
        auto* l = new QLabel(S(text), FrameCalDav);
        l->setBuddy(buddy);
        grid->addWidget(l, row, column);
    };
    label("Server add&ress:", txtCalDavUrl, 0, 0);
    grid->addWidget(txtCalDavUrl, 0, 1, 1, 3);
    label("User na&me:", txtCalDavUser, 1, 0);
    grid->addWidget(txtCalDavUser, 1, 1);
    label("Pass&word:", txtCalDavPassword, 1, 2);
    grid->addWidget(txtCalDavPassword, 1, 3);
    label("Show events &of:", txtCalDavUsers, 2, 0);
    grid->addWidget(txtCalDavUsers, 2, 1, 1, 3);
    grid->addWidget(cmdTestCalDav, 3, 0);
    grid->addWidget(lblCalDavTest, 3, 1, 1, 3);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);

    connect(txtCalDavPassword, &QLineEdit::textEdited, this, [this] { m_passwordEdited = true; });
    connect(cmdTestCalDav, &QPushButton::clicked, this, &frmOptions::cmdTestCalDav_Click);
    return FrameCalDav;
}

void frmOptions::loadCalDav() {
    const cSHAREDSettings& settings = m_context.settings;
    txtCalDavUrl->setText(settings.sGet(key(CalDavAccount::kUrlKey), QString()).toText());
    txtCalDavUser->setText(settings.sGet(key(CalDavAccount::kUserKey), QString()).toText());
    txtCalDavUsers->setText(settings.sGet(key(CalDavAccount::kUsersKey), QString()).toText());
}

CalDavAccount frmOptions::TypedCalDavAccount() const {
    cSHAREDSettings typed;
    typed.sSet(key(CalDavAccount::kUrlKey), txtCalDavUrl->text().trimmed());
    typed.sSet(key(CalDavAccount::kUserKey), txtCalDavUser->text().trimmed());
    typed.sSet(key(CalDavAccount::kUsersKey), txtCalDavUsers->text());
    return CalDavAccount::FromSettings(typed);
}

void frmOptions::cmdTestCalDav_Click() {
    const CalDavAccount account = TypedCalDavAccount();
    QString problem = CalDavAccount::UrlProblem(txtCalDavUrl->text());
    if (problem.isEmpty()) {
        problem = account.Problem();
    }
    if (!problem.isEmpty()) {
        lblCalDavTest->setText(problem);
        return;
    }
    cmdTestCalDav->setEnabled(false);
    lblCalDavTest->setText(S("Testing the connection\u2026"));
    if (m_calDavTest == nullptr) {
        m_calDavTest = new CalDavSync(m_context.settings, this);
    }
    auto shown = [this](bool, const QString& line) {
        lblCalDavTest->setText(line);
        cmdTestCalDav->setEnabled(true);
    };
    if (m_passwordEdited) {
        m_calDavTest->TestConnection(account, txtCalDavPassword->text(), shown);
        return;
    }
    CalDavPassword::Read(account, this,
                         [this, account, shown](const QString& password, const QString& error) {
                             if (!error.isEmpty()) {
                                 shown(false, error);
                             } else {
                                 m_calDavTest->TestConnection(account, password, shown);
                             }
                         });
}

bool frmOptions::CalDavAccepted() {
    auto refuse = [this](const QString& why, QLineEdit* box) {
        m_context.dialogs.Message(why, {}, UserDialogs::Icon::Warning);
        box->setFocus();
        return false;
    };
    if (const QString problem = CalDavAccount::UrlProblem(txtCalDavUrl->text());
        !problem.isEmpty()) {
        return refuse(problem, txtCalDavUrl);
    }
    if (txtCalDavUser->text().trimmed().isEmpty()) {
        return refuse(S("Networked use through a CalDAV server needs your user name there."),
                      txtCalDavUser);
    }
    if (m_passwordEdited && !txtCalDavPassword->text().isEmpty()) {
        // The store may ask the user to unlock it; the window stays live
        // meanwhile, but is not saved twice.
        cmdSave->setEnabled(false);
        const QString error =
            CalDavPassword::WriteNow(TypedCalDavAccount(), txtCalDavPassword->text());
        cmdSave->setEnabled(true);
        if (!error.isEmpty()) {
            return refuse(error, txtCalDavPassword);
        }
        m_passwordEdited = false;
    }
    return true;
}

void frmOptions::saveCalDav(bool networked) {
    cSHAREDSettings& settings = m_context.settings;
    // A file of somebody who never chose a CalDAV server gains no empty keys.
    auto store = [&settings](const char* name, const QString& value) {
        if (!value.isEmpty() || settings.IsSettingPresent(key(name))) {
            settings.sSet(key(name), value);
        }
    };
    if (networked || settings.IsSettingPresent(key(CalDavAccount::kModeKey))) {
        settings.sSet(key(CalDavAccount::kModeKey),
                      optCalDav->isChecked() ? S("caldav") : S("folder"));
    }
    store(CalDavAccount::kUrlKey, txtCalDavUrl->text().trimmed());
    store(CalDavAccount::kUserKey, txtCalDavUser->text().trimmed());
    store(CalDavAccount::kUsersKey, txtCalDavUsers->text().trimmed());
}
