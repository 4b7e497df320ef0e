#include "engine/CommandLineSync.h"

#include "engine/CalDavAccount.h"
#include "engine/CalDavPassword.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"

#include <QEventLoop>
#include <QTimer>

namespace CommandLineSync {

namespace {

CalDavSyncResult failed(const QString& error) {
    CalDavSyncResult result;
    result.error = error;
    return result;
}

} // namespace

CalDavSyncResult Run(cSHAREDSettings& settings, const QList<EventPtr>& localEvents, int timeoutMs) {
    if (!DataFiles::CalDavMode(settings)) {
        return failed(QStringLiteral("Tarvo does not share through a CalDAV server here: in "
                                     "Settings choose Networked and a CalDAV server."));
    }
    const CalDavAccount account = CalDavAccount::FromSettings(settings);
    if (const QString problem = account.Problem(); !problem.isEmpty()) {
        return failed(QStringLiteral("The CalDAV account is incomplete: ") + problem);
    }
    QString error;
    const QString password = CalDavPassword::ReadNow(account, &error);
    if (!error.isEmpty()) {
        return failed(error + QStringLiteral(" Store it in Settings or set ") +
                      QString::fromLatin1(CalDavPassword::kEnvironmentVariable) + QLatin1Char('.'));
    }

    CalDavSync sync(settings);
    CalDavSyncResult result;
    bool done = false;
    QEventLoop loop;
    QObject::connect(&sync, &CalDavSync::finished, &loop, [&](const CalDavSyncResult& r) {
        result = r;
        done = true;
        loop.quit();
    });
    QTimer timeout;
    timeout.setSingleShot(true);
    QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    sync.Start(localEvents, password);
    if (!done) {
        timeout.start(timeoutMs);
        loop.exec();
    }
    if (!done) {
        result = failed(QStringLiteral("The CalDAV server did not finish the sync within %1 "
                                       "seconds.")
                            .arg(timeoutMs / 1000));
        result.unreachable = true;
    }
    return result;
}

CommandResult SyncResult(const CalDavSyncResult& sync) {
    if (sync.ok) {
        return {CommandResult::kDone, sync.Summary()};
    }
    return {CommandResult::kFileError, sync.error};
}

CommandResult AfterChange(const CalDavSyncResult& sync) {
    if (sync.ok) {
        return {CommandResult::kDone, sync.Summary()};
    }
    return {sync.unreachable ? CommandResult::kDone : CommandResult::kFileError,
            sync.error + QStringLiteral(" The change is saved here and is published at the next "
                                        "sync that succeeds.")};
}

} // namespace CommandLineSync
