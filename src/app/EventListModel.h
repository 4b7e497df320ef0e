#pragma once

#include "engine/EventCommands.h"
#include "model/clsEvent.h"

#include <QAbstractTableModel>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <vector>

struct AppContext;
class SharedDatabases;
class cSHAREDSettings;
class cSharedDateSubs;
class clsDbXml;
class clsLayers;

// The main window's event list as a table model: the user's own events, the
// other users' shared events (networked mode) and, on request, the expired
// ones, one row per event with nine text columns. Every cell text is worked
// out once when the list is filled, so drawing and sorting tens of thousands
// of rows costs no per-cell formatting.
//
// Sorting is by cell text and the order is one program-wide flag: every header
// click flips it, whichever column is clicked (see ColumnClick).
class EventListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column : int {
        ColLeft = 0,
        ColDay,
        ColDate,
        ColYear,
        ColEvent,
        ColLayer,
        ColOwner,
        ColType,
        ColSharedWith,
        ColumnCount
    };
    // Where a row's event comes from; the commands delete an "E" row from the
    // expired database and never change a Shared row.
    enum class Source : uint8_t { Local, Shared, Expired };

    // Extra data roles: the row's ID code and its marker ("*", "S", "E" or "").
    static constexpr int IDCodeRole = Qt::UserRole + 1;
    static constexpr int MarkerRole = Qt::UserRole + 2;

    // The layer filter value that lets every event through ("All Categories").
    static constexpr int kAllLayers = 20;

    EventListModel(cSHAREDSettings& settings, const clsLayers& layers, clsDbXml& events,
                   clsDbXml& expired, SharedDatabases& shared, QObject* parent = nullptr);
    explicit EventListModel(AppContext& context, QObject* parent = nullptr);

    // Rebuilds every row: the local events, in networked mode the other users'
    // shared events (the merged set is reloaded from the user list first), and
    // with showExpired the expired events, each group filtered by layer
    // (kAllLayers = no filter; 0 also lets any shared event through, except in
    // the expired group). The rows come out sorted by the current sort.
    void FillEvents(int layer, bool showExpired);

    // The same from lists handed in (no loading, no settings beyond the
    // owner, "Networked" and "DateStyle"); a null list is left out.
    void FillFromLists(const QList<EventPtr>& local, const QList<EventPtr>* shared,
                       const QList<EventPtr>* expired, int layer);

    // Header click: the sort column becomes column and the order flips.
    void ColumnClick(int column);
    // Sorts by one column's text without touching the flag.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    int sortColumn() const { return m_sortColumn; }
    Qt::SortOrder sortOrder() const { return m_sortOrder; }

    // Row helpers for the commands (row = the list position, 0-based).
    QString IDCode(int row) const;
    EventPtr event(int row) const;
    QString marker(int row) const;
    Source source(int row) const;
    // The row as the list commands see it; an event from another user's
    // file, or owned by another user, is theirs whatever its marker.
    EventCommands::ListRow listRow(int row) const;
    QString cellText(int row, int column) const;
    // The first row holding the event with this ID code from that source; -1
    // when there is none (ID codes are unique only within one database).
    int FindRow(const QString& idCode, Source from = Source::Local) const;
    // The first row at or after fromRow whose "Event" text contains term,
    // ignoring case; -1 when none.
    int FindText(const QString& term, int fromRow = 0) const;

    // The list's column headers and their widths in twips.
    static QString HeaderText(int column);
    static int HeaderWidthTwips(int column);
    // The colour of the "Event" cell for a marker; invalid (the normal text
    // colour) for an unmarked row.
    static QColor MarkerColour(const QString& marker);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    enum Marker : uint8_t { NoMarker, MarkShared, MarkOthers, MarkExpired };
    struct Row {
        EventPtr event;
        std::array<QString, ColumnCount> cells;
        Marker marker = NoMarker;
        Source source = Source::Local;
    };
    // What one fill needs from the settings and the layer table, read once.
    struct FillContext {
        QString owner;
        bool networked = false;
        cSharedDateSubs* dates = nullptr; // after "DateStyle"
        std::array<QString, 21> layerNames;
        std::array<QString, 8> dayNames; // 1 = Monday .. 7 = Sunday
        qint64 today = 0;
    };

    FillContext MakeFillContext() const;
    void AddListItem(const FillContext& fc, const EventPtr& event, Source source);
    void AddLocal(const FillContext& fc, int layer);
    void AddShared(const FillContext& fc, int layer);
    void AddExpired(const FillContext& fc, int layer);
    void AddList(const FillContext& fc, const QList<EventPtr>& list, Source source, int layer);
    // Reorders m_rows by the current sort; returns the old row of each new row.
    std::vector<int> SortRows();

    cSHAREDSettings& m_settings;
    const clsLayers& m_layers;
    clsDbXml& m_events;
    clsDbXml& m_expired;
    SharedDatabases& m_shared;

    std::vector<Row> m_rows;
    int m_sortColumn = ColLeft;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    // Flipped by every header click, for the life of the list.
    bool m_descending = false;
};
