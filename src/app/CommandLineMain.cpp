#include "app/CommandLineMain.h"

#include "app/SingleInstance.h"
#include "engine/CalendarTransfer.h"
#include "engine/CommandLineSync.h"
#include "engine/CommandLineWork.h"
#include "engine/EventEditorInput.h"
#include "shared/AppInfo.h"
#include "shared/AppPaths.h"
#include "shared/Clock.h"
#include "shared/OwnerId.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/EventFileSnapshot.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

// A --import may take a while in the running copy (a large calendar).
constexpr int kReplyTimeoutMs = 120000;
constexpr int kDefaultAgendaDays = 7;
constexpr int kMaxAgendaDays = 3660;

void out(const QString& text) {
    const QByteArray bytes = text.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

int fail(int code, const QString& message) {
    const QByteArray bytes = message.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    return code;
}

int report(const CommandResult& result) {
    if (result.exitCode == CommandResult::kDone) {
        out(result.message);
        return result.exitCode;
    }
    return fail(result.exitCode, result.message);
}

// A data file that exists but cannot be opened: its message, else nothing.
std::optional<QString> unreadable(const QString& path) {
    QFile file(path);
    if (!file.exists() || file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return QStringLiteral("Cannot read ") + path + QStringLiteral(": ") + file.errorString();
}

// Tarvo's settings and category table, read from its home folder.
struct Home {
    Home()
        : layers(settings), events(settings, &layers), expired(settings, &layers),
          shared(settings, layers) {}

    // False (with the message) when a file cannot be read.
    std::optional<QString> LoadSettings() {
        settingsFile = AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("Tvo.ini"));
        if (auto message = unreadable(settingsFile)) {
            return message;
        }
        settings.LoadSettings(settingsFile);
        layers.LoadLayers();
        return unreadable(DataFiles::EventsFile(settings));
    }

    int DateStyle() const { return settings.sGet(QStringLiteral("DateStyle"), 1).toInt16(); }

    EventStore Store() { return {settings, settingsFile, layers, events}; }

    cSHAREDSettings settings;
    QString settingsFile;
    clsLayers layers;
    clsDbXml events;
    clsDbXml expired;
    SharedDatabases shared;
};

int agenda(const QStringList& positional) {
    int days = kDefaultAgendaDays;
    if (!positional.isEmpty()) {
        bool ok = false;
        days = positional.first().toInt(&ok);
        if (!ok || days < 0 || days > kMaxAgendaDays || positional.size() > 1) {
            return fail(CommandResult::kBadInput,
                        QStringLiteral("--agenda takes a number of days from 0 to ") +
                            QString::number(kMaxAgendaDays) + QLatin1Char('.'));
        }
    }
    Home home;
    if (auto message = home.LoadSettings()) {
        return fail(CommandResult::kFileError, *message);
    }
    // Only the events file (and in networked mode the other users' shared
    // events: the shared folder's files, or the calendar server's cache) is
    // read: no expired list, no backup, no log.
    const bool networked = DataFiles::Networked(home.settings);
    const DateValue today = TodayDate();
    const QString owner = home.events.CurrentOwner();
    const QList<EventPtr> events = EventFileSnapshot::Read(DataFiles::EventsFile(home.settings),
                                                           owner, networked, today + days);
    QList<EventPtr> others;
    if (networked) {
        // Other users' category names take only slots free of own events.
        home.layers.setOwnEventsTest([&events](int layer) {
            return std::any_of(events.cbegin(), events.cend(),
                               [layer](const EventPtr& e) { return e->Layer() == layer; });
        });
        home.shared.ReloadSharedSet();
        // One's own shared events are among one's own events already.
        for (const EventPtr& e : home.shared.SharedSet().Events()) {
            if (!OwnerId::Same(e->Owner(), owner)) {
                others.append(e);
            }
        }
    }
    const QStringList lines =
        CommandLineWork::Agenda(events, others, home.layers, today, days, home.DateStyle());
    if (lines.isEmpty()) {
        out(QStringLiteral("Nothing due from ") +
            cSharedDateSubs::ForDateStyle(home.DateStyle()).ShortFormatDate(today) +
            QStringLiteral(" to ") +
            cSharedDateSubs::ForDateStyle(home.DateStyle()).ShortFormatDate(today + days) +
            QLatin1Char('.'));
    } else {
        out(lines.join(QLatin1Char('\n')));
    }
    return CommandResult::kDone;
}

int exportTo(const QString& file) {
    Home home;
    if (auto message = home.LoadSettings()) {
        return fail(CommandResult::kFileError, *message);
    }
    home.events.setNetworked(DataFiles::Networked(home.settings));
    home.events.LoadDB(DataFiles::EventsFile(home.settings));
    return report(CalendarTransfer::Export(home.events.Events(), home.layers,
                                           QFileInfo(file).absoluteFilePath()));
}

// One sync of the events database as loaded at start, with its result in the log.
CalDavSyncResult syncHome(Home& home) {
    CalDavSyncResult result = CommandLineSync::Run(home.settings, home.events.Events());
    Log().AddAction(QStringLiteral("Command line sync: ") +
                        (result.ok ? result.Summary() : result.error),
                    QStringLiteral("RunCommandLine"), QStringLiteral("CommandLineMain"));
    Log().WriteActionsToLog();
    return result;
}

int syncNow() {
    Home home;
    if (auto message = home.LoadSettings()) {
        return fail(CommandResult::kFileError, *message);
    }
    Log().LogEvent(QStringLiteral("Command line: sync"));
    DataFiles::LoadDatabases(home.settings, home.events, home.expired, home.shared);
    return report(CommandLineSync::SyncResult(syncHome(home)));
}

// --add and --import: the running copy does it when there is one (and, with
// a calendar server, its own sync follows); otherwise the work is done here
// and in the calendar-server mode a sync follows.
int storeWork(const QByteArray& request) {
    if (const std::optional<QByteArray> reply = SingleInstance::Request(request, kReplyTimeoutMs)) {
        return report(CommandLineWork::ReplyResult(*reply));
    }
    Home home;
    if (auto message = home.LoadSettings()) {
        return fail(CommandResult::kFileError, *message);
    }
    Log().LogEvent(QStringLiteral("Command line: ") + CommandLineWork::RequestSummary(request));
    DataFiles::LoadDatabases(home.settings, home.events, home.expired, home.shared);
    EventStore store = home.Store();
    const CommandResult work =
        CommandLineWork::ReplyResult(CommandLineWork::Perform(request, store, TodayDate()));
    Log().WriteActionsToLog();
    if (work.exitCode != CommandResult::kDone || !DataFiles::CalDavMode(home.settings)) {
        return report(work);
    }
    out(work.message);
    return report(CommandLineSync::AfterChange(syncHome(home)));
}

} // namespace

