#pragma once

#include "events/EventEditorInput.h"

#include <QDialog>
#include <QList>
#include <QString>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QWidget;
class clsEvent;
struct AppContext;

// The event editor: a modal dialog that shows one event in its controls and,
// on "&Save", checks them and writes them back into that same event object.
// Storing the event is the caller's work (see EventEditFlow.h). Save and
// Abort hide the dialog; the caller then reads Saved().
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
    QString DateFormat() const { return m_dateFormat; }

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

    // The controls' state as the save rules take it, and back.
    EventEditorInput Input() const;
    void SetInput(const EventEditorInput& input);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Form_Load();
    void buildControls();
    void pickStartDate(QLabel* label);
    QWidget* makeFrame(int index, const QString& help);
    QLabel* makeDateLabel(const QString& name);

    AppContext& m_context;
    clsEvent& m_event;
    bool m_editing;
    bool m_saved = false;
    int m_recurrenceType = 0;
    int m_dateStyle = 1;
    QString m_dateFormat;

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
    QList<QWidget*> fraEvent;
    QList<QCheckBox*> chkDay; // index 1..7; 0 unused
    QLineEdit* txtDayOfMonth = nullptr;
    QListWidget* lstMonthNames = nullptr;
    QLineEdit* txtMonthlyPeriod = nullptr;
    QLabel* lblMonthlyStartDate = nullptr;
    QLineEdit* txtWeeklyPeriod = nullptr;
    QLabel* lblWeeklyStartDate = nullptr;
    QListWidget* lstDayNumber = nullptr;
    QListWidget* lstDayName = nullptr;
    QListWidget* lstMonths = nullptr;
    QLineEdit* txtDailyPeriod = nullptr;
    QLabel* lblDailyStartDate = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdAbort = nullptr;
};
