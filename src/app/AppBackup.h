#pragma once

#include <QString>

struct AppContext;

// Zips the user's data files (the two databases, the settings, the log, the
// task list, old .dat files) into the home folder's "Autobackups", under
// the weekday and kind. Start-up and the Backup command both use it. On
// failure reason (when given) receives why.
bool BackUpData(AppContext& app, const QString& kind, QString* reason = nullptr);
