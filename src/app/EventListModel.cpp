#include "app/EventListModel.h"

#include "app/AppContext.h"
#include "shared/DateValue.h"
#include "shared/OwnerId.h"
#include "shared/RuntimeError.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QCollator>
#include <QCollatorSortKey>
#include <QColor>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <exception>
#include <numeric>

namespace {

const QString kModule = QStringLiteral("frmMain");

constexpr std::array<const char*, EventListModel::ColumnCount> kHeaders = {
    "Left", "Day", "Date", "Year", "Event", "Layer", "Owner", "Type", "Shared With"};
constexpr std::array<int, EventListModel::ColumnCount> kWidthsTwips = {988,  988,  1252, 988, 7056,
                                                                       2540, 2540, 1411, 2540};

// Shared, never-detached texts for the cells that take few values.
const QString& PastText() {
    static const QString s = QStringLiteral("---");
    return s;
}
const QString& MarkerText(int marker) {
    static const std::array<QString, 4> texts = {QString(), QStringLiteral("*"),
                                                 QStringLiteral("S"), QStringLiteral("E")};
    return texts[static_cast<size_t>(marker)];
}

// The number with at least four digits, as the pattern "0000" writes it
// (a minus sign in front of the digits when negative).
QString FourDigits(qint64 n) {
    QString digits = QString::number(n < 0 ? -n : n).rightJustified(4, QLatin1Char('0'));
    if (n < 0) {
        digits.prepend(QLatin1Char('-'));
    }
    return digits;
}

// The "Type" column is centred, every other one left-aligned.
QVariant Alignment(int column) {
    const Qt::Alignment a = column == EventListModel::ColType ? Qt::Alignment(Qt::AlignCenter)
                                                              : (Qt::AlignLeft | Qt::AlignVCenter);
    return static_cast<int>(a.toInt());
}

bool PassesLayer(const clsEvent& e, int layer, bool sharedPassesZero) {
    if (layer == EventListModel::kAllLayers || e.Layer() == layer) {
        return true;
    }
    return sharedPassesZero && layer == 0 && e.SharedEvent;
}

} // namespace

EventListModel::EventListModel(cSHAREDSettings& settings, const clsLayers& layers, clsDbXml& events,
                               clsDbXml& expired, SharedDatabases& shared, QObject* parent)
    : QAbstractTableModel(parent), m_settings(settings), m_layers(layers), m_events(events),
      m_expired(expired), m_shared(shared) {}

EventListModel::EventListModel(AppContext& context, QObject* parent)
    : EventListModel(context.settings, context.layers, context.events, context.expired,
                     context.shared, parent) {}

EventListModel::FillContext EventListModel::MakeFillContext() const {
    FillContext fc;
    fc.owner = m_events.CurrentOwner();
    fc.networked = m_settings.sGet(QStringLiteral("Networked"), SettingValue(false)).toBool();
    fc.dates = &cSharedDateSubs::ForSettings(m_settings);
    for (int i = 0; i < clsLayers::kCount; ++i) {
        fc.layerNames[static_cast<size_t>(i)] = m_layers.Layer(i);
    }
    const QLocale locale;
    for (int d = 1; d <= 7; ++d) {
        fc.dayNames[static_cast<size_t>(d)] = locale.dayName(d, QLocale::ShortFormat);
    }
    fc.today = static_cast<qint64>(TodayDate());
    return fc;
}

void EventListModel::FillEvents(int layer, bool showExpired) {
    beginResetModel();
    m_rows.clear();
    const FillContext fc = MakeFillContext();
    Log().AddAction(QStringLiteral("Showing local events"));
    AddLocal(fc, layer);
    Log().AddAction(QStringLiteral("Showing shared events"));
    if (fc.networked) {
        AddShared(fc, layer);
    }
    if (showExpired) {
        Log().AddAction(QStringLiteral("Showing expired events"));
        AddExpired(fc, layer);
    }
    SortRows();
    endResetModel();
}

