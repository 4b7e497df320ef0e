#include "storage/TaskListFile.h"

#include "shared/AppPaths.h"
#include "shared/AtomicFile.h"
#include "shared/SaveFailures.h"
#include "shared/TextCodec.h"
#include "shared/cSharedLogging.h"
#include "storage/DamagedFile.h"

#include <QFile>
#include <QFileInfo>

namespace {

const QString kModule = QStringLiteral("frmTasks");

QString FileIn(const QString& folder, const char* name) {
    return AppPaths::JoinPath(folder,
                              AppPaths::FindCaseInsensitive(folder, QString::fromLatin1(name)));
}

bool ReadAll(const QString& path, QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    bytes = file.readAll();
    return true;
}

} // namespace

TaskListFile::TaskListFile(QString dataFolder) : m_folder(std::move(dataFolder)) {
    if (m_folder.trimmed().isEmpty()) {
        m_folder = AppPaths::HomeFolder();
    }
}

QString TaskListFile::XmlPath() const {
    return FileIn(m_folder, kXmlName);
}
QString TaskListFile::LegacyPath() const {
    return FileIn(m_folder, kLegacyName);
}

QStringList TaskListFile::Load() {
    const QString xml = XmlPath();
    const QString legacy = LegacyPath();
    if (!QFileInfo::exists(legacy) || QFileInfo::exists(xml)) {
        QByteArray bytes;
        if (QFileInfo::exists(xml) && !ReadAll(xml, bytes)) {
            Log().AddAction(QStringLiteral("Unable to read ") + xml, QStringLiteral("LoadTasks"),
                            kModule);
        }
        m_damaged = DamagedFile::TaskFileDamaged(bytes);
        if (m_damaged) {
            Log().AddAction(xml + QStringLiteral(" is damaged; it is kept as it is until saved"),
                            QStringLiteral("LoadTasks"), kModule);
        }
        return Parse(bytes);
    }

    QByteArray bytes;
    if (!ReadAll(legacy, bytes)) {
        Log().AddAction(QStringLiteral("Unable to read ") + legacy, QStringLiteral("LoadTasks"),
                        kModule);
        return {};
    }
    const QStringList tasks = ParseLegacy(bytes);
    // The old file goes only once the new one is written and reads back with
    // the same tasks. Otherwise the old file stays the only one (a new file
    // that reads back different is removed again), so the next load converts
    // again and nothing is lost.
    if (!Save(tasks)) {
        return tasks;
    }
    QByteArray written;
    if (!ReadAll(xml, written) || Parse(written) != tasks) {
        QFile::remove(xml);
        Log().AddAction(QStringLiteral("Kept ") + legacy +
                            QStringLiteral(": its tasks do not read back the same from ") + xml,
                        QStringLiteral("LoadTasks"), kModule);
        return tasks;
    }
    if (!QFile::remove(legacy)) {
        Log().AddAction(QStringLiteral("Unable to delete ") + legacy, QStringLiteral("LoadTasks"),
                        kModule);
    }
    return tasks;
}

bool TaskListFile::Save(const QStringList& tasks) {
    const QString path = XmlPath();
    const QByteArray bytes = Format(tasks);
    if (m_damaged && QFileInfo::exists(path)) {
        // What was read of a damaged file replaces it only once it is kept.
        if (DamagedFile::KeepCopy(path).isEmpty()) {
            SaveFailures::Failed(
                path, QStringLiteral("the file is damaged and no copy of it could be kept"));
            return false;
        }
    }
    m_damaged = false;
    AtomicFile::Result result = AtomicFile::Write(path, bytes);
    // A read-only file is made writable and written once more.
    if (result.status == AtomicFile::Status::AccessDenied && AtomicFile::IsReadOnly(path) &&
        AtomicFile::MakeWritable(path)) {
        result = AtomicFile::Write(path, bytes);
    }
    if (!result.ok()) {
        Log().AddAction(result.description + QStringLiteral(" (") +
                            QString::number(result.errorNumber) + QLatin1Char(')'),
                        QStringLiteral("SaveTasks"), kModule);
        SaveFailures::Failed(path, AtomicFile::IsReadOnly(path) ? SaveFailures::kReadOnly
                                                                : result.description);
        return false;
    }
    SaveFailures::Saved(path);
    return true;
}

QByteArray TaskListFile::Format(const QStringList& tasks) {
    const QString crlf = QString::fromLatin1(TextCodec::kLineEnd);
    QString text = QStringLiteral("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>") + crlf +
                   QStringLiteral("<TVO2>") + crlf + QStringLiteral("\t<TASK>") + crlf;
    for (const QString& task : tasks) {
        text += QStringLiteral("\t\t<DETAILS>") + task + QStringLiteral("</DETAILS>") + crlf;
    }
    text += QStringLiteral("\t</TASK>") + crlf + QStringLiteral("</TVO2>") + crlf;
    return TextCodec::ToWindows1252(text);
}

QStringList TaskListFile::Parse(const QByteArray& bytes) {
    static const QString open = QStringLiteral("<DETAILS>");
    static const QString close = QStringLiteral("</DETAILS>");
    const QString text = TextCodec::FromWindows1252(bytes);
    QStringList tasks;
    // Every piece after a "<TASK>" up to its "</TASK>" holds DETAILS lines.
    const QStringList pieces = text.split(QStringLiteral("<TASK>"));
    for (qsizetype i = 1; i < pieces.size(); ++i) {
        QString piece = pieces[i];
        const qsizetype end = piece.indexOf(QStringLiteral("</TASK>"));
        if (end >= 0) {
            piece.truncate(end);
        }
        for (const QString& line : piece.split(QLatin1Char('\n'))) {
            const qsizetype start = line.indexOf(open);
            if (start < 0) {
                continue;
            }
            const qsizetype from = start + open.size();
            qsizetype stop = line.indexOf(close, from);
            if (stop < 0) {
                stop = line.endsWith(QLatin1Char('\r')) ? line.size() - 1 : line.size();
            }
            tasks.append(line.mid(from, stop - from));
        }
    }
    return tasks;
}

QStringList TaskListFile::ParseLegacy(const QByteArray& bytes) {
    QString text = TextCodec::FromWindows1252(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}
