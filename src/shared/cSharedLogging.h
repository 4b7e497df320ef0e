#pragma once

#include "shared/DateValue.h"

#include <QList>
#include <QString>
#include <QStringList>

// The diagnostic log "log.txt" in the home folder. Two paths: LogEvent writes a
// line at once (start-up progress, notable events); AddAction keeps recent
// actions in memory and appends them in batches, so the error handlers
// of every operation cost no file access per call. Logging never reports its
// own failures: a file that cannot be opened receives nothing, and buffered
// lines wait for a later flush.
class cSharedLogging {
public:
    // programFolder: where the default "log.txt" goes; empty means the home
    // folder (AppPaths), looked up when the file name is first needed.
    explicit cSharedLogging(QString programFolder = {});
    ~cSharedLogging();
    cSharedLogging(const cSharedLogging&) = delete;
    cSharedLogging& operator=(const cSharedLogging&) = delete;

    bool NOLOGGING() const { return m_noLogging; }
    void setNOLOGGING(bool off) { m_noLogging = off; }

    QString CurrentLogFilename() const { return m_fileName; }
    // Uses name when its folder exists; otherwise the program folder followed
    // directly by the name's file part, with no separator in between.
    void OverrideLogFilename(const QString& name);

    // Writes one line now; startNewFile begins a fresh file with its header.
    void LogEvent(const QString& text, bool startNewFile = false);
    void LogToFile(const QString& file, const QString& text, bool startNewFile);

    // Buffers text [+ " in " + procedure] [+ " of module " + module]; the
    // buffer is written out when its 21st entry arrives.
    void AddAction(const QString& text, const QString& procedure = {}, const QString& module = {});
    void WriteActionsToLog();

    // The buffered entries, oldest first (for tests and the error report).
    QStringList pendingActions() const { return m_actions; }

    // "1 HH:mm:ss, text": the file handle number, the time, the text.
    static QString FormatLogLine(int fileNumber, const QString& text, DateValue time);

    static constexpr int kBatchSize = 20;

private:
    void SetDefaultLogFilename();
    QString programFolder() const;
    bool appendLines(const QString& file, const QStringList& lines);

    bool m_noLogging = false;
    QString m_programFolder;
    QString m_fileName;
    QStringList m_actions;
    QList<DateValue> m_actionTimes;
};

// The process-wide logger, reachable from every operation's error handling.
cSharedLogging& Log();
