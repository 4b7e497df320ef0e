#include "app/reminders/frmReminder.h"
#include "app/WindowFit.h"

#include "shared/ISoundPlayer.h"
#include "shared/NumericPrefix.h"
#include "shared/cSHAREDSettings.h"
#include "storage/clsSounds.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

// Every reminder window alive, oldest first.
QList<frmReminder*>& openWindows() {
    static QList<frmReminder*> windows;
    return windows;
}

quint64 g_created = 0;

// One slot lower than the last: enough for a title bar and its border.
constexpr int kSlotDown = 36;
constexpr int kSlotRight = 24;

} // namespace

frmReminder::frmReminder(cSHAREDSettings& settings, ISoundPlayer& player, QWidget* parent)
    : QWidget(parent, Qt::Window), m_settings(settings), m_player(player),
      m_heading(new QLabel(QStringLiteral("REMINDER"), this)), m_list(new QListWidget(this)),
      m_sleepBox(new QSpinBox(this)), m_sleep(new QPushButton(QStringLiteral("&Sleep"), this)),
      m_continue(new QPushButton(QStringLiteral("&Continue"), this)) {
    m_sequence = ++g_created;
    openWindows().append(this);
    setObjectName(QStringLiteral("frmReminder"));
    setWindowTitle(QStringLiteral("TVO - Reminder"));
    setAttribute(Qt::WA_DeleteOnClose);
    if (parent == nullptr) {
        setWindowIcon(QApplication::windowIcon());
    }

    m_heading->setObjectName(QStringLiteral("lblHeading"));
    QFont big = m_heading->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    m_heading->setFont(big);
    m_heading->setAlignment(Qt::AlignCenter);
    m_list->setObjectName(QStringLiteral("lstReminders"));
    m_sleepBox->setObjectName(QStringLiteral("txtSleep"));
    // Whole minutes, up to a day: the box takes nothing else.
    m_sleepBox->setRange(1, 1440);
    m_sleepBox->setValue(10);
    m_sleepBox->setToolTip(QStringLiteral("Minutes until the reminder comes back"));
    m_sleep->setObjectName(QStringLiteral("cmdRemindMe"));
    m_continue->setObjectName(QStringLiteral("cmdContinue"));
    m_continue->setDefault(true);
    auto* minutes = new QLabel(QStringLiteral("minutes"), this);
    minutes->setBuddy(m_sleepBox);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_sleep);
    buttons->addWidget(m_sleepBox);
    buttons->addWidget(minutes);
    buttons->addStretch(1);
    buttons->addWidget(m_continue);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_heading);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);

    connect(m_sleep, &QPushButton::clicked, this, &frmReminder::cmdRemindMe_Click);
    connect(m_continue, &QPushButton::clicked, this, &frmReminder::cmdContinue_Click);
    m_timer.setObjectName(QStringLiteral("Timer1"));
    connect(&m_timer, &QTimer::timeout, this, &frmReminder::Timer1_Timer);

    WindowFit::Apply(this, QSize(420, 260));
    // Filled by the engine right after creation, shown at the first tick.
    m_timer.start(kFirstShowMs);
}

frmReminder::~frmReminder() {
    openWindows().removeOne(this);
}

void frmReminder::placeNearTrayCorner() {
    QList<bool> taken(kSlots, false);
    int lowest = -1;
    for (const frmReminder* other : std::as_const(openWindows())) {
        if (other != this && other->m_slot >= 0) {
            taken[other->m_slot] = true;
            lowest = std::max(lowest, other->m_slot);
        }
    }
    // Below every window up already; when the bottom is reached, the first
    // free slot (or the top one again when all are taken).
    m_slot = lowest + 1 < kSlots ? lowest + 1 : std::max<int>(0, taken.indexOf(false));
    const QScreen* screen = QApplication::primaryScreen();
    if (screen == nullptr) {
        return;
    }
    const QRect area = screen->availableGeometry();
    const int below = kSlots - 1 - m_slot; // slots still below this one
    move(area.right() - width() - 24 - below * kSlotRight,
         area.bottom() - height() - 48 - below * kSlotDown);
    WindowFit::KeepInside(this);
}

void frmReminder::ClearList() {
    m_list->clear();
}

int16_t frmReminder::LineNumber(const QString& text) {
    QString rest = text;
    rest.remove(QStringLiteral("In "));
    return NumericPrefixInt16(rest);
}

void frmReminder::AddToList(const QString& text) {
    const int16_t n = LineNumber(text);
    int row = 0;
    while (row < m_list->count() && m_list->item(row)->data(Qt::UserRole).toInt() < n) {
        ++row;
    }
    // Above the first line with an equal or greater count.
    auto* item = new QListWidgetItem(text);
    item->setData(Qt::UserRole, static_cast<int>(n));
    m_list->insertItem(row, item);
}

QStringList frmReminder::lines() const {
    QStringList out;
    for (int i = 0; i < m_list->count(); ++i) {
        out << m_list->item(i)->text();
    }
    return out;
}

void frmReminder::Heading(const QString& text) {
    m_heading->setText(text);
    setWindowTitle(text);
}

void frmReminder::Caption(const QString& text) {
    setWindowTitle(text);
}

void frmReminder::MakeTopmost() {
    setWindowFlag(Qt::WindowStaysOnTopHint, true); // hides a shown window; the timer shows it
}

void frmReminder::Unload() {
    m_timer.stop();
    hide();
    deleteLater();
}

void frmReminder::bringUp() {
    if (m_slot < 0) {
        placeNearTrayCorner();
    }
    if (!isVisible()) {
        show();
        QCoreApplication::processEvents();
    }
    raise();
    activateWindow();
    // Coming forward must not bury newer windows: they go back on top, in
    // the order they were made.
    for (frmReminder* other : std::as_const(openWindows())) {
        if (other->m_sequence > m_sequence && other->isVisible()) {
            other->raise();
        }
    }
}

void frmReminder::Timer1_Timer() {
    if (!m_sleeping) {
        bringUp();
        m_timer.start(kRepeatMs);
        if (m_soundFlag) {
            PlayReminderSound();
            m_soundFlag = !m_soundOnce;
        }
        return;
    }
    if (++m_seconds < 60) {
        return;
    }
    m_seconds = 0;
    ++m_minutes;
    // Compared after counting, so 0 minutes (an empty or wrong entry) is one.
    if (m_minutes >= m_sleepMinutes) {
        m_minutes = 0;
        m_timer.stop(); // after one sleep the window no longer repeats
        bringUp();
        if (m_soundFlag) {
            PlayReminderSound();
        }
    }
}

void frmReminder::cmdRemindMe_Click() {
    m_sleeping = true;
    m_sleepBox->interpretText();
    m_sleepMinutes = static_cast<int16_t>(m_sleepBox->value());
    m_seconds = 0;
    m_minutes = 0;
    m_timer.start(kSleepTickMs);
    hide();
    QCoreApplication::processEvents();
}

void frmReminder::cmdContinue_Click() {
    Unload();
}

void frmReminder::closeEvent(QCloseEvent* event) {
    m_timer.stop();
    event->accept(); // deletes the window (WA_DeleteOnClose)
}

void frmReminder::PlayReminderSound() {
    if (!m_player.SoundAvailable() || m_settings.sGet(QStringLiteral("NoSounds"), false).toBool()) {
        return;
    }
    if (!QFileInfo::exists(m_soundFile)) {
        m_soundFile = DefaultWavFile(m_settings);
    }
    m_player.PlayWav(m_soundFile);
}
