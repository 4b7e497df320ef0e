// The month view offscreen with a fixed clock: grid, colours, navigation,
// filters, shared events, the plain-text list and both printouts.
#include "app/dialogs/frmMonthView.h"
#include "app/AppContext.h"
#include "app/dialogs/PrintSetup.h"
#include "shared/cSHAREDSettings.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "support/FakeReminderWindows.h"
#include "support/LogLines.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <memory>

namespace {

class MonthView : public ::testing::Test {
protected:
    MonthView()
        : layers(settings), events(settings, &layers), expired(settings, &layers),
          shared(settings, layers) {
        settings.sSet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Ann")));
        settings.sSet(QStringLiteral("DataPath"), SettingValue(home.path()));
        layers.setLayer(2, QStringLiteral("Work"));
        events.SetDBFilename(home.file(QStringLiteral("Events.xml")));
    }

    AppContext& context() {
        if (!ctx) {
            ctx = std::make_unique<AppContext>(
                AppContext{settings, home.file(QStringLiteral("Tvo.ini")), layers, events, expired,
                           shared, dialogs, opener, player});
        }
        return *ctx;
    }

    frmMonthView& open() {
        view = std::make_unique<frmMonthView>(context());
        return *view;
    }

    EventPtr add(const QString& desc, const QString& due, int16_t layer = 1) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(desc);
        e->setDueDate(D(due));
        e->setStartDate(D(due));
        e->setLayer(layer);
        e->setOwner(QStringLiteral("Ann"));
        events.StoreRecord(e);
        events.SaveDB();
        return e;
    }

    EventPtr addRecurring(const QString& desc, const QString& due, int type, int16_t period = 1) {
        auto e = add(desc, due);
        e->setRecurring(true);
        e->setRecurrenceType(type);
        e->setPeriod(period);
        events.SaveDB();
        return e;
    }

    // Day box of a day of the shown month.
    QString dayBox(int day) const { return view->BoxText(view->Calendar().BoxOfDay(day)); }
    QString dateLabel() const {
        return view->findChild<QLabel*>(QStringLiteral("lblDate"))->text();
    }
    void click(const char* name) {
        QTest::mouseClick(view->findChild<QPushButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }

    TempHome home;
    cSHAREDSettings settings;
    clsLayers layers;
    clsDbXml events;
    clsDbXml expired;
    SharedDatabases shared;
    ScriptedDialogs dialogs;
    FakeFileOpener opener;
    FakeSoundPlayer player;
    std::unique_ptr<AppContext> ctx;
    std::unique_ptr<frmMonthView> view;
};

TEST_F(MonthView, OpensOnThisMonthWithAllCategories) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    open();
    const char* const days[] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("lblDay%1").arg(i))->text(),
                  QString::fromLatin1(days[i]));
    }
    auto* combo = view->findChild<QComboBox*>(QStringLiteral("cmbLayers"));
    ASSERT_EQ(combo->count(), 21);
    EXPECT_EQ(combo->itemText(2), QStringLiteral("Work"));
    EXPECT_EQ(view->SelectedLayer(), 20);
    EXPECT_EQ(dateLabel(), QStringLiteral("March 2009"));
    EXPECT_EQ(view->windowTitle(), QStringLiteral("TVO Monthly View (All Categories)"));
    EXPECT_TRUE(LoggedTexts().contains(QStringLiteral("Opening monthly calendar")));
}

TEST_F(MonthView, FebruaryStartingOnSundayFillsTheFirstFourRows) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    open();
    for (const auto& [year, lastBox] : {std::pair{2009, 27}, {2004, 28}}) {
        view->ShowMonth(year, 2);
        for (int box = 0; box < 42; ++box) {
            const QString text = view->BoxText(box);
            if (box <= lastBox) {
                EXPECT_EQ(text, QString::number(box + 1) + QLatin1Char('\n'))
                    << year << " box " << box;
            } else {
                EXPECT_TRUE(text.isEmpty()) << year << " box " << box;
            }
        }
    }
}

