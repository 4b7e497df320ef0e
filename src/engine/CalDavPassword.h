#pragma once

#include <QString>

#include <functional>

class QObject;
struct CalDavAccount;

// The CalDAV password lives in the desktop's secret store, never in a file
// of ours. The environment variable TARVO_CALDAV_PASSWORD, when set, takes
// precedence (scripts and tests). Reading and writing are asynchronous (the
// store may ask the user to unlock it); the ...Now forms wait with a local
// event loop, so windows keep painting meanwhile.
namespace CalDavPassword {

constexpr const char* kEnvironmentVariable = "TARVO_CALDAV_PASSWORD";

// Calls done(password, error) once, later, in context's thread: error is ""
// when a password was found, otherwise one line saying why none could be read.
void Read(const CalDavAccount& account, QObject* context,
          std::function<void(const QString& password, const QString& error)> done);
// The same for the command line: waits (with a local event loop) for the answer.
QString ReadNow(const CalDavAccount& account, QString* error);
// Stores password for the account; done(error) with "" on success.
void Write(const CalDavAccount& account, const QString& password, QObject* context,
           std::function<void(const QString& error)> done);
// The same, waiting for the answer: "" on success, otherwise one line.
QString WriteNow(const CalDavAccount& account, const QString& password);

} // namespace CalDavPassword
