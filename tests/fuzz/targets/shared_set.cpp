// The merged set of networked mode: a user list and the shared files it
// names, all written by other users. Every file read must lie in the shared
// folder, the user's own file is never among them, and the list is written
// back unchanged.
#include "fuzz/FuzzTarget.h"

#include "shared/OwnerId.h"
#include "shared/cSHAREDSettings.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QDir>
#include <QFileInfo>

TARVO_FUZZ_TARGET(shared_set) {
    const QString home = Fuzz::FreshFolder();
    const QString folder = home + "/shared/inner";
    QDir().mkpath(folder);
    const QList<QByteArray> parts = Fuzz::Parts(input, 4);
    const QString list = Fuzz::Put(folder, "TVOShared.ini", parts.at(0));
    const QStringList names = SharedDatabases::ReadUserList(list);
    for (qsizetype i = 1; i < parts.size() && i - 1 < names.size(); ++i) {
        if (OwnerId::IsPlainName(names.at(i - 1))) {
            Fuzz::Put(folder, SharedDatabases::SharedFileName(names.at(i - 1)), parts.at(i));
        }
    }

    cSHAREDSettings settings;
    settings.sSet("Owner", SettingValue("Ann"));
    settings.sSet("SharedDatapath", SettingValue(folder));
    clsLayers layers(settings);
    SharedDatabases shared(settings, layers);
    shared.ReloadSharedSet();

    for (const QString& file : shared.SharedSet().SharedFiles()) {
        const QFileInfo info(QDir::cleanPath(file));
        if (info.path() != folder || file == shared.OwnSharedFile()) {
            Fuzz::Fail("the merged set reads " + file);
        }
    }
    if (shared.SharedSet().DatabaseChanged()) {
        Fuzz::Fail("the merged set counts as changed right after its load");
    }
    const QString copy = home + "/TVOShared.ini";
    if (SharedDatabases::WriteUserList(copy, names) &&
        SharedDatabases::ReadUserList(copy) != names) {
        Fuzz::Fail("the user list reads back different");
    }
}
