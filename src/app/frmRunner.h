#pragma once

#include <QByteArray>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

class QLineEdit;
class QLocalServer;
class QLocalSocket;

// The hidden window through which a second copy of the program wakes this
// one. The second copy's command arrives over the local socket that start-up
// claimed (SingleInstance::Claim) and is written into txtRunner; the runner's
// timer picks it up, logs it, raises commandReceived (the main window comes
// forward) and returns to idle. Commands that came while the program was
// still starting are picked up as soon as the runner exists.
class frmRunner : public QWidget {
    Q_OBJECT
public:
    // server: the claimed channel, taken over; null for a runner that only
    // takes commands written into txtRunner.
    explicit frmRunner(std::unique_ptr<QLocalServer> server, QWidget* parent = nullptr);
    ~frmRunner() override;

    QString text() const;
    QTimer& timer() { return m_timer; }

    void TimerRunner_Timer();

    // Work requests from the command line (a JSON line) are answered at once
    // by handler, whose reply line goes back to the waiting command.
    void setRequestHandler(std::function<QByteArray(const QByteArray&)> handler) {
        m_requests = std::move(handler);
    }

    static constexpr const char* kIdle = "RUNNER";
    static constexpr int kIntervalMs = 1000;

signals:
    // The main window's Runner_ShowWindow.
    void commandReceived(const QString& command);

private:
    void acceptConnection();
    void readCommands(QLocalSocket* socket);

    QLineEdit* m_text;
    QTimer m_timer;
    QLocalServer* m_server;
    std::function<QByteArray(const QByteArray&)> m_requests;
};
