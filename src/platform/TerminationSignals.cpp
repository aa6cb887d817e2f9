#include "platform/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

namespace vellumine::platform {

namespace {

constexpr int nowhere = -1;
std::atomic<int> catching { nowhere };
static_assert(std::atomic<int>::is_always_lock_free, "a handler may not wait");

void noteSignal(int number)
{
    const int errorBefore = errno;
    const auto note = static_cast<unsigned char>(number);
    // Whoever has sent so many that there is no room for one more is heard all the same.
    [[maybe_unused]] const ssize_t written = ::write(catching, &note, 1);
    errno = errorBefore;
}

/// As nohup starts a program, and a shell's script what it leaves behind.
bool isIgnored(int number)
{
    struct sigaction action { };
    return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

TerminationSignals::TerminationSignals()
{
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // without a way to hear of them they do what they always do
    }
    m_caught = FileDescriptor(ends[0]);
    m_catching = FileDescriptor(ends[1]);
    catching = m_catching.get();
    struct sigaction noted { };
    noted.sa_handler = noteSignal;
    noted.sa_flags = SA_RESTART;
    sigset_t taken;
    sigemptyset(&taken);
    for (const int number : { SIGINT, SIGTERM, SIGHUP }) {
        if (!isIgnored(number) && ::sigaction(number, &noted, nullptr) == 0) {
            m_taken.push_back(number);
            sigaddset(&taken, number);
        }
    }
    // Whoever started this program may have held them back.
    ::pthread_sigmask(SIG_UNBLOCK, &taken, nullptr);
}

TerminationSignals::~TerminationSignals()
{
    for (const int number : m_taken) {
        (void)std::signal(number, SIG_DFL);
    }
    catching = nowhere;
}

void TerminationSignals::listen(OnSignal onSignal)
{
    m_onSignal = std::move(onSignal);
    if (m_caught.isOpen()) {
        m_notifier = std::make_unique<QSocketNotifier>(m_caught.get(), QSocketNotifier::Read);
        QObject::connect(
            m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { tell(); });
    }
}

void TerminationSignals::tell()
{
    unsigned char number = 0;
    while (::read(m_caught.get(), &number, 1) == 1) {
        m_onSignal(number);
    }
}

} // namespace vellumine::platform
