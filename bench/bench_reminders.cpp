// One new-day refresh pass over 10,000 events: roll recurring events that
// fell due, move out passed one-off events, list today's and coming-up
// reminders, check the minute's alarms, with the saves of both databases.
#include "BenchSeams.h"
#include "engine/clsReminder.h"
#include "shared/Clock.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

using BenchSeams::NoOpener;
using BenchSeams::SilentDialogs;
using BenchSeams::Windows;

// A day's realistic database: mostly future events of all six rules, about
// 2% recurring events that fell due yesterday, five passed one-off events,
// some due today or within their warning days, some with alarms.
void writeDatabase(cSHAREDSettings& settings, const QString& path, int count) {
    const DateValue today = DateSerial(2026, 11, 21);
    QRandomGenerator random(1121);
    clsDbXml db(settings);
    db.SetDBFilename(path);
    for (int i = 0; i < count; ++i) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(QStringLiteral("Reminder number %1 with a description of usual length").arg(i));
        e->setOwner(QStringLiteral("Ann"));
        const int type = i % 6;
        e->setRecurrenceType(type);
        e->setRecurring(true);
        e->setWeekDays(static_cast<int16_t>((random.bounded(127) + 1) << 1));
        e->setDayOfMonth(static_cast<int16_t>(random.bounded(28) + 1));
        e->setMonthNumber(static_cast<int16_t>(type == 4 ? 0 : 13));
        e->setPeriod(static_cast<int16_t>(random.bounded(6) + 1));
        e->setDayOfWeek(static_cast<int16_t>(random.bounded(7) + 1));
        e->setDaynumber(static_cast<int16_t>(random.bounded(5) + 1));
        e->setDaysWarning(static_cast<int16_t>(random.bounded(8)));
        e->setStartDate(today - 1);
        e->setDueDate(today + 1 + random.bounded(365));
        if (i % 50 == 0) {
            e->setDueDate(today - 1); // fell due yesterday: rolled forward
        } else if (i % 97 == 0) {
            e->setDueDate(today);
            e->setAlarmSet(true);
            e->setAlarmTime(TimeSerial(9, 0));
        }
        if (i < 5) {
            e->setRecurring(false); // passed one-off events leave the database
            e->setDueDate(today - 2);
        }
        db.StoreRecord(e, true);
    }
    db.SaveDB();
}

void BM_RefreshPass(benchmark::State& state) {
    Log().setNOLOGGING(true);
    Clock::setFixed(DateSerial(2026, 11, 21) + TimeSerial(9, 0));
    QTemporaryDir dir;
    cSHAREDSettings settings;
    settings.sSet(QStringLiteral("Owner"), QStringLiteral("Ann"));
    const QString pristine = dir.filePath(QStringLiteral("pristine.xml"));
    const QString eventsPath = dir.filePath(QStringLiteral("Events.xml"));
    writeDatabase(settings, pristine, static_cast<int>(state.range(0)));

    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(eventsPath);
        QFile::copy(pristine, eventsPath);
        QFile::remove(dir.filePath(QStringLiteral("Expired.xml")));
        clsDbXml events(settings);
        events.SetDBFilename(eventsPath);
        events.LoadDB(eventsPath);
        clsDbXml expired(settings);
        expired.SetDBFilename(dir.filePath(QStringLiteral("Expired.xml")));
        Windows windows;
        NoOpener opener;
        SilentDialogs dialogs;
        ReminderServices services{settings, events, expired, nullptr, windows, opener, dialogs};
        state.ResumeTiming();

        ShowReminders(services);
        CheckAlarms(services);

        state.PauseTiming();
        benchmark::DoNotOptimize(windows.made.size());
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    Log().setNOLOGGING(false);
}
BENCHMARK(BM_RefreshPass)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
