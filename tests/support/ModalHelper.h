#pragma once

// Header only: it needs QtWidgets, which the support library does not link.

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

// Acts on the next modal dialog once it is up: call before the code that runs
// the dialog's event loop. The action receives the dialog and must close it
// (accept, reject, or click a button). Gives up after timeoutMs, closing any
// modal dialog so that a test never hangs.
inline void WhenModalAppears(std::function<void(QWidget*)> action, int timeoutMs = 5000) {
    auto* timer = new QTimer;
    auto elapsed = std::make_shared<int>(0);
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout,
                     [timer, elapsed, action = std::move(action), timeoutMs]() {
                         *elapsed += timer->interval();
                         QWidget* modal = QApplication::activeModalWidget();
                         if (modal != nullptr && modal->isVisible()) {
                             timer->stop();
                             timer->deleteLater();
                             action(modal);
                         } else if (*elapsed > timeoutMs) {
                             timer->stop();
                             timer->deleteLater();
                         }
                     });
    timer->start();
}
