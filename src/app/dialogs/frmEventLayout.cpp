// Building the event editor's window: its controls, their arrangement, the
// keyboard order and the connections to the handlers. The recurrence tabs'
// pages are in frmEventTabs.cpp.
#include "app/WindowFit.h"
#include "app/dialogs/StartDateLabel.h"
#include "app/dialogs/frmEvent.h"
#include "app/dialogs/frmEventWidgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

using EventEditorWidgets::makeNumberBox;
using EventEditorWidgets::S;

void frmEvent::buildControls() {
    QLayout* top = buildDescriptionRow();
    QGroupBox* whenBox = buildWhenBox();
    buildRecurrenceTabs();
    QGroupBox* actionsBox = buildActionsBox();
    buildSharingBox();
    QLayout* buttons = buildButtonRow();

    lblNextDates = new QLabel(this);
    lblNextDates->setObjectName(QStringLiteral("lblNextDates"));
    lblNextDates->setWordWrap(true);
    lblNextDates->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* rule = new QVBoxLayout;
    rule->addWidget(TabStrip1, 1);
    rule->addWidget(lblNextDates);

    auto* middle = new QHBoxLayout;
    middle->addWidget(whenBox);
    middle->addLayout(rule, 1);

    auto* lower = new QHBoxLayout;
    lower->addWidget(actionsBox, 1);
    lower->addWidget(FrameShared);

    auto* body = new QVBoxLayout;
    body->addLayout(top);
    body->addLayout(middle, 1);
    body->addLayout(lower);
    WindowFit::ScrollBody(this, body, buttons);

    setKeyboardOrder();
    connectHandlers();
}

QLayout* frmEvent::buildDescriptionRow() {
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

    auto* top = new QGridLayout;
    top->addWidget(lblDesc, 0, 0, Qt::AlignTop);
    top->addWidget(txtDesc, 0, 1, 2, 1);
    top->addWidget(lblLayer, 0, 2, Qt::AlignTop | Qt::AlignRight);
    top->addWidget(cmbLayers, 0, 3, Qt::AlignTop);
    top->setColumnStretch(1, 1);
    return top;
}

QGroupBox* frmEvent::buildWhenBox() {
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
    return whenBox;
}

QGroupBox* frmEvent::buildActionsBox() {
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
    return actionsBox;
}

// Shown in networked mode only (see Form_Load).
void frmEvent::buildSharingBox() {
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
}

QLayout* frmEvent::buildButtonRow() {
    cmdSave = new QPushButton(S("&Save"), this);
    cmdSave->setObjectName(QStringLiteral("cmdSave"));
    cmdSave->setDefault(true);
    cmdAbort = new QPushButton(S("&Abort"), this);
    cmdAbort->setObjectName(QStringLiteral("cmdAbort"));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdAbort);
    return buttons;
}

// Top to bottom, left to right.
void frmEvent::setKeyboardOrder() {
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
}

void frmEvent::connectHandlers() {
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
    connect(txtTime, &QLineEdit::editingFinished, this, [this] {
        // A valid time is shown back as HH:MM ("9:30" becomes "09:30").
        const QString tidy = EventEditorRules::NormaliseTime(txtTime->text());
        if (EventEditorRules::TimeInRange(tidy)) {
            txtTime->setText(tidy);
        }
    });
    connect(txtMinutesWarning, &QLineEdit::textChanged, this, &frmEvent::UpdateAlarmAdvice);
    connect(TabStrip1, &QTabWidget::currentChanged, this, &frmEvent::UpdateEventFrames);
    // Every control of the rule updates the line of next dates.
    connect(TabStrip1, &QTabWidget::currentChanged, this, &frmEvent::UpdateNextDates);
    connect(optRepeat, &QRadioButton::toggled, this, &frmEvent::UpdateNextDates);
    for (int i = 1; i <= 7; ++i) {
        connect(chkDay[i], &QCheckBox::toggled, this, &frmEvent::UpdateNextDates);
    }
    for (QLineEdit* box : {txtDayOfMonth, txtMonthlyPeriod, txtWeeklyPeriod, txtDailyPeriod}) {
        connect(box, &QLineEdit::textChanged, this, &frmEvent::UpdateNextDates);
    }
    for (QListWidget* list : {lstMonthNames, lstDayNumber, lstDayName, lstMonths}) {
        connect(list, &QListWidget::currentRowChanged, this, &frmEvent::UpdateNextDates);
    }
    connect(lblMonthlyStartDate, &StartDateLabel::activated, this,
            &frmEvent::lblMonthlyStartDate_Click);
    connect(lblWeeklyStartDate, &StartDateLabel::activated, this,
            &frmEvent::lblWeeklyStartDate_Click);
    connect(lblDailyStartDate, &StartDateLabel::activated, this,
            &frmEvent::lblDailyStartDate_Click);
}