TEST_F(MonthView, TodayIsLightOrangeOnlyInTheCurrentMonth) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    open();
    const QColor orange = QColor::fromRgb(frmMonthView::kTodayColour);
    auto colourOfDay = [&](int day) {
        return view->Calbox(view->Calendar().BoxOfDay(day))->palette().color(QPalette::Base);
    };
    EXPECT_EQ(colourOfDay(10), orange);
    EXPECT_NE(colourOfDay(11), orange);
    for (const char* button : {"cmd_nextmonth", "cmd_prevyear"}) {
        click(button);
        for (int day = 1; day <= view->Calendar().DayCount(); ++day) {
            EXPECT_NE(colourOfDay(day), orange) << button << " day " << day;
        }
    }
    click("cmdNow");
    EXPECT_EQ(dateLabel(), QStringLiteral("March 2009"));
    EXPECT_EQ(colourOfDay(10), orange);
}

TEST_F(MonthView, NavigationWrapsMonthsAndYears) {
    FixedClock clock(QStringLiteral("2009-01-20 09:00"));
    open();
    const struct {
        const char* button;
        const char* label;
    } steps[] = {
        {"cmd_prevmonth", "December 2008"}, {"cmd_nextmonth", "January 2009"},
        {"cmd_prevyear", "January 2008"},   {"cmd_nextyear", "January 2009"},
        {"cmd_nextyear", "January 2010"},   {"cmd_prevmonth", "December 2009"},
        {"cmd_nextmonth", "January 2010"},  {"cmdNow", "January 2009"},
    };
    for (const auto& s : steps) {
        click(s.button);
        EXPECT_EQ(dateLabel(), QString::fromLatin1(s.label)) << s.button;
    }
}

TEST_F(MonthView, EventsAppearOnTheirDaysAsTheRulesPlaceThem) {
    FixedClock clock(QStringLiteral("2009-01-20 09:00"));
    auto monthly = addRecurring(QStringLiteral("Rent due on the last day"),
                                QStringLiteral("2009-01-31"), clsEvent::DayOfMonthType);
    monthly->setDayOfMonth(31);
    monthly->setMonthNumber(clsEvent::kEveryMonthType1);
    addRecurring(QStringLiteral("Water the plants"), QStringLiteral("2008-10-03"),
                 clsEvent::EveryXDays, 1);
    add(QStringLiteral("Dentist appointment"), QStringLiteral("2009-04-07"));
    events.SaveDB();
    const QByteArray before = ReadFileBytes(events.DBFilename());
    open();

    const struct {
        int month;
        int lastDay;
    } months[] = {{1, 31}, {2, 28}, {3, 31}, {4, 30}};
    for (const auto& m : months) {
        view->ShowMonth(2009, m.month);
        for (int day = 1; day <= m.lastDay; ++day) {
            QString expected = QString::number(day) + QStringLiteral("\n");
            if (day == m.lastDay) {
                expected += QStringLiteral("Rent due on the last d\n");
            }
            expected += QStringLiteral("Water the plants\n");
            if (m.month == 4 && day == 7) {
                expected += QStringLiteral("Dentist appo\n");
            }
            EXPECT_EQ(dayBox(day), expected) << m.month << "/" << day;
        }
    }
    EXPECT_EQ(ReadFileBytes(events.DBFilename()), before) << "the view never writes events back";
}

TEST_F(MonthView, LayerComboFiltersAndNamesTheWindow) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    add(QStringLiteral("work"), QStringLiteral("2009-03-05"), 2);
    add(QStringLiteral("home"), QStringLiteral("2009-03-05"), 3);
    auto flagged = add(QStringLiteral("flagged"), QStringLiteral("2009-03-05"), 3);
    flagged->SharedEvent = true;
    events.SaveDB();
    open();
    auto* combo = view->findChild<QComboBox*>(QStringLiteral("cmbLayers"));
    const struct {
        int layer;
        const char* box;
        const char* title;
    } cases[] = {
        {2, "5\nwork\n", "TVO Monthly View (Work)"},
        {0, "5\nflagged\n", "TVO Monthly View (Shared)"},
        {3, "5\nhome\nflagged\n", "TVO Monthly View (Layer 3)"},
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
}

