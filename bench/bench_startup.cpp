// Start-up's data path: loading the events and expired files as the program
// does at start, then the day's pass (roll recurring events forward, move out
// passed one-off events, save) and the first alarm check, over 10,000 events.
// Run once with no passed one-off events and once with 100 of them: the pass
// should cost about the same however many events lie in the past.
#include "BenchSeams.h"
#include "engine/clsReminder.h"
#include "shared/AtomicFile.h"
#include "shared/Clock.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

using BenchSeams::NoOpener;
using BenchSeams::SilentDialogs;
using BenchSeams::Windows;

const DateValue kToday = DateSerial(2026, 11, 21);

// count events due in the coming year, the first `passed` of them one-off
// events that fell due two days ago.
void writeEvents(cSHAREDSettings& settings, const QString& path, int count, int passed) {
    clsDbXml db(settings);
    db.SetDBFilename(path);
    for (int i = 0; i < count; ++i) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(QStringLiteral("Reminder number %1 with a description of usual length").arg(i));
        e->setOwner(QStringLiteral("Ann"));
        e->setRecurrenceType(i % 6);
        e->setRecurring(true);
        e->setWeekDays(0x3E);
        e->setDayOfMonth(static_cast<int16_t>(i % 28 + 1));
        e->setMonthNumber(static_cast<int16_t>(i % 6 == 4 ? 0 : 13));
        e->setPeriod(static_cast<int16_t>(i % 6 + 1));
        e->setDayOfWeek(static_cast<int16_t>(i % 7 + 1));
        e->setDaynumber(static_cast<int16_t>(i % 5 + 1));
        e->setDaysWarning(static_cast<int16_t>(i % 8));
        e->setStartDate(kToday - 1);
        e->setDueDate(kToday + 1 + i % 365);
        if (i < passed) {
            e->setRecurring(false);
            e->setDueDate(kToday - 2);
        }
        db.StoreRecord(e, true);
    }
    db.SaveDB();
}

void BM_StartUp(benchmark::State& state) {
    Log().setNOLOGGING(true);
    Clock::setFixed(kToday + TimeSerial(9, 0));
    QTemporaryDir dir;
    cSHAREDSettings settings;
    settings.sSet(QStringLiteral("Owner"), QStringLiteral("Ann"));
    settings.sSet(QStringLiteral("DataPath"), QDir(dir.path()).absolutePath());
    const QString pristine = dir.filePath(QStringLiteral("pristine.xml"));
    writeEvents(settings, pristine, 10000, static_cast<int>(state.range(0)));
    const QString eventsPath = DataFiles::EventsFile(settings);
    QFile pristineFile(pristine);
    pristineFile.open(QIODevice::ReadOnly);
    const QByteArray pristineBytes = pristineFile.readAll();

    for (auto _ : state) {
        state.PauseTiming();
        // Written to the disk before the clock runs, so that no earlier
        // write is flushed inside the timed part.
        AtomicFile::Write(eventsPath, pristineBytes);
        clsLayers layers(settings);
        clsDbXml events(settings, &layers);
        clsDbXml expired(settings, &layers);
        SharedDatabases shared(settings, layers);
        Windows windows;
        NoOpener opener;
        SilentDialogs dialogs;
        ReminderServices services{settings, events, expired, nullptr, windows, opener, dialogs};
        state.ResumeTiming();

        DataFiles::LoadDatabases(settings, events, expired, shared, true);
        ShowReminders(services);
        CheckAlarms(services);
    }
    Log().setNOLOGGING(false);
}
BENCHMARK(BM_StartUp)->ArgName("passed")->Arg(0)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
