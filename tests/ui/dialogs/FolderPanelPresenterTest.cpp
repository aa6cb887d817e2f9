#include "ui/dialogs/FolderPanelPresenter.h"

#include "platform/FilePath.h"
#include "support/QtPrinters.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace vellumine {
namespace {

using Answer = std::optional<QUrl>;

QUrl folder(const char* path)
{
    return platform::fileUrl(QString::fromUtf8(path));
}

FolderPanel panel(const char* message)
{
    FolderPanel panel;
    panel.message = QString::fromUtf8(message);
    return panel;
}

class FolderPanelPresenterTest : public testing::Test {
protected:
    FolderPanelAnswer answer()
    {
        return [this](const Answer& chosen) { m_answers.push_back(chosen); };
    }

    std::vector<Answer> m_answers; // the presenter's end answers what is open
    FolderPanelPresenter m_presenter;
};

TEST_F(FolderPanelPresenterTest, ShowsThePanelForAGrant)
{
    m_presenter.show(folderPanel({ .message
                         = QStringLiteral("Allow Vellumine to save converted images in pictures."),
                         .prompt = QStringLiteral("Allow Save Access"),
                         .folder = folder("/pictures") }),
        answer());
    EXPECT_TRUE(m_presenter.isShown());
    EXPECT_EQ(m_presenter.message(),
        QStringLiteral("Allow Vellumine to save converted images in pictures."));
    EXPECT_EQ(m_presenter.prompt(), QStringLiteral("Allow Save Access"));
    EXPECT_EQ(m_presenter.folder(), folder("/pictures"));
    EXPECT_FALSE(m_presenter.allowsNewFolders());
    EXPECT_NE(m_presenter.dialogOptions(), 0);
}

TEST_F(FolderPanelPresenterTest, AllowsNewFoldersForADestination)
{
    m_presenter.show({ .message = QStringLiteral("Choose"), .prompt = {}, .folder = {} }, answer());
    EXPECT_TRUE(m_presenter.allowsNewFolders());
    EXPECT_EQ(m_presenter.dialogOptions(), 0);
    EXPECT_TRUE(m_presenter.folder().isEmpty());
}

TEST_F(FolderPanelPresenterTest, AnswersWithTheChosenFolder)
{
    m_presenter.show({}, answer());
    m_presenter.choose(folder("/elsewhere"));
    EXPECT_EQ(m_answers, std::vector<Answer> { folder("/elsewhere") });
    EXPECT_FALSE(m_presenter.isShown());
}

TEST_F(FolderPanelPresenterTest, AnswersNoneWhenCancelledOrWithoutAFolder)
{
    m_presenter.show({}, answer());
    m_presenter.cancel();
    m_presenter.show({}, answer());
    m_presenter.choose(QUrl());
    EXPECT_EQ(m_answers, (std::vector<Answer> { std::nullopt, std::nullopt }));
}

TEST_F(FolderPanelPresenterTest, ShowsOneAfterTheOther)
{
    const QSignalSpy asked(&m_presenter, &FolderPanelPresenter::asked);
    m_presenter.show(panel("first"), answer());
    m_presenter.show(panel("second"), answer());
    EXPECT_EQ(m_presenter.message(), QStringLiteral("first"));
    EXPECT_EQ(asked.count(), 1);
    m_presenter.choose(folder("/a"));
    EXPECT_EQ(m_presenter.message(), QStringLiteral("second"));
    EXPECT_EQ(asked.count(), 2);
    m_presenter.choose(folder("/b"));
    EXPECT_EQ(m_answers, (std::vector<Answer> { folder("/a"), folder("/b") }));
}

TEST_F(FolderPanelPresenterTest, ShowsAPanelThatAnAnswerAsksFor)
{
    m_presenter.show({}, [this](const Answer&) { m_presenter.show(panel("next"), answer()); });
    m_presenter.cancel();
    EXPECT_TRUE(m_presenter.isShown());
    EXPECT_EQ(m_presenter.message(), QStringLiteral("next"));
}

TEST_F(FolderPanelPresenterTest, CancelsWhatIsOpenWhenItEnds)
{
    {
        FolderPanelPresenter presenter;
        presenter.show({}, answer());
        presenter.show({}, answer());
    }
    EXPECT_EQ(m_answers, (std::vector<Answer> { std::nullopt, std::nullopt }));
}

TEST_F(FolderPanelPresenterTest, IgnoresAnAnswerToNothing)
{
    m_presenter.choose(folder("/a"));
    m_presenter.cancel();
    EXPECT_TRUE(m_answers.empty());
}

} // namespace
} // namespace vellumine
