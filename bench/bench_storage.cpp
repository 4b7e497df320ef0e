// Event database speed: loading and saving a realistic file, storing new
// events, against reading/writing the same bytes raw and against a general
// XML parser building its tree from them.
#include "model/clsEvent.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QStringList>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#ifdef TARVO_HAVE_PUGIXML
#include <pugixml.hpp>
#endif

#include <map>
#include <memory>
#include <vector>

namespace {

const QStringList kWords = {QStringLiteral("Dentist"),   QStringLiteral("appointment"),
                            QStringLiteral("call"),      QStringLiteral("Mum"),
                            QStringLiteral("about"),     QStringLiteral("the"),
                            QStringLiteral("birthday"),  QStringLiteral("party"),
                            QStringLiteral("pay"),       QStringLiteral("rent"),
                            QStringLiteral("invoice"),   QStringLiteral("#4711"),
                            QStringLiteral("team"),      QStringLiteral("meeting"),
                            QStringLiteral("room"),      QStringLiteral("4,"),
                            QStringLiteral("10:30"),     QStringLiteral("bring"),
                            QStringLiteral("caf\u00e9"), QStringLiteral("r\u00e9sum\u00e9"),
                            QStringLiteral("&"),         QStringLiteral("renew"),
                            QStringLiteral("car"),       QStringLiteral("insurance"),
                            QStringLiteral("(annual)"),  QStringLiteral("back-up"),
                            QStringLiteral("server"),    QStringLiteral("100%"),
                            QStringLiteral("check"),     QStringLiteral("<urgent>")};

// Events of all six recurrence kinds, with descriptions of 20 to 120 characters.
std::vector<EventPtr> MakeEvents(int count) {
    QRandomGenerator random(20090305);
    std::vector<EventPtr> events;
    events.reserve(count);
    for (int i = 0; i < count; ++i) {
        auto e = std::make_shared<clsEvent>();
        const int length = 20 + static_cast<int>(random.bounded(101));
        QString desc;
        while (desc.size() < length) {
            desc += kWords.at(static_cast<int>(random.bounded(kWords.size()))) + QLatin1Char(' ');
        }
        desc.truncate(length);
        e->setDesc(desc);
        e->setOwner(QStringLiteral("Ann"));
        const int type = i % 6;
        e->setRecurrenceType(type);
        e->setRecurring(type != 5 || i % 4 != 0);
        e->setDueDate(40000.0 + random.bounded(4000));
        e->setStartDate(39000.0 + random.bounded(1000));
        e->setWeekDays(static_cast<int16_t>(random.bounded(1, 255) & 0xFE));
        e->setDayOfMonth(static_cast<int16_t>(random.bounded(1, 32)));
        e->setMonthNumber(static_cast<int16_t>(random.bounded(type == 4 ? 0 : 1, 14)));
        e->setDaynumber(static_cast<int16_t>(random.bounded(1, 6)));
        e->setDayOfWeek(static_cast<int16_t>(random.bounded(1, 8)));
        e->setPeriod(static_cast<int16_t>(random.bounded(1, 30)));
        e->setDaysWarning(static_cast<int16_t>(random.bounded(15)));
        e->setLayer(static_cast<int16_t>(random.bounded(20)));
        e->SharedLayerName = QStringLiteral("Layer %1").arg(e->Layer());
        if (i % 3 == 0) {
            e->setAlarmSet(true);
            e->setDueTime(random.bounded(1440) / 1440.0);
            e->setMinutesWarning(static_cast<int16_t>(random.bounded(61)));
            e->setAlarmTime(e->DueTime() - e->MinutesWarning() / 1440.0);
        }
        if (i % 7 == 0) {
            e->PlayWav = true;
            e->WavFile = QStringLiteral("/home/ann/sounds/chime.wav");
        }
        if (i % 11 == 0) {
            e->SharedEvent = true;
            e->ShareWithSpecific = true;
            e->ShareNames = QStringLiteral("Bob\r\nCarl\r\n");
        }
        if (i % 13 == 0) {
            e->ExecFile = true;
            e->Filename = QStringLiteral("/home/ann/bin/backup.sh");
        }
        events.push_back(std::move(e));
    }
    return events;
}

// A folder with "Events<N>.xml" written by the database itself, per size.
struct Fixture {
    QTemporaryDir dir;
    cSHAREDSettings settings;
    clsLayers layers{settings};
    std::map<int, QString> files;

