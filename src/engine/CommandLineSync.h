#pragma once

#include "engine/CalDavSync.h"
#include "engine/CalendarTransfer.h"

#include <QList>

class cSHAREDSettings;

// tarvo --sync, and the sync that follows --add or --import in the
// calendar-server mode: one whole sync, waited for without a window.
namespace CommandLineSync {

// Runs one sync of localEvents (the events database as loaded at start) and
// waits for it. A mode that is not the calendar server's, an incomplete
// account or a missing password come back as a failed result (not
// unreachable) with the line to show; so does a sync that runs past
// timeoutMs, which counts as unreachable.
CalDavSyncResult Run(cSHAREDSettings& settings, const QList<EventPtr>& localEvents,
                     int timeoutMs = 5 * 60 * 1000);

// --sync's outcome: 0 with the summary, otherwise 2 with the error line.
CommandResult SyncResult(const CalDavSyncResult& sync);

// What --add or --import adds to its own line after the sync: the summary.
// An unreachable server keeps exit code 0 and says that the change waits
// for the next sync; a sync that fails otherwise gives 2 with its error (the
// change stays saved all the same).
CommandResult AfterChange(const CalDavSyncResult& sync);

} // namespace CommandLineSync
