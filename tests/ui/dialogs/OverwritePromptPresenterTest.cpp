#include "ui/dialogs/OverwritePromptPresenter.h"

#include "platform/FilePath.h"
#include "support/EventLoop.h"
#include "support/QtPrinters.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

#include <future>

namespace vellumine {
namespace {

QUrl file(const char* path)
{
    return platform::fileUrl(QString::fromUtf8(path));
}

class OverwritePromptPresenterTest : public testing::Test {
protected:
    void ask(const char* path)
    {
        m_presenter.ask(
            file(path), [this](OverwriteDecision decision) { m_answers.push_back(decision); });
    }

    std::vector<OverwriteDecision> m_answers; // the presenter's end answers what is open
    OverwritePromptPresenter m_presenter;
};

TEST_F(OverwritePromptPresenterTest, AsksAboutTheFileByItsName)
{
    const QSignalSpy asked(&m_presenter, &OverwritePromptPresenter::asked);
    EXPECT_FALSE(m_presenter.isAsking());
    ask("/pictures/photo.webp");
    EXPECT_TRUE(m_presenter.isAsking());
    EXPECT_EQ(m_presenter.message(), QStringLiteral("Replace photo.webp?"));
    EXPECT_EQ(
        m_presenter.informativeText(), QStringLiteral("A file with this name already exists."));
    EXPECT_EQ(m_presenter.replaceTitle(), QStringLiteral("Replace"));
    EXPECT_EQ(m_presenter.skipTitle(), QStringLiteral("Skip"));
    EXPECT_EQ(asked.count(), 1);
}

TEST_F(OverwritePromptPresenterTest, KeepsAPercentSignOfTheName)
{
    ask("/pictures/100%1.webp");
    EXPECT_EQ(m_presenter.message(), QStringLiteral("Replace 100%1.webp?"));
}

TEST_F(OverwritePromptPresenterTest, ReplacesOnlyWhenToldTo)
{
    ask("/pictures/a.webp");
    m_presenter.replace();
    ask("/pictures/b.webp");
    m_presenter.skip();
    EXPECT_EQ(m_answers, (std::vector { OverwriteDecision::replace, OverwriteDecision::skip }));
    EXPECT_FALSE(m_presenter.isAsking());
}

TEST_F(OverwritePromptPresenterTest, TakesOneAnswerFromADoubleClick)
{
    ask("/pictures/a.webp");
    m_presenter.replace();
    m_presenter.replace();
    EXPECT_EQ(m_answers.size(), 1U);
}

TEST_F(OverwritePromptPresenterTest, SkipsAQuestionThatAnotherOneTakesThePlaceOf)
{
    ask("/pictures/a.webp");
    ask("/pictures/b.webp");
    EXPECT_EQ(m_answers, std::vector { OverwriteDecision::skip });
    EXPECT_EQ(m_presenter.message(), QStringLiteral("Replace b.webp?"));
}

TEST_F(OverwritePromptPresenterTest, PutsTheQuestionsOfSeveralConversionsOneByOne)
{
    OverwritePrompt prompt([this](const QUrl& url, OverwritePrompt::Answer answer) {
        m_presenter.ask(url, std::move(answer));
    });
    const auto conversion = [&](const char* path) {
        return std::async(std::launch::async, [&prompt, path] {
            const OverwriteDecision decision = prompt.ask(file(path));
            test::wakeMainThread();
            return decision;
        });
    };
    std::future<OverwriteDecision> first = conversion("/pictures/a.webp");
    ASSERT_TRUE(test::runUntil([this] { return m_presenter.isAsking(); }));
    std::future<OverwriteDecision> second = conversion("/pictures/b.webp");
    EXPECT_EQ(m_presenter.message(), QStringLiteral("Replace a.webp?"));
    m_presenter.replace();
    ASSERT_TRUE(test::runUntil([this] { return m_presenter.isAsking(); }));
    EXPECT_EQ(m_presenter.message(), QStringLiteral("Replace b.webp?"));
    m_presenter.skip();
    EXPECT_EQ(first.get(), OverwriteDecision::replace);
    EXPECT_EQ(second.get(), OverwriteDecision::skip);
}

TEST_F(OverwritePromptPresenterTest, SkipsWhatIsOpenWhenTheProgramEnds)
{
    OverwritePrompt prompt([this](const QUrl& url, OverwritePrompt::Answer answer) {
        m_presenter.ask(url, std::move(answer));
    });
    std::future<OverwriteDecision> conversion = std::async(
        std::launch::async, [&prompt] { return prompt.ask(file("/pictures/a.webp")); });
    ASSERT_TRUE(test::runUntil([this] { return m_presenter.isAsking(); }));
    prompt.close();
    EXPECT_EQ(conversion.get(), OverwriteDecision::skip);
    // the answer of the window that is still open comes too late, and to nobody's harm
    m_presenter.replace();
}

} // namespace
} // namespace vellumine
