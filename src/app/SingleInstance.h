#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <QLocalServer>
#include <QString>

#include <memory>

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
// The outcome of Claim.
struct Claimed {
    bool handedOver = false;              // another copy runs: it has the command
    std::unique_ptr<QLocalServer> server; // else this copy's channel, listening
};

// The very first step of start-up, before any window: makes this copy the
// one that listens, or, when another copy already does (even one that is
// itself still starting), hands command over to it. A socket left behind by
// a copy that crashed is taken over. When listening fails otherwise, the
// failure is logged and the server comes back not listening.
Claimed Claim(const QString& command);

} // namespace SingleInstance
