#include "support/ChangedSystem.h"

#include <seccomp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>
#include <vector>

namespace vellumine::test {
namespace {

constexpr int impossible = 255;

volatile std::sig_atomic_t syncs = 0;

struct ReleaseFilter {
    void operator()(scmp_filter_ctx filter) const { ::seccomp_release(filter); }
};

struct ChangedCall {
    int number;
    std::uint32_t action;
    std::vector<scmp_arg_cmp> where {}; ///< only calls with such arguments
};

/// Holds for the rest of this process's life.
bool change(const std::vector<ChangedCall>& calls)
{
    const std::unique_ptr<void, ReleaseFilter> filter(::seccomp_init(SCMP_ACT_ALLOW));
    return filter != nullptr && std::ranges::all_of(calls, [&filter](const ChangedCall& call) {
        return ::seccomp_rule_add_array(filter.get(), call.action, call.number,
                   static_cast<unsigned>(call.where.size()), call.where.data())
            == 0;
    }) && ::seccomp_load(filter.get()) == 0;
}

int statusWith(const std::vector<ChangedCall>& calls, const std::function<int()>& function)
{
    const pid_t copy = ::fork();
    if (copy == 0) {
        ::_exit(change(calls) ? function() : impossible);
    }
    int status = 0;
    return ::waitpid(copy, &status, 0) == copy && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

int onPlainFileSystem(bool hasLinks, const std::function<int()>& function)
{
    std::vector<ChangedCall> calls { { SCMP_SYS(renameat2), SCMP_ACT_ERRNO(EINVAL),
        { { 4, SCMP_CMP_NE, 0, 0 } } } }; // with any flags
    if (!hasLinks) {
        calls.push_back({ SCMP_SYS(link), SCMP_ACT_ERRNO(EPERM) });
        calls.push_back({ SCMP_SYS(linkat), SCMP_ACT_ERRNO(EPERM) });
    }
    return statusWith(calls, function);
}

int whereSyncingFails(int error, const std::function<int()>& function)
{
    const auto answer = SCMP_ACT_ERRNO(static_cast<std::uint32_t>(error));
    return statusWith({ { SCMP_SYS(fsync), answer } }, function);
}

int syncsDuring(const std::function<void()>& function)
{
    return statusWith({ { SCMP_SYS(fsync), SCMP_ACT_TRAP } }, [&function] {
        std::signal(SIGSYS, [](int) { syncs = syncs + 1; });
        function();
        return std::min(static_cast<int>(syncs), impossible - 1);
    });
}

} // namespace vellumine::test
