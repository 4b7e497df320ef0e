#include "engine/CommandLineWork.h"

#include "engine/EventEditorInput.h"
#include "shared/TextEqual.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <algorithm>

namespace CommandLineWork {

namespace {

CommandResult bad(const QString& message) {
    return {CommandResult::kBadInput, message};
}

QString oneLine(const QString& text) {
    QString out = text;
    out.replace(QLatin1String("\r\n"), QLatin1String(" / "));
    out.replace(QLatin1Char('\n'), QLatin1String(" / "));
    out.replace(QLatin1Char('\r'), QLatin1String(" / "));
    return out;
}

} // namespace

CommandResult Add(const AddRequest& request, EventStore& store, DateValue today) {
    if (request.description.trimmed().isEmpty()) {
        return bad(QStringLiteral("The description is empty."));
    }
    cSharedDateSubs& dates = cSharedDateSubs::ForSettings(store.settings);
    const std::optional<DateValue> day = EventEditorRules::ParseStartDate(request.date, dates);
    if (!day) {
        return bad(QStringLiteral("\"") + request.date + QStringLiteral("\" is not a date: use ") +
                   dates.DateFormatString + QStringLiteral(" or YYYY-MM-DD."));
    }
    if (*day < today) {
        return bad(QStringLiteral("The date ") +
                   dates.ShortFormatDate(*day) +
                   QStringLiteral(" lies in the past."));
    }
    int layer = 1; // the editor's first choice
    if (!request.category.trimmed().isEmpty()) {
        layer = -1;
        QStringList names;
        for (int i = 0; i < clsLayers::kAllCategories; ++i) {
            names << store.layers.Layer(i).trimmed();
            if (layer < 0 && TextEqual(store.layers.Layer(i), request.category)) {
                layer = i;
            }
        }
        if (layer < 0) {
            return bad(QStringLiteral("Unknown category \"") + request.category +
                       QStringLiteral("\"; the categories are: ") +
                       names.join(QStringLiteral(", ")) + QLatin1Char('.'));
        }
    }

    // The editor's "Show Once" event on the Monthly tab for that day.
    EventEditorInput input;
    input.desc = request.description;
    input.layer = layer;
    input.timed = !request.time.isEmpty();
    input.time = request.time;
    input.repeat = false;
    input.recurrenceType = clsEvent::DayOfMonthType;
    input.dayOfMonth = QString::number(DayOf(*day));
    input.monthNamesIndex = MonthOf(*day) - 1;
    auto event = std::make_shared<clsEvent>();
    const EventEditorOutcome outcome = EventEditorRules::Save(input, *event, store.settings);
    if (!outcome.saved) {
        return bad(outcome.message);
    }
    event->setDueDate(*day);
    event->CalcDaysLeft();
    store.events.StoreRecord(event);
    store.events.SaveDB();
    QString when = dates.ShortFormatDate(*day);
    if (event->AlarmSet()) {
        when += QLatin1Char(' ') + FormatHM(event->DueTime());
    }
    return {CommandResult::kDone, QStringLiteral("Added \"") + oneLine(event->Desc()) +
                                      QStringLiteral("\" on ") + when + QLatin1Char('.')};
}

QStringList Agenda(const QList<EventPtr>& events, const QList<EventPtr>& others,
                   const clsLayers& layers, DateValue today, int days, int dateStyle) {
    struct Item {
        DateValue day;
        double time; // -1 for untimed events, which come first on their day
        QString text;
    };
    const DateValue last = today + days;
    QList<Item> items;
    QList<EventPtr> all = events;
    all.append(others);
    for (qsizetype i = 0; i < all.size(); ++i) {
        const EventPtr& e = all.at(i);
        if (!e || e->Deleted) {
            continue;
        }
        const int layer = e->Layer();
        const QString category = layer >= 0 && layer < clsLayers::kAllCategories
                                     ? layers.Layer(layer).trimmed()
                                     : QString();
        QString text = oneLine(e->Desc());
        if (!category.isEmpty()) {
            text += QStringLiteral("  [") + category + QLatin1Char(']');
        }
        if (i >= events.size()) {
            text += QStringLiteral("  from ") + oneLine(e->Owner().trimmed());
        }
        auto add = [&](DateValue day) {
            items.append({day, e->AlarmSet() ? TimeOnly(e->DueTime()) : -1, text});
        };
        DateValue due = DateOnly(e->DueDate());
        if (!e->Recurring()) {
            if (due >= today && due <= last) {
                add(due);
            }
            continue;
        }
        if (due < today) {
            e->CalcNextAfterDate(today);
            due = DateOnly(e->DueDate());
        }
        while (due >= today && due <= last) {
            add(due);
            e->CalcNextAfterDate(due + 1);
            const DateValue next = DateOnly(e->DueDate());
            if (next <= due) {
                break; // a rule that cannot go on (hand-edited)
            }
            due = next;
        }
    }
    std::stable_sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
        return a.day != b.day ? a.day < b.day : a.time < b.time;
    });
    const QLocale locale;
    QStringList lines;
    lines.reserve(items.size());
    for (const Item& item : items) {
        const QString time = item.time < 0 ? QStringLiteral("     ") : FormatHM(item.time);
        lines << locale.dayName(ToQDate(item.day).dayOfWeek(), QLocale::ShortFormat) +
                     QLatin1Char(' ') + cSharedDateSubs::ForDateStyle(dateStyle).ShortFormatDate(item.day) +
                     QLatin1Char(' ') + time + QStringLiteral("  ") + item.text;
    }
    return lines;
}

