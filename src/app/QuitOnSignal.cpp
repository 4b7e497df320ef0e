#include "app/QuitOnSignal.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_pipe[2] = {-1, -1};

// Only async-signal-safe work here: one byte into the pipe.
void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[0], &byte, 1);
}

} // namespace

void QuitOnSignal(std::function<void()> quit) {
    if (g_pipe[0] >= 0 || ::socketpair(AF_UNIX, SOCK_STREAM, 0, g_pipe) != 0) {
        return;
    }
    auto* notifier =
        new QSocketNotifier(g_pipe[1], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, quit] {
        notifier->setEnabled(false);
        char byte = 0;
        [[maybe_unused]] const ssize_t got = ::read(g_pipe[1], &byte, 1);
        quit();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int sig : {SIGTERM, SIGINT, SIGHUP}) {
        ::sigaction(sig, &action, nullptr);
    }
}
#else
void QuitOnSignal(std::function<void()>) {}
#endif
