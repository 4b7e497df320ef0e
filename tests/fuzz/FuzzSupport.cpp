#include "fuzz/FuzzTarget.h"

#include "shared/AppPaths.h"
#include "shared/Clock.h"
#include "shared/cSharedLogging.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QLocale>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

namespace Fuzz {

namespace {

QHash<QString, Body>& table() {
    static QHash<QString, Body> bodies;
    return bodies;
}

// The fuzzing home, set once by Prepare().
QString homeFolder;

} // namespace

bool Register(const char* name, Body body) {
    table().insert(QString::fromLatin1(name), body);
    return true;
}

Body Find(const QString& name) {
    return table().value(name, nullptr);
}

void Prepare() {
    if (!homeFolder.isEmpty()) {
        return;
    }
    // Same results on every machine: UTC, an English locale and a clock that
    // stands still, so a saved input replays exactly.
    qputenv("TZ", "UTC");
    tzset();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // Files are written thousands of times a second: a memory file system
    // when there is one.
    const QString base =
        QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm") : QDir::tempPath();
    static QTemporaryDir dir(base + QStringLiteral("/tarvo-fuzz-XXXXXX"));
    homeFolder = dir.path();
    qputenv(AppPaths::kHomeVariable, QFile::encodeName(dir.path()));
    Clock::setFixed(JoinDateValue(46188, 9 * 3600 + 30 * 60)); // 2026-06-15 09:30
#ifdef TARVO_LIBFUZZER
    Log().setNOLOGGING(true);
#endif
}

QString FreshFolder() {
    Prepare();
    const QString path = homeFolder + QStringLiteral("/work");
    QDir(path).removeRecursively();
    QDir().mkpath(path);
    return path;
}

QString Put(const QString& folder, const QString& name, const QByteArray& bytes) {
    const QString path = AppPaths::JoinPath(folder, name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(bytes);
    }
    return path;
}

QByteArray Get(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<QByteArray> Parts(const QByteArray& input, int max) {
    QList<QByteArray> parts;
    qsizetype from = 0;
    while (parts.size() + 1 < max) {
        const qsizetype at = input.indexOf("\n%%\n", from);
        if (at < 0) {
            break;
        }
        parts.append(input.mid(from, at - from));
        from = at + 4;
    }
    parts.append(input.mid(from));
    return parts;
}

void Fail(const QString& what) {
#ifdef TARVO_LIBFUZZER
    std::fprintf(stderr, "FUZZ PROPERTY BROKEN: %s\n", qPrintable(what));
    std::abort();
#else
    throw std::runtime_error(what.toStdString());
#endif
}

void Same(const QByteArray& first, const QByteArray& second, const QString& what) {
    if (first == second) {
        return;
    }
    const QList<QByteArray> a = first.split('\n');
    const QList<QByteArray> b = second.split('\n');
    qsizetype i = 0;
    while (i < a.size() && i < b.size() && a.at(i) == b.at(i)) {
        ++i;
    }
    Fail(what + QStringLiteral(" (line %1: \"%2\" became \"%3\")")
                    .arg(i + 1)
                    .arg(QString::fromLatin1(a.value(i).trimmed()),
                         QString::fromLatin1(b.value(i).trimmed())));
}

} // namespace Fuzz
