// The main window's event list: cell texts, markers and colours, the layer
// filter, the three groups of rows, sorting, and the view's selection.
#include "app/EventListModel.h"
#include "app/EventListView.h"
#include "app/dialogs/DialogsFixture.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QTest>

namespace {

using Col = EventListModel::Column;

struct NewEvent {
    QString desc;
    QString due; // "YYYY-MM-DD"
    QString owner = "Ann";
    int16_t layer = 1;
    bool shared = false;
    bool specific = false;
    QString names;
};

class EventList : public ::testing::Test, protected DialogsFixture {
protected:
    EventList() {
        settings.sSet("Owner", SettingValue("Ann"));
        layers.setLayer(3, "Work");
    }

    static EventPtr Make(const NewEvent& s) {
        EventPtr e = TestEvent(s.desc, s.due, s.owner, s.layer);
        e->CalcDaysLeft();
        e->SharedEvent = s.shared;
        e->ShareWithSpecific = s.specific;
        e->ShareNames = s.names;
        return e;
    }
    EventPtr Add(clsDbXml& db, const NewEvent& s) {
        EventPtr e = Make(s);
        db.StoreRecord(e);
        return e;
    }

    QStringList Column(int col) const {
        QStringList out;
        for (int r = 0; r < model.rowCount(); ++r) {
            out << model.cellText(r, col);
        }
        return out;
    }

    FixedClock clock{"2009-03-05 10:00"}; // a Thursday
    EventListModel model{context};
};

// One row per event: the cells (Left, Day, Date, Year, Event, Layer, Owner,
// Type, Shared With) and the colour of the Event cell.
TEST_F(EventList, CellsAndColourOfOneRow) {
    const QColor green(0, 128, 0), blue(0, 0, 255), red(255, 0, 0);
    // clang-format off
    const struct {
        NewEvent event;
        const char* cells; // joined by "|"
        QColor colour;
    } cases[] = {
        {{"Today", "2009-03-05"}, "0000|Thu|05/03|2009|Today|Layer 1|||"},
        {{"Soon", "2009-03-17", "Ann", 3}, "0012|Tue|17/03|2009|Soon|Work|||"},
        {{"Far", "2040-01-01"}, "11259|Sun|01/01|2040|Far|Layer 1|||"},
        {{"Two\r\nlines\rand\nmore", "2009-03-05"}, "0000|Thu|05/03|2009|Two  lines and more|Layer 1|||"},
        {{"L0", "2009-03-05", "Ann", 0}, "0000|Thu|05/03|2009|L0|Shared|||"},
        {{"With two", "2009-03-05", "Ann", 1, true, true, "Bob\r\nCarl\r\n"}, "0000|Thu|05/03|2009|With two|Layer 1||*|Bob,Carl", green},
        {{"With all", "2009-03-05", "Ann", 1, true, false, "Bob\r\n"}, "0000|Thu|05/03|2009|With all|Layer 1||*|All", green},
        {{"Not shared", "2009-03-05", "Ann", 1, false, true, "Bob\r\n"}, "0000|Thu|05/03|2009|Not shared|Layer 1|||"},
        {{"Mine", "2009-03-05", " ann "}, "0000|Thu|05/03|2009|Mine|Layer 1|||"},
        {{"Bob's", "2009-03-05", "Bob", 1, true}, "0000|Thu|05/03|2009|Bob's|Layer 1||S|All", blue},
        {{"Passed", "2009-03-04", "Ann", 1, true}, "---|Wed|04/03|2009|Passed|Layer 1||E|All", red},
        {{"Bob's passed", "2009-03-03", "Bob"}, "---|Tue|03/03|2009|Bob's passed|Layer 1||E|", red},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.event.desc.toStdString());
        model.FillFromLists({Make(c.event)}, nullptr, nullptr, EventListModel::kAllLayers);
        ASSERT_EQ(model.rowCount(), 1);
        QStringList cells;
        for (int col = 0; col < EventListModel::ColumnCount; ++col) {
            cells << model.data(model.index(0, col)).toString();
        }
        EXPECT_EQ(cells.join(QLatin1Char('|')), QString::fromLatin1(c.cells));
        EXPECT_EQ(model.data(model.index(0, Col::ColEvent), Qt::ForegroundRole).value<QColor>(),
                  c.colour);
        EXPECT_FALSE(model.data(model.index(0, Col::ColLeft), Qt::ForegroundRole).isValid());
    }
}

TEST_F(EventList, PastSharedEventIsMovedToItsNextDate) {
    NewEvent event{"Bob's fortnightly", "2009-02-01", "Bob", 1, true};
    const EventPtr e = Make(event);
    e->setRecurring(true);
    e->setRecurrenceType(clsEvent::EveryXDays);
    e->setPeriod(14);
    e->setStartDate(D("2009-02-01"));
    e->setDaysLeft(-32);
    // A passed one-off event of Bob's stays his: "S", never an own "E".
    const QList<EventPtr> sharedList{e, Make({"Bob's concert", "2009-03-01", "Bob", 0, true})};
    model.FillFromLists({}, &sharedList, nullptr, EventListModel::kAllLayers);
    EXPECT_EQ(Column(Col::ColDate), (QStringList{"15/03", "01/03"}));
    EXPECT_EQ(Column(Col::ColType), (QStringList{"S", "S"}));
}

