#include "confined/decoder/Lockdown.h"

#include "confined/protocol/SharedMemory.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

namespace vellumine::confined {
namespace {

constexpr int allowed = 0;
constexpr int refused = 1;

/// How an attempt ends in a process that has given up its rights: allowed, refused, or the signal
/// that ended the process, negative.
int outcomeOf(const std::function<bool()>& attempt, const std::function<void()>& giveUpRights)
{
    const pid_t child = ::fork();
    if (child == 0) {
        giveUpRights();
        ::_exit(attempt() ? allowed : refused);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

struct AttemptRow {
    const char* name;
    bool (*attempt)();
    int outcome;
};

bool canOpen(int flags)
{
    return ::open("/proc/self/status", flags) >= 0;
}

class Attempt : public testing::TestWithParam<AttemptRow> {
protected:
    void SetUp() override
    {
#ifdef VELLUMINE_SANITIZED
        GTEST_SKIP() << "A sanitizer needs the rights that the helper gives up.";
#endif
    }
};

TEST_P(Attempt, endsAsItShouldInAHelper)
{
    EXPECT_EQ(outcomeOf(GetParam().attempt, [] { (void)lockDown(); }), GetParam().outcome);
}

TEST_P(Attempt, wouldSucceedWithoutTheConfinement)
{
    EXPECT_EQ(outcomeOf(GetParam().attempt, [] {}), allowed);
}

INSTANTIATE_TEST_SUITE_P(To, Attempt,
    testing::Values(AttemptRow { "readAFile", [] { return canOpen(O_RDONLY); }, refused },
        AttemptRow {
            "makeAFile", [] { return ::open("/tmp", O_TMPFILE | O_RDWR, 0600) >= 0; }, refused },
        AttemptRow {
            "listAFolder", [] { return ::open("/tmp", O_DIRECTORY | O_RDONLY) >= 0; }, refused },
        AttemptRow {
            "reachTheNetwork", [] { return ::socket(AF_INET, SOCK_STREAM, 0) >= 0; }, -SIGSYS },
        AttemptRow {
            "reachLocalServices", [] { return ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }, -SIGSYS },
        AttemptRow { "forkAChild",
            [] {
                const pid_t child = ::fork();
                if (child == 0) {
                    ::_exit(0);
                }
                return child > 0;
            },
            refused },
        AttemptRow { "becomeAProgram",
            [] {
                ::execl("/bin/true", "true", nullptr);
                return false;
            },
            -SIGSYS },
        AttemptRow { "signalItsParent", [] { return ::kill(::getppid(), 0) == 0; }, -SIGSYS },
        AttemptRow { "runDataAsCode",
            [] {
                return ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC,
                           MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                    != MAP_FAILED;
            },
            refused },
        AttemptRow { "lookAround",
            [] {
                std::array<char, 64> name {};
                return ::getcwd(name.data(), name.size()) != nullptr;
            },
            refused },
        AttemptRow { "writeToWhatItWasHanded",
            [] { return ::write(STDIN_FILENO, nullptr, 0) == 0 || errno == EBADF; }, refused }),
    test::RowName());

struct NeedRow {
    const char* name;
    bool (*attempt)();
};

class Need : public testing::TestWithParam<NeedRow> { };

TEST_P(Need, isMetInAHelper)
{
    EXPECT_EQ(outcomeOf(GetParam().attempt, [] { (void)lockDown(); }), allowed);
}

INSTANTIATE_TEST_SUITE_P(For, Need,
    testing::Values(
        NeedRow { "memory", [] { return static_cast<bool>(std::malloc(100'000'000)); } },
        NeedRow { "sharedMemory",
            [] {
                auto memory = SharedMemory::create();
                const imaging::ByteBuffer bytes(10'000'000);
                return memory && memory->append(bytes) && std::move(*memory).seal();
            } },
        NeedRow { "aThread",
            [] {
                bool hasRun = false;
                std::thread([&hasRun] { hasRun = true; }).join();
                return hasRun;
            } },
        NeedRow { "anException",
            [] {
                try {
                    throw std::runtime_error("x");
                } catch (const std::exception&) {
                    return true;
                }
            } }),
    test::RowName());

TEST(Lockdown, anAbortEndsTheHelperAsUsual)
{
    EXPECT_EQ(outcomeOf([]() -> bool { std::abort(); }, [] { (void)lockDown(); }), -SIGABRT);
}

TEST(Lockdown, landlockAloneClosesTheFileSystem)
{
#ifdef VELLUMINE_SANITIZED
    GTEST_SKIP() << "A sanitizer needs the rights that the helper gives up.";
#endif
    const auto giveUpRights = [] {
        if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || raiseLandlock() == 0) {
            ::_exit(77);
        }
    };
    if (outcomeOf([] { return true; }, giveUpRights) == 77) {
        GTEST_SKIP() << "This kernel has no Landlock.";
    }
    EXPECT_EQ(
        outcomeOf([] { return ::open("/etc/passwd", O_RDONLY) >= 0; }, giveUpRights), refused);
}

TEST(Lockdown, limitsCannotBeRaisedAgain)
{
#ifdef VELLUMINE_SANITIZED
    GTEST_SKIP() << "A sanitizer needs the rights that the helper gives up.";
#endif
    const auto raise = [] {
        rlimit limit {};
        if (::getrlimit(RLIMIT_AS, &limit) != 0) {
            ::_exit(77);
        }
        return ::setrlimit(RLIMIT_AS, &limit) == 0;
    };
    EXPECT_EQ(outcomeOf(raise, [] {}), allowed);
    EXPECT_EQ(outcomeOf(raise, [] { (void)lockDown(); }), refused);
}

} // namespace
} // namespace vellumine::confined