void EventListModel::FillFromLists(const QList<EventPtr>& local, const QList<EventPtr>* shared,
                                   const QList<EventPtr>* expired, int layer) {
    beginResetModel();
    m_rows.clear();
    const FillContext fc = MakeFillContext();
    AddList(fc, local, Source::Local, layer);
    if (shared) {
        AddList(fc, *shared, Source::Shared, layer);
    }
    if (expired) {
        AddList(fc, *expired, Source::Expired, layer);
    }
    SortRows();
    endResetModel();
}

void EventListModel::AddLocal(const FillContext& fc, int layer) {
    if (m_events.RecordCount() == 0) {
        Log().AddAction(QStringLiteral("No local events"));
        return;
    }
    AddList(fc, m_events.Events(), Source::Local, layer);
}

void EventListModel::AddShared(const FillContext& fc, int layer) {
    Log().AddAction(QStringLiteral("Loading multiple databases from ") + m_shared.MergedSource());
    m_shared.ReloadSharedSet();
    const QList<EventPtr>& list = m_shared.SharedSet().Events();
    if (list.isEmpty()) {
        Log().AddAction(QStringLiteral("No events in shared databases"));
    }
    AddList(fc, list, Source::Shared, layer);
    Log().AddAction(QStringLiteral("Finished displaying shared events"));
}

void EventListModel::AddExpired(const FillContext& fc, int layer) {
    // The expired database object mirrors "Expired.xml" (every change to it is
    // saved at once), so its list is what a fresh load of the file would give
    // once records marked deleted are left out.
    AddList(fc, m_expired.Events(), Source::Expired, layer);
}

void EventListModel::AddList(const FillContext& fc, const QList<EventPtr>& list, Source source,
                             int layer) {
    m_rows.reserve(m_rows.size() + static_cast<size_t>(list.size()));
    for (const EventPtr& e : list) {
        if (!e || e->Deleted) {
            continue;
        }
        if (source == Source::Shared && OwnerId::Same(e->Owner(), fc.owner)) {
            continue; // one's own shared events are listed among the local ones
        }
        if (!PassesLayer(*e, layer, source != Source::Expired)) {
            continue;
        }
        if (source == Source::Shared && static_cast<qint64>(DateOnly(e->DueDate())) < fc.today) {
            // The owner's program moves it on only when it runs; show where it is now.
            e->CalcNextDueDate();
            e->CalcDaysLeft();
        }
        AddListItem(fc, e, source);
    }
}

