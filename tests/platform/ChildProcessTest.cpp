#include "platform/ChildProcess.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <future>
#include <stop_token>
#include <string>
#include <thread>

namespace vellumine::platform {
namespace {

using namespace std::chrono_literals;
using test::TemporaryFolder;
using test::writeProgram;

std::string content(const std::filesystem::path& path)
{
    const auto bytes = test::readFile(path);
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

TEST(ChildProcess, handsArgumentsOverUntouchedByAnyShell)
{
    const TemporaryFolder folder;
    const std::string output = (folder / "seen").string();
    writeProgram(folder / "program", "out=$1; shift; printf '%s\\n' \"$@\" > \"$out\"\n");
    const auto exit = runProcess(
        folder / "program", { output, "$(echo no)", "two words", "", "; rm", "*", "\"" });
    ASSERT_TRUE(exit);
    EXPECT_EQ(exit->status, 0);
    EXPECT_EQ(content(output), "$(echo no)\ntwo words\n\n; rm\n*\n\"\n");
}

TEST(ChildProcess, hasThisProcesssEnvironmentAndTheDefaultsThatItDoesNotName)
{
    const TemporaryFolder folder;
    const std::string output = (folder / "seen").string();
    writeProgram(folder / "program",
        "echo \"$VELLUMINE_TEST_OWN $VELLUMINE_TEST_OWNER $VELLUMINE_TEST_EMPTY.\" > \"$1\"\n");
    ASSERT_EQ(::setenv("VELLUMINE_TEST_OWN", "ours", 1), 0);
    ASSERT_EQ(::setenv("VELLUMINE_TEST_EMPTY", "", 1), 0);
    const auto cleanUp = qScopeGuard([] {
        ::unsetenv("VELLUMINE_TEST_OWN");
        ::unsetenv("VELLUMINE_TEST_EMPTY");
    });
    const auto exit = runProcess(folder / "program", { output },
        { .environmentDefaults = { "VELLUMINE_TEST_OWN=default", "VELLUMINE_TEST_OWNER=a=b",
              "VELLUMINE_TEST_EMPTY=default" } });
    ASSERT_TRUE(exit);
    EXPECT_EQ(content(output), "ours a=b .\n");
}

TEST(ChildProcess, givesTheExitStatusAndTheErrorText)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "echo oh no >&2\nexit 7\n");
    const auto exit = runProcess(folder / "program", {});
    ASSERT_TRUE(exit);
    EXPECT_EQ(exit->status, 7);
    EXPECT_EQ(exit->standardError, QByteArray("oh no\n"));
}

TEST(ChildProcess, givesTheSignalThatEndedIt)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "kill -KILL $$\n");
    const auto exit = runProcess(folder / "program", {});
    ASSERT_TRUE(exit);
    EXPECT_EQ(exit->status, SIGKILL);
}

TEST(ChildProcess, isNeverBlockedByAMegabyteOfErrorText)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "head -c 1000000 /dev/zero | tr '\\0' x >&2\nexit 3\n");
    const auto exit = runProcess(folder / "program", {});
    ASSERT_TRUE(exit);
    EXPECT_EQ(exit->status, 3);
    EXPECT_EQ(exit->standardError, QByteArray(1'000'000, 'x'));
}

TEST(ChildProcess, keepsNoMoreThanFourMebibytesOfErrorText)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "head -c 5000000 /dev/zero >&2\n");
    const auto exit = runProcess(folder / "program", {});
    ASSERT_TRUE(exit);
    EXPECT_EQ(exit->status, 0);
    EXPECT_EQ(exit->standardError.size(), 4 * 1024 * 1024);
}

TEST(ChildProcess, getsNoDescriptorButTheThreeStandardOnes)
{
    const TemporaryFolder folder;
    const std::string output = (folder / "seen").string();
    const int leaked = ::open("/dev/null", O_RDONLY); // deliberately without O_CLOEXEC
    ASSERT_GE(leaked, 0);
    // A number so high that the shell has none of its own there.
    const int highLeak = ::fcntl(leaked, F_DUPFD, 300);
    ASSERT_GE(highLeak, 300);
    writeProgram(folder / "high",
        "if [ -e /proc/self/fd/" + std::to_string(highLeak)
            + " ]; then echo leaked > \"$1\"; else echo clean > \"$1\"; fi\n");
    const auto exit = runProcess(folder / "high", { output });
    ::close(leaked);
    ::close(highLeak);
    ASSERT_TRUE(exit);
    EXPECT_EQ(content(output), "clean\n");
}

TEST(ChildProcess, saysWhyAProgramCannotBeStarted)
{
    const TemporaryFolder folder;
    test::writeFile(folder / "garbage", "\x01\x02not a program");
    std::filesystem::permissions(folder / "garbage", std::filesystem::perms::owner_all);
    const auto garbage = runProcess(folder / "garbage", {});
    ASSERT_FALSE(garbage);
    EXPECT_EQ(garbage.error().text, QStringLiteral("Exec format error"));
    const auto missing = runProcess(folder / "missing", {});
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().text, QStringLiteral("No such file or directory"));
}

