// The task list: "tasklist.xml" read, written and read again, and an old
// "tasklist.dat" converted. Tasks the task window accepts read back the
// same, and the old file goes only when the new one holds its tasks.
#include "fuzz/FuzzTarget.h"

#include "storage/StorableText.h"
#include "storage/TaskListFile.h"

#include <QFileInfo>

#include <algorithm>

namespace {
bool Storable(const QStringList& tasks) {
    return std::all_of(tasks.begin(), tasks.end(),
                       [](const QString& t) { return StorableText::TaskProblem(t).isEmpty(); });
}
} // namespace

TARVO_FUZZ_TARGET(task_list) {
    const QList<QByteArray> parts = Fuzz::Parts(input, 2);
    const QStringList tasks = TaskListFile::Parse(parts.at(0));
    if (Storable(tasks) && TaskListFile::Parse(TaskListFile::Format(tasks)) != tasks) {
        Fuzz::Fail("a saved task list reads back different");
    }

    const QString folder = Fuzz::FreshFolder();
    const QString legacy = Fuzz::Put(folder, "tasklist.dat", parts.value(1));
    TaskListFile file(folder);
    const QStringList converted = file.Load();
    if (converted != TaskListFile::ParseLegacy(parts.value(1))) {
        Fuzz::Fail("the converted tasks differ from the old file's");
    }
    const bool kept = QFileInfo::exists(legacy);
    if (!kept && file.Load() != converted) {
        Fuzz::Fail("the old task file was deleted, its tasks not kept");
    }
}
