// The main window's event list with 10,000 events: one full refill of the
// shown list (rows rebuilt, sorted by the current column, selection put back,
// pending paint done), and one header click that sorts by the "Event" text.
#include "app/EventListModel.h"
#include "app/EventListView.h"
#include "shared/Clock.h"
#include "shared/DateValue.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

// A user's list: own events over the next years in every layer, some shared,
// some with two-line descriptions, a few belonging to someone else.
struct ListFixture {
    QTemporaryDir dir;
    cSHAREDSettings settings;
    clsLayers layers{settings};
    clsDbXml events{settings, &layers};
    clsDbXml expired{settings, &layers};
    SharedDatabases shared{settings, layers};
    EventListModel model{settings, layers, events, expired, shared};
    EventListView view{&model};

    explicit ListFixture(int count) {
        settings.sSet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Ann")));
        events.SetDBFilename(dir.filePath(QStringLiteral("Events.xml")));
        const DateValue today = TodayDate();
        QRandomGenerator random(1121);
        for (int i = 0; i < count; ++i) {
            auto e = std::make_shared<clsEvent>();
            QString desc = QStringLiteral("Reminder %1 with a description of usual length")
                               .arg(random.bounded(1000000));
            if (i % 20 == 0) {
                desc += QStringLiteral("\r\nand a second line");
            }
            e->setDesc(desc);
            e->setOwner(i % 100 == 0 ? QStringLiteral("Bob") : QStringLiteral("Ann"));
            e->setLayer(static_cast<int16_t>(random.bounded(20)));
            e->SharedEvent = i % 10 == 0;
            e->setDueDate(today + random.bounded(2000));
            e->CalcDaysLeft();
            events.StoreRecord(e, true);
        }
        view.resize(1200, 700);
        view.show();
    }
};

void BM_FillEvents(benchmark::State& state) {
    Clock::setFixed(DateSerial(2026, 11, 21) + TimeSerial(9, 0));
    ListFixture f(static_cast<int>(state.range(0)));
    f.view.FillEvents(EventListModel::kAllLayers, false);
    f.view.selectRow(5000 % f.model.rowCount());
    for (auto _ : state) {
        f.view.FillEvents(EventListModel::kAllLayers, false);
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(f.model.rowCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    Clock::reset();
}
BENCHMARK(BM_FillEvents)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_SortByEventText(benchmark::State& state) {
    Clock::setFixed(DateSerial(2026, 11, 21) + TimeSerial(9, 0));
    ListFixture f(static_cast<int>(state.range(0)));
    f.view.FillEvents(EventListModel::kAllLayers, false);
    for (auto _ : state) {
        f.model.ColumnClick(EventListModel::ColEvent);
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(f.model.rowCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    Clock::reset();
}
BENCHMARK(BM_SortByEventText)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    // The list is a widget: it needs an application, and no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("TARVO_HOME", QFile::encodeName(home.path()));
    QApplication app(argc, argv);
    Log().setNOLOGGING(true);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
