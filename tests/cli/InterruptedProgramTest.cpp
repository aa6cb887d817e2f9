#include "cli/BuiltProgram.h"
#include "platform/FileDescriptor.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace vellumine {
namespace {

using test::listing;
using test::Outcome;

/// The program with an encoder that says when it has started and waits until it is let go.
class InterruptedProgram : public test::BuiltProgram {
protected:
    void SetUp() override
    {
        BuiltProgram::SetUp();
        m_beforeItRuns = [] { ::signal(SIGHUP, SIG_IGN); };
        m_started = openPipe("started");
        m_gate = openPipe("gate");
        test::writeProgram(folder() / "encoder",
            "while [ \"$1\" != \"-o\" ]; do shift; done\n"
            "echo > '"
                + (folder() / "started").string() + "'\nread line < '"
                + (folder() / "gate").string() + "'\nprintf encoded > \"$2\"\n");
        for (int i = 0; i < m_count; ++i) {
            makePicture(std::to_string(i) + ".bmp", { 3, 2 });
        }
        start(m_process, { QStringLiteral(".") },
            QString::fromStdString((folder() / "encoder").string()));
        waitUntilStarted();
        waitUntilStarted();
    }

    void send(int signal) { ASSERT_EQ(::kill(pid_t(m_process.processId()), signal), 0); }

    /// Lets so many encoders go.
    void letGo(int count)
    {
        const std::string lines(std::size_t(count), '\n');
        ASSERT_EQ(::write(m_gate.get(), lines.data(), lines.size()), ssize_t(lines.size()));
    }

    [[nodiscard]] int outputs() const
    {
        const std::string names = listing(pictures());
        int count = 0;
        for (std::size_t at = names.find(".webp"); at != std::string::npos;
             at = names.find(".webp", at + 1)) {
            ++count;
        }
        return count;
    }

    QProcess m_process;
    const int m_count = 200;

private:
    /// Open at both ends, so that nobody waits for the other one to open it.
    [[nodiscard]] platform::FileDescriptor openPipe(const char* name) const
    {
        const std::filesystem::path path = folder() / name;
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        return platform::FileDescriptor(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    }

    void waitUntilStarted()
    {
        char line = 0;
        ASSERT_EQ(::read(m_started.get(), &line, 1), 1);
    }

    platform::FileDescriptor m_started;
    platform::FileDescriptor m_gate;
};

TEST_F(InterruptedProgram, finishesWhatIsInFlightAndLeavesTheRest)
{
    send(SIGINT);
    letGo(m_count);
    const Outcome outcome = end(m_process);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_GE(outputs(), 2);
    EXPECT_LT(outputs(), m_count);
    EXPECT_EQ(
        outcome.error, QStringLiteral("Stopped after %1 of %2\n").arg(outputs()).arg(m_count));
    EXPECT_TRUE(outcome.output.contains(QStringLiteral("%1 files optimized").arg(outputs())));
    EXPECT_EQ(listing(temporary()), "");
}

TEST_F(InterruptedProgram, killsItsEncodersWhenAskedAgainAndCleansUp)
{
    send(SIGINT);
    send(SIGTERM);
    const Outcome outcome = end(m_process);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, QStringLiteral("Stopped after 2 of %1\n").arg(m_count));
    EXPECT_EQ(outcome.output.count(QStringLiteral(": Operation canceled\n")), 2);
    EXPECT_EQ(outputs(), 0);
    EXPECT_EQ(listing(temporary()), "");
}

// As nohup starts it.
TEST_F(InterruptedProgram, goesOnAtASignalThatItsParentShutOut)
{
    send(SIGHUP);
    letGo(m_count);
    const Outcome outcome = end(m_process);
    EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
    EXPECT_EQ(outputs(), m_count);
}

} // namespace
} // namespace vellumine
