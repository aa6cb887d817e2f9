#include "platform/ChildProcess.h"

#include "platform/FileDescriptor.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

// posix_spawn rather than QProcess: nothing of the parent's memory is copied, a program that cannot
// be started is known at once and by its errno, and no event machinery is set up for a call that
// blocks its worker thread anyway.

namespace vellumine::platform {

namespace {

constexpr qsizetype mostErrorText = qsizetype { 4 } << 20U;

/// What the child starts with.
class SpawnSetup {
public:
    explicit SpawnSetup(int standardError)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, standardError, STDERR_FILENO);
        // A library may hold descriptors open that were not made to close themselves.
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);

        posix_spawnattr_init(&m_attributes);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        sigaddset(&signals, SIGPIPE);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
        posix_spawnattr_setflags(
            &m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&m_attributes, 0);
    }
    ~SpawnSetup()
    {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &m_actions; }
    [[nodiscard]] const posix_spawnattr_t* attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions {};
    posix_spawnattr_t m_attributes {};
};

QByteArray readToEnd(int descriptor)
{
    QByteArray text;
    std::array<char, 16384> chunk {};
    while (true) {
        const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return text;
        }
        text.append(chunk.data(), std::min<qsizetype>(count, mostErrorText - text.size()));
    }
}

/// Waits without taking the status: the child's number stays its own.
void waitUntilEnded(pid_t child)
{
    siginfo_t information {};
    while (::waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT) < 0
        && errno == EINTR) { }
}

Result<int> takeStatus(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return failure(errno);
        }
    }
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace

Result<ProcessExit> runProcess(const std::filesystem::path& executable,
    const std::vector<std::string>& arguments, const std::stop_token& interruption)
{
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return failure(errno);
    }
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);

    // The child only reads them; the type of exec's parameter is older than const.
    std::vector<char*> pointers { const_cast<char*>(executable.c_str()) };
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);

    pid_t child = 0;
    const SpawnSetup setup(writeEnd.get());
    const int error = ::posix_spawn(
        &child, executable.c_str(), setup.actions(), setup.attributes(), pointers.data(), environ);
    if (error != 0) {
        return failure(error);
    }
    // Only the child's copy may be left, or the end of its text would never come.
    writeEnd.reset();
    QByteArray text;
    {
        // Killing is over before the status is taken, after which the number may be another's.
        const std::stop_callback kill(interruption, [child] { ::kill(-child, SIGKILL); });
        text = readToEnd(readEnd.get());
        waitUntilEnded(child);
    }
    return takeStatus(child).map([&text](int status) {
        return ProcessExit { status, std::move(text) };
    });
}

} // namespace vellumine::platform
