#include "app/dialogs/frmEvent.h"

#include "app/AppContext.h"
#include "events/clsEvent.h"
#include "shared/AppPaths.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "storage/SharedDatabases.h"
#include "storage/clsLayers.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDate>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const char* const kDatePrompt = "Enter start date for this event";

QString S(const char* text) {
    return QString::fromUtf8(text);
}

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

int rowOf(const QListWidget* list) {
    return std::max(0, list->currentRow());
}

void selectRow(QListWidget* list, int row) {
    if (row >= 0 && row < list->count()) {
        list->setCurrentRow(row);
        list->scrollToItem(list->item(row));
    }
}

QLineEdit* makeNumberBox(QWidget* parent, const QString& name, int chars) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setMaximumWidth(box->fontMetrics().horizontalAdvance(QLatin1Char('0')) * (chars + 1) + 16);
    return box;
}

QLabel* makeHelp(QWidget* parent, const QString& text) {
    auto* help = new QLabel(text, parent);
    help->setWordWrap(true);
    help->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    help->setForegroundRole(QPalette::PlaceholderText);
    return help;
}

} // namespace

frmEvent::frmEvent(AppContext& context, clsEvent& event, bool editing, QWidget* parent)
    : QDialog(parent), m_context(context), m_event(event), m_editing(editing) {
    setObjectName(QStringLiteral("frmEvent"));
    setWindowTitle(QStringLiteral("TVO - Add/Edit event"));
    setModal(true);
    buildControls();
    Form_Load();
}

frmEvent::~frmEvent() = default;

QLabel* frmEvent::makeDateLabel(const QString& name) {
    auto* label = new QLabel(this);
    label->setObjectName(name);
    label->setCursor(Qt::PointingHandCursor);
    label->setFocusPolicy(Qt::StrongFocus);
    label->setToolTip(QString::fromLatin1(kDatePrompt));
    // A framed, underlined text that shows when it has the keyboard focus
    // (Space or Enter then opens the date picker).
    label->setStyleSheet(
        QStringLiteral("QLabel { border: 1px solid palette(mid); padding: 1px 4px; }"
                       "QLabel:focus { border: 1px solid palette(highlight); }"));
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("MM/DD/YYYY")) +
                           16);
    QFont font = label->font();
    font.setUnderline(true);
    label->setFont(font);
    label->installEventFilter(this);
    return label;
}

QWidget* frmEvent::makeFrame(int index, const QString& help) {
    auto* frame = new QWidget(this);
    frame->setObjectName(QStringLiteral("fraEvent%1").arg(index));
    frame->setProperty("help", help);
    return frame;
}

