// The event editor's recurrence tabs: one page per recurrence type, each with
// its controls on top and a line of help below.
#include "app/dialogs/StartDateLabel.h"
#include "app/dialogs/frmEvent.h"
#include "app/dialogs/frmEventWidgets.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QTabWidget>
#include <QVBoxLayout>

using EventEditorWidgets::makeNumberBox;
using EventEditorWidgets::S;

namespace {

struct TabText {
    const char* caption;
    const char* tip; // empty: no tool tip
    const char* help;
};

// By tab index, which is also the event's recurrence type.
const TabText kTabs[] = {
    {"Day of week", "Event by Weekday",
     "Select the days of the week you want the event to occur on."},
    {"Monthly", "Normal Monthly Event",
     "Choose the day then the month.  Choose EVERY if the event is to occur every month. A "
     "date "
     "(e.g. 31) after the end of a month equals the last day in that month."},
    {"Every X Months", "", "Event that repeats every x months from a starting date."},
    {"Weekly", "Every x weeks", "Event that repeats every x weeks from a starting date."},
    {"Day X of Month", "Day X in month",
     "Use for 2nd Thursday/Last Sunday in month type events.  Pick the day number then the day "
     "name."},
    {"Every X days", "Every X days from date",
     "Event that repeats every x days from a starting date."},
};

// A list box showing a few rows; the frames are small.
QListWidget* makeList(QWidget* parent, const QString& name, const QStringList& items, int rows) {
    auto* list = new QListWidget(parent);
    list->setObjectName(name);
    list->addItems(items);
    // Whole rows only: a sliver of a further row looks like a drawing fault.
    const int row =
        list->sizeHintForRow(0) > 0 ? list->sizeHintForRow(0) : list->fontMetrics().height() + 2;
    list->setFixedHeight(row * rows + 2 * list->frameWidth());
    int width = 0;
    for (const QString& item : items) {
        width = std::max(width, list->fontMetrics().horizontalAdvance(item));
    }
    list->setMinimumWidth(width + 40);
    list->setCurrentRow(0);
    return list;
}

QWidget* makePage(QWidget* parent, int index) {
    auto* page = new QWidget(parent);
    page->setObjectName(QStringLiteral("fraEvent%1").arg(index));
    return page;
}

// Lays out a page: its controls on top, the tab's help text below.
void finishPage(QWidget* page, int index, QLayout* controls) {
    auto* v = new QVBoxLayout(page);
    v->addLayout(controls);
    auto* help = new QLabel(S(kTabs[index].help), page);
    help->setWordWrap(true);
    help->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    help->setForegroundRole(QPalette::PlaceholderText);
    v->addWidget(help);
    v->addStretch(1);
}

} // namespace

void frmEvent::buildRecurrenceTabs() {
    TabStrip1 = new QTabWidget(this);
    TabStrip1->setObjectName(QStringLiteral("TabStrip1"));
    fraEvent = {
        buildWeekdayPage(),
        buildDayOfMonthPage(),
        buildIntervalPage(2, QStringLiteral("txtMonthlyPeriod"),
                          QStringLiteral("lblMonthlyStartDate"), "months from", txtMonthlyPeriod,
                          lblMonthlyStartDate),
        buildIntervalPage(3, QStringLiteral("txtWeeklyPeriod"),
                          QStringLiteral("lblWeeklyStartDate"), "weeks from", txtWeeklyPeriod,
                          lblWeeklyStartDate),
        buildNthWeekdayPage(),
        buildIntervalPage(5, QStringLiteral("txtDailyPeriod"), QStringLiteral("lblDailyStartDate"),
                          "days from", txtDailyPeriod, lblDailyStartDate),
    };
    for (int i = 0; i < fraEvent.size(); ++i) {
        TabStrip1->addTab(fraEvent[i], S(kTabs[i].caption));
        if (*kTabs[i].tip != '\0') {
            TabStrip1->setTabToolTip(i, S(kTabs[i].tip));
        }
    }
}

