#include "support/ChangedSystem.h"

#include <seccomp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <memory>

namespace vellumine::test {
namespace {

constexpr int impossible = 255;

volatile std::sig_atomic_t syncs = 0;

struct ReleaseFilter {
    void operator()(scmp_filter_ctx filter) const { ::seccomp_release(filter); }
};

bool answerSyncsBy(std::uint32_t action)
{
    const std::unique_ptr<void, ReleaseFilter> filter(::seccomp_init(SCMP_ACT_ALLOW));
    return filter != nullptr
        && ::seccomp_rule_add_array(filter.get(), action, SCMP_SYS(fsync), 0, nullptr) == 0
        && ::seccomp_load(filter.get()) == 0;
}

int statusOf(const std::function<int()>& function)
{
    const pid_t copy = ::fork();
    if (copy == 0) {
        ::_exit(function());
    }
    int status = 0;
    return ::waitpid(copy, &status, 0) == copy && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

int whereSyncingFails(int error, const std::function<int()>& function)
{
    return statusOf([&] {
        const auto answer = SCMP_ACT_ERRNO(static_cast<std::uint32_t>(error));
        return answerSyncsBy(answer) ? function() : impossible;
    });
}

int syncsDuring(const std::function<void()>& function)
{
    return statusOf([&]() -> int {
        std::signal(SIGSYS, [](int) { syncs = syncs + 1; });
        if (!answerSyncsBy(SCMP_ACT_TRAP)) {
            return impossible;
        }
        function();
        return std::min(static_cast<int>(syncs), impossible - 1);
    });
}

} // namespace vellumine::test
