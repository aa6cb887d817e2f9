#include "platform/ChildProcess.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <future>
#include <stop_token>
#include <string>

namespace vellumine::platform {
namespace {

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
    auto exit = std::async(std::launch::async,
        [&] { return runProcess(folder / "program", { started.string() }, stop.get_token()); });
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
    const auto result = runProcess(folder / "program", {}, stop.get_token());
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, SIGKILL);
}

} // namespace
} // namespace vellumine::platform
