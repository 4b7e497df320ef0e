#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// The user list "TVOShared.ini" of a shared folder and the rules for the IDs
// in it. Every change is a read, change and write of the whole file under a
// lock file beside it, so two users changing the list at the same moment both
// keep their change.
namespace SharedUserList {

// How a typed ID collides with a name already listed for another user.
enum class ClashKind {
    None,
    Same,     // the same spelling: somebody else's ID, or this user's own after a reinstall
    CaseOnly, // differs in letter case only: both would write the same shared file
    Tail,     // one ends with the other: "Share with" matches names by their end
};

struct Clash {
    ClashKind kind = ClashKind::None;
    QString listed; // the listed name it collides with
};

// The first clash of id with the listed names, leaving out this user's own
// current ID (ownId; compared as owner names are, case ignored).
Clash FindClash(const QStringList& names, const QString& id, const QString& ownId);

// The message for a refused clash (CaseOnly or Tail), naming both IDs and why.
QString ClashMessage(const Clash& clash, const QString& id);
// The question asked before taking over a listed ID of the same spelling.
QString TakeOverQuestion(const QString& id);

// Reads the list under the lock, hands it to change, and writes what change
// returns (unless it is unchanged). False, with the reason in error, when the
// lock cannot be had within a few seconds or the file cannot be written.
bool Modify(const QString& listPath, const std::function<QStringList(QStringList)>& change,
            QString* error = nullptr);

// List changes for Modify. Each leaves the other names where they are.
// Adds id unless a name equal to it (case ignored) is listed already.
QStringList WithAdded(QStringList names, const QString& id);
// The first name equal to oldId becomes newId in place; further entries equal
// to either are dropped. When oldId is not listed the list is returned as is.
QStringList WithRenamed(QStringList names, const QString& oldId, const QString& newId);
// Every name equal to id (case ignored) taken out.
QStringList WithRemoved(QStringList names, const QString& id);

// A lock file older than this is taken to be left by a program that ended
// without removing it.
inline constexpr int kStaleLockMs = 5000;

} // namespace SharedUserList
