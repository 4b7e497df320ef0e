// Loading the editor, moving data between the event and the controls, and
// the save and abort commands. The window is built in frmEventLayout.cpp and
// frmEventTabs.cpp; the controls' reactions are in frmEventHandlers.cpp.
#include "app/dialogs/frmEvent.h"

#include "app/AppContext.h"
#include "app/dialogs/StartDateLabel.h"
#include "engine/ShareableUsers.h"
#include "model/clsEvent.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "storage/clsLayers.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRadioButton>

namespace {

int rowOf(const QListWidget* list) {
    return std::max(0, list->currentRow());
}

void selectRow(QListWidget* list, int row) {
    if (row >= 0 && row < list->count()) {
        list->setCurrentRow(row);
        list->scrollToItem(list->item(row));
    }
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

QString frmEvent::DateFormat() const {
    return m_dates->DateFormatString;
}

void frmEvent::Form_Load() {
    cSHAREDSettings& settings = m_context.settings;

    chkEmailTo->hide();
    txtEmailAlert->hide();

    m_dates = &cSharedDateSubs::ForSettings(settings);
    lblWeeklyStartDate->setText(DateFormat());
    lblMonthlyStartDate->setText(DateFormat());
    lblDailyStartDate->setText(DateFormat());

    const DateValue today = TodayDate();
    selectRow(lstMonthNames, MonthOf(today) - 1);
    txtDayOfMonth->setText(QString::number(DayOf(today)));
    selectRow(lstDayNumber, 0);
    selectRow(lstDayName, 0);
    selectRow(lstMonths, 0);

    // "All Categories" is a filter, not a category an event can be in.
    for (int i = 0; i < clsLayers::kAllCategories; ++i) {
        cmbLayers->addItem(m_context.layers.Layer(i));
    }
    cmbLayers->setCurrentIndex(1);

    lblWavFile->clear();
    chkMakeNoise->setChecked(false);

    if (settings.sGet(QStringLiteral("Networked"), false).toBool()) {
        lstUsers->addItems(ShareableUsers::For(settings));
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
    UpdateNextDates();
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
        lblMonthlyStartDate->setText(m_dates->ShortFormatDate(e.StartDate()));
        break;
    case clsEvent::Weekly:
        txtWeeklyPeriod->setText(QString::number(e.Period()));
        lblWeeklyStartDate->setText(m_dates->ShortFormatDate(e.StartDate()));
        break;
    case clsEvent::NthWeekday:
        selectRow(lstDayNumber, std::clamp<int>(e.Daynumber(), 1, 5) - 1);
        selectRow(lstDayName, std::clamp<int>(e.DayOfWeek(), 1, 7) - 1);
        selectRow(lstMonths, std::clamp<int>(e.MonthNumber(), 0, 12));
        break;
    case clsEvent::EveryXDays:
        txtDailyPeriod->setText(QString::number(e.Period()));
        lblDailyStartDate->setText(m_dates->ShortFormatDate(e.StartDate()));
        break;
    default:
        break;
    }
    UpdateEventFrames(std::clamp<int>(e.RecurrenceType(), 0, 5));
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
        // A refused entry is a warning; a conversion that failed an error.
        m_context.dialogs.Message(outcome.message, outcome.title,
                                  outcome.title.isEmpty() ? UserDialogs::Icon::Warning
                                                          : UserDialogs::Icon::Critical);
        if (auto* control = findChild<QWidget*>(outcome.focus); control != nullptr) {
            TabStrip1->setCurrentIndex(m_recurrenceType);
            control->setFocus();
        }
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
