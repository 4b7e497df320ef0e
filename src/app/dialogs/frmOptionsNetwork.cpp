// The options window's networked part: the user list of the shared folder
// (read, Add, Delete under the list's lock), the check of a typed ID against
// the other users' IDs, and the owner change of a save.
#include "app/AppContext.h"
#include "app/dialogs/clsOptions2.h"
#include "app/dialogs/frmOptions.h"
#include "shared/OwnerId.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"
#include "storage/SharedUserList.h"
#include "storage/clsDbXml.h"

#include <QLineEdit>
#include <QListWidget>

namespace {

const QString kModule = QStringLiteral("frmOptions");
const QString kNotSet = QStringLiteral("Not Set");

QString S(const char* text) {
    return QString::fromUtf8(text);
}

} // namespace

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

// Changes the user list file under its lock (the list as it is on the disk
// then, not as this window read it) and shows the result.
bool frmOptions::ChangeSharedIni(const std::function<QStringList(QStringList)>& change) {
    QString error;
    const bool written = SharedUserList::Modify(SharedIniPath(), change, &error);
    if (!written) {
        Log().AddAction(QStringLiteral("Unable to write ") + SharedIniPath(),
                        QStringLiteral("ChangeSharedIni"), kModule);
        m_context.dialogs.Message(S("Unable to change the user list ") + SharedIniPath() + S(": ") +
                                      error + S(". Please check the shared data path."),
                                  {}, UserDialogs::Icon::Warning);
    }
    ReadSharedIni();
    return written;
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
    if (!AcceptId(id)) {
        return;
    }
    // Checked again under the lock: somebody may have added a clashing ID
    // while this window was asking.
    SharedUserList::Clash clash;
    const bool written = ChangeSharedIni([&](const QStringList& names) {
        clash = SharedUserList::FindClash(names, id, OwnID());
        if (clash.kind == SharedUserList::ClashKind::None ||
            (clash.kind == SharedUserList::ClashKind::Same && OwnerId::Same(m_takenOver, id))) {
            clash = {};
            return SharedUserList::WithAdded(names, id);
        }
        return names;
    });
    if (written && clash.kind != SharedUserList::ClashKind::None) {
        m_context.dialogs.Message(SharedUserList::ClashMessage(clash, id), {},
                                  UserDialogs::Icon::Warning);
    }
}

QString frmOptions::OwnID() const {
    return m_context.settings.sGet(QStringLiteral("Owner"), kNotSet).toText();
}

bool frmOptions::AcceptId(const QString& id, bool keptId) {
    const SharedUserList::Clash clash =
        SharedUserList::FindClash(SharedDatabases::ReadUserList(SharedIniPath()), id, OwnID());
    if (clash.kind == SharedUserList::ClashKind::None) {
        return true;
    }
    if (clash.kind == SharedUserList::ClashKind::Same) {
        if (OwnerId::Same(m_takenOver, id)) {
            return true;
        }
        if (m_context.dialogs.AskYesNo(SharedUserList::TakeOverQuestion(id), {}, false)) {
            m_takenOver = id;
            return true;
        }
        return false;
    }
    if (keptId) {
        m_context.dialogs.Message(SharedUserList::ClashMessage(clash, id) +
                                      S("\n\nYour ID stays as it is for now; please agree on "
                                        "another one with the other user."),
                                  {}, UserDialogs::Icon::Warning);
        return true;
    }
    Log().LogEvent(QStringLiteral("ID refused: ") + SharedUserList::ClashMessage(clash, id));
    m_context.dialogs.Message(SharedUserList::ClashMessage(clash, id), {},
                              UserDialogs::Icon::Warning);
    return false;
}

void frmOptions::cmdDel_Click() {
    if (lstUsers->selectedItems().isEmpty()) {
        return;
    }
    if (!m_context.dialogs.AskYesNo(S("Are you sure you want to remove these users?"))) {
        return;
    }
    QStringList gone;
    for (const QListWidgetItem* item : lstUsers->selectedItems()) {
        gone.append(item->text());
    }
    ChangeSharedIni([&gone](QStringList names) {
        for (const QString& name : gone) {
            names = SharedUserList::WithRemoved(names, name);
        }
        return names;
    });
}

// Single user: every local event becomes the single user's and nothing is
// published any more. Networked: the previous ID (and "Single") becomes the
// new one in the local and expired databases; then the user list names the
// new ID in place of the old, this user's shared events are published under
// it and the old shared file is emptied (SharedDatabases::ChangeOwnId). The
// local database publishes on every save from then on. Through a calendar
// server only the ID changes here; the main window's next sync publishes
// under it. Databases without a file name (first-time setup, before
// anything is loaded) are left alone.
void frmOptions::ApplyOwnerChange(const QString& newOwner, bool networked, bool calDav) {
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
    // Through a calendar server nothing is in a shared folder: the next
    // sync publishes under the new ID.
    if (calDav) {
        settings.sSet(QStringLiteral("Owner"), newOwner.trimmed());
        return;
    }
    const QString error =
        m_context.shared.ChangeOwnId(oldOwner, newOwner, eventsLoaded ? &events : nullptr);
    if (!error.isEmpty()) {
        m_context.dialogs.Message(error, {}, UserDialogs::Icon::Warning);
    }
}
