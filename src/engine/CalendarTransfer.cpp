#include "engine/CalendarTransfer.h"

#include "shared/AtomicFile.h"
#include "shared/TextCodec.h"
#include "shared/TextEqual.h"
#include "shared/cSHAREDSettings.h"
#include "storage/IcsEventMapping.h"
#include "storage/IcsRecurrence.h"
#include "storage/StorableText.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QFile>
#include <QMap>

#include <vector>

using namespace IcsEventMapping;

namespace CalendarTransfer {

namespace {

QString countText(int n, const char* one, const char* many) {
    return QString::number(n) + QLatin1Char(' ') + QString::fromLatin1(n == 1 ? one : many);
}

// "2 in the past, 1 cancelled"
QString reasons(const QMap<QString, int>& counts) {
    QStringList parts;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        parts << QString::number(it.value()) + QLatin1Char(' ') + it.key();
    }
    return parts.join(QStringLiteral(", "));
}

int total(const QMap<QString, int>& counts) {
    int n = 0;
    for (int v : counts) {
        n += v;
    }
    return n;
}

// The layer (0..19) named name, ignoring blanks and case; -1 when none.
int layerNamed(const clsLayers& layers, const QString& name) {
    for (int i = 0; i < clsLayers::kAllCategories; ++i) {
        if (TextEqual(layers.Layer(i), name)) {
            return i;
        }
    }
    return -1;
}

// Whether Windows-1252 (the event file's code page) holds every character.
bool fitsFile(const QString& text) {
    return TextCodec::FromWindows1252(TextCodec::ToWindows1252(text)) == text;
}

QString keptByFile(const QString& text) {
    return TextCodec::FromWindows1252(TextCodec::ToWindows1252(text));
}

struct Planned {
    EventPtr event;
    QString category;
    bool tarvoFields = false;
};

} // namespace

CommandResult Export(const QList<EventPtr>& events, const clsLayers& layers, const QString& path) {
    std::vector<IcalComponent> written;
    QMap<QString, int> single;
    int late = 0;
    for (const EventPtr& e : events) {
        if (!e || e->Deleted) {
            continue;
        }
        if (!Writable(*e)) {
            ++late;
            continue;
        }
        const int layer = e->Layer();
        const QString category = layer >= 0 && layer < clsLayers::kAllCategories
                                     ? layers.Layer(layer).trimmed()
                                     : QString();
        written.push_back(ToVEvent(*e, category, {true}));
        if (e->Recurring()) {
            const QString why = IcsRecurrence::Write(*e).inexact;
            if (!why.isEmpty()) {
                ++single[why];
            }
        }
    }
    const int count = static_cast<int>(written.size());
    const AtomicFile::Result result = AtomicFile::Write(path, WriteCalendar(std::move(written)));
    if (!result.ok()) {
        return {CommandResult::kFileError,
                QStringLiteral("Cannot write ") + path + QStringLiteral(": ") + result.description};
    }
    QString message = QStringLiteral("Exported ") + countText(count, "event", "events") +
                      QStringLiteral(" to ") + path + QLatin1Char('.');
    if (!single.isEmpty()) {
        message += QLatin1Char(' ') + QString::number(total(single)) +
                   QStringLiteral(" repeating with a rule that cannot repeat, written as their "
                                  "next occurrence only: ") +
                   reasons(single) + QLatin1Char('.');
    }
    if (late > 0) {
        message += QLatin1Char(' ') + countText(late, "event", "events") +
                   QStringLiteral(" dated after the year 3000 left out: iCalendar files "
                                  "cannot hold them here.");
    }
    return {CommandResult::kDone, message};
}