void frmEvent::buildControls() {
    // Description and layer.
    txtDesc = new QPlainTextEdit(this);
    txtDesc->setObjectName(QStringLiteral("txtDesc"));
    txtDesc->setTabChangesFocus(true);
    txtDesc->setFixedHeight(txtDesc->fontMetrics().lineSpacing() * 3 + 14);
    auto* lblDesc = new QLabel(S("&Description:"), this);
    lblDesc->setBuddy(txtDesc);
    cmbLayers = new QComboBox(this);
    cmbLayers->setObjectName(QStringLiteral("cmbLayers"));
    cmbLayers->setMinimumContentsLength(14);
    cmbLayers->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto* lblLayer = new QLabel(S("Layer:"), this);
    lblLayer->setBuddy(cmbLayers);

    // Alarm and warnings.
    chkTimed = new QCheckBox(S("Alarm"), this);
    chkTimed->setObjectName(QStringLiteral("chkTimed"));
    txtTime = makeNumberBox(this, QStringLiteral("txtTime"), 5);
    txtTime->setText(S("HH:MM"));
    txtTime->setToolTip(S("Event time. Please use 24-hour format, eg. 11pm is 23:00"));
    txtTime->installEventFilter(this);
    lblEventTime = new QLabel(S("Event Time:"), this);
    lblEventTime->setObjectName(QStringLiteral("lblEventTime"));
    lblEventTime->setBuddy(txtTime);
    txtMinutesWarning = makeNumberBox(this, QStringLiteral("txtMinutesWarning"), 5);
    txtMinutesWarning->setText(S("30"));
    txtMinutesWarning->setToolTip(
        S("(Minutes) The alarm will be shown at event time minus this setting."));
    lblMinWarning = new QLabel(S("Warning:"), this);
    lblMinWarning->setObjectName(QStringLiteral("lblMinWarning"));
    lblMinWarning->setBuddy(txtMinutesWarning);
    lblAlarmAdvice = new QLabel(this);
    lblAlarmAdvice->setObjectName(QStringLiteral("lblAlarmAdvice"));
    lblAlarmAdvice->setMinimumWidth(
        lblAlarmAdvice->fontMetrics().horizontalAdvance(S("(Alarm will sound at 12:59pm)")) + 4);
    txtDaysWarning = makeNumberBox(this, QStringLiteral("txtDaysWarning"), 5);
    auto* lblDaysWarning = new QLabel(S("Days warning:"), this);
    lblDaysWarning->setBuddy(txtDaysWarning);
    optRepeat = new QRadioButton(S("Repeat Forever"), this);
    optRepeat->setObjectName(QStringLiteral("optRepeat"));
    optShowOnce = new QRadioButton(S("Show Once"), this);
    optShowOnce->setObjectName(QStringLiteral("optShowOnce"));
    optRepeat->setChecked(true);

    auto* whenBox = new QGroupBox(S("When"), this);
    auto* when = new QGridLayout(whenBox);
    when->addWidget(chkTimed, 0, 0, 1, 2);
    when->addWidget(lblEventTime, 1, 0);
    when->addWidget(txtTime, 1, 1);
    when->addWidget(lblMinWarning, 2, 0);
    auto* minutesRow = new QHBoxLayout;
    minutesRow->addWidget(txtMinutesWarning);
    auto* warningUnit = new QLabel(S("minutes"), this);
    warningUnit->setObjectName(QStringLiteral("lblWarningUnit"));
    minutesRow->addWidget(warningUnit);
    minutesRow->addStretch(1);
    when->addLayout(minutesRow, 2, 1);
    when->addWidget(lblAlarmAdvice, 3, 0, 1, 2);
    when->addWidget(lblDaysWarning, 4, 0);
    when->addWidget(txtDaysWarning, 4, 1);
    when->addWidget(optRepeat, 5, 0, 1, 2);
    when->addWidget(optShowOnce, 6, 0, 1, 2);
    when->setRowStretch(7, 1);
    when->setColumnStretch(1, 1);

    // Recurrence tabs, one frame each.
    TabStrip1 = new QTabWidget(this);
    TabStrip1->setObjectName(QStringLiteral("TabStrip1"));
    struct TabText {
        const char* caption;
        const char* tip;
        const char* help;
    };
    const TabText tabs[] = {
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

    // 0: days of the week.
    QWidget* frame = makeFrame(0, S(tabs[0].help));
    chkDay.append(nullptr);
    const char* const dayNames[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                    "Friday", "Saturday", "Sunday"};
    auto* daysGrid = new QGridLayout;
    for (int i = 1; i <= 7; ++i) {
        auto* box = new QCheckBox(S(dayNames[i - 1]), frame);
        box->setObjectName(QStringLiteral("chkDay%1").arg(i));
        chkDay.append(box);
        // Weekdays down the first column, the weekend in the second.
        daysGrid->addWidget(box, i <= 5 ? i - 1 : i - 6, i <= 5 ? 0 : 1);
    }
    daysGrid->setColumnMinimumWidth(0, 140);
    daysGrid->setColumnStretch(2, 1);
    fraEvent.append(frame);

    // 1: day of month.
    frame = makeFrame(1, S(tabs[1].help));
    txtDayOfMonth = makeNumberBox(frame, QStringLiteral("txtDayOfMonth"), 3);
    QStringList monthNames;
    const int year = QDate::currentDate().year();
    for (int m = 1; m <= 12; ++m) {
        monthNames.append(QLocale().toString(QDate(year, m, 1), QStringLiteral("MMMM")));
    }
    monthNames.append(S("Every Month"));
    lstMonthNames = makeList(frame, QStringLiteral("lstMonthNames"), monthNames, 5);
    fraEvent.append(frame);

    // 2, 3, 5: every so many months, weeks or days from a start date.
    frame = makeFrame(2, S(tabs[2].help));
    txtMonthlyPeriod = makeNumberBox(frame, QStringLiteral("txtMonthlyPeriod"), 3);
    lblMonthlyStartDate = makeDateLabel(QStringLiteral("lblMonthlyStartDate"));
    fraEvent.append(frame);
    frame = makeFrame(3, S(tabs[3].help));
    txtWeeklyPeriod = makeNumberBox(frame, QStringLiteral("txtWeeklyPeriod"), 3);
    lblWeeklyStartDate = makeDateLabel(QStringLiteral("lblWeeklyStartDate"));
    fraEvent.append(frame);

    // 4: the Nth weekday of a month.
    frame = makeFrame(4, S(tabs[4].help));
    lstDayNumber = makeList(frame, QStringLiteral("lstDayNumber"),
                            {S("1st"), S("2nd"), S("3rd"), S("4th"), S("Last")}, 5);
    lstDayName = makeList(frame, QStringLiteral("lstDayName"),
                          {S("Sunday"), S("Monday"), S("Tuesday"), S("Wednesday"), S("Thursday"),
                           S("Friday"), S("Saturday")},
                          5);
    lstMonths = makeList(frame, QStringLiteral("lstMonths"),
                         {S("Every Month"), S("January"), S("February"), S("March"), S("April"),
                          S("May"), S("June"), S("July"), S("August"), S("September"), S("October"),
                          S("November"), S("December")},
                         5);
    fraEvent.append(frame);

    frame = makeFrame(5, S(tabs[5].help));
    txtDailyPeriod = makeNumberBox(frame, QStringLiteral("txtDailyPeriod"), 3);
    lblDailyStartDate = makeDateLabel(QStringLiteral("lblDailyStartDate"));
    fraEvent.append(frame);

    // Frame layouts: the controls on top, the help text below.
    auto frameLayout = [](QWidget* f, QLayout* controls) {
        auto* v = new QVBoxLayout(f);
        v->addLayout(controls);
        v->addWidget(makeHelp(f, f->property("help").toString()));
        v->addStretch(1);
    };
    frameLayout(fraEvent[0], daysGrid);
    {
        auto* g = new QGridLayout;
        auto* day = new QLabel(S("Day:"), fraEvent[1]);
        day->setBuddy(txtDayOfMonth);
        auto* month = new QLabel(S("Month:"), fraEvent[1]);
        month->setBuddy(lstMonthNames);
        g->addWidget(day, 0, 0);
        g->addWidget(txtDayOfMonth, 0, 1, Qt::AlignLeft);
        g->addWidget(month, 1, 0, Qt::AlignTop);
        g->addWidget(lstMonthNames, 1, 1, Qt::AlignLeft);
        g->setColumnStretch(2, 1);
        frameLayout(fraEvent[1], g);
    }
    auto intervalRow = [this](QWidget* f, QLineEdit* period, const char* unit, QLabel* date) {
        auto* h = new QHBoxLayout;
        auto* every = new QLabel(S("Repeat every"), f);
        every->setBuddy(period);
        h->addWidget(every);
        h->addWidget(period);
        h->addWidget(new QLabel(S(unit), f));
        h->addWidget(date);
        h->addStretch(1);
        return h;
    };
    frameLayout(fraEvent[2],
                intervalRow(fraEvent[2], txtMonthlyPeriod, "months from", lblMonthlyStartDate));
    frameLayout(fraEvent[3],
                intervalRow(fraEvent[3], txtWeeklyPeriod, "weeks from", lblWeeklyStartDate));
    frameLayout(fraEvent[5],
                intervalRow(fraEvent[5], txtDailyPeriod, "days from", lblDailyStartDate));
    {
        auto* h = new QHBoxLayout;
        auto* the = new QLabel(S("The"), fraEvent[4]);
        the->setBuddy(lstDayNumber);
        h->addWidget(the, 0, Qt::AlignTop);
        h->addWidget(lstDayNumber, 0, Qt::AlignTop);
        h->addWidget(lstDayName, 0, Qt::AlignTop);
        h->addWidget(new QLabel(S("in"), fraEvent[4]), 0, Qt::AlignTop);
        h->addWidget(lstMonths, 0, Qt::AlignTop);
        h->addStretch(1);
        frameLayout(fraEvent[4], h);
    }
    for (int i = 0; i < 6; ++i) {
        TabStrip1->addTab(fraEvent[i], S(tabs[i].caption));
        if (*tabs[i].tip != '\0') {
            TabStrip1->setTabToolTip(i, S(tabs[i].tip));
        }
    }

    // Sound, file to run, e-mail.
    chkMakeNoise = new QCheckBox(S("Sound:"), this);
    chkMakeNoise->setObjectName(QStringLiteral("chkMakeNoise"));
    cmdPickWav = new QPushButton(S(". . ."), this);
    cmdPickWav->setObjectName(QStringLiteral("cmdPickWav"));
    cmdPickWav->setToolTip(S("Choose the sound for this event"));
    lblWavFile = new QLabel(this);
    lblWavFile->setObjectName(QStringLiteral("lblWavFile"));
    chkRunFile = new QCheckBox(S("Run File:"), this);
    chkRunFile->setObjectName(QStringLiteral("chkRunFile"));
    cmdPickFile = new QPushButton(S(". . ."), this);
    cmdPickFile->setObjectName(QStringLiteral("cmdPickFile"));
    cmdPickFile->setToolTip(S("Choose the file to open when the event falls due"));
    lblExecFile = new QLabel(this);
    lblExecFile->setObjectName(QStringLiteral("lblExecFile"));
    chkFrequency = new QCheckBox(S("Every"), this);
    chkFrequency->setObjectName(QStringLiteral("chkFrequency"));
    txtFrequency = makeNumberBox(this, QStringLiteral("txtFrequency"), 3);
    txtFrequency->setText(S("00"));
    lblMinutes = new QLabel(S("minutes"), this);
    lblMinutes->setObjectName(QStringLiteral("lblMinutes"));
    chkEmailTo = new QCheckBox(S("Email Alert To:"), this);
    chkEmailTo->setObjectName(QStringLiteral("chkEmailTo"));
    txtEmailAlert = new QLineEdit(this);
    txtEmailAlert->setObjectName(QStringLiteral("txtEmailAlert"));
    for (QLabel* path : {lblWavFile, lblExecFile}) {
        path->setFrameShape(QFrame::StyledPanel);
        path->setTextInteractionFlags(Qt::TextSelectableByMouse);
        path->setMinimumWidth(220);
        path->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    const int pickWidth = cmdPickWav->fontMetrics().horizontalAdvance(S(". . .")) + 24;
    cmdPickWav->setFixedWidth(pickWidth);
    cmdPickFile->setFixedWidth(pickWidth);

    auto* actionsBox = new QGroupBox(S("When it falls due"), this);
    auto* actions = new QGridLayout(actionsBox);
    actions->addWidget(chkMakeNoise, 0, 0);
    actions->addWidget(cmdPickWav, 0, 1);
    actions->addWidget(lblWavFile, 0, 2, 1, 4);
    actions->addWidget(chkRunFile, 1, 0);
    actions->addWidget(cmdPickFile, 1, 1);
    actions->addWidget(lblExecFile, 1, 2);
    actions->addWidget(chkFrequency, 1, 3);
    actions->addWidget(txtFrequency, 1, 4);
    actions->addWidget(lblMinutes, 1, 5);
    actions->addWidget(chkEmailTo, 2, 0);
    actions->addWidget(txtEmailAlert, 2, 1, 1, 5);
    actions->setColumnStretch(2, 1);
    actions->setRowStretch(3, 1);

    // Sharing (networked mode only).
    FrameShared = new QGroupBox(S("Sharing"), this);
    FrameShared->setObjectName(QStringLiteral("FrameShared"));
    chkShared = new QCheckBox(S("Shared Event"), FrameShared);
    chkShared->setObjectName(QStringLiteral("chkShared"));
    chkSpecificShare = new QCheckBox(S("Specific Users"), FrameShared);
    chkSpecificShare->setObjectName(QStringLiteral("chkSpecificShare"));
    lstUsers = new QListWidget(FrameShared);
    lstUsers->setObjectName(QStringLiteral("lstUsers"));
    lstUsers->setSelectionMode(QAbstractItemView::MultiSelection);
    lstUsers->setToolTip(S("Available users"));
    lstUsers->setFixedHeight(lstUsers->fontMetrics().lineSpacing() * 4 + 8);
    auto* shared = new QVBoxLayout(FrameShared);
    shared->addWidget(chkShared);
    shared->addWidget(chkSpecificShare);
    shared->addWidget(lstUsers);

    cmdSave = new QPushButton(S("&Save"), this);
    cmdSave->setObjectName(QStringLiteral("cmdSave"));
    cmdSave->setDefault(true);
    cmdAbort = new QPushButton(S("&Abort"), this);
    cmdAbort->setObjectName(QStringLiteral("cmdAbort"));

    // Arrangement.
    auto* top = new QGridLayout;
    top->addWidget(lblDesc, 0, 0, Qt::AlignTop);
    top->addWidget(txtDesc, 0, 1, 2, 1);
    top->addWidget(lblLayer, 0, 2, Qt::AlignTop | Qt::AlignRight);
    top->addWidget(cmbLayers, 0, 3, Qt::AlignTop);
    top->setColumnStretch(1, 1);

    auto* middle = new QHBoxLayout;
    middle->addWidget(whenBox);
    middle->addWidget(TabStrip1, 1);

    auto* lower = new QHBoxLayout;
    lower->addWidget(actionsBox, 1);
    lower->addWidget(FrameShared);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdAbort);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(middle, 1);
    layout->addLayout(lower);
    layout->addLayout(buttons);

    // Keyboard order: top to bottom, left to right.
    QList<QWidget*> order = {txtDesc,        cmbLayers, chkTimed,    txtTime,  txtMinutesWarning,
                             txtDaysWarning, optRepeat, optShowOnce, TabStrip1};
    for (int i = 1; i <= 7; ++i) {
        order.append(chkDay[i]);
    }
    order += {txtDayOfMonth,    lstMonthNames,      txtMonthlyPeriod,  lblMonthlyStartDate,
              txtWeeklyPeriod,  lblWeeklyStartDate, lstDayNumber,      lstDayName,
              lstMonths,        txtDailyPeriod,     lblDailyStartDate, chkMakeNoise,
              cmdPickWav,       chkRunFile,         cmdPickFile,       chkFrequency,
              txtFrequency,     chkEmailTo,         txtEmailAlert,     chkShared,
              chkSpecificShare, lstUsers,           cmdSave,           cmdAbort};
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }

    connect(cmdSave, &QPushButton::clicked, this, &frmEvent::cmdSave_Click);
    connect(cmdAbort, &QPushButton::clicked, this, &frmEvent::cmdAbort_Click);
    connect(cmdPickWav, &QPushButton::clicked, this, &frmEvent::cmdPickWav_Click);
    connect(cmdPickFile, &QPushButton::clicked, this, &frmEvent::cmdPickFile_Click);
    connect(chkMakeNoise, &QCheckBox::clicked, this, &frmEvent::chkMakeNoise_Click);
    connect(chkEmailTo, &QCheckBox::clicked, this, &frmEvent::chkEmailTo_Click);
    connect(chkShared, &QCheckBox::clicked, this, &frmEvent::chkShared_Click);
    connect(chkTimed, &QCheckBox::toggled, this, [this] {
        SetupRelatedItems();
        UpdateAlarmAdvice();
    });
    connect(chkRunFile, &QCheckBox::toggled, this, &frmEvent::SetupRelatedItems);
    connect(txtTime, &QLineEdit::textChanged, this, &frmEvent::UpdateAlarmAdvice);
    connect(txtMinutesWarning, &QLineEdit::textChanged, this, &frmEvent::UpdateAlarmAdvice);
    connect(TabStrip1, &QTabWidget::currentChanged, this, &frmEvent::UpdateEventFrames);
}

