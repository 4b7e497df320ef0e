// Filling the month view for one month of a 10,000-event database: reading
// the view's own copy of "Events.xml" and placing every event, a third of
// them recurring daily or weekly and first due months before the month shown.
#include "engine/MonthCalendar.h"
#include "shared/Clock.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/MonthViewEvents.h"
#include "storage/clsDbXml.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

void writeDatabase(cSHAREDSettings& settings, const QString& path, int count) {
    const DateValue first = DateSerial(2026, 11, 1);
    QRandomGenerator random(1101);
    clsDbXml db(settings);
    db.SetDBFilename(path);
    for (int i = 0; i < count; ++i) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(QStringLiteral("Event number %1 with a description of usual length").arg(i));
        e->setOwner(QStringLiteral("Ann"));
        e->setLayer(static_cast<int16_t>(1 + i % 5));
        if (i % 3 == 0) {
            // Recurring: daily or weekly, first due up to half a year back.
            const bool daily = (i / 3) % 2 == 0;
            e->setRecurring(true);
            e->setRecurrenceType(daily ? clsEvent::EveryXDays : clsEvent::Weekly);
            e->setPeriod(1);
            const DateValue start = first - random.bounded(180);
            e->setStartDate(start);
            e->setDueDate(start);
        } else {
            // One-off events spread over a year around the month.
            e->setDueDate(first - 180 + random.bounded(365));
        }
        db.StoreRecord(e, true);
    }
    db.SaveDB();
}

void BM_LoadMonth(benchmark::State& state) {
    Log().setNOLOGGING(true);
    Clock::setFixed(DateSerial(2026, 11, 21) + TimeSerial(9, 0));
    QTemporaryDir dir;
    cSHAREDSettings settings;
    settings.sSet(QStringLiteral("Owner"), QStringLiteral("Ann"));
    const QString eventsPath = dir.filePath(QStringLiteral("Events.xml"));
    writeDatabase(settings, eventsPath, static_cast<int>(state.range(0)));

    int lines = 0;
    for (auto _ : state) {
        MonthViewEvents source(settings, nullptr);
        source.Load(eventsPath);
        MonthCalendar month(2026, 11);
        month.AddEvents(source.Events(), MonthCalendar::kAllLayers, source.Networked());
        lines = month.TotalLines();
        benchmark::DoNotOptimize(lines);
    }
    state.counters["lines"] = lines;
    state.SetItemsProcessed(state.iterations() * state.range(0));
    Clock::reset();
    Log().setNOLOGGING(false);
}
BENCHMARK(BM_LoadMonth)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