    Fixture() {
        settings.sSet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Ann")));
        Log().setNOLOGGING(true);
    }

    QString FileFor(int count) {
        auto it = files.find(count);
        if (it != files.end()) {
            return it->second;
        }
        const QString path = QDir(dir.path()).filePath(QStringLiteral("Events%1.xml").arg(count));
        clsDbXml db(settings, &layers);
        db.SetDBFilename(path);
        for (const EventPtr& e : MakeEvents(count)) {
            db.StoreRecord(e);
        }
        db.SaveDB();
        files.emplace(count, path);
        return path;
    }

    QByteArray BytesFor(int count) {
        QFile f(FileFor(count));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_LoadDB(benchmark::State& state) {
    const QString path = fixture().FileFor(static_cast<int>(state.range(0)));
    clsDbXml db(fixture().settings, &fixture().layers);
    for (auto _ : state) {
        db.LoadDB(path);
        benchmark::DoNotOptimize(db.RecordCount());
    }
    if (db.RecordCount() != state.range(0)) {
        state.SkipWithError("wrong number of events loaded");
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
}
BENCHMARK(BM_LoadDB)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_SaveDB(benchmark::State& state) {
    const QString source = fixture().FileFor(static_cast<int>(state.range(0)));
    clsDbXml db(fixture().settings, &fixture().layers);
    db.LoadDB(source);
    db.SetDBFilename(QDir(fixture().dir.path()).filePath(QStringLiteral("Saved.xml")));
    for (auto _ : state) {
        db.SaveDB();
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(source).size());
}
BENCHMARK(BM_SaveDB)->Arg(10000)->Unit(benchmark::kMillisecond);

// Storing new events one by one into an empty database, codes drawn and
// checked for uniqueness each time. 1000 is there to show the growth.
void BM_StoreNew(benchmark::State& state) {
    const std::vector<EventPtr> events = MakeEvents(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        for (const EventPtr& e : events) {
            e->IDCode.clear();
        }
        auto db = std::make_unique<clsDbXml>(fixture().settings, &fixture().layers);
        state.ResumeTiming();
        for (const EventPtr& e : events) {
            db->StoreRecord(e);
        }
        benchmark::DoNotOptimize(db->RecordCount());
        state.PauseTiming();
        db.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_StoreNew)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_RawRead(benchmark::State& state) {
    const QString path = fixture().FileFor(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QFile f(path);
        f.open(QIODevice::ReadOnly);
        QByteArray bytes = f.readAll();
        benchmark::DoNotOptimize(bytes.data());
    }
}
BENCHMARK(BM_RawRead)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_RawWrite(benchmark::State& state) {
    const QByteArray bytes = fixture().BytesFor(static_cast<int>(state.range(0)));
    const QString path = QDir(fixture().dir.path()).filePath(QStringLiteral("Raw.xml"));
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(path); // a new file each time, as a save writes one
        state.ResumeTiming();
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
        f.close();
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(BM_RawWrite)->Arg(10000)->Unit(benchmark::kMillisecond);

#ifdef TARVO_HAVE_PUGIXML
void BM_PugixmlParse(benchmark::State& state) {
    const QByteArray bytes = fixture().BytesFor(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        pugi::xml_document doc;
        const pugi::xml_parse_result result =
            doc.load_buffer(bytes.constData(), static_cast<size_t>(bytes.size()),
                            pugi::parse_default | pugi::parse_fragment);
        if (!result) {
            state.SkipWithError(result.description());
            break;
        }
        benchmark::DoNotOptimize(doc.first_child());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(BM_PugixmlParse)->Arg(10000)->Unit(benchmark::kMillisecond);
#endif

} // namespace

BENCHMARK_MAIN();
