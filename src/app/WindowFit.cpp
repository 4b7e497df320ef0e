#include "app/WindowFit.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>

namespace {

QRect AvailableArea(const QWidget* window) {
    const QScreen* screen = window->screen();
    if (screen == nullptr) {
        screen = QApplication::primaryScreen();
    }
    return screen != nullptr ? screen->availableGeometry() : QRect();
}

// The frame the window manager has put around the window, or the allowance
// while it has none yet.
QMargins FrameOf(const QWidget* window) {
    const QRect frame = window->frameGeometry();
    const QRect client = window->geometry();
    if (!window->isVisible() || frame == client) {
        return WindowFit::kFrameAllowance;
    }
    return {client.left() - frame.left(), client.top() - frame.top(),
            frame.right() - client.right(), frame.bottom() - client.bottom()};
}

QSize MinimumOf(const QWidget* window) {
    return window->minimumSize().expandedTo(window->minimumSizeHint());
}

// Brings the window back inside its screen whenever it is shown again.
class KeepInsideOnShow : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show || watched != parent()) {
            return false;
        }
        auto* window = static_cast<QWidget*>(watched);
        // A dialog not placed yet is centred on its parent by Qt right
        // after this, inside the screen; everything else is checked here.
        if (qobject_cast<QDialog*>(window) == nullptr || window->testAttribute(Qt::WA_Moved)) {
            WindowFit::KeepInside(window);
        }
        return false;
    }
};

} // namespace

namespace WindowFit {

QRect Fitted(const QRect& wanted, const QSize& minimum, const QRect& area, const QMargins& frame) {
    if (!area.isValid()) {
        return wanted;
    }
    const QRect room = area.marginsRemoved(frame);
    const QSize size(std::max(std::min(wanted.width(), room.width()), minimum.width()),
                     std::max(std::min(wanted.height(), room.height()), minimum.height()));
    // Right and bottom edges first, then left and top, so that a window
    // larger than the area still shows its title bar and left border.
    int x = std::min(wanted.x(), room.right() + 1 - size.width());
    int y = std::min(wanted.y(), room.bottom() + 1 - size.height());
    x = std::max(x, room.left());
    y = std::max(y, room.top());
    return {QPoint(x, y), size};
}

void Apply(QWidget* window, const QSize& preferred) {
    const QRect area = AvailableArea(window);
    const QRect fitted =
        Fitted(QRect(area.topLeft(), preferred), QSize(0, 0), area, kFrameAllowance);
    window->resize(fitted.size().expandedTo(window->minimumSize()));
    const QString filterName = QStringLiteral("WindowFitKeepInside");
    if (window->findChild<QObject*>(filterName, Qt::FindDirectChildrenOnly) == nullptr) {
        auto* filter = new KeepInsideOnShow(window);
        filter->setObjectName(filterName);
        window->installEventFilter(filter);
    }
}

void ScrollBody(QWidget* window, QLayout* body, QLayout* buttons) {
    auto* content = new QWidget;
    content->setObjectName(QStringLiteral("ScrollBody"));
    body->setContentsMargins(0, 0, 0, 0);
    content->setLayout(body);
    auto* scroll = new QScrollArea(window);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    auto* layout = new QVBoxLayout(window);
    layout->addWidget(scroll, 1);
    layout->addLayout(buttons);
    const QMargins margins = layout->contentsMargins();
    const QSize row = buttons->sizeHint();
    // As wide as Qt makes a window by default (two thirds of the screen at
    // most, what the contents need at least), and as tall as the contents.
    int width = std::max(content->sizeHint().width(), row.width());
    if (const QRect area = AvailableArea(window); area.isValid()) {
        width = std::max(std::min(width, area.width() * 2 / 3), content->minimumSizeHint().width());
    }
    Apply(window, QSize(width + margins.left() + margins.right(),
                        content->sizeHint().height() + layout->spacing() + row.height() +
                            margins.top() + margins.bottom()));
}

void KeepInside(QWidget* window) {
    // A maximised or full-screen window is placed by the window manager.
    if (window->isMaximized() || window->isFullScreen()) {
        return;
    }
    if (window->layout() != nullptr) {
        window->layout()->activate();
    }
    const QRect now = window->geometry();
    const QRect fitted = Fitted(now, MinimumOf(window), AvailableArea(window), FrameOf(window));
    if (fitted != now) {
        window->setGeometry(fitted);
    }
}

} // namespace WindowFit
