// The event editor's reactions to its controls: enabling what goes with a
// ticked box, the alarm advice, the file and date pickers and the tab strip.
#include "app/AppContext.h"
#include "app/dialogs/StartDateLabel.h"
#include "app/dialogs/frmEvent.h"
#include "app/dialogs/frmEventWidgets.h"
#include "engine/OccurrencePreview.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "shared/cSharedDateSubs.h"

#include <QCheckBox>
#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

using EventEditorWidgets::S;

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

void frmEvent::UpdateNextDates() {
    const OccurrencePreview preview = OccurrencePreview::Of(Input(), m_event, m_context.settings);
    // A warning sign in front of a rule that gives no date.
    lblNextDates->setText((preview.dates.isEmpty() ? QStringLiteral("\u26A0 ") : QString()) +
                          preview.Text(*m_dates));
}

void frmEvent::cmdPickWav_Click() {
    const QString current = lblWavFile->text();
    const std::optional<QString> file = m_context.dialogs.ChooseOpenFile(
        S("Choose a sound for this event"),
        current.isEmpty() ? DataFiles::DataFolder(m_context.settings)
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
        current.isEmpty() ? DataFiles::DataFolder(m_context.settings)
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
        EventEditorRules::ParseStartDate(label->text(), *m_dates).value_or(TodayDate());
    const std::optional<DateValue> day =
        m_context.dialogs.PickDate(QString::fromLatin1(StartDateLabel::kPrompt), initial);
    if (day) {
        label->setText(m_dates->ShortFormatDate(*day));
        UpdateNextDates();
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
    return QDialog::eventFilter(watched, event);
}
