#include "shared/cSharedLogging.h"
#include "shared/AppInfo.h"
#include "shared/AppPaths.h"
#include "shared/Clock.h"
#include "shared/RuntimeError.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

namespace {

QStringList fileLines(const QString& path) {
    QString text = QString::fromLatin1(ReadFileBytes(path));
    EXPECT_TRUE(text.isEmpty() || text.endsWith(QStringLiteral("\r\n"))) << "lines end in CR LF";
    text.chop(2);
    return text.isEmpty() ? QStringList() : text.split(QStringLiteral("\r\n"));
}

class Logging : public ::testing::Test {
protected:
    TempHome home;
    FixedClock clock{QStringLiteral("2026-11-21 14:03")};
    QString logPath = home.file(QStringLiteral("log.txt"));
};

TEST_F(Logging, FormatLogLineLayout) {
    const DateValue t = D(QStringLiteral("2009-03-05 14:03")) + TimeSerial(0, 0, 22);
    EXPECT_EQ(cSharedLogging::FormatLogLine(1, QStringLiteral("hello"), t),
              QStringLiteral("1 14:03:22, hello"));
    EXPECT_EQ(cSharedLogging::FormatLogLine(3, QString(), D(QStringLiteral("2009-03-05 09:00"))),
              QStringLiteral("3 09:00:00, "));
}

TEST_F(Logging, FreshFileStartsWithTheHeader) {
    cSharedLogging log(home.path());
    WriteFileBytes(logPath, "old run\r\n");
    log.LogEvent(QStringLiteral("TVO Startup"), true);
    log.LogEvent(QStringLiteral("second"));
    EXPECT_EQ(log.CurrentLogFilename(), logPath);

    const QStringList lines = fileLines(logPath);
    ASSERT_EQ(lines.size(), 8);
    const QStringList expected = {
        QStringLiteral("1 14:03:00, Log file created "),
        QStringLiteral("1 14:03:00, Operating System: ") + AppInfo::OperatingSystemText(),
        QStringLiteral("1 14:03:00, App: Tarvo"),
        QStringLiteral("1 14:03:00, Version: ") + AppInfo::VersionText(),
        QStringLiteral("1 14:03:00, Curdir: ") + QDir::toNativeSeparators(QDir::currentPath()),
        QStringLiteral("1 14:03:00, App path: ") + home.path(),
        QStringLiteral("1 14:03:00, TVO Startup"),
        QStringLiteral("1 14:03:00, second"),
    };
    EXPECT_EQ(lines, expected);
    EXPECT_TRUE(AppInfo::VersionText().contains(
        QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$"))));
}

TEST_F(Logging, ActionsAreBufferedUntilTheTwentyFirst) {
    cSharedLogging log(home.path());
    log.LogEvent(QStringLiteral("start"), true);
    const int before = static_cast<int>(fileLines(logPath).size());

    log.AddAction(QStringLiteral("plain"));
    log.AddAction(QStringLiteral("x"), QStringLiteral("P"), QStringLiteral("M"));
    log.AddDebug(QStringLiteral("d"), QString(), QStringLiteral("M"));
    EXPECT_EQ(log.pendingActions(),
              (QStringList{QStringLiteral("plain"), QStringLiteral("x in P of module M"),
                           QStringLiteral("DBG: d of module M")}));
    EXPECT_EQ(log.CurrentAction(), QStringLiteral("DBG: d of module M"));

    for (int i = 4; i <= 20; ++i) {
        log.AddAction(QStringLiteral("a%1").arg(i));
    }
    EXPECT_EQ(fileLines(logPath).size(), before) << "twenty entries stay in memory";
    EXPECT_EQ(log.pendingActions().size(), 20);

    log.AddAction(QStringLiteral("a21"));
    const QStringList lines = fileLines(logPath);
    ASSERT_EQ(lines.size(), before + 21);
    EXPECT_EQ(lines.at(before), QStringLiteral("1 14:03:00, plain"));
    EXPECT_EQ(lines.at(before + 1), QStringLiteral("1 14:03:00, x in P of module M"));
    EXPECT_EQ(lines.last(), QStringLiteral("1 14:03:00, a21"));
    EXPECT_TRUE(log.pendingActions().isEmpty());
    EXPECT_EQ(log.CurrentAction(), QString());
}

TEST_F(Logging, EachActionKeepsTheTimeItWasAdded) {
    cSharedLogging log(home.path());
    log.LogEvent(QStringLiteral("start"), true);
    log.AddAction(QStringLiteral("early"));
    Clock::advance(95);
    log.WriteActionsToLog();
    EXPECT_EQ(fileLines(logPath).last(), QStringLiteral("1 14:03:00, early"));
}

TEST_F(Logging, LogErrorWritesAtOnceAndFlushes) {
    cSharedLogging log(home.path());
    log.LogEvent(QStringLiteral("start"), true);
    log.AddAction(QStringLiteral("before"));
    log.LogError(RuntimeError::fileNotFound(), QStringLiteral("frmMain"), QStringLiteral("Save"));
    const QStringList lines = fileLines(logPath);
    EXPECT_EQ(
        lines.mid(lines.size() - 2),
        (QStringList{QStringLiteral("1 14:03:00, Error 53 (File not found) in frmMain of Save"),
                     QStringLiteral("1 14:03:00, before")}));
}

TEST_F(Logging, BufferedActionsReachTheFileOnDestruction) {
    {
        cSharedLogging log(home.path());
        log.LogEvent(QStringLiteral("start"), true);
        log.AddAction(QStringLiteral("last words"));
    }
    EXPECT_EQ(fileLines(logPath).last(), QStringLiteral("1 14:03:00, last words"));
}

TEST_F(Logging, WithoutAFileNameActionsWaitInMemory) {
    cSharedLogging log(home.path());
    for (int i = 0; i < 25; ++i) {
        log.AddAction(QStringLiteral("a"));
    }
    EXPECT_EQ(log.pendingActions().size(), 25);
    EXPECT_FALSE(QFileInfo::exists(logPath));
    log.LogEvent(QStringLiteral("start"), true);
    log.WriteActionsToLog();
    EXPECT_EQ(fileLines(logPath).size(), 7 + 25);
}

TEST_F(Logging, ActionsWaitWhileTheFileCannotBeOpened) {
    cSharedLogging log(home.path());
    log.LogEvent(QStringLiteral("start"), true);
    ASSERT_TRUE(QFile::remove(logPath) && QDir().mkpath(logPath)); // a folder in the way
    log.AddAction(QStringLiteral("kept"));
    log.WriteActionsToLog();
    EXPECT_EQ(log.pendingActions(), QStringList{QStringLiteral("kept")});
    ASSERT_TRUE(QDir().rmdir(logPath));
    log.WriteActionsToLog();
    EXPECT_EQ(fileLines(logPath), QStringList{QStringLiteral("1 14:03:00, kept")});
}

TEST_F(Logging, NoLoggingWritesAndBuffersNothing) {
    cSharedLogging log(home.path());
    log.setNOLOGGING(true);
    log.LogEvent(QStringLiteral("start"), true);
    for (int i = 0; i < 30; ++i) {
        log.AddAction(QStringLiteral("a"));
    }
    log.AddDebug(QStringLiteral("d"));
    log.LogError(6, QStringLiteral("Overflow"), QStringLiteral("A"), QStringLiteral("B"));
    log.WriteActionsToLog();
    EXPECT_TRUE(log.pendingActions().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(logPath));
    EXPECT_TRUE(QDir(home.path()).entryList(QDir::Files).isEmpty());
}

TEST_F(Logging, AFileThatCannotBeDeletedIsAppendedTo) {
    // A log name that is a non-empty folder cannot be deleted: the new-file
    // request falls back to appending, without a header.
    cSharedLogging log(home.path());
    const QString dirLike = home.file(QStringLiteral("stuck"));
    QDir().mkpath(dirLike + QStringLiteral("/inner"));
    log.LogToFile(dirLike, QStringLiteral("x"), true);
    EXPECT_TRUE(QFileInfo(dirLike).isDir()) << "nothing was replaced";

    // A file in a read-only folder cannot be deleted: it is appended to, no header.
    const QString folder = home.file(QStringLiteral("ro"));
    QDir().mkpath(folder);
    const QString file = AppPaths::JoinPath(folder, QStringLiteral("log.txt"));
    const QString probe = AppPaths::JoinPath(folder, QStringLiteral("probe"));
    WriteFileBytes(file, "1 10:00:00, earlier\r\n");
    WriteFileBytes(probe, "x");
    const auto all = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    bool appendOnly = false;
    if (QFile::remove(probe)) {
        // This user (root) deletes anything in a read-only folder; an
        // append-only file attribute stops even root from deleting it.
        QFile::setPermissions(folder, all);
        appendOnly = QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("+a"), file}) == 0;
        if (!appendOnly) {
            GTEST_SKIP() << "no way to make an undeletable file here";
        }
    }
    log.LogToFile(file, QStringLiteral("appended"), true);
    QFile::setPermissions(folder, all);
    if (appendOnly) {
        QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("-a"), file});
    }
    EXPECT_EQ(fileLines(file), (QStringList{QStringLiteral("1 10:00:00, earlier"),
                                            QStringLiteral("1 14:03:00, appended")}));
}

TEST_F(Logging, OverrideKeepsNamesInExistingFolders) {
    cSharedLogging log(home.path());
    const QString inHome = home.file(QStringLiteral("other.txt"));
    log.OverrideLogFilename(inHome);
    EXPECT_EQ(log.CurrentLogFilename(), inHome);
    log.OverrideLogFilename(QStringLiteral("/no/such/folder/x.txt"));
    // The folder and the file part run together with no separator.
    EXPECT_EQ(log.CurrentLogFilename(), home.path() + QStringLiteral("x.txt"));
}

TEST_F(Logging, TextIsWrittenAsWindows1252) {
    cSharedLogging log(home.path());
    log.LogEvent(QStringLiteral("caf\u00e9 \u20ac"), true);
    EXPECT_TRUE(ReadFileBytes(logPath).endsWith(QByteArray("caf\xe9 \x80\r\n")));
}

} // namespace