void EventListModel::AddListItem(const FillContext& fc, const EventPtr& event, Source source) {
    const clsEvent& e = *event;
    Row row;
    row.event = event;
    row.source = source;
    try {
        auto& c = row.cells;
        const DateValue due = DateOnly(e.DueDate());
        const qint64 days = std::llround(due - static_cast<DateValue>(fc.today));
        c[ColLeft] = e.DaysLeft() < 0 ? PastText() : FourDigits(days);
        const QDate date = ToQDate(due);
        if (date.isValid()) {
            c[ColDay] = fc.dayNames[static_cast<size_t>(date.dayOfWeek())];
            c[ColDate] = fc.dates->DayMonth(date);
            c[ColYear] = QString::number(date.year());
        } else {
            Log().AddAction(QStringLiteral("Invalid due date for ") + e.Desc() +
                                QStringLiteral(" (5)"),
                            QStringLiteral("AddListItem"), kModule);
        }
        QString desc = e.Desc();
        if (desc.contains(QLatin1Char('\r')) || desc.contains(QLatin1Char('\n'))) {
            desc.replace(QLatin1Char('\r'), QLatin1Char(' '))
                .replace(QLatin1Char('\n'), QLatin1Char(' '));
        }
        c[ColEvent] = desc;
        // Layer 0 is listed as "Shared", as the editor, the filter and the
        // month view name it.
        const int layer = e.Layer();
        if (layer >= 0 && layer < clsLayers::kCount) {
            c[ColLayer] = fc.layerNames[static_cast<size_t>(layer)];
        } else {
            Log().AddAction(QStringLiteral("Layer ") + QString::number(layer) +
                                QStringLiteral(" out of range (9)"),
                            QStringLiteral("AddListItem"), kModule);
        }
        if (fc.networked) {
            c[ColOwner] = e.Owner();
        }
        // Later rules win: another user's event shows "S" (even when its day
        // has passed: it is not this user's to expire), an own expired one "E".
        Marker marker = NoMarker;
        if (e.SharedEvent) {
            marker = MarkShared;
        }
        if (!OwnerId::Same(e.Owner(), fc.owner)) {
            marker = MarkOthers;
        }
        if (e.DaysLeft() < 0) {
            marker = MarkExpired;
        }
        if (source == Source::Shared) {
            marker = MarkOthers;
        }
        row.marker = marker;
        c[ColType] = MarkerText(marker);
        if (e.SharedEvent) {
            if (e.ShareWithSpecific) {
                QString names = e.ShareNames;
                names.replace(QStringLiteral("\r\n"), QStringLiteral(","));
                if (names.size() >= 2) {
                    names.chop(1);
                }
                c[ColSharedWith] = names;
            } else {
                c[ColSharedWith] = QStringLiteral("All");
            }
        }
    } catch (const RuntimeError& err) {
        LogRuntimeError(err, QStringLiteral("AddListItem"), kModule);
    } catch (const std::exception& err) {
        Log().AddAction(QString::fromLocal8Bit(err.what()), QStringLiteral("AddListItem"), kModule);
    }
    m_rows.push_back(std::move(row));
}

std::vector<int> EventListModel::SortRows() {
    const int n = static_cast<int>(m_rows.size());
    std::vector<int> order(static_cast<size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    const bool descending = m_sortOrder == Qt::DescendingOrder;
    const size_t col = static_cast<size_t>(m_sortColumn);

    if (m_sortColumn == ColLeft) {
        // Zero-padded day counts compare as text; "---" (past) comes after them.
        auto less = [this](int a, int b) {
            const QString& x = m_rows[static_cast<size_t>(a)].cells[ColLeft];
            const QString& y = m_rows[static_cast<size_t>(b)].cells[ColLeft];
            const bool xPast = x == PastText();
            const bool yPast = y == PastText();
            if (xPast != yPast) {
                return yPast;
            }
            return x.compare(y) < 0;
        };
        if (descending) {
            std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return less(b, a); });
        } else {
            std::stable_sort(order.begin(), order.end(), less);
        }
    } else {
        // Text in the user's alphabetical order, letter case ignored. The keys are
        // made once per sort so that the comparisons are plain byte compares.
        QCollator collator;
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        std::vector<QCollatorSortKey> keys;
        keys.reserve(static_cast<size_t>(n));
        for (const Row& r : m_rows) {
            keys.push_back(collator.sortKey(r.cells[col]));
        }
        auto cmp = [&keys](int a, int b) {
            return keys[static_cast<size_t>(a)].compare(keys[static_cast<size_t>(b)]);
        };
        if (descending) {
            std::stable_sort(order.begin(), order.end(),
                             [&](int a, int b) { return cmp(b, a) < 0; });
        } else {
            std::stable_sort(order.begin(), order.end(),
                             [&](int a, int b) { return cmp(a, b) < 0; });
        }
    }

    std::vector<Row> sorted;
    sorted.reserve(m_rows.size());
    for (int old : order) {
        sorted.push_back(std::move(m_rows[static_cast<size_t>(old)]));
    }
    m_rows = std::move(sorted);
    return order;
}

