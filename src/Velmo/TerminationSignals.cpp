#include "Velmo/TerminationSignals.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace velmo::app {

namespace {

// One pipe for the process: a signal handler can reach only globals.
int pipeFds[2] = {-1, -1};

void handle(int signal)
{
    const int saved = errno;
    const unsigned char byte = static_cast<unsigned char>(signal);
    // Async-signal-safe; a full pipe already holds a pending request, so a lost byte is harmless.
    [[maybe_unused]] const ssize_t written = ::write(pipeFds[1], &byte, 1);
    errno = saved;
}

}

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (pipeFds[0] >= 0 || ::pipe2(pipeFds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(pipeFds[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::drain);
    struct sigaction action = {};
    action.sa_handler = handle;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    ::close(pipeFds[0]);
    ::close(pipeFds[1]);
    pipeFds[0] = pipeFds[1] = -1;
}

void TerminationSignals::drain()
{
    unsigned char byte = 0;
    while (::read(pipeFds[0], &byte, 1) == 1)
        emit received(int(byte));
}

}