void frmEvent::Form_Load() {
    cSHAREDSettings& settings = m_context.settings;

    chkEmailTo->hide();
    txtEmailAlert->hide();

    m_dateStyle = settings.sGet(QStringLiteral("DateStyle"), 1).toInt16();
    m_dateFormat = EventEditorRules::DateFormatText(m_dateStyle);
    lblWeeklyStartDate->setText(m_dateFormat);
    lblMonthlyStartDate->setText(m_dateFormat);
    lblDailyStartDate->setText(m_dateFormat);

    const DateValue today = TodayDate();
    selectRow(lstMonthNames, MonthOf(today) - 1);
    txtDayOfMonth->setText(QString::number(DayOf(today)));
    selectRow(lstDayNumber, 0);
    selectRow(lstDayName, 0);
    selectRow(lstMonths, 0);

    for (int i = 0; i < clsLayers::kCount; ++i) {
        cmbLayers->addItem(m_context.layers.Layer(i));
    }
    cmbLayers->setCurrentIndex(1);

    lblWavFile->clear();
    chkMakeNoise->setChecked(false);

    if (settings.sGet(QStringLiteral("Networked"), false).toBool()) {
        const QString folder = settings.sGet(QStringLiteral("SharedDatapath"), QString()).toText();
        lstUsers->addItems(SharedDatabases::ReadUserList(
            AppPaths::JoinPath(folder, QStringLiteral("TVOShared.ini"))));
    } else {
        FrameShared->hide();
    }

    if (m_editing) {
        CopyDataToForm();
    } else {
        UpdateEventFrames(0);
    }
    chkShared_Click();
    SetupRelatedItems();
    UpdateAlarmAdvice();
    txtDesc->setFocus();
}

