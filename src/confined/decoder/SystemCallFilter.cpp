#include "confined/decoder/Lockdown.h"

#include <fcntl.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <memory>
#include <sched.h>
#include <type_traits>

// What is not named here is answered as if the kernel did not know it, which libraries are prepared
// for: they go another way, or fail. What no codec would ever try ends the process.

namespace vellumine::confined {

namespace {

struct ReleaseFilter {
    void operator()(void* filter) const { ::seccomp_release(filter); }
};
using Filter = std::unique_ptr<std::remove_pointer_t<scmp_filter_ctx>, ReleaseFilter>;

/// Adds rules and remembers whether all of them could be.
class Rules {
public:
    explicit Rules(scmp_filter_ctx filter)
        : m_filter(filter)
    {
    }

    void add(std::uint32_t action, std::initializer_list<int> calls)
    {
        for (const int call : calls) {
            note(::seccomp_rule_add_array(m_filter, action, call, 0, nullptr));
        }
    }
    void allow(std::initializer_list<int> calls) { add(SCMP_ACT_ALLOW, calls); }
    void allow(int call, std::initializer_list<scmp_arg_cmp> conditions)
    {
        note(::seccomp_rule_add_array(m_filter, SCMP_ACT_ALLOW, call,
            static_cast<unsigned>(conditions.size()), conditions.begin()));
    }

    [[nodiscard]] bool areComplete() const { return m_areComplete; }

private:
    /// A call that this machine's kernels never had needs no rule.
    void note(int error)
    {
        m_areComplete = m_areComplete && (error == 0 || error == -EDOM || error == -EFAULT);
    }

    scmp_filter_ctx m_filter;
    bool m_areComplete = true;
};

/// The condition that an argument is a value, in the bits of the mask.
scmp_arg_cmp masked(unsigned argument, scmp_datum_t mask, scmp_datum_t value)
{
    return { argument, SCMP_CMP_MASKED_EQ, mask, value };
}

scmp_arg_cmp equal(unsigned argument, scmp_datum_t value)
{
    return { argument, SCMP_CMP_EQ, value, 0 };
}

void allowMemory(Rules& rules)
{
    rules.allow({ SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise), SCMP_SYS(brk) });
    // Data never becomes code.
    rules.allow(SCMP_SYS(mmap), { masked(2, PROT_EXEC, 0) });
    rules.allow(SCMP_SYS(mprotect), { masked(2, PROT_EXEC, 0) });
    rules.allow(SCMP_SYS(memfd_create), { equal(1, MFD_CLOEXEC | MFD_ALLOW_SEALING) });
    rules.allow({ SCMP_SYS(pwrite64) });
    rules.allow(SCMP_SYS(fcntl), { equal(1, F_ADD_SEALS) });
}

void allowFiles(Rules& rules)
{
    rules.allow({ SCMP_SYS(read), SCMP_SYS(close), SCMP_SYS(fstat), SCMP_SYS(recvmsg),
        SCMP_SYS(sendmsg), SCMP_SYS(poll), SCMP_SYS(ppoll), SCMP_SYS(restart_syscall) });
    rules.allow(SCMP_SYS(write), { equal(0, STDERR_FILENO) });
    // The library asks for an open file's size this way. Names tell nothing: Landlock or not, what
    // can be seen is whether there is a file of that name.
    rules.allow(SCMP_SYS(newfstatat), { masked(3, AT_EMPTY_PATH, AT_EMPTY_PATH) });
    rules.add(SCMP_ACT_ERRNO(EACCES),
        { SCMP_SYS(open), SCMP_SYS(openat), SCMP_SYS(openat2), SCMP_SYS(stat), SCMP_SYS(lstat),
            SCMP_SYS(access), SCMP_SYS(faccessat), SCMP_SYS(faccessat2), SCMP_SYS(readlink),
            SCMP_SYS(readlinkat) });
}

void allowThreads(Rules& rules, pid_t self)
{
    constexpr scmp_datum_t thread = CLONE_VM | CLONE_THREAD | CLONE_SIGHAND;
    // Where clone3 seems to be unknown, clone is used, whose flags can be looked at.
    rules.allow(SCMP_SYS(clone), { masked(0, thread, thread) });
    rules.allow({ SCMP_SYS(futex), SCMP_SYS(set_robust_list), SCMP_SYS(rseq), SCMP_SYS(exit),
        SCMP_SYS(exit_group), SCMP_SYS(gettid), SCMP_SYS(getpid), SCMP_SYS(sched_yield),
        SCMP_SYS(sched_getaffinity), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigaction),
        SCMP_SYS(rt_sigreturn), SCMP_SYS(sigaltstack), SCMP_SYS(clock_gettime),
        SCMP_SYS(clock_nanosleep), SCMP_SYS(nanosleep), SCMP_SYS(gettimeofday), SCMP_SYS(time),
        SCMP_SYS(getrandom), SCMP_SYS(sysinfo) });
    // To end itself, as abort() does.
    rules.allow(SCMP_SYS(tgkill), { equal(0, static_cast<scmp_datum_t>(self)) });
    // Limits may be read, not set.
    rules.allow(SCMP_SYS(prlimit64), { equal(2, 0) });
}

void forbidAttacks(Rules& rules)
{
    rules.add(SCMP_ACT_KILL_PROCESS,
        { SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(socket),
            SCMP_SYS(connect), SCMP_SYS(bind), SCMP_SYS(listen), SCMP_SYS(accept),
            SCMP_SYS(accept4), SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv),
            SCMP_SYS(process_vm_writev), SCMP_SYS(pidfd_getfd), SCMP_SYS(kill), SCMP_SYS(tkill),
            SCMP_SYS(mount), SCMP_SYS(unshare), SCMP_SYS(setns), SCMP_SYS(bpf),
            SCMP_SYS(io_uring_setup), SCMP_SYS(userfaultfd), SCMP_SYS(keyctl) });
}

} // namespace

bool installSystemCallFilter()
{
    const Filter filter(::seccomp_init(SCMP_ACT_ERRNO(ENOSYS)));
    if (!filter) {
        return false;
    }
    Rules rules(filter.get());
    allowMemory(rules);
    allowFiles(rules);
    allowThreads(rules, ::getpid());
    forbidAttacks(rules);
    return rules.areComplete() && ::seccomp_load(filter.get()) == 0;
}

} // namespace vellumine::confined
