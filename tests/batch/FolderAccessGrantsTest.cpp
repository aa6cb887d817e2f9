#include "batch/FolderAccessGrants.h"

#include "RecordingScope.h"
#include "platform/FilePath.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <filesystem>

namespace vellumine {
namespace {

QUrl url(const QString& path)
{
    return platform::fileUrl(path);
}

QList<QUrl> urls(const QStringList& paths)
{
    QList<QUrl> list;
    for (const QString& path : paths) {
        list.append(url(path));
    }
    return list;
}

/// Folders that do not exist and so cannot be written to: what the scope refuses is refused.
class FolderAccessGrantsTest : public testing::Test {
protected:
    FolderAccessGrants& grants()
    {
        if (!m_grants) {
            m_grants = std::make_unique<FolderAccessGrants>(FolderAccessGrants::Dependencies {
                .securityScope = m_scope,
                .rememberedOriginalLocationFolder
                = [this](const QUrl& folder) -> std::optional<QUrl> {
                    m_lookedUp.append(folder);
                    return m_remembered.contains(folder) ? std::optional(m_remembered.value(folder))
                                                         : std::nullopt;
                },
                .rememberOriginalLocationFolder
                = [this](const QUrl& folder) { m_newlyRemembered.append(folder); },
                .showSaveAccessPanel =
                    [this](const SaveAccessPanel& panel,
                        const FolderAccessGrants::PanelAnswer& answer) {
                        m_panels.push_back(panel);
                        answer(m_answers.isEmpty() ? std::nullopt : m_answers.takeFirst());
                    },
            });
        }
        return *m_grants;
    }

    /// The answer for the files, which has to come at once.
    std::optional<QList<QUrl>> request(const QList<QUrl>& files)
    {
        std::optional<QList<QUrl>> answer;
        int calls = 0;
        grants().requestOriginalLocationAccessIfNeeded(
            files, m_settings, [&](const std::optional<QList<QUrl>>& list) {
                answer = list;
                ++calls;
            });
        EXPECT_EQ(calls, 1);
        EXPECT_TRUE(m_scope->isBalanced());
        return answer;
    }

    QList<QUrl> panelFolders() const
    {
        QList<QUrl> folders;
        for (const SaveAccessPanel& panel : m_panels) {
            folders.append(panel.folder);
        }
        return folders;
    }

    OptimizerSettings m_settings;
    std::shared_ptr<test::RecordingScope> m_scope = std::make_shared<test::RecordingScope>();
    QHash<QUrl, QUrl> m_remembered;
    QList<QUrl> m_lookedUp;
    QList<QUrl> m_newlyRemembered;
    std::vector<SaveAccessPanel> m_panels;
    QList<std::optional<QUrl>> m_answers;
    std::unique_ptr<FolderAccessGrants> m_grants;