void frmEvent::CopyDataToForm() {
    const clsEvent& e = m_event;
    txtDesc->setPlainText(e.Desc());
    if (e.Layer() >= 0 && e.Layer() < cmbLayers->count()) {
        cmbLayers->setCurrentIndex(e.Layer());
    }
    chkTimed->setChecked(e.AlarmSet());
    if (e.AlarmSet()) {
        txtTime->setText(FormatHM(e.DueTime()));
    }
    txtMinutesWarning->setText(QString::number(e.MinutesWarning()));
    txtDaysWarning->setText(QString::number(e.DaysWarning()));
    (e.Recurring() ? optRepeat : optShowOnce)->setChecked(true);
    chkMakeNoise->setChecked(e.PlayWav);
    lblWavFile->setText(e.WavFile);
    chkRunFile->setChecked(e.ExecFile);
    lblExecFile->setText(e.Filename);
    chkEmailTo->setChecked(!e.Email.isEmpty());
    txtEmailAlert->setText(e.Email);
    chkShared->setChecked(e.SharedEvent);
    chkSpecificShare->setChecked(e.ShareWithSpecific);
    // Users named in the event but no longer in the list file stay
    // selectable, so that saving does not drop them unseen.
    for (const QString& name : e.ShareNames.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts)) {
        if (lstUsers->findItems(name, Qt::MatchFixedString).isEmpty()) {
            lstUsers->addItem(name);
        }
    }
    for (int i = 0; i < lstUsers->count(); ++i) {
        lstUsers->item(i)->setSelected(e.NameInShared(lstUsers->item(i)->text()));
    }

    for (int i = 1; i <= 7; ++i) {
        chkDay[i]->setChecked((e.WeekDays() & (1 << i)) != 0);
    }
    switch (e.RecurrenceType()) {
    case clsEvent::DayOfMonthType:
        txtDayOfMonth->setText(QString::number(e.DayOfMonth()));
        selectRow(lstMonthNames, std::clamp<int>(e.MonthNumber(), 1, 13) - 1);
        break;
    case clsEvent::EveryXMonths:
        txtMonthlyPeriod->setText(QString::number(e.Period()));
        lblMonthlyStartDate->setText(EventEditorRules::FormatStartDate(e.StartDate(), m_dateStyle));
        break;
    case clsEvent::Weekly:
        txtWeeklyPeriod->setText(QString::number(e.Period()));
        lblWeeklyStartDate->setText(EventEditorRules::FormatStartDate(e.StartDate(), m_dateStyle));
        break;
    case clsEvent::NthWeekday:
        selectRow(lstDayNumber, std::clamp<int>(e.Daynumber(), 1, 5) - 1);
        selectRow(lstDayName, std::clamp<int>(e.DayOfWeek(), 1, 7) - 1);
        selectRow(lstMonths, std::clamp<int>(e.MonthNumber(), 0, 12));
        break;
    case clsEvent::EveryXDays:
        txtDailyPeriod->setText(QString::number(e.Period()));
        lblDailyStartDate->setText(EventEditorRules::FormatStartDate(e.StartDate(), m_dateStyle));
        break;
    default:
        break;
    }
    UpdateEventFrames(std::clamp<int>(e.RecurrenceType(), 0, 5));
}

