#include "cli/BuiltProgram.h"
#include "platform/FileDescriptor.h"
#include "support/FakeProgram.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>

namespace vellumine {
namespace {

using platform::FileDescriptor;
using test::Outcome;
using test::writeFile;

constexpr std::string_view theOneBefore = "the one before";

/// The program on a terminal of its own.
class OnTerminal : public test::BuiltProgram {
protected:
    void SetUp() override
    {
        BuiltProgram::SetUp();
        makePicture("a.bmp");
        m_terminal = FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        ASSERT_TRUE(m_terminal.isOpen());
        ASSERT_EQ(::grantpt(m_terminal.get()), 0);
        ASSERT_EQ(::unlockpt(m_terminal.get()), 0);
        std::array<char, 128> name {};
        ASSERT_EQ(::ptsname_r(m_terminal.get(), name.data(), name.size()), 0);
        m_programsEnd = FileDescriptor(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        m_beforeItRuns = [this] { ::ioctl(m_programsEnd.get(), TIOCSCTTY, 0); };
    }

    void type(std::string_view keys) const
    {
        ASSERT_EQ(::write(m_terminal.get(), keys.data(), keys.size()), ssize_t(keys.size()));
    }

    /// What is shown until the text comes, which is a part of it.
    [[nodiscard]] std::string shownUntil(std::string_view text) const
    {
        std::string seen;
        while (seen.find(text) == std::string::npos) {
            pollfd waiting { m_terminal.get(), POLLIN, 0 };
            std::array<char, 256> chunk {};
            const ssize_t count = ::poll(&waiting, 1, 60'000) == 1
                ? ::read(m_terminal.get(), chunk.data(), chunk.size())
                : 0;
            if (count <= 0) {
                ADD_FAILURE() << "only this was shown: " << seen;
                break;
            }
            seen.append(chunk.data(), std::size_t(count));
        }
        return seen;
    }

    /// What else was shown by now.
    [[nodiscard]] std::string alsoShown() const
    {
        std::string seen;
        pollfd waiting { m_terminal.get(), POLLIN, 0 };
        while (::poll(&waiting, 1, 0) == 1) {
            std::array<char, 256> chunk {};
            const ssize_t count = ::read(m_terminal.get(), chunk.data(), chunk.size());
            if (count <= 0) {
                break;
            }
            seen.append(chunk.data(), std::size_t(count));
        }
        return seen;
    }

    QProcess m_process;
    FileDescriptor m_programsEnd;

private:
    FileDescriptor m_terminal;
};

TEST_F(OnTerminal, theProgressCountsWhatWasRefusedBefore)
{
    m_beforeItRuns = [this] { ::dup2(m_programsEnd.get(), STDERR_FILENO); };
    start(m_process, { QStringLiteral("missing.txt"), QStringLiteral("a.bmp") });
    const std::string shown = shownUntil("2 of 2");
    EXPECT_NE(shown.find("1 of 2"), std::string::npos) << shown;
    EXPECT_EQ(shown.find("of 1"), std::string::npos) << shown;
    EXPECT_EQ(end(m_process).status, 1);
}

TEST_F(OnTerminal, nobodyIsAskedAfterAnInterruption)
{
    makePicture("b.bmp");
    writeFile(pictures() / "a.webp", theOneBefore);
    writeFile(pictures() / "b.webp", theOneBefore);
    start(m_process,
        { QStringLiteral("--set"), QStringLiteral("warnBeforeOverwrite=true"),
            QStringLiteral("a.bmp"), QStringLiteral("b.bmp") });
    (void)shownUntil("[y/N] ");
    type("\x03");
    EXPECT_EQ(end(m_process).status, 1);
    EXPECT_EQ(alsoShown().find("Replace"), std::string::npos);
}

/// Asking whether a file may be replaced.
class TerminalQuestion : public OnTerminal {
protected:
    void SetUp() override
    {
        OnTerminal::SetUp();
        writeFile(pictures() / "a.webp", theOneBefore);
        start(m_process,
            { QStringLiteral("--set"), QStringLiteral("warnBeforeOverwrite=true"),
                QStringLiteral("a.bmp") });
        EXPECT_NE(shownUntil("[y/N] ").find("Replace a.webp?"), std::string::npos);
    }

    [[nodiscard]] bool isReplaced() const
    {
        return test::readFile(pictures() / "a.webp").size() != theOneBefore.size();
    }
};

struct AnswerRow {
    std::string_view name;
    std::string_view keys;
    bool replaces;
};

class TerminalAnswer : public TerminalQuestion, public testing::WithParamInterface<AnswerRow> { };

TEST_P(TerminalAnswer, replacesOnlyAtAYes)
{
    type(GetParam().keys);
    EXPECT_EQ(end(m_process).status, GetParam().replaces ? 0 : 1);
    EXPECT_EQ(isReplaced(), GetParam().replaces);
}

INSTANTIATE_TEST_SUITE_P(Keys, TerminalAnswer,
    testing::Values(AnswerRow { "y", "y\r", true }, AnswerRow { "yesInCapitals", " YES \r", true },
        AnswerRow { "anotherWord", "yesterday\r", false }, AnswerRow { "n", "n\r", false },
        AnswerRow { "returnAlone", "\r", false }, AnswerRow { "endOfInput", "\x04", false },
        AnswerRow { "controlC", "\x03", false }),
    test::RowName {});

TEST_F(TerminalQuestion, whatIsSkippedSaysSo)
{
    type("yesterday\r");
    const Outcome outcome = end(m_process);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.startsWith(
        QStringLiteral("a.bmp: Skipped because the output file already exists.\n")))
        << outcome.output.toStdString();
    EXPECT_FALSE(isReplaced());
}

TEST_F(TerminalQuestion, aTerminalThatIsGoneEndsTheBatch)
{
    ASSERT_EQ(::kill(pid_t(m_process.processId()), SIGHUP), 0);
    EXPECT_EQ(end(m_process).status, 1);
    EXPECT_FALSE(isReplaced());
}

} // namespace
} // namespace vellumine