TEST_F(EventList, LayerFilterAndExpiredRows) {
    Add(events, {"L1", "2009-03-06", "Ann", 1});
    Add(events, {"L3", "2009-03-06", "Ann", 3});
    Add(events, {"L0", "2009-03-06", "Ann", 0});
    Add(events, {"L3 shared", "2009-03-06", "Ann", 3, true});
    Add(expired, {"X0", "2009-02-01", "Ann", 0});
    Add(expired, {"X3 shared", "2009-02-01", "Ann", 3, true});
    events.DeleteRecord(Add(events, {"Deleted", "2009-03-06"})->IDCode);
    const struct {
        int layer;
        bool expired;
        QStringList rows;
    } cases[] = {
        {20, true, {"L1", "L3", "L0", "L3 shared", "X0", "X3 shared"}},
        {20, false, {"L1", "L3", "L0", "L3 shared"}},
        {3, true, {"L3", "L3 shared", "X3 shared"}},
        {1, true, {"L1"}},
        {0, true, {"L0", "L3 shared", "X0"}}, // shared ones pass 0, expired ones only by layer
        {7, true, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.layer);
        model.FillEvents(c.layer, c.expired);
        EXPECT_EQ(Column(Col::ColEvent), c.rows);
    }
}

TEST_F(EventList, PassesTheModelTesterThroughFillsAndSorts) {
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    for (int i = 0; i < 30; ++i) {
        Add(events, {QStringLiteral("Event %1").arg(i), FormatYMD(D("2009-03-01") + i),
                     i % 2 ? "Ann" : "Bob", static_cast<int16_t>(i % 4), i % 3 == 0});
    }
    model.FillEvents(EventListModel::kAllLayers, false);
    for (int col = 0; col < EventListModel::ColumnCount; ++col) {
        model.ColumnClick(col);
    }
    model.FillEvents(2, false);
}

class EventListWindow : public EventList {
protected:
    EventListView view{&model};
};

// Clicks on the real header sort and show the order: the first one flips the
// default ascending "Left", and later ones flip that one order, whichever
// column is clicked.
TEST_F(EventListWindow, HeaderClicksFlipOneOrderForEveryColumn) {
    Add(events, {"banana", "2009-03-07"});
    Add(events, {"Cherry", "2009-03-05"});
    Add(events, {"apple", "2009-03-20"});
    Add(expired, {"Elder", "2009-02-01"});
    view.FillEvents(EventListModel::kAllLayers, true);
    view.resize(1200, 400);
    view.show();
    QHeaderView* head = view.header();
    auto click = [&](int col) {
        const int x = head->sectionViewportPosition(col) + head->sectionSize(col) / 2;
        QTest::mouseClick(head->viewport(), Qt::LeftButton, {}, QPoint(x, head->height() / 2));
    };
    // By default ascending by "Left": day counts in order, past ones last.
    EXPECT_EQ(Column(Col::ColLeft), (QStringList{"0000", "0002", "0015", "---"}));

    click(Col::ColLeft);
    EXPECT_EQ(Column(Col::ColLeft), (QStringList{"---", "0015", "0002", "0000"}));
    click(Col::ColLeft);
    EXPECT_EQ(Column(Col::ColLeft), (QStringList{"0000", "0002", "0015", "---"}));
    click(Col::ColEvent);
    EXPECT_EQ(Column(Col::ColEvent), (QStringList{"Elder", "Cherry", "banana", "apple"}))
        << "the third click is descending, whichever column";
    click(Col::ColEvent);
    EXPECT_EQ(Column(Col::ColEvent), (QStringList{"apple", "banana", "Cherry", "Elder"}));
    EXPECT_EQ(head->sortIndicatorSection(), Col::ColEvent);
    EXPECT_EQ(head->sortIndicatorOrder(), Qt::AscendingOrder);

    // The order survives a refill.
    Add(events, {"Date", "2009-03-09"});
    view.FillEvents(EventListModel::kAllLayers, true);
    EXPECT_EQ(Column(Col::ColEvent), (QStringList{"apple", "banana", "Cherry", "Date", "Elder"}));
}

TEST_F(EventListWindow, SelectionByIndexSurvivesRefills) {
    view.FillEvents(EventListModel::kAllLayers, false);
    EXPECT_EQ(view.selectedRow(), EventListView::kNoSelection) << "an empty list has no selection";

    QStringList ids;
    for (int i = 0; i < 5; ++i) {
        ids << Add(events, {QStringLiteral("E%1").arg(i), FormatYMD(D("2009-03-06") + i)})->IDCode;
    }
    view.FillEvents(EventListModel::kAllLayers, false);
    EXPECT_EQ(view.selectedRows(), QList<int>{0}) << "no previous selection: the first row";

    const auto addRow = QItemSelectionModel::Select | QItemSelectionModel::Rows;
    view.selectionModel()->select(model.index(3, 0), addRow);
    view.selectionModel()->select(model.index(1, 0), addRow);
    EXPECT_EQ(view.selectedRows(), (QList<int>{0, 1, 3})) << "in list order";

    view.selectRow(3);
    events.DeleteRecord(ids[3]);
    view.FillEvents(EventListModel::kAllLayers, false);
    EXPECT_EQ(view.selectedRows(), QList<int>{3});
    EXPECT_EQ(model.IDCode(3), ids[4]) << "the row now at the same place";

    view.FillEvents(3, false);
    EXPECT_EQ(view.selectedRow(), EventListView::kNoSelection);
    view.FillEvents(EventListModel::kAllLayers, false);
    EXPECT_EQ(view.selectedRow(), 0);
    view.selectRow(3);
    events.DeleteRecord(ids[4]);
    view.FillEvents(EventListModel::kAllLayers, false);
    EXPECT_EQ(view.selectedRow(), 0) << "a position past the end falls back to the first row";
}

} // namespace