void frmEvent::UpdateEventFrames(int index) {
    if (index < 0 || index >= fraEvent.size()) {
        return;
    }
    m_recurrenceType = index;
    if (TabStrip1->currentIndex() != index) {
        TabStrip1->setCurrentIndex(index);
    }
}

void frmEvent::SetupRelatedItems() {
    const bool timed = chkTimed->isChecked();
    QWidget* warningUnit = findChild<QWidget*>(QStringLiteral("lblWarningUnit"));
    for (QWidget* w :
         {static_cast<QWidget*>(txtMinutesWarning), static_cast<QWidget*>(txtTime),
          static_cast<QWidget*>(lblEventTime), static_cast<QWidget*>(lblMinWarning), warningUnit}) {
        w->setEnabled(timed);
    }
    const bool run = chkRunFile->isChecked();
    cmdPickFile->setEnabled(run);
    lblExecFile->setEnabled(run);
    chkFrequency->setEnabled(run);
    txtFrequency->setEnabled(run);
    lblMinutes->setEnabled(run);
}

void frmEvent::UpdateAlarmAdvice() {
    lblAlarmAdvice->setText(chkTimed->isChecked() ? EventEditorRules::AlarmAdvice(
                                                        txtTime->text(), txtMinutesWarning->text())
                                                  : QString());
}