TEST(ChildProcess, isKilledWithItsOwnChildrenWhenAStopIsRequested)
{
    const TemporaryFolder folder;
    const std::filesystem::path started = folder / "started";
    ASSERT_EQ(::mkfifo(started.c_str(), 0600), 0);
    // Two processes hold the standard error open.
    writeProgram(folder / "program", "sleep 1000 &\necho started > \"$1\"\nwait\n");
    std::stop_source stop;
    auto exit = std::async(std::launch::async, [&] {
        return runProcess(
            folder / "program", { started.string() }, { .interruption = stop.get_token() });
    });
    std::ifstream reader(started); // opens when the program has come that far
    std::string line;
    std::getline(reader, line);
    EXPECT_EQ(line, "started");
    stop.request_stop();
    const auto result = exit.get();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, SIGKILL);
}

TEST(ChildProcess, isKilledAtOnceWhenTheStopWasRequestedBefore)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "sleep 1000\n");
    std::stop_source stop;
    stop.request_stop();
    const auto result = runProcess(folder / "program", {}, { .interruption = stop.get_token() });
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, SIGKILL);
}

TEST(ChildProcess, isKilledWithItsOwnChildrenWhenItsTimeIsUp)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "echo busy >&2\nsleep 1000 &\nsleep 1000\n");
    const auto exit = runProcess(folder / "program", {}, { .interruption = {}, .time = 100ms });
    ASSERT_TRUE(exit);
    EXPECT_TRUE(exit->hasTimedOut);
    EXPECT_EQ(exit->status, SIGKILL);
}

TEST(ChildProcess, isKilledWhenItsTimeIsUpThoughItClosedItsErrorText)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "exec 2>&-\nexec sleep 1000\n");
    const auto exit = runProcess(folder / "program", {}, { .interruption = {}, .time = 100ms });
    ASSERT_TRUE(exit);
    EXPECT_TRUE(exit->hasTimedOut);
}

// As a batch is that was put aside on its terminal, or a machine's that was frozen for a while.
TEST(ChildProcess, whatEndedWhileThisProcessWasStoppedEndedInTime)
{
    const TemporaryFolder folder;
    for (const std::string_view before : { "", "exec 2>&-\n" }) {
        writeProgram(folder / "program",
            std::string(before) + "kill -STOP $PPID\n(sleep 1.1; kill -CONT $PPID) &\nexit 4\n");
        const pid_t stopped = ::fork();
        if (stopped == 0) {
            const auto exit
                = runProcess(folder / "program", {}, { .interruption = {}, .time = 1s });
            ::_exit(exit && !exit->hasTimedOut && exit->status == 4 ? 0 : 1);
        }
        int status = -1;
        ASSERT_EQ(::waitpid(stopped, &status, 0), stopped);
        EXPECT_EQ(status, 0) << before;
    }
}

TEST(ChildProcess, whatItLeavesBehindIsNotWaitedForAndIsKilled)
{
    const TemporaryFolder folder;
    const std::filesystem::path left = folder / "left";
    ASSERT_EQ(::mkfifo(left.c_str(), 0600), 0);
    // Holds the standard error open, and a pipe that ends with it.
    writeProgram(folder / "program", "exec 3> \"$1\"\nsleep 1000 &\necho said >&2\nexit 4\n");
    auto exit = std::async(
        std::launch::async, [&] { return runProcess(folder / "program", { left.string() }); });
    std::ifstream reader(left);
    EXPECT_EQ(reader.get(), std::ifstream::traits_type::eof());
    const auto result = exit.get();
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->hasTimedOut);
    EXPECT_EQ(result->status, 4);
    EXPECT_EQ(result->standardError, QByteArray("said\n"));
}

TEST(ChildProcess, doesNotOutliveThisProcess)
{
    const TemporaryFolder folder;
    const std::filesystem::path held = folder / "held";
    ASSERT_EQ(::mkfifo(held.c_str(), 0600), 0);
    writeProgram(folder / "program", "exec 3> \"$1\"\nexec sleep 1000\n");
    const pid_t parent = ::fork();
    if (parent == 0) {
        (void)runProcess(folder / "program", { held.string() });
        ::_exit(0);
    }
    std::ifstream reader(held); // opens when the program has
    ::kill(parent, SIGKILL);
    ASSERT_EQ(::waitpid(parent, nullptr, 0), parent);
    EXPECT_EQ(reader.get(), std::ifstream::traits_type::eof());
}

TEST(ChildProcess, hearsNothingOfWhatATerminalTellsThisProcess)
{
    const TemporaryFolder folder;
    writeProgram(folder / "program", "exit 0\n");
    const pid_t parent = ::fork();
    if (parent == 0) {
        ::setpgid(0, 0);
        ::signal(SIGINT, [](int) {});
        // Ctrl+C without end, which comes in every moment of a start.
        std::jthread terminal([](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                ::kill(0, SIGINT);
            }
        });
        for (int start = 0; start < 300; ++start) {
            const auto exit = runProcess(folder / "program", {});
            if (!exit || exit->status != 0) {
                ::_exit(1);
            }
        }
        ::_exit(0);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(parent, &status, 0), parent);
    EXPECT_EQ(status, 0);
}

TEST(ChildProcess, takesSignalsAsAnyProgramDoes)
{
    const TemporaryFolder folder;
    const auto before = ::signal(SIGPIPE, SIG_IGN);
    writeProgram(folder / "program", "kill -PIPE $$\nexit 0\n");
    const auto exit = runProcess(folder / "program", {});
    ::signal(SIGPIPE, before);
    ASSERT_TRUE(exit);
    EXPECT_EQ(exit->status, SIGPIPE);
}

} // namespace
} // namespace vellumine::platform