CommandResult Import(const QString& path, EventStore& store, DateValue today) {
    QFile file(path);
    if (!file.exists()) {
        return {CommandResult::kFileError,
                QStringLiteral("Cannot read ") + path + QStringLiteral(": no such file")};
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return {CommandResult::kFileError,
                QStringLiteral("Cannot read ") + path + QStringLiteral(": ") + file.errorString()};
    }
    const Calendar calendar = ParseCalendar(file.readAll());
    if (!calendar.error.isEmpty()) {
        return {CommandResult::kBadInput, QStringLiteral("Nothing imported from ") + path +
                                              QStringLiteral(": ") + calendar.error};
    }

    const QString owner =
        store.settings.sGet(QStringLiteral("Owner"), QStringLiteral("Not Set")).toText();
    QList<Planned> planned;
    QMap<QString, int> simplified;
    QMap<QString, int> skipped;
    int replaced = 0;
    for (icalcomponent* v : calendar.events) {
        ReadEvent read = FromVEvent(v, today, {true});
        if (!read.event) {
            ++skipped[read.skipped];
            continue;
        }
        clsEvent& e = *read.event;
        e.IDCode.clear();
        e.setOwner(owner);
        e.Deleted = false;
        e.MailSent = false;
        if (DateOnly(e.DueDate()) < today) {
            if (e.Recurring()) {
                e.CalcNextDueDate();
            }
            if (DateOnly(e.DueDate()) < today) {
                ++skipped[QStringLiteral("in the past")];
                continue;
            }
        }
        e.CalcDaysLeft();
        if (!read.simplified.isEmpty()) {
            ++simplified[read.simplified];
        }
        // Fields written as they are: a "<" would end the value early when
        // the file is read again.
        const struct {
            const char* name;
            const QString& value;
        } asIs[] = {{"category", read.category},
                    {"layer name", e.SharedLayerName},
                    {"e-mail address", e.Email},
                    {"run file", e.Filename},
                    {"sound file", e.WavFile}};
        for (const auto& field : asIs) {
            if (!StorableText::AsIsProblem(QLatin1String(field.name), field.value).isEmpty()) {
                return {CommandResult::kBadInput,
                        QStringLiteral("Nothing imported: the ") + QString::fromLatin1(field.name) +
                            QStringLiteral(" of \"") + e.Desc().simplified() +
                            QStringLiteral("\" contains \"<\", which the event file cannot hold.")};
            }
        }
        bool lost = false;
        for (QString* text : {&e.SharedLayerName, &e.Email, &e.Filename, &e.WavFile, &e.ShareNames,
                              &read.category}) {
            if (!fitsFile(*text)) {
                *text = keptByFile(*text);
                lost = true;
            }
        }
        if (!fitsFile(e.Desc())) {
            e.setDesc(keptByFile(e.Desc()));
            lost = true;
        }
        replaced += lost ? 1 : 0;
        planned.append({read.event, read.category, read.tarvoFields});
    }

    if (!planned.isEmpty() && AtomicFile::IsReadOnly(store.events.DBFilename())) {
        return {CommandResult::kFileError, QStringLiteral("Nothing imported: ") +
                                               store.events.DBFilename() +
                                               QStringLiteral(" is read-only.")};
    }
    bool layersChanged = false;
    QStringList noRoom;
    for (Planned& p : planned) {
        clsEvent& e = *p.event;
        int layer = p.tarvoFields && e.Layer() >= 0 && e.Layer() < clsLayers::kAllCategories
                        ? e.Layer()
                        : 1; // the editor's first choice
        if (!p.category.isEmpty()) {
            int named = layerNamed(store.layers, p.category);
            if (named < 0) {
                named = store.layers.SeekLayerIndex(p.category);
                layersChanged = layersChanged || (named >= 0 && named < clsLayers::kAllCategories);
            }
            if (named >= 0 && named < clsLayers::kAllCategories) {
                layer = named;
            } else if (!noRoom.contains(p.category)) {
                noRoom << p.category;
            }
        }
        e.setLayer(static_cast<int16_t>(layer));
        store.events.StoreRecord(p.event, true);
    }
    if (!planned.isEmpty()) {
        store.events.SaveDB();
    }
    if (layersChanged && !store.settingsFile.isEmpty()) {
        store.settings.SaveSettings(store.settingsFile);
    }

    QString message = QStringLiteral("Imported ") +
                      countText(static_cast<int>(planned.size()), "event", "events") +
                      QStringLiteral(" from ") + path + QLatin1Char('.');
    if (!simplified.isEmpty()) {
        message += QLatin1Char(' ') + QString::number(total(simplified)) +
                   QStringLiteral(" repeating with a rule Tarvo has no type for became their "
                                  "next occurrence only: ") +
                   reasons(simplified) + QLatin1Char('.');
    }
    if (!skipped.isEmpty()) {
        message += QStringLiteral(" Skipped ") + QString::number(total(skipped)) +
                   QStringLiteral(": ") + reasons(skipped) + QLatin1Char('.');
    }
    if (replaced > 0) {
        message += QStringLiteral(" Characters the event file cannot hold became \"?\" in ") +
                   countText(replaced, "event", "events") + QLatin1Char('.');
    }
    if (!noRoom.isEmpty()) {
        message += QStringLiteral(" No free category was left for ") +
                   noRoom.join(QStringLiteral(", ")) + QLatin1Char('.');
    }
    return {CommandResult::kDone, message};
}

} // namespace CalendarTransfer