EventEditorInput frmEvent::Input() const {
    EventEditorInput in;
    in.desc = txtDesc->toPlainText();
    in.layer = std::max(0, cmbLayers->currentIndex());
    in.timed = chkTimed->isChecked();
    in.time = txtTime->text();
    in.minutesWarning = txtMinutesWarning->text();
    in.daysWarning = txtDaysWarning->text();
    in.repeat = optRepeat->isChecked();
    in.makeNoise = chkMakeNoise->isChecked();
    in.wavFile = lblWavFile->text();
    in.runFile = chkRunFile->isChecked();
    in.execFile = lblExecFile->text();
    in.emailTo = chkEmailTo->isChecked();
    in.email = txtEmailAlert->text();
    in.shared = chkShared->isChecked();
    in.specificShare = chkSpecificShare->isChecked();
    for (int i = 0; i < lstUsers->count(); ++i) {
        if (lstUsers->item(i)->isSelected()) {
            in.selectedUsers.append(lstUsers->item(i)->text());
        }
    }
    in.recurrenceType = m_recurrenceType;
    for (int i = 1; i <= 7; ++i) {
        in.days.at(i) = chkDay[i]->isChecked();
    }
    in.dayOfMonth = txtDayOfMonth->text();
    in.monthNamesIndex = rowOf(lstMonthNames);
    in.monthlyPeriod = txtMonthlyPeriod->text();
    in.monthlyStart = lblMonthlyStartDate->text();
    in.weeklyPeriod = txtWeeklyPeriod->text();
    in.weeklyStart = lblWeeklyStartDate->text();
    in.dailyPeriod = txtDailyPeriod->text();
    in.dailyStart = lblDailyStartDate->text();
    in.dayNumberIndex = rowOf(lstDayNumber);
    in.dayNameIndex = rowOf(lstDayName);
    in.monthsIndex = rowOf(lstMonths);
    return in;
}

