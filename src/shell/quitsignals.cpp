#include "quitsignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {
int signalSockets[2] = {-1, -1};

// The first signal asks for the orderly quit; a second one, should that quit hang, ends the process as usual.
void onQuitSignal(int signal)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalSockets[0], &byte, 1);
    std::signal(signal, SIG_DFL);
}
}

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
{
    // Non-blocking, so that the handler can never wait on a full socket.
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, signalSockets) != 0)
        return;
    m_notifier = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [] {
        char byte = 0;
        [[maybe_unused]] const ssize_t read = ::read(signalSockets[1], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action = {};
    action.sa_handler = onQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
}

QuitSignals::~QuitSignals()
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
}
