#pragma once

#include <QByteArray>
#include <QTimer>
#include <QWidget>

#include <functional>

class QLineEdit;
class QLocalServer;

// The hidden window through which a second copy of the program wakes this
// one. The second copy's command arrives over a local socket and is written
// into txtRunner; the runner's timer picks it up, logs it, raises
// commandReceived (the main window comes forward) and returns to idle.
class frmRunner : public QWidget {
    Q_OBJECT
public:
    explicit frmRunner(QWidget* parent = nullptr);
    ~frmRunner() override;

    // Starts listening; false (and logged) when the socket cannot be opened.
    bool Listen();
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

    QLineEdit* m_text;
    QTimer m_timer;
    QLocalServer* m_server;
    std::function<QByteArray(const QByteArray&)> m_requests;
};