void frmEvent::SetInput(const EventEditorInput& in) {
    // Only the texts the save rules tidy up come back.
    txtTime->setText(in.time);
    txtMinutesWarning->setText(in.minutesWarning);
    txtDaysWarning->setText(in.daysWarning);
    lblWavFile->setText(in.wavFile);
}

bool frmEvent::SaveData() {
    EventEditorInput in = Input();
    const EventEditorOutcome outcome = EventEditorRules::Save(in, m_event, m_context.settings);
    SetInput(in);
    if (!outcome.saved) {
        m_context.dialogs.Message(outcome.message, outcome.title,
                                  outcome.title.isEmpty() ? UserDialogs::Icon::Information
                                                          : UserDialogs::Icon::Critical);
    }
    return outcome.saved;
}

void frmEvent::cmdSave_Click() {
    if (SaveData()) {
        m_saved = true;
        hide();
        done(QDialog::Accepted);
    }
}

void frmEvent::cmdAbort_Click() {
    m_saved = false;
    hide();
    done(QDialog::Rejected);
}

void frmEvent::closeEvent(QCloseEvent* event) {
    m_saved = false;
    QDialog::closeEvent(event);
}

void frmEvent::cmdPickWav_Click() {
    const QString current = lblWavFile->text();
    const std::optional<QString> file = m_context.dialogs.ChooseOpenFile(
        S("Choose a sound for this event"),
        current.isEmpty()
            ? m_context.settings.sGet(QStringLiteral("DataPath"), AppPaths::HomeFolder()).toText()
            : QFileInfo(current).absolutePath(),
        S("WAV files (*.wav)|*.wav"));
    if (file && !file->isEmpty()) {
        lblWavFile->setText(*file);
        chkMakeNoise->setChecked(true);
    }
}

