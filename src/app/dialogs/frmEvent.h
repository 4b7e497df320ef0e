#pragma once

#include "engine/EventEditorInput.h"

#include <QDialog>
#include <QList>
#include <QString>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QWidget;
class StartDateLabel;
class clsEvent;
class cSharedDateSubs;
struct AppContext;

// The event editor: a modal dialog that shows one event in its controls and,
// on "&Save", checks them and writes them back into that same event object.
// Storing the event is the caller's work (see EventEditFlow.h). Save and
// Abort hide the dialog; the caller then reads Saved().
//
// Sources: frmEvent.cpp loads the form and moves data between the event and
// the controls (and saves); frmEventLayout.cpp builds the window and
// frmEventTabs.cpp its six recurrence tabs; frmEventHandlers.cpp holds the
// controls' reactions.
class frmEvent : public QDialog {
    Q_OBJECT
public:
    // event: owned by the caller and written only by a save. editing: an
    // existing event, shown through CopyDataToForm; otherwise a new one.
    frmEvent(AppContext& context, clsEvent& event, bool editing, QWidget* parent = nullptr);
    ~frmEvent() override;

    bool Saved() const { return m_saved; }
    int RecurrenceType() const { return m_recurrenceType; }
    // "DD/MM/YYYY" or "MM/DD/YYYY", after the setting "DateStyle".
    QString DateFormat() const;

    void CopyDataToForm();
    // Shows the frame of recurrence tab index and makes it the event's type.
    void UpdateEventFrames(int index);
    void SetupRelatedItems();
    // Checks the controls in order and writes them into the event; shows the
    // first problem and returns false.
    bool SaveData();

    void cmdSave_Click();
    void cmdAbort_Click();
    void cmdPickWav_Click();
    void cmdPickFile_Click();
    void chkMakeNoise_Click();
    void chkEmailTo_Click();
    void chkShared_Click();
    void lblMonthlyStartDate_Click();
    void lblWeeklyStartDate_Click();
    void lblDailyStartDate_Click();
    void UpdateAlarmAdvice();
    // The line under the recurrence tabs: the next dates of the rule as it
    // stands in the controls (see OccurrencePreview).
    void UpdateNextDates();

    // The controls' state as the save rules take it, and back.
    EventEditorInput Input() const;
    void SetInput(const EventEditorInput& input);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Form_Load();
    void pickStartDate(QLabel* label);

    // Building (frmEventLayout.cpp; the tabs in frmEventTabs.cpp), in creation
    // order. Each builder creates its own controls and returns what the
    // window's arrangement places, if anything.
    void buildControls();
    QLayout* buildDescriptionRow();
    QGroupBox* buildWhenBox();
    void buildRecurrenceTabs();
    QGroupBox* buildActionsBox();
    void buildSharingBox();
    QLayout* buildButtonRow();
    void setKeyboardOrder();
    void connectHandlers();

    // The recurrence tabs' pages (frmEventTabs.cpp), by tab index.
    QWidget* buildWeekdayPage();    // 0
    QWidget* buildDayOfMonthPage(); // 1
    QWidget* buildNthWeekdayPage(); // 4
    // 2, 3 and 5: every so many months, weeks or days from a start date.
    QWidget* buildIntervalPage(int index, const QString& periodName, const QString& startName,
                               const char* unit, QLineEdit*& periodBox,
                               StartDateLabel*& startLabel);

    AppContext& m_context;
    clsEvent& m_event;
    bool m_editing;
    bool m_saved = false;
    int m_recurrenceType = 0;
    cSharedDateSubs* m_dates = nullptr; // after "DateStyle"

    QPlainTextEdit* txtDesc = nullptr;
    QComboBox* cmbLayers = nullptr;
    QCheckBox* chkTimed = nullptr;
    QLineEdit* txtTime = nullptr;
    QLabel* lblEventTime = nullptr;
    QLineEdit* txtMinutesWarning = nullptr;
    QLabel* lblMinWarning = nullptr;
    QLabel* lblAlarmAdvice = nullptr;
    QLineEdit* txtDaysWarning = nullptr;
    QRadioButton* optRepeat = nullptr;
    QRadioButton* optShowOnce = nullptr;
    QCheckBox* chkMakeNoise = nullptr;
    QPushButton* cmdPickWav = nullptr;
    QLabel* lblWavFile = nullptr;
    QCheckBox* chkRunFile = nullptr;
    QPushButton* cmdPickFile = nullptr;
    QLabel* lblExecFile = nullptr;
    QCheckBox* chkFrequency = nullptr;
    QLineEdit* txtFrequency = nullptr;
    QLabel* lblMinutes = nullptr;
    QCheckBox* chkEmailTo = nullptr;
    QLineEdit* txtEmailAlert = nullptr;
    QGroupBox* FrameShared = nullptr;
    QCheckBox* chkShared = nullptr;
    QCheckBox* chkSpecificShare = nullptr;
    QListWidget* lstUsers = nullptr;
    QTabWidget* TabStrip1 = nullptr;
    QLabel* lblNextDates = nullptr;
    QList<QWidget*> fraEvent;
    QList<QCheckBox*> chkDay; // index 1..7; 0 unused
    QLineEdit* txtDayOfMonth = nullptr;
    QListWidget* lstMonthNames = nullptr;
    QLineEdit* txtMonthlyPeriod = nullptr;
    StartDateLabel* lblMonthlyStartDate = nullptr;
    QLineEdit* txtWeeklyPeriod = nullptr;
    StartDateLabel* lblWeeklyStartDate = nullptr;
    QListWidget* lstDayNumber = nullptr;
    QListWidget* lstDayName = nullptr;
    QListWidget* lstMonths = nullptr;
    QLineEdit* txtDailyPeriod = nullptr;
    StartDateLabel* lblDailyStartDate = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdAbort = nullptr;
};
