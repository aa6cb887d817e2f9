#include "platform/TerminationSignals.h"
#include "support/EventLoop.h"

#include <QCoreApplication>
#include <QProcess>

#include <gmock/gmock.h>

#include <csignal>
#include <vector>

namespace vellumine::platform {
namespace {

using ::testing::ElementsAre;

sighandler_t actionOf(int number)
{
    struct sigaction action { };
    EXPECT_EQ(::sigaction(number, nullptr, &action), 0);
    return action.sa_handler;
}

TEST(TerminationSignals, areToldOfInTheirOrderByTheEventLoop)
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

TEST(TerminationSignals, stayIgnoredWhereTheyWere)
{
    const sighandler_t before = std::signal(SIGHUP, SIG_IGN);
    {
        const TerminationSignals signals;
        EXPECT_EQ(actionOf(SIGHUP), SIG_IGN);
        EXPECT_NE(actionOf(SIGTERM), SIG_DFL);
    }
    EXPECT_EQ(actionOf(SIGHUP), SIG_IGN);
    std::signal(SIGHUP, before);
}

TEST(TerminationSignals, areTheSystemsAgainAfterwards)
{
    {
        const TerminationSignals signals;
    }
    for (const int number : { SIGINT, SIGTERM, SIGHUP }) {
        EXPECT_EQ(actionOf(number), SIG_DFL);
    }
}

TEST(TerminationSignals, endProgramsThatThisOneStarts)
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
