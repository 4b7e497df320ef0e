#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// One copy of Tarvo per user and home folder. The running copy listens on a
// local socket named after both; a second copy hands its command over
// through it and ends.
namespace SingleInstance {

// The socket name for the current user and home folder.
QString ServerName();

// Hands command to a running copy. True when one received it; false (having
// logged "Unable to find instance of TVO") when none answers.
bool HandOver(const QString& command);

// Sends one request line to a running copy and waits up to timeoutMs for its
// one-line reply (empty when none came in time). Nothing when no copy
// answers the connection. Writes nothing to the log.
std::optional<QByteArray> Request(const QByteArray& line, int timeoutMs);

} // namespace SingleInstance
