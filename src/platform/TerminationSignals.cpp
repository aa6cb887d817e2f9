#include "cli/TerminationSignals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace vellumine::cli {

namespace {

/// As nohup starts a program, and a shell's script what it leaves behind.
bool isIgnored(int number)
{
    struct sigaction action { };
    return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

TerminationSignals::TerminationSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : { SIGINT, SIGTERM, SIGHUP }) {
        if (!isIgnored(number)) {
            sigaddset(&signals, number);
        }
    }
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_signals = platform::FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!m_signals.isOpen()) {
        // Without a way to hear of them they do what they always do.
        ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    }
}

void TerminationSignals::listen(OnSignal onSignal)
{
    m_onSignal = std::move(onSignal);
    if (m_signals.isOpen()) {
        m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
        QObject::connect(
            m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { tell(); });
    }
}

void TerminationSignals::tell()
{
    signalfd_siginfo information {};
    while (::read(m_signals.get(), &information, sizeof information)
        == static_cast<ssize_t>(sizeof information)) {
        m_onSignal(static_cast<int>(information.ssi_signo));
    }
}

} // namespace vellumine::cli
