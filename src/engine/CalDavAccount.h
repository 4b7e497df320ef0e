#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

class cSHAREDSettings;

// Networked mode through a calendar server: where the server is, who this
// user is there, and whose shared events to show. Read from the settings
// NetworkMode ("folder" or "caldav"), CalDAVUrl, CalDAVUser and CalDAVUsers.
// The password is never a setting (see CalDavPassword).
struct CalDavAccount {
    QUrl server;       // ends with "/"
    QString user;      // CalDAVUser, trimmed
    QStringList users; // CalDAVUsers: trimmed, blanks, this user and repeats left out

    static constexpr const char* kModeKey = "NetworkMode";
    static constexpr const char* kUrlKey = "CalDAVUrl";
    static constexpr const char* kUserKey = "CalDAVUser";
    static constexpr const char* kUsersKey = "CalDAVUsers";

    // Whether networked mode is on and goes through a calendar server.
    static bool CalDavMode(const cSHAREDSettings& settings);
    static CalDavAccount FromSettings(const cSHAREDSettings& settings);

    // <server><name>/tarvo/ : a user's collection of shared events.
    QUrl CollectionUrl(const QString& name) const;

    // Why the account cannot be used ("" when it can): no server, no user,
    // or the server address refused by UrlProblem.
    QString Problem() const;

    // "" when url may be used; otherwise one line saying why not. Plain
    // http is accepted for loopback hosts only (the password would travel
    // readable); anything else needs https.
    static QString UrlProblem(const QString& url);
};
