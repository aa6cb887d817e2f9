#include "pipeline/OverwritePrompt.h"

#include "pipeline/Workplace.h"
#include "support/QtPrinters.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <future>
#include <vector>

namespace vellumine {
namespace {

class Prompt : public testing::Test {
protected:
    static std::future<OverwriteDecision> ask(OverwritePrompt& prompt, const char* path)
    {
        return std::async(
            std::launch::async, [&prompt, url = test::urlOf(path)] { return prompt.ask(url); });
    }

    /// Runs this thread's events until the answer is there.
    static OverwriteDecision decisionOf(std::future<OverwriteDecision>& future)
    {
        while (future.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
        return future.get();
    }

    int m_argc = 1;
    char m_name[5] = "test";
    char* m_argv[2] = { m_name, nullptr };
    QCoreApplication m_application { m_argc, m_argv };
};

TEST_F(Prompt, asksOnItsOwnThread)
{
    QThread* asked = nullptr;
    QUrl url;
    OverwritePrompt prompt([&](const QUrl& about, const OverwritePrompt::Answer& answer) {
        asked = QThread::currentThread();
        url = about;
        answer(OverwriteDecision::replace);
    });
    auto decision = ask(prompt, "/a.png");
    EXPECT_EQ(decisionOf(decision), OverwriteDecision::replace);
    EXPECT_EQ(asked, QThread::currentThread());
    EXPECT_EQ(url, test::urlOf("/a.png"));
}

TEST_F(Prompt, skipIsSkip)
{
    OverwritePrompt prompt([](const QUrl&, const OverwritePrompt::Answer& answer) {
        answer(OverwriteDecision::skip);
    });
    auto decision = ask(prompt, "/a.png");
    EXPECT_EQ(decisionOf(decision), OverwriteDecision::skip);
}

TEST_F(Prompt, aDismissedQuestionCountsAsSkip)
{
    OverwritePrompt prompt([](const QUrl&, const OverwritePrompt::Answer&) {});
    auto decision = ask(prompt, "/a.png");
    EXPECT_EQ(decisionOf(decision), OverwriteDecision::skip);
}

TEST_F(Prompt, onlyTheFirstAnswerCounts)
{
    OverwritePrompt prompt([](const QUrl&, const OverwritePrompt::Answer& answer) {
        answer(OverwriteDecision::replace);
        answer(OverwriteDecision::skip);
    });
    auto decision = ask(prompt, "/a.png");
    EXPECT_EQ(decisionOf(decision), OverwriteDecision::replace);
}

TEST_F(Prompt, questionsComeOneAfterAnother)
{
    std::vector<OverwritePrompt::Answer> open;
    OverwritePrompt prompt(
        [&](const QUrl&, OverwritePrompt::Answer answer) { open.push_back(std::move(answer)); });
    auto first = ask(prompt, "/a.png");
    auto second = ask(prompt, "/b.png");
    while (open.empty()) {
        QCoreApplication::processEvents();
    }
    for (int i = 0; i < 50; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    EXPECT_EQ(open.size(), 1U);
    open.front()(OverwriteDecision::replace);
    while (open.size() < 2) {
        QCoreApplication::processEvents();
    }
    open.back()(OverwriteDecision::replace);
    EXPECT_EQ(decisionOf(first), OverwriteDecision::replace);
    EXPECT_EQ(decisionOf(second), OverwriteDecision::replace);
}

TEST_F(Prompt, closingAnswersTheOpenQuestionAndTheWaitingOnes)
{
    std::vector<OverwritePrompt::Answer> open;
    OverwritePrompt prompt(
        [&](const QUrl&, OverwritePrompt::Answer answer) { open.push_back(std::move(answer)); });
    auto first = ask(prompt, "/a.png");
    auto second = ask(prompt, "/b.png");
    while (open.empty()) {
        QCoreApplication::processEvents();
    }
    prompt.close();
    // No event runs any more: this is a thread that is about to wait for its workers.
    EXPECT_EQ(first.get(), OverwriteDecision::skip);
    EXPECT_EQ(second.get(), OverwriteDecision::skip);
    open.front()(OverwriteDecision::replace); // too late, and harmless
    EXPECT_EQ(prompt.ask(test::urlOf("/c.png")), OverwriteDecision::skip);
}

TEST_F(Prompt, questionThatWasNeverDeliveredIsSkippedAtTheEnd)
{
    std::future<OverwriteDecision> decision;
    {
        OverwritePrompt prompt([](const QUrl&, const OverwritePrompt::Answer& answer) {
            answer(OverwriteDecision::replace);
        });
        std::promise<void> started;
        decision = std::async(std::launch::async, [&] {
            started.set_value();
            return prompt.ask(test::urlOf("/a.png"));
        });
        started.get_future().wait();
        prompt.close();
        EXPECT_EQ(decision.get(), OverwriteDecision::skip);
    }
}

} // namespace
} // namespace vellumine
