#pragma once

#include "engine/IReminderWindow.h"

#include <QTimer>
#include <QWidget>

#include <cstdint>

class QLabel;
class QSpinBox;
class QListWidget;
class QPushButton;
class ISoundPlayer;
class cSHAREDSettings;

// The reminder pop-up: one list of reminder lines (today's events, coming-up
// events or this minute's alarms). Created hidden; its timer brings it up
// after two seconds, and then it nags: back to the front with its sound every
// 30 seconds until the user continues, or puts it to sleep for some minutes
// (after which it comes back once, with its sound, and stops repeating).
class frmReminder : public QWidget, public IReminderWindow {
    Q_OBJECT
public:
    frmReminder(cSHAREDSettings& settings, ISoundPlayer& player, QWidget* parent = nullptr);
    ~frmReminder() override;

    // IReminderWindow
    void ClearList() override;
    void AddToList(const QString& text) override;
    void Heading(const QString& text) override;
    void Caption(const QString& text) override;
    void setSoundFlag(bool on) override { m_soundFlag = on; }
    void setSoundFile(const QString& path) override { m_soundFile = path; }
    void setSoundOnce(bool once) override { m_soundOnce = once; }
    void MakeTopmost() override;
    void Unload() override;

    QTimer& timer() { return m_timer; }
    // The lines in their shown order.
    QStringList lines() const;

    void Timer1_Timer();
    void cmdRemindMe_Click();
    void cmdContinue_Click();
    void PlayReminderSound();

    // The day count a line is ordered by: the leading number once every "In "
    // is taken out ("In 3 days: x" gives 3; a plain description usually 0).
    static int16_t LineNumber(const QString& text);

    // Where the window sits among the reminder windows: -1 until it first
    // comes up. Slot n lies a title bar's height below and a little to the
    // right of slot n - 1, so every title bar stays in sight.
    int slot() const { return m_slot; }
    static constexpr int kSlots = 6;

    static constexpr int kFirstShowMs = 2000;
    static constexpr int kRepeatMs = 30000;
    static constexpr int kSleepTickMs = 1000;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Takes the slot below the lowest one in use, near the tray corner.
    void placeNearTrayCorner();
    // Shows the window and brings the reminder windows forward, the newest
    // (of each kind: alarms stay above the rest) on top.
    void bringUp();

    cSHAREDSettings& m_settings;
    ISoundPlayer& m_player;
    QLabel* m_heading;
    QListWidget* m_list;
    QSpinBox* m_sleepBox;
    QPushButton* m_sleep;
    QPushButton* m_continue;
    QTimer m_timer;
    bool m_soundFlag = false;
    bool m_soundOnce = false;
    QString m_soundFile;
    bool m_sleeping = false;
    int16_t m_sleepMinutes = 0;
    int16_t m_seconds = 0;
    int16_t m_minutes = 0;
    int m_slot = -1;
    quint64 m_sequence; // creation order
};