bool IsCommandLine(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg.startsWith("--") || arg == "-h" || arg == "-v" || arg == "-?") {
            return true;
        }
    }
    return false;
}

int RunCommandLine(QCoreApplication& app) {
    QCoreApplication::setApplicationName(AppInfo::Title());
    QCoreApplication::setApplicationVersion(AppInfo::VersionText());
    if (!Clock::initFromEnvironment()) {
        fail(0, QStringLiteral("Ignoring ") + QString::fromLatin1(Clock::kEnvironmentVariable) +
                    QStringLiteral(": expected \"YYYY-MM-DD HH:MM\"."));
    }

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Tarvo, a reminder and calendar program. Without options it opens its "
                       "window; with one of these it does the work and ends."));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version."));
    const QCommandLineOption agendaOption(
        QStringLiteral("agenda"),
        QStringLiteral("List every event due from today through DAYS days ahead (default 7); "
                       "networked, other users' shared events too, with their names."));
    const QCommandLineOption syncOption(
        QStringLiteral("sync"),
        QStringLiteral("Networked through a CalDAV server: publish your shared events and read "
                       "the others' now (the password from the secret store or "
                       "TARVO_CALDAV_PASSWORD)."));
    const QCommandLineOption exportOption(QStringLiteral("export"),
                                          QStringLiteral("Write all events to an iCalendar file."),
                                          QStringLiteral("FILE"));
    const QCommandLineOption importOption(QStringLiteral("import"),
                                          QStringLiteral("Add the events of an iCalendar file."),
                                          QStringLiteral("FILE"));
    const QCommandLineOption addOption(QStringLiteral("add"),
                                       QStringLiteral("Add a one-off event with this description."),
                                       QStringLiteral("description"));
    const QCommandLineOption dateOption(
        QStringLiteral("date"),
        QStringLiteral("With --add: its day, in your date style or YYYY-MM-DD."),
        QStringLiteral("DATE"));
    const QCommandLineOption timeOption(
        QStringLiteral("time"), QStringLiteral("With --add: its alarm time, 24-hour HH:MM."),
        QStringLiteral("HH:MM"));
    const QCommandLineOption categoryOption(QStringLiteral("category"),
                                            QStringLiteral("With --add: its category."),
                                            QStringLiteral("NAME"));
    parser.addOptions({help, version, agendaOption, syncOption, exportOption, importOption,
                       addOption, dateOption, timeOption, categoryOption});
    parser.addPositionalArgument(QStringLiteral("DAYS"),
                                 QStringLiteral("With --agenda: how many days ahead."),
                                 QStringLiteral("[DAYS]"));
    if (!parser.parse(app.arguments())) {
        return fail(CommandResult::kBadInput, parser.errorText());
    }
    if (parser.isSet(help)) {
        out(parser.helpText().trimmed());
        return CommandResult::kDone;
    }
    if (parser.isSet(version)) {
        out(AppInfo::Title() + QLatin1Char(' ') + AppInfo::VersionText());
        return CommandResult::kDone;
    }

    const int actions = int(parser.isSet(agendaOption)) + int(parser.isSet(syncOption)) +
                        int(parser.isSet(exportOption)) + int(parser.isSet(importOption)) +
                        int(parser.isSet(addOption));
    if (actions != 1) {
        return fail(CommandResult::kBadInput,
                    QStringLiteral("Give one of --agenda, --sync, --export, --import or --add "
                                   "(tarvo --help lists them)."));
    }
    const bool addParts =
        parser.isSet(dateOption) || parser.isSet(timeOption) || parser.isSet(categoryOption);
    if (addParts && !parser.isSet(addOption)) {
        return fail(CommandResult::kBadInput,
                    QStringLiteral("--date, --time and --category go with --add."));
    }
    if (!parser.isSet(agendaOption) && !parser.positionalArguments().isEmpty()) {
        return fail(CommandResult::kBadInput,
                    QStringLiteral("Unexpected argument: ") + parser.positionalArguments().first());
    }

    if (parser.isSet(agendaOption)) {
        return agenda(parser.positionalArguments());
    }
    if (parser.isSet(syncOption)) {
        return syncNow();
    }
    if (parser.isSet(exportOption)) {
        return exportTo(parser.value(exportOption));
    }
    if (parser.isSet(importOption)) {
        return storeWork(CommandLineWork::ImportRequestLine(
            QFileInfo(parser.value(importOption)).absoluteFilePath()));
    }
    if (!parser.isSet(dateOption)) {
        return fail(CommandResult::kBadInput, QStringLiteral("--add needs --date DATE."));
    }
    return storeWork(
        CommandLineWork::AddRequestLine({parser.value(addOption), parser.value(dateOption),
                                         parser.value(timeOption), parser.value(categoryOption)}));
}
