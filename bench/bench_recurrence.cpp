// How long the refresh pass spends moving recurring events forward: a mix of
// 10,000 events of all six rules, first due years in the past.
#include "model/clsEvent.h"
#include "shared/Clock.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

std::vector<clsEvent> makeEvents(int count) {
    std::mt19937 rng(42);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    const DateValue today = DateSerial(2026, 11, 21);
    std::vector<clsEvent> events(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        clsEvent& e = events[static_cast<size_t>(i)];
        e.setDesc(QStringLiteral("Event %1").arg(i));
        e.setRecurring(true);
        e.setRecurrenceType(i % 6);
        const DateValue start = today - pick(365, 15 * 365); // one to fifteen years back
        e.setStartDate(start);
        e.setDueDate(start);
        e.setWeekDays(static_cast<int16_t>(pick(1, 127) << 1));
        e.setDayOfMonth(static_cast<int16_t>(pick(1, 31)));
        e.setMonthNumber(static_cast<int16_t>(i % 6 == 4 ? pick(0, 12) : pick(1, 13)));
        e.setPeriod(static_cast<int16_t>(pick(1, 12)));
        e.setDayOfWeek(static_cast<int16_t>(pick(1, 7)));
        e.setDaynumber(static_cast<int16_t>(pick(1, 5)));
    }
    return events;
}

void BM_CalcNextDueDate(benchmark::State& state) {
    Clock::setFixed(DateSerial(2026, 11, 21) + 0.4);
    const std::vector<clsEvent> pristine = makeEvents(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<clsEvent> events = pristine;
        state.ResumeTiming();
        for (clsEvent& e : events) {
            e.CalcNextDueDate();
        }
        benchmark::DoNotOptimize(events.data());
        state.PauseTiming();
        events.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CalcNextDueDate)->Arg(10000)->Unit(benchmark::kMillisecond);

// Once rolled forward, a second pass has nothing to walk.
void BM_CalcNextDueDateRolled(benchmark::State& state) {
    Clock::setFixed(DateSerial(2026, 11, 21) + 0.4);
    std::vector<clsEvent> events = makeEvents(static_cast<int>(state.range(0)));
    for (clsEvent& e : events) {
        e.CalcNextDueDate();
    }
    for (auto _ : state) {
        for (clsEvent& e : events) {
            e.CalcNextDueDate();
        }
        benchmark::DoNotOptimize(events.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CalcNextDueDateRolled)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
