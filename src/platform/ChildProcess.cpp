#include "platform/ChildProcess.h"

#include "platform/ChildStart.h"
#include "platform/FileDescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <string_view>

namespace vellumine::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr qsizetype mostErrorText = qsizetype { 4 } << 20U;

/// A moment, which may be never.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds time)
    {
        const auto now = Clock::now();
        if (time < std::chrono::duration_cast<std::chrono::milliseconds>(
                Clock::time_point::max() - now)) {
            m_moment = now + time;
        }
    }

    [[nodiscard]] bool isOver() const { return Clock::now() >= m_moment; }

    /// For poll(): never too short, so that nothing is polled in vain.
    [[nodiscard]] int pollTimeout() const
    {
        if (m_moment == Clock::time_point::max()) {
            return -1;
        }
        const auto left
            = std::chrono::ceil<std::chrono::milliseconds>(m_moment - Clock::now()).count();
        return static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
    }

private:
    Clock::time_point m_moment = Clock::time_point::max();
};

/// A child that is killed by its group, until its status is taken.
class Child {
public:
    explicit Child(pid_t number)
        : m_number(number)
        , m_handle(static_cast<int>(::syscall(SYS_pidfd_open, number, 0)))
    {
    }

    /// Becomes readable when the child ends; not open where the system has no such thing.
    [[nodiscard]] const FileDescriptor& handle() const { return m_handle; }

    void kill() const { ::kill(-m_number, SIGKILL); }

    /// Waits without taking the status: the child's number stays its own.
    void waitUntilEnded() const
    {
        siginfo_t information {};
        while (::waitid(P_PID, static_cast<id_t>(m_number), &information, WEXITED | WNOWAIT) < 0
            && errno == EINTR) { }
    }

    [[nodiscard]] Result<int> takeStatus() const
    {
        int status = 0;
        while (::waitpid(m_number, &status, 0) < 0) {
            if (errno != EINTR) {
                return failure(errno);
            }
        }
        return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    }

private:
    pid_t m_number;
    FileDescriptor m_handle;
};

enum class Reading { goesOn, isOver };

/// Takes what can be read without waiting.
Reading readWhatIsThere(int descriptor, QByteArray& text)
{
    std::array<char, 16384> chunk {};
    while (true) {
        const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 && errno == EAGAIN) {
            return Reading::goesOn;
        }
        if (count <= 0) {
            return Reading::isOver;
        }
        text.append(chunk.data(), std::min<qsizetype>(count, mostErrorText - text.size()));
    }
}

/// Reads until the text ends, the child does (whatever it started may hold the text open) or the
/// time is up. Gives whether it was the time.
bool readUntilTheEnd(const Child& child, int descriptor, const Deadline& deadline, QByteArray& text)
{
    while (true) {
        // Asked before the look at the child: what it did while this process was stopped, however
        // long, it did in time.
        const bool isLate = deadline.isOver();
        std::array<pollfd, 2> waiting { { { descriptor, POLLIN, 0 },
            { child.handle().get(), POLLIN, 0 } } };
        const int ready = ::poll(waiting.data(), waiting.size(), deadline.pollTimeout());
        if (ready < 0 && errno != EINTR) {
            return false;
        }
        // Asked first: what the child wrote before its end is there then.
        const bool hasEnded = ready > 0 && waiting[1].revents != 0;
        if (readWhatIsThere(descriptor, text) == Reading::isOver || hasEnded) {
            return false;
        }
        if (isLate) {
            return true;
        }
    }
}

/// Waits for a child that has closed its standard error and may go on without it.
bool waitForTheEnd(const Child& child, const Deadline& deadline)
{
    while (child.handle().isOpen()) {
        const bool isLate = deadline.isOver();
        pollfd waiting { child.handle().get(), POLLIN, 0 };
        if (::poll(&waiting, 1, deadline.pollTimeout()) > 0) {
            return false;
        }
        if (isLate) {
            return true;
        }
    }
    return false;
}

/// The name in "NAME=value", with the "=".
std::string_view nameIn(std::string_view variable)
{
    return variable.substr(0, variable.find('=') + 1);
}

/// This process's environment, and what it does not say.
std::vector<std::string> environmentWith(const std::vector<std::string>& defaults)
{
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    const auto inherited = static_cast<std::ptrdiff_t>(variables.size());
    for (const std::string& variable : defaults) {
        const bool isThere = std::any_of(variables.begin(), variables.begin() + inherited,
            [&](const std::string& other) { return other.starts_with(nameIn(variable)); });
        if (!isThere) {
            variables.push_back(variable);
        }
    }
    return variables;
}

} // namespace

Result<ProcessExit> runProcess(const std::filesystem::path& executable,
    const std::vector<std::string>& arguments, const ProcessOptions& options)
{
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return failure(errno);
    }
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    ::fcntl(readEnd.get(), F_SETFL, O_NONBLOCK); // only this end: the child's writes may wait

    const auto number = startChild(
        executable, arguments, environmentWith(options.environmentDefaults), writeEnd.get());
    // Only the child's copy may be left, or the end of its text would never come.
    writeEnd.reset();
    if (!number) {
        return tl::unexpected(number.error());
    }
    const Child child(*number);
    const Deadline deadline(options.time);
    ProcessExit exit;
    {
        // Killing is over before the status is taken, after which the number may be another's.
        const std::stop_callback kill(options.interruption, [&child] { child.kill(); });
        exit.hasTimedOut = readUntilTheEnd(child, readEnd.get(), deadline, exit.standardError)
            || waitForTheEnd(child, deadline);
        if (exit.hasTimedOut) {
            child.kill();
        }
        child.waitUntilEnded();
        child.kill(); // what it started and left
    }
    const auto status = child.takeStatus();
    if (!status) {
        return tl::unexpected(status.error());
    }
    exit.status = *status;
    return exit;
}

} // namespace vellumine::platform