QWidget* frmEvent::buildWeekdayPage() {
    QWidget* page = makePage(this, 0);
    chkDay.append(nullptr);
    const char* const dayNames[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                    "Friday", "Saturday", "Sunday"};
    auto* daysGrid = new QGridLayout;
    for (int i = 1; i <= 7; ++i) {
        auto* box = new QCheckBox(S(dayNames[i - 1]), page);
        box->setObjectName(QStringLiteral("chkDay%1").arg(i));
        chkDay.append(box);
        // Weekdays down the first column, the weekend in the second.
        daysGrid->addWidget(box, i <= 5 ? i - 1 : i - 6, i <= 5 ? 0 : 1);
    }
    daysGrid->setColumnMinimumWidth(0, 140);
    daysGrid->setColumnStretch(2, 1);
    finishPage(page, 0, daysGrid);
    return page;
}

QWidget* frmEvent::buildDayOfMonthPage() {
    QWidget* page = makePage(this, 1);
    txtDayOfMonth = makeNumberBox(page, QStringLiteral("txtDayOfMonth"), 3);
    QStringList monthNames;
    for (int m = 1; m <= 12; ++m) {
        monthNames.append(QLocale().monthName(m, QLocale::LongFormat));
    }
    monthNames.append(S("Every Month"));
    lstMonthNames = makeList(page, QStringLiteral("lstMonthNames"), monthNames, 5);

    auto* g = new QGridLayout;
    auto* day = new QLabel(S("Day:"), page);
    day->setBuddy(txtDayOfMonth);
    auto* month = new QLabel(S("Month:"), page);
    month->setBuddy(lstMonthNames);
    g->addWidget(day, 0, 0);
    g->addWidget(txtDayOfMonth, 0, 1, Qt::AlignLeft);
    g->addWidget(month, 1, 0, Qt::AlignTop);
    g->addWidget(lstMonthNames, 1, 1, Qt::AlignLeft);
    g->setColumnStretch(2, 1);
    finishPage(page, 1, g);
    return page;
}

QWidget* frmEvent::buildIntervalPage(int index, const QString& periodName, const QString& startName,
                                     const char* unit, QLineEdit*& periodBox,
                                     StartDateLabel*& startLabel) {
    QWidget* page = makePage(this, index);
    periodBox = makeNumberBox(page, periodName, 3);
    startLabel = new StartDateLabel(startName, this);

    auto* h = new QHBoxLayout;
    auto* every = new QLabel(S("Repeat every"), page);
    every->setBuddy(periodBox);
    h->addWidget(every);
    h->addWidget(periodBox);
    h->addWidget(new QLabel(S(unit), page));
    h->addWidget(startLabel);
    h->addStretch(1);
    finishPage(page, index, h);
    return page;
}

QWidget* frmEvent::buildNthWeekdayPage() {
    QWidget* page = makePage(this, 4);
    lstDayNumber = makeList(page, QStringLiteral("lstDayNumber"),
                            {S("1st"), S("2nd"), S("3rd"), S("4th"), S("Last")}, 5);
    lstDayName = makeList(page, QStringLiteral("lstDayName"),
                          {S("Sunday"), S("Monday"), S("Tuesday"), S("Wednesday"), S("Thursday"),
                           S("Friday"), S("Saturday")},
                          5);
    lstMonths = makeList(page, QStringLiteral("lstMonths"),
                         {S("Every Month"), S("January"), S("February"), S("March"), S("April"),
                          S("May"), S("June"), S("July"), S("August"), S("September"), S("October"),
                          S("November"), S("December")},
                         5);

    auto* h = new QHBoxLayout;
    auto* the = new QLabel(S("The"), page);
    the->setBuddy(lstDayNumber);
    h->addWidget(the, 0, Qt::AlignTop);
    h->addWidget(lstDayNumber, 0, Qt::AlignTop);
    h->addWidget(lstDayName, 0, Qt::AlignTop);
    h->addWidget(new QLabel(S("in"), page), 0, Qt::AlignTop);
    h->addWidget(lstMonths, 0, Qt::AlignTop);
    h->addStretch(1);
    finishPage(page, 4, h);
    return page;
}
