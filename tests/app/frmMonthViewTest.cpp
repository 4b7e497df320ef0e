// The month view offscreen with a fixed clock: grid, colours, navigation,
// filters, shared events, the plain-text list and both printouts.
#include "app/dialogs/frmMonthView.h"
#include "app/dialogs/DialogsFixture.h"
#include "app/dialogs/PrintSetup.h"
#include "support/TestSupport.h"

#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <memory>

namespace {

class MonthView : public ::testing::Test, protected DialogsFixture {
protected:
    MonthView() {
        settings.sSet(QStringLiteral("Owner"), QStringLiteral("Ann"));
        settings.sSet(QStringLiteral("DataPath"), home.path());
        layers.setLayer(2, "Work");
    }
    void open() { view = std::make_unique<frmMonthView>(context); }

    // Stored and saved: the view reads the file.
    EventPtr add(const QString& desc, const QString& due, int layer = 1) {
        EventPtr e = DialogsFixture::add(events, desc, due, "Ann", layer);
        events.SaveDB();
        return e;
    }

    // Day box of a day of the shown month.
    QString dayBox(int day) const { return view->BoxText(view->Calendar().BoxOfDay(day)); }
    QString dateLabel() const { return view->findChild<QLabel*>("lblDate")->text(); }
    void click(const char* name) {
        QTest::mouseClick(view->findChild<QPushButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }
    // Prints with that button to the PDF file and returns its text.
    QString print(const char* button, const QString& pdf) {
        printer = std::make_unique<PdfPrintSetup>(pdf);
        view->setPrintSetup(printer.get());
        click(button);
        return PdfText(pdf);
    }

    std::unique_ptr<PdfPrintSetup> printer; // outlives the view that uses it
    std::unique_ptr<frmMonthView> view;
};

// The buttons wrap months and years; today is light orange only in its month.
TEST_F(MonthView, NavigationWrapsAndTodayIsMarkedInItsMonthOnly) {
    FixedClock clock("2009-01-10 09:00");
    open();
    const char* const steps[][2] = {
        {"cmd_prevmonth", "December 2008"}, {"cmd_nextmonth", "January 2009"},
        {"cmd_prevyear", "January 2008"},   {"cmd_nextyear", "January 2009"},
        {"cmd_nextyear", "January 2010"},   {"cmd_prevmonth", "December 2009"},
        {"cmd_nextmonth", "January 2010"},  {"cmdNow", "January 2009"},
    };
    for (const auto& [button, label] : steps) {
        click(button);
        EXPECT_EQ(dateLabel(), QString::fromLatin1(label)) << button;
        QList<int> orange;
        for (int day = 1; day <= view->Calendar().DayCount(); ++day) {
            if (view->Calbox(view->Calendar().BoxOfDay(day))->palette().color(QPalette::Base) ==
                QColor::fromRgb(frmMonthView::kTodayColour)) {
                orange << day;
            }
        }
        EXPECT_EQ(orange,
                  dateLabel() == QLatin1String("January 2009") ? QList<int>{10} : QList<int>{});
    }
}

TEST_F(MonthView, LayerComboFiltersAndNamesTheWindow) {
    FixedClock clock("2009-03-10 09:00");
    add("work", "2009-03-05", 2);
    add("home", "2009-03-05", 3);
    add("flagged", "2009-03-05", 3)->SharedEvent = true;
    events.SaveDB();
    const QByteArray before = ReadFileBytes(events.DBFilename());
    open();
    auto* combo = view->findChild<QComboBox*>("cmbLayers");
    const struct {
        int layer;
        const char *box, *title;
    } cases[] = {
        {2, "5\nwork\n", "TVO Monthly View (Work)"},
        {0, "5\nflagged\n", "TVO Monthly View (Shared)"},
        {20, "5\nwork\nhome\nflagged\n", "TVO Monthly View (All Categories)"},
    };
    for (const auto& c : cases) {
        combo->setCurrentIndex(c.layer);
        emit combo->activated(c.layer);
        EXPECT_EQ(dayBox(5), QString::fromLatin1(c.box)) << c.layer;
        EXPECT_EQ(view->windowTitle(), QString::fromLatin1(c.title));
    }
    click("cmd_nextmonth");
    EXPECT_EQ(view->SelectedLayer(), 20) << "navigation keeps the filter";
    EXPECT_EQ(ReadFileBytes(events.DBFilename()), before) << "the view never writes events back";
}

TEST_F(MonthView, EventListAndPrintoutsWithTheirHeadings) {
    FixedClock clock("2009-03-10 09:00");
    add("Dentist", "2009-03-05");
    add("Parents' evening at the school, bring the signed forms", "2009-03-06");
    auto gym = add("Gym", "2009-03-02");
    gym->setRecurring(true);
    gym->setRecurrenceType(clsEvent::Weekly);
    gym->setPeriod(1);
    gym->setStartDate(D("2009-03-02"));
    events.SaveDB();
    open();
    click("cmdViewEvents"); // the month as plain text
    const QStringList lines =
        Control<QPlainTextEdit>(view.get(), "txtEventList")->toPlainText().split(QLatin1Char('\n'));
    EXPECT_EQ(lines.value(0), "Events for March 2009");
    EXPECT_EQ(lines.value(2), "Mon 2\tGym");

    const QString calendar = print("cmdPrintCal", home.file("calendar.pdf"));
    EXPECT_TRUE(calendar.contains("Calendar for March 2009")) << calendar.toStdString();
    EXPECT_TRUE(calendar.contains("Printed 10/03/2009"));
    EXPECT_TRUE(calendar.contains("Dentist"));
    EXPECT_EQ(calendar.count("Gym"), 5) << "every Monday of March 2009";

    const QString list = print("cmd_print", home.file("list.pdf"));
    EXPECT_TRUE(list.contains("Events for March 2009")) << list.toStdString();
    EXPECT_TRUE(list.contains("Printed 10/03/2009"));
    EXPECT_LT(list.indexOf("Gym"), list.indexOf("Dentist")) << "day by day: the 2nd before the 5th";
    EXPECT_TRUE(list.contains("signed forms")) << "whole descriptions";
    EXPECT_EQ(dialogs.count(), 0);

    const QString nowhere = home.file("no/such/folder/out.pdf");
    for (const char* button : {"cmdPrintCal", "cmd_print"}) {
        print(button, nowhere);
        EXPECT_EQ(dialogs.lastText(), "Unable to print. " + nowhere + " not ready");
    }
    EXPECT_EQ(dialogs.count(), 2);
}

} // namespace
