#include "platform/ChildStart.h"

#ifdef __SANITIZE_THREAD__
#include <dlfcn.h>
#endif

#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <memory>

// What posix_spawn does, and one thing that it cannot: asking for the child's end with its
// parent's. The child runs in this process's memory until it becomes the program, while the thread
// that made it waits: nothing is copied, however many pixels are in memory.

namespace vellumine::platform {

namespace {

constexpr std::size_t stackBytes = std::size_t { 64 } << 10U;

struct Start {
    const char* executable;
    char* const* arguments;
    char* const* environment;
    int standardError;
    pid_t parent;
    int error; ///< of what failed in the child
};

/// The kernel's own form of an action, all zero for the default one. The library's function is not
/// used: it keeps books, which belong to the parent.
struct KernelAction {
    unsigned long handler;
    unsigned long flags;
    unsigned long restorer;
    unsigned long mask;
};

/// This process's handlers must not run in the child, nor does the program expect that a broken
/// pipe is ignored. What has come for this process alone is forgotten: being ignored for a moment
/// does that.
void resetSignals()
{
    for (int number = 1; number <= SIGRTMAX; ++number) {
        KernelAction action {};
        constexpr unsigned long ignored = 1;
        if (::syscall(SYS_rt_sigaction, number, nullptr, &action, sizeof(action.mask)) == 0
            && (action.handler > ignored || number == SIGPIPE)) {
            for (const unsigned long handler : { ignored, 0UL }) {
                action = { .handler = handler, .flags = 0, .restorer = 0, .mask = 0 };
                ::syscall(SYS_rt_sigaction, number, &action, nullptr, sizeof(action.mask));
            }
        }
    }
}

/// Gives the child's exit status where it does not become the program. Nothing here may allocate or
/// lock: other threads go on meanwhile. Nor may a sanitizer count what is entered here and never
/// left.
[[gnu::no_sanitize_thread]] int becomeProgram(void* argument)
{
    auto* const start = static_cast<Start*>(argument);
    // Ctrl+C is for the program that the terminal knows. Until here the child heard of it as well.
    ::setpgid(0, 0);
    resetSignals();
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != start->parent) {
        return 0; // too late to hear of the parent's end
    }
    if (start->standardError == STDERR_FILENO
        || ::dup2(start->standardError, STDERR_FILENO) == STDERR_FILENO) {
        // A library may hold descriptors open that were not made to close themselves.
        ::syscall(SYS_close_range, STDERR_FILENO + 1, UINT_MAX, 0);
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        ::execve(start->executable, start->arguments, start->environment);
    }
    start->error = errno;
    return 127;
}

using Clone = int(int (*)(void*), void*, int, void*, ...);

/// clone() of the system's library. ThreadSanitizer puts its own before it, which takes every child
/// for a copy: of one that shares this process's memory, it would lift its locks twice and note,
/// here as well, that no thread may be started any more.
Clone* systemClone()
{
#ifdef __SANITIZE_THREAD__
    return reinterpret_cast<Clone*>(
        ::dlsym(::dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD), "clone"));
#else
    return ::clone;
#endif
}

/// As exec wants them, with a null at the end. The child only reads them; the type of exec's
/// parameter is older than const.
std::vector<char*> pointersTo(const std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// No signal is delivered to the thread while this lives.
class BlockedSignals {
public:
    BlockedSignals()
    {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~BlockedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t m_before {};
};

} // namespace

Result<pid_t> startChild(const std::filesystem::path& executable,
    const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
    int standardError)
{
    std::vector<char*> argumentPointers = pointersTo(arguments);
    argumentPointers.insert(argumentPointers.begin(), const_cast<char*>(executable.c_str()));
    const std::vector<char*> environmentPointers = pointersTo(environment);
    Start start { executable.c_str(), argumentPointers.data(), environmentPointers.data(),
        standardError, ::getpid(), 0 };
    const auto stack = std::make_unique<std::byte[]>(stackBytes);

    pid_t child = -1;
    {
        const BlockedSignals blocked;
        child = systemClone()(
            becomeProgram, stack.get() + stackBytes, CLONE_VM | CLONE_VFORK | SIGCHLD, &start);
    }
    if (child < 0) {
        return failure(errno);
    }
    if (start.error != 0) {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) { }
        return failure(start.error);
    }
    return child;
}

} // namespace vellumine::platform
