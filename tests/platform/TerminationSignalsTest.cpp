#include "platform/TerminationSignals.h"
#include "support/EventLoop.h"

#include <QCoreApplication>
#include <QProcess>

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <vector>

namespace vellumine::platform {
namespace {

using ::testing::ElementsAre;

constexpr std::array asking { SIGINT, SIGTERM, SIGHUP };

sighandler_t actionOf(int number)
{
    struct sigaction action { };
    EXPECT_EQ(::sigaction(number, nullptr, &action), 0);
    return action.sa_handler;
}

/// The signals as a program has them that is started from a terminal, however this one was.
class TerminationSignalsTest : public testing::Test {
protected:
    void SetUp() override
    {
        sigset_t theirs;
        sigemptyset(&theirs);
        for (std::size_t index = 0; index < asking.size(); ++index) {
            struct sigaction usual { };
            usual.sa_handler = SIG_DFL;
            ASSERT_EQ(::sigaction(asking.at(index), &usual, &m_actionsBefore.at(index)), 0);
            sigaddset(&theirs, asking.at(index));
        }
        ASSERT_EQ(::pthread_sigmask(SIG_UNBLOCK, &theirs, &m_maskBefore), 0);
    }

    void TearDown() override
    {
        ::pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr);
        for (std::size_t index = 0; index < asking.size(); ++index) {
            ::sigaction(asking.at(index), &m_actionsBefore.at(index), nullptr);
        }
    }

private:
    std::array<struct sigaction, asking.size()> m_actionsBefore {};
    sigset_t m_maskBefore {};
};

TEST_F(TerminationSignalsTest, areToldOfInTheirOrderByTheEventLoop)
{
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    TerminationSignals signals;
    std::vector<int> heard;
    std::raise(SIGHUP); // before anybody listens
    signals.listen([&](int number) { heard.push_back(number); });
    std::raise(SIGINT);
    std::raise(SIGTERM);
    EXPECT_THAT(heard, ElementsAre());
    ASSERT_TRUE(test::runUntil([&] { return heard.size() == 3; }));
    EXPECT_THAT(heard, ElementsAre(SIGHUP, SIGINT, SIGTERM));
}

TEST_F(TerminationSignalsTest, stayIgnoredWhereTheyWere)
{
    std::signal(SIGHUP, SIG_IGN);
    {
        const TerminationSignals signals;
        EXPECT_EQ(actionOf(SIGHUP), SIG_IGN);
        EXPECT_NE(actionOf(SIGTERM), SIG_DFL);
    }
    EXPECT_EQ(actionOf(SIGHUP), SIG_IGN);
}

TEST_F(TerminationSignalsTest, areHeardWhereTheyWereHeldBack)
{
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    sigset_t heldBack;
    sigemptyset(&heldBack);
    sigaddset(&heldBack, SIGTERM);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &heldBack, nullptr), 0);
    std::raise(SIGTERM);
    TerminationSignals signals;
    std::vector<int> heard;
    signals.listen([&](int number) { heard.push_back(number); });
    ASSERT_TRUE(test::runUntil([&] { return !heard.empty(); }));
    EXPECT_THAT(heard, ElementsAre(SIGTERM));
}

TEST_F(TerminationSignalsTest, areTheSystemsAgainAfterwards)
{
    {
        const TerminationSignals signals;
    }
    for (const int number : asking) {
        EXPECT_EQ(actionOf(number), SIG_DFL);
    }
}

TEST_F(TerminationSignalsTest, endProgramsThatThisOneStarts)
{
    const TerminationSignals signals;
    QProcess shell;
    shell.start(QStringLiteral("sh"), { QStringLiteral("-c"), QStringLiteral("kill -TERM $$") });
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(shell.exitCode(), SIGTERM);
}

} // namespace
} // namespace vellumine::platform