QByteArray AddRequestLine(const AddRequest& request) {
    const QJsonObject o{{QStringLiteral("command"), QStringLiteral("add")},
                        {QStringLiteral("description"), request.description},
                        {QStringLiteral("date"), request.date},
                        {QStringLiteral("time"), request.time},
                        {QStringLiteral("category"), request.category}};
    return QJsonDocument(o).toJson(QJsonDocument::Compact);
}

QByteArray ImportRequestLine(const QString& absolutePath) {
    const QJsonObject o{{QStringLiteral("command"), QStringLiteral("import")},
                        {QStringLiteral("file"), absolutePath}};
    return QJsonDocument(o).toJson(QJsonDocument::Compact);
}

bool IsRequestLine(const QByteArray& line) {
    return line.trimmed().startsWith('{');
}

QString RequestSummary(const QByteArray& line) {
    const QJsonObject o = QJsonDocument::fromJson(line).object();
    const QString command = o.value(QStringLiteral("command")).toString();
    return command == QLatin1String("import")
               ? command + QLatin1Char(' ') + o.value(QStringLiteral("file")).toString()
               : command;
}

QByteArray Perform(const QByteArray& line, EventStore& store, DateValue today) {
    const QJsonObject o = QJsonDocument::fromJson(line).object();
    const QString command = o.value(QStringLiteral("command")).toString();
    CommandResult result{CommandResult::kBadInput, QStringLiteral("Unknown request.")};
    if (command == QLatin1String("add")) {
        result = Add({o.value(QStringLiteral("description")).toString(),
                      o.value(QStringLiteral("date")).toString(),
                      o.value(QStringLiteral("time")).toString(),
                      o.value(QStringLiteral("category")).toString()},
                     store, today);
    } else if (command == QLatin1String("import")) {
        result = CalendarTransfer::Import(o.value(QStringLiteral("file")).toString(), store, today);
    }
    const QJsonObject reply{{QStringLiteral("code"), result.exitCode},
                            {QStringLiteral("message"), result.message}};
    return QJsonDocument(reply).toJson(QJsonDocument::Compact);
}

CommandResult ReplyResult(const QByteArray& reply) {
    const QJsonDocument doc = QJsonDocument::fromJson(reply);
    const QJsonObject o = doc.object();
    if (!doc.isObject() || !o.contains(QStringLiteral("code"))) {
        return {CommandResult::kFileError,
                QStringLiteral("The running copy of Tarvo gave no answer.")};
    }
    return {o.value(QStringLiteral("code")).toInt(), o.value(QStringLiteral("message")).toString()};
}

} // namespace CommandLineWork
