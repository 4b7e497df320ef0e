#include "shared/cSharedLogging.h"
#include "shared/AppInfo.h"
#include "shared/AppPaths.h"
#include "shared/Clock.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

namespace {

QStringList fileLines(const QString& path) {
    QString text = QString::fromLatin1(ReadFileBytes(path));
    EXPECT_TRUE(text.isEmpty() || text.endsWith("\r\n")) << "lines end in CR LF";
    text.chop(2);
    return text.isEmpty() ? QStringList() : text.split("\r\n");
}

class Logging : public ::testing::Test {
protected:
    TempHome home;
    FixedClock clock{"2026-11-21 14:03"};
    QString logPath = home.file("log.txt");
};

TEST_F(Logging, FreshFileStartsWithTheHeaderAndIsWrittenAsWindows1252) {
    cSharedLogging log(home.path());
    WriteFileBytes(logPath, "old run\r\n");
    log.LogEvent("TVO Startup", true);
    log.LogEvent("caf\u00e9 \u20ac");
    EXPECT_EQ(log.CurrentLogFilename(), logPath);
    const QStringList expected = {
        "1 14:03:00, Log file created ",
        "1 14:03:00, Operating System: " + AppInfo::OperatingSystemText(),
        "1 14:03:00, App: Tarvo",
        "1 14:03:00, Version: " + AppInfo::VersionText(),
        "1 14:03:00, Curdir: " + QDir::toNativeSeparators(QDir::currentPath()),
        "1 14:03:00, App path: " + home.path(),
        "1 14:03:00, TVO Startup",
        "1 14:03:00, caf\u00e9 \u0080", // the euro sign is byte 0x80
    };
    EXPECT_EQ(fileLines(logPath), expected);
    EXPECT_TRUE(AppInfo::VersionText().contains(QRegularExpression("^\\d+\\.\\d+\\.\\d+$")));
}

// Actions wait in memory, each with the time it was added, until the
// twenty-first.
TEST_F(Logging, ActionsAreBufferedUntilTheTwentyFirst) {
    cSharedLogging log(home.path());
    log.LogEvent("start", true);
    const qsizetype before = fileLines(logPath).size();

    Clock::advance(22);
    log.AddAction("plain");
    Clock::advance(95);
    log.AddAction("x", "P", "M");
    log.AddAction("d", QString(), "M");
    for (int i = 4; i <= 20; ++i) {
        log.AddAction(QStringLiteral("a%1").arg(i));
    }
    EXPECT_EQ(fileLines(logPath).size(), before) << "twenty entries stay in memory";
    EXPECT_EQ(log.pendingActions().size(), 20);

    log.AddAction("a21");
    const QStringList lines = fileLines(logPath);
    ASSERT_EQ(lines.size(), before + 21);
    // ... and nothing stays pending.
    EXPECT_EQ(lines.mid(before, 3) << lines.last() << log.pendingActions(),
              QStringList({"1 14:03:22, plain", "1 14:04:57, x in P of module M",
                           "1 14:04:57, d of module M", "1 14:04:57, a21"}));
}

// Without a file name, or while the file cannot be opened, actions wait;
// they reach the file once it can be written, at the latest when the logger goes.
TEST_F(Logging, ActionsWaitUntilTheFileCanBeWritten) {
    {
        cSharedLogging log(home.path());
        for (int i = 0; i < 25; ++i) {
            log.AddAction("a");
        }
        EXPECT_EQ(log.pendingActions().size(), 25);
        EXPECT_FALSE(QFileInfo::exists(logPath));
        log.LogEvent("start", true);
        log.WriteActionsToLog();
        EXPECT_EQ(fileLines(logPath).size(), 7 + 25);

        ASSERT_TRUE(QFile::remove(logPath) && QDir().mkpath(logPath)); // a folder in the way
        log.AddAction("kept");
        log.WriteActionsToLog();
        EXPECT_EQ(log.pendingActions(), QStringList{"kept"});
        ASSERT_TRUE(QDir().rmdir(logPath));
        log.WriteActionsToLog();
        EXPECT_EQ(fileLines(logPath), QStringList{"1 14:03:00, kept"});
        log.AddAction("last words");
    }
    EXPECT_EQ(fileLines(logPath).last(), "1 14:03:00, last words");
}

TEST_F(Logging, NoLoggingWritesAndBuffersNothing) {
    cSharedLogging log(home.path());
    log.setNOLOGGING(true);
    log.LogEvent("start", true);
    for (int i = 0; i < 30; ++i) {
        log.AddAction("a");
    }
    log.WriteActionsToLog();
    EXPECT_TRUE(log.pendingActions().isEmpty());
    EXPECT_TRUE(QDir(home.path()).entryList(QDir::Files).isEmpty()) << "no log file";
}

// A log file that cannot be deleted for a fresh start is appended to, without a header.
TEST_F(Logging, AFileThatCannotBeDeletedIsAppendedTo) {
    cSharedLogging log(home.path());
    const QString folder = home.file("ro");
    QDir().mkpath(folder);
    const QString file = AppPaths::JoinPath(folder, "log.txt");
    WriteFileBytes(file, "1 10:00:00, earlier\r\n");
    const auto all = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    bool appendOnly = false;
    if (QFileInfo(folder).isWritable()) {
        // This user (root) deletes anything in a read-only folder; an
        // append-only file attribute stops even root from deleting it.
        QFile::setPermissions(folder, all);
        appendOnly = QProcess::execute("chattr", {"+a", file}) == 0;
        if (!appendOnly) {
            GTEST_SKIP() << "no way to make an undeletable file here";
        }
    }
    log.LogToFile(file, "appended", true);
    QFile::setPermissions(folder, all);
    if (appendOnly) {
        QProcess::execute("chattr", {"-a", file});
    }
    EXPECT_EQ(fileLines(file), (QStringList{"1 10:00:00, earlier", "1 14:03:00, appended"}));
}

} // namespace