TEST_F(MonthView, NetworkedShowsOwnersAndOtherUsersSharedEvents) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    const QString folder = home.file(QStringLiteral("shared"));
    QDir().mkpath(folder);
    settings.sSet(QStringLiteral("Networked"), SettingValue(true));
    settings.sSet(QStringLiteral("SharedDatapath"), SettingValue(folder));
    ASSERT_TRUE(SharedDatabases::WriteUserList(folder + QStringLiteral("/TVOShared.ini"),
                                               {QStringLiteral("Ann"), QStringLiteral("Bob")}));
    {
        cSHAREDSettings bobSettings;
        bobSettings.sSet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Bob")));
        clsDbXml bob(bobSettings);
        bob.SetDBFilename(folder + QStringLiteral("/Shared_Bob.xml"));
        auto e = std::make_shared<clsEvent>();
        e->setDesc(QStringLiteral("Team lunch"));
        e->setDueDate(D("2009-03-12"));
        e->setOwner(QStringLiteral("Bob"));
        e->SharedEvent = true;
        e->SharedLayerName = QStringLiteral("Shared");
        bob.StoreRecord(e);
        bob.SaveDB();
    }
    add(QStringLiteral("Mine"), QStringLiteral("2009-03-12"));
    open();
    EXPECT_EQ(dayBox(12), QStringLiteral("12\nMine [Ann]\nTeam lunch [Bob]\n"));
}

TEST_F(MonthView, ViewEventListShowsTheMonthAsText) {
    FixedClock clock(QStringLiteral("2009-02-10 09:00"));
    add(QStringLiteral("Pay bills"), QStringLiteral("2009-02-02"));
    open();
    click("cmdViewEvents");
    auto* text = view->findChild<QPlainTextEdit*>(QStringLiteral("txtEventList"));
    ASSERT_NE(text, nullptr);
    const QStringList lines = text->toPlainText().split(QLatin1Char('\n'));
    EXPECT_EQ(lines.value(0), QStringLiteral("Events for February 2009"));
    EXPECT_EQ(lines.value(2), QStringLiteral("Mon 2\tPay bills"));
}

TEST_F(MonthView, PrintoutsGoToPdfWithTheirHeadings) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    add(QStringLiteral("Dentist"), QStringLiteral("2009-03-05"));
    add(QStringLiteral("Parents' evening at the school, bring the signed forms"),
        QStringLiteral("2009-03-06"));
    addRecurring(QStringLiteral("Gym"), QStringLiteral("2009-03-02"), clsEvent::Weekly, 1);
    open();

    const QString calendarPdf = home.file(QStringLiteral("calendar.pdf"));
    PdfPrintSetup toCalendar(calendarPdf);
    view->setPrintSetup(&toCalendar);
    click("cmdPrintCal");
    const QString calendar = PdfText(calendarPdf);
    EXPECT_TRUE(calendar.contains(QStringLiteral("Calendar for March 2009")))
        << calendar.toStdString();
    EXPECT_TRUE(calendar.contains(QStringLiteral("Printed 10/03/2009")));
    EXPECT_TRUE(calendar.contains(QStringLiteral("Dentist")));
    EXPECT_EQ(calendar.count(QStringLiteral("Gym")), 5) << "every Monday of March 2009";
    const QStringList log = LoggedTexts();
    for (const char* line :
         {"Printing calendar", "From 01/03/2009 to 31/03/2009", "Printed Header",
          "Starting print loop", "CurrentDate: 31/03/2009", "Finished printing calendar"}) {
        EXPECT_TRUE(log.contains(QString::fromLatin1(line))) << line;
    }

    const QString listPdf = home.file(QStringLiteral("list.pdf"));
    PdfPrintSetup toList(listPdf);
    view->setPrintSetup(&toList);
    click("cmd_print");
    const QString list = PdfText(listPdf);
    EXPECT_TRUE(list.contains(QStringLiteral("Events for March 2009"))) << list.toStdString();
    EXPECT_TRUE(list.contains(QStringLiteral("Printed 10/03/2009")));
    EXPECT_LT(list.indexOf(QStringLiteral("Gym")), list.indexOf(QStringLiteral("Dentist")))
        << "day by day: the 2nd before the 5th";
    EXPECT_TRUE(list.contains(QStringLiteral("signed forms"))) << "whole descriptions";
    EXPECT_EQ(dialogs.count(), 0);
}

TEST_F(MonthView, PrinterNotReadyIsReportedAndNothingPrinted) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    open();
    const QString nowhere = home.file(QStringLiteral("no/such/folder/out.pdf"));
    PdfPrintSetup broken(nowhere);
    view->setPrintSetup(&broken);
    for (const char* button : {"cmdPrintCal", "cmd_print"}) {
        dialogs.clear();
        click(button);
        EXPECT_EQ(dialogs.texts(), QStringList{QStringLiteral("Unable to print. ") + nowhere +
                                               QStringLiteral(" not ready")})
            << button;
    }
    EXPECT_FALSE(QFileInfo::exists(nowhere));
}

} // namespace
