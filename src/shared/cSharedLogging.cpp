#include "shared/cSharedLogging.h"

#include "shared/AppInfo.h"
#include "shared/AppPaths.h"
#include "shared/TextCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
// The run time's file handle number; every log write uses the first handle.
constexpr int kFileNumber = 1;
} // namespace

cSharedLogging::cSharedLogging(QString programFolder) : m_programFolder(std::move(programFolder)) {}

cSharedLogging::~cSharedLogging() {
    WriteActionsToLog();
}

QString cSharedLogging::programFolder() const {
    return m_programFolder.isEmpty() ? AppPaths::HomeFolder() : m_programFolder;
}

void cSharedLogging::SetDefaultLogFilename() {
    m_fileName = AppPaths::JoinPath(programFolder(), QStringLiteral("log.txt"));
}

void cSharedLogging::OverrideLogFilename(const QString& name) {
    if (m_noLogging) {
        return;
    }
    const QFileInfo info(name);
    if (QDir(info.path()).exists() && !info.path().isEmpty()) {
        m_fileName = name;
    } else {
        // Folder and file part run together, exactly as the older program did.
        m_fileName = programFolder() + info.fileName();
    }
}

QString cSharedLogging::FormatLogLine(int fileNumber, const QString& text, DateValue time) {
    return QString::number(fileNumber) + QLatin1Char(' ') +
           ToQDateTime(time).time().toString(QStringLiteral("HH:mm:ss")) + QStringLiteral(", ") +
           text;
}

void cSharedLogging::LogEvent(const QString& text, bool startNewFile) {
    if (m_noLogging) {
        return;
    }
    if (m_fileName.isEmpty()) {
        SetDefaultLogFilename();
    }
    LogToFile(m_fileName, text, startNewFile);
}

bool cSharedLogging::appendLines(const QString& file, const QStringList& lines) {
    QFile f(file);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return false;
    }
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += TextCodec::ToWindows1252(line);
        bytes += TextCodec::kLineEnd;
    }
    return f.write(bytes) == bytes.size();
}

void cSharedLogging::LogToFile(const QString& file, const QString& text, bool startNewFile) {
    if (m_noLogging) {
        return;
    }
    if (startNewFile) {
        QFile::remove(file);
        if (QFileInfo::exists(file)) {
            startNewFile = false; // cannot delete it: append to it instead
        }
    }
    const DateValue now = Now();
    QStringList lines;
    if (startNewFile) {
        lines << FormatLogLine(kFileNumber, QStringLiteral("Log file created "), now)
              << FormatLogLine(
                     kFileNumber,
                     QStringLiteral("Operating System: ") + AppInfo::OperatingSystemText(), now)
              << FormatLogLine(kFileNumber, QStringLiteral("App: ") + AppInfo::Title(), now)
              << FormatLogLine(kFileNumber, QStringLiteral("Version: ") + AppInfo::VersionText(),
                               now)
              << FormatLogLine(kFileNumber,
                               QStringLiteral("Curdir: ") +
                                   QDir::toNativeSeparators(QDir::currentPath()),
                               now)
              << FormatLogLine(kFileNumber, QStringLiteral("App path: ") + programFolder(), now);
    }
    lines << FormatLogLine(kFileNumber, text, now);
    appendLines(file, lines);
}

void cSharedLogging::AddAction(const QString& text, const QString& procedure,
                               const QString& module) {
    if (m_noLogging) {
        return;
    }
    QString entry = text;
    if (!procedure.isEmpty()) {
        entry += QStringLiteral(" in ") + procedure;
    }
    if (!module.isEmpty()) {
        entry += QStringLiteral(" of module ") + module;
    }
    m_actions.append(entry);
    m_actionTimes.append(Now());
    if (m_actions.size() > kBatchSize) {
        WriteActionsToLog();
    }
}

void cSharedLogging::WriteActionsToLog() {
    if (m_noLogging || m_actions.isEmpty() || m_fileName.isEmpty()) {
        return; // no file yet: keep the entries for a later flush
    }
    QStringList lines;
    lines.reserve(m_actions.size());
    for (qsizetype i = 0; i < m_actions.size(); ++i) {
        lines << FormatLogLine(kFileNumber, m_actions.at(i), m_actionTimes.at(i));
    }
    if (appendLines(m_fileName, lines)) {
        m_actions.clear();
        m_actionTimes.clear();
    }
}

cSharedLogging& Log() {
    static cSharedLogging instance;
    return instance;
}