void EventListModel::ColumnClick(int column) {
    m_descending = !m_descending;
    sort(column, m_descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void EventListModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= ColumnCount) {
        return;
    }
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    m_sortColumn = column;
    m_sortOrder = order;
    const std::vector<int> oldOf = SortRows();
    std::vector<int> newOf(oldOf.size());
    for (size_t i = 0; i < oldOf.size(); ++i) {
        newOf[static_cast<size_t>(oldOf[i])] = static_cast<int>(i);
    }
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex& idx : from) {
        to.append(index(newOf[static_cast<size_t>(idx.row())], idx.column()));
    }
    changePersistentIndexList(from, to);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

QString EventListModel::IDCode(int row) const {
    const EventPtr e = event(row);
    return e ? e->IDCode : QString();
}

EventPtr EventListModel::event(int row) const {
    if (row < 0 || row >= rowCount()) {
        return nullptr;
    }
    return m_rows[static_cast<size_t>(row)].event;
}

QString EventListModel::marker(int row) const {
    if (row < 0 || row >= rowCount()) {
        return {};
    }
    return MarkerText(m_rows[static_cast<size_t>(row)].marker);
}

EventCommands::ListRow EventListModel::listRow(int row) const {
    if (row < 0 || row >= rowCount()) {
        return {};
    }
    const Row& r = m_rows[static_cast<size_t>(row)];
    // An event in the user's own expired file is the user's to clear away.
    const bool othersOwner = r.source == Source::Local && r.marker == MarkOthers;
    return {IDCode(row), MarkerText(r.marker), r.source == Source::Shared || othersOwner};
}

EventListModel::Source EventListModel::source(int row) const {
    if (row < 0 || row >= rowCount()) {
        return Source::Local;
    }
    return m_rows[static_cast<size_t>(row)].source;
}

QString EventListModel::cellText(int row, int column) const {
    if (row < 0 || row >= rowCount() || column < 0 || column >= ColumnCount) {
        return {};
    }
    return m_rows[static_cast<size_t>(row)].cells[static_cast<size_t>(column)];
}

int EventListModel::FindRow(const QString& idCode, Source from) const {
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const Row& r = m_rows[i];
        if (r.source == from && r.event->IDCode == idCode) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int EventListModel::FindText(const QString& term, int fromRow) const {
    for (int i = std::max(fromRow, 0); i < rowCount(); ++i) {
        if (m_rows[static_cast<size_t>(i)].cells[ColEvent].contains(term, Qt::CaseInsensitive)) {
            return i;
        }
    }
    return -1;
}

QString EventListModel::HeaderText(int column) {
    if (column < 0 || column >= ColumnCount) {
        return {};
    }
    return QString::fromLatin1(kHeaders[static_cast<size_t>(column)]);
}

int EventListModel::HeaderWidthTwips(int column) {
    if (column < 0 || column >= ColumnCount) {
        return 0;
    }
    return kWidthsTwips[static_cast<size_t>(column)];
}

QColor EventListModel::MarkerColour(const QString& marker) {
    if (marker == QLatin1String("E")) {
        return QColor(255, 0, 0);
    }
    if (marker == QLatin1String("*")) {
        return QColor(0, 128, 0);
    }
    if (marker == QLatin1String("S")) {
        return QColor(0, 0, 255);
    }
    return {};
}

int EventListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int EventListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant EventListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Row& r = m_rows[static_cast<size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return r.cells[static_cast<size_t>(index.column())];
    case Qt::ForegroundRole:
        if (index.column() == ColEvent && r.marker != NoMarker) {
            return MarkerColour(MarkerText(r.marker));
        }
        return {};
    case Qt::TextAlignmentRole:
        return Alignment(index.column());
    case IDCodeRole:
        return r.event->IDCode;
    case MarkerRole:
        return MarkerText(r.marker);
    default:
        return {};
    }
}

QVariant EventListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    if (role == Qt::DisplayRole) {
        return HeaderText(section);
    }
    if (role == Qt::TextAlignmentRole) {
        return Alignment(section);
    }
    return {};
}