    const QUrl m_folder = url(QStringLiteral("/nowhere/a"));
    const QUrl m_other = url(QStringLiteral("/nowhere/b"));
    const QUrl m_file = url(QStringLiteral("/nowhere/a/x.png"));
};

TEST_F(FolderAccessGrantsTest, parentFoldersAreListedOnceInOrderOfFirstAppearance)
{
    EXPECT_EQ(FolderAccessGrants::uniqueParentFolders(urls({ QStringLiteral("/b/1.png"),
                  QStringLiteral("/a/2.png"), QStringLiteral("/b/3.png"),
                  QStringLiteral("/a/4.png"), QStringLiteral("/a/deep/5.png") })),
        urls({ QStringLiteral("/b"), QStringLiteral("/a"), QStringLiteral("/a/deep") }));
}

TEST_F(FolderAccessGrantsTest, foldersWrittenWithDotsAreOne)
{
    EXPECT_EQ(FolderAccessGrants::uniqueParentFolders(
                  urls({ QStringLiteral("/a/./b/1.png"), QStringLiteral("/a/b/2.png") })),
        urls({ QStringLiteral("/a/b") }));
}

TEST_F(FolderAccessGrantsTest, foldersWhoseNamesAreNotUtf8AreKeptApart)
{
    const auto url
        = [](const char* path) { return platform::fileUrl(std::filesystem::path(path)); };
    EXPECT_EQ(FolderAccessGrants::uniqueParentFolders({ url("/\xFE/1.png"), url("/\xFF/2.png") }),
        QList<QUrl>({ url("/\xFE"), url("/\xFF") }));
}

TEST_F(FolderAccessGrantsTest, aFolderThatIsNamedWithASlashIsNoFileOfItself)
{
    EXPECT_EQ(FolderAccessGrants::uniqueParentFolders(
                  urls({ QStringLiteral("/a/b/1.png"), QStringLiteral("/a/b/") })),
        urls({ QStringLiteral("/a/b"), QStringLiteral("/a") }));
    EXPECT_EQ(FolderAccessGrants::uniqueParentFolders(
                  urls({ QStringLiteral("/a/b.png/"), QStringLiteral("/a/b.png/c.png") })),
        urls({ QStringLiteral("/a"), QStringLiteral("/a/b.png") }));
}

TEST_F(FolderAccessGrantsTest, aFileInTheRootFolderHasAParent)
{
    EXPECT_EQ(FolderAccessGrants::uniqueParentFolders(urls({ QStringLiteral("/x.png") })),
        urls({ QStringLiteral("/") }));
}

TEST_F(FolderAccessGrantsTest, aSelectedDestinationNeedsNothing)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    m_scope->refuseAll();
    EXPECT_EQ(request({ m_file }), QList<QUrl>());
    EXPECT_TRUE(m_panels.empty());
    EXPECT_TRUE(m_lookedUp.isEmpty());
}

TEST_F(FolderAccessGrantsTest, asksFolderByFolderInOrderOfFirstAppearance)
{
    m_scope->refuseAll();
    m_answers = { m_other, m_folder };
    QStringList files;
    for (int i = 0; i < 10; ++i) {
        files.append(
            QStringLiteral("/nowhere/%1/%2.png").arg(QLatin1Char(i % 3 == 0 ? 'b' : 'a')).arg(i));
    }
    EXPECT_EQ(request(urls(files)), QList<QUrl>({ m_other, m_folder }));
    EXPECT_EQ(panelFolders(), QList<QUrl>({ m_other, m_folder }));
    EXPECT_EQ(m_newlyRemembered, QList<QUrl>({ m_other, m_folder }));
}

TEST_F(FolderAccessGrantsTest, theFirstRefusalEndsTheAsking)
{
    m_scope->refuseAll();
    m_answers = { std::nullopt, m_other };
    EXPECT_FALSE(
        request(urls({ QStringLiteral("/nowhere/a/1.png"), QStringLiteral("/nowhere/b/2.png") })));
    EXPECT_EQ(panelFolders(), QList<QUrl> { m_folder });
    EXPECT_TRUE(m_newlyRemembered.isEmpty());
}

TEST_F(FolderAccessGrantsTest, aStopEndsTheAskingAndKeepsWhatWasGranted)
{
    m_scope->refuseAll();
    std::stop_source stop;
    int panels = 0;
    FolderAccessGrants grants({
        .securityScope = m_scope,
        .rememberOriginalLocationFolder
        = [this](const QUrl& folder) { m_newlyRemembered.append(folder); },
        .showSaveAccessPanel =
            [&](const SaveAccessPanel& panel, const FolderAccessGrants::PanelAnswer& answer) {
                ++panels;
                stop.request_stop();
                answer(panel.folder);
            },
    });
    QList<std::optional<QList<QUrl>>> heard;
    grants.requestOriginalLocationAccessIfNeeded(
        urls({ QStringLiteral("/nowhere/a/1.png"), QStringLiteral("/nowhere/b/2.png") }),
        m_settings, [&](const std::optional<QList<QUrl>>& list) { heard.append(list); },
        stop.get_token());
    EXPECT_EQ(panels, 1);
    EXPECT_EQ(heard, QList<std::optional<QList<QUrl>>> { std::nullopt });
    EXPECT_EQ(m_newlyRemembered, QList<QUrl> { m_folder });
}

TEST_F(FolderAccessGrantsTest, aGrantSinceLaunchComesBeforeARememberedOne)
{
    const QUrl granted = url(QStringLiteral("/grant"));
    m_scope->refuse(m_folder);
    m_answers = { granted };
    EXPECT_EQ(request({ m_file }), QList<QUrl> { granted });
    m_remembered.insert(m_folder, m_other);
    m_lookedUp.clear();
    EXPECT_EQ(request({ m_file }), QList<QUrl> { granted });
    EXPECT_TRUE(m_lookedUp.isEmpty());
    EXPECT_EQ(m_panels.size(), 1U);
}

TEST_F(FolderAccessGrantsTest, aGrantSinceLaunchThatFailsIsForgotten)
{
    const QUrl granted = url(QStringLiteral("/grant"));
    m_scope->refuse(m_folder);
    m_answers = { granted, m_other };
    EXPECT_EQ(request({ m_file }), QList<QUrl> { granted });
    m_scope->refuse(granted);
    EXPECT_EQ(request({ m_file }), QList<QUrl> { m_other });
    EXPECT_EQ(m_panels.size(), 2U);
    EXPECT_EQ(request({ m_file }), QList<QUrl> { m_other });
    EXPECT_EQ(m_panels.size(), 2U);
}

TEST_F(FolderAccessGrantsTest, aRememberedGrantIsUsedWithoutAPanel)
{
    m_remembered.insert(m_folder, m_folder);
    EXPECT_EQ(request({ m_file }), QList<QUrl> { m_folder });
    EXPECT_EQ(m_lookedUp, QList<QUrl> { m_folder });
    EXPECT_TRUE(m_panels.empty());
    EXPECT_TRUE(m_newlyRemembered.isEmpty());
    // From now on it is known without a look.
    EXPECT_EQ(request({ m_file }), QList<QUrl> { m_folder });
    EXPECT_EQ(m_lookedUp.size(), 1);
}

TEST_F(FolderAccessGrantsTest, aRememberedGrantThatFailsIsAskedForAgain)
{
    m_remembered.insert(m_folder, m_folder);
    m_scope->refuseAll();
    m_answers = { m_folder };
    EXPECT_EQ(request({ m_file }), QList<QUrl> { m_folder });
    EXPECT_EQ(m_panels.size(), 1U);
}

TEST_F(FolderAccessGrantsTest, aGrantThatCannotBeStartedCountsWhenItsFolderIsWritable)
{
    const test::TemporaryFolder writable;
    const QUrl grant = platform::fileUrl(writable.path());
    m_remembered.insert(m_folder, grant);
    m_scope->refuseAll();
    EXPECT_EQ(request({ m_file }), QList<QUrl> { grant });
    EXPECT_TRUE(m_panels.empty());
}

TEST_F(FolderAccessGrantsTest, aFolderThatIsWritableWithoutAGrantIsNotAskedFor)
{
    const test::TemporaryFolder writable;
    m_scope->refuseAll();
    EXPECT_EQ(request({ platform::fileUrl(writable / "x.png") }),
        QList<QUrl> { platform::fileUrl(writable.path()) });
    EXPECT_TRUE(m_panels.empty());
    EXPECT_TRUE(m_newlyRemembered.isEmpty());
}

TEST_F(FolderAccessGrantsTest, anotherFolderThanTheProposedOneIsTrustedForTheProposedOne)
{
    m_scope->refuse(m_folder);
    m_answers = { m_other };
    EXPECT_EQ(request({ m_file }), QList<QUrl> { m_other });
    EXPECT_EQ(m_newlyRemembered, QList<QUrl> { m_other });
    EXPECT_EQ(request({ m_file }), QList<QUrl> { m_other });
    EXPECT_EQ(m_panels.size(), 1U);
}

TEST_F(FolderAccessGrantsTest, grantsSinceLaunchStayAfterARefusal)
{
    m_scope->refuse(m_folder);
    m_scope->refuse(m_other);
    const QUrl granted = url(QStringLiteral("/grant"));
    m_answers = { granted, std::nullopt };
    EXPECT_FALSE(
        request(urls({ QStringLiteral("/nowhere/a/1.png"), QStringLiteral("/nowhere/b/2.png") })));
    EXPECT_EQ(request({ m_file }), QList<QUrl> { granted });
    EXPECT_EQ(m_panels.size(), 2U);
}

TEST_F(FolderAccessGrantsTest, thePanelNamesTheFolder)
{
    grants().requestSaveAccess(url(QStringLiteral("/home/me/Holiday photos")), {});
    ASSERT_EQ(m_panels.size(), 1U);
    EXPECT_EQ(m_panels[0].message,
        QStringLiteral("Allow Vellumine to save converted images in Holiday photos."));
    EXPECT_EQ(m_panels[0].prompt, QStringLiteral("Allow Save Access"));
    EXPECT_EQ(m_panels[0].folder, url(QStringLiteral("/home/me/Holiday photos")));
}

TEST_F(FolderAccessGrantsTest, aFolderWithoutALastComponentIsNamedByItsWholePath)
{
    grants().requestSaveAccess(url(QStringLiteral("/")), {});
    ASSERT_EQ(m_panels.size(), 1U);
    EXPECT_EQ(
        m_panels[0].message, QStringLiteral("Allow Vellumine to save converted images in /."));
}

TEST_F(FolderAccessGrantsTest, theFirstAnswerCounts)
{
    FolderAccessGrants::PanelAnswer answer;
    FolderAccessGrants grants({
        .securityScope = m_scope,
        .showSaveAccessPanel
        = [&](const SaveAccessPanel&, FolderAccessGrants::PanelAnswer a) { answer = std::move(a); },
    });
    QList<std::optional<QUrl>> heard;
    grants.requestSaveAccess(m_folder, [&](const std::optional<QUrl>& url) { heard.append(url); });
    answer(m_other);
    answer(m_folder);
    answer = nullptr;
    EXPECT_EQ(heard, QList<std::optional<QUrl>> { m_other });
}

} // namespace
} // namespace vellumine