void frmEvent::chkMakeNoise_Click() {
    // Ticking the box with no sound chosen yet asks for one; leaving the
    // chooser empty keeps the tick and the default alarm sound is used.
    if (chkMakeNoise->isChecked() && lblWavFile->text().isEmpty()) {
        cmdPickWav_Click();
    }
}

void frmEvent::cmdPickFile_Click() {
    const QString current = lblExecFile->text();
    const std::optional<QString> file = m_context.dialogs.ChooseOpenFile(
        S("Choose the file to open"),
        current.isEmpty()
            ? m_context.settings.sGet(QStringLiteral("DataPath"), AppPaths::HomeFolder()).toText()
            : QFileInfo(current).absolutePath(),
        S("All files (*.*)|*.*"));
    if (file && !file->isEmpty()) {
        lblExecFile->setText(*file);
    }
}

void frmEvent::chkEmailTo_Click() {
    if (chkEmailTo->isChecked() && txtEmailAlert->text().isEmpty()) {
        txtEmailAlert->setText(
            m_context.settings.sGet(QStringLiteral("DefaultEmail"), QString()).toText());
    }
}

void frmEvent::chkShared_Click() {
    chkSpecificShare->setEnabled(
        chkShared->isChecked() &&
        m_context.settings.sGet(QStringLiteral("Networked"), false).toBool());
}

void frmEvent::pickStartDate(QLabel* label) {
    const DateValue initial =
        EventEditorRules::ParseStartDate(label->text(), m_dateStyle).value_or(TodayDate());
    const std::optional<DateValue> day =
        m_context.dialogs.PickDate(QString::fromLatin1(kDatePrompt), initial);
    if (day) {
        label->setText(EventEditorRules::FormatStartDate(*day, m_dateStyle));
    }
}

void frmEvent::lblMonthlyStartDate_Click() {
    pickStartDate(lblMonthlyStartDate);
}
void frmEvent::lblWeeklyStartDate_Click() {
    pickStartDate(lblWeeklyStartDate);
}
void frmEvent::lblDailyStartDate_Click() {
    pickStartDate(lblDailyStartDate);
}

bool frmEvent::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtTime && event->type() == QEvent::FocusIn) {
        // Typing replaces the whole time (the "HH:MM" prompt included);
        // deferred so that the click that gave the focus does not undo it.
        QTimer::singleShot(0, txtTime, [box = txtTime] { box->selectAll(); });
    }
    auto* label = qobject_cast<QLabel*>(watched);
    if (label == lblMonthlyStartDate || label == lblWeeklyStartDate || label == lblDailyStartDate) {
        bool activate = event->type() == QEvent::MouseButtonRelease;
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            activate = key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
        }
        if (activate && label != nullptr) {
            if (label == lblMonthlyStartDate) {
                lblMonthlyStartDate_Click();
            } else if (label == lblWeeklyStartDate) {
                lblWeeklyStartDate_Click();
            } else {
                lblDailyStartDate_Click();
            }
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}
