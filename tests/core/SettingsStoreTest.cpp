#include "core/SettingsStore.h"
#include "core/PreferencesFile.h"
#include "core/PropertyList.h"
#include "platform/FilePath.h"
#include "support/QtPrinters.h"

#include <QMap>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace vellumine {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Bookmarks are "PATH" or "PATH!NUMBER"; which ones lead nowhere, are stale or cannot be made is
/// up to the test.
class FakeBookmarks final : public platform::FolderBookmarks {
public:
    std::optional<QByteArray> create(const QUrl& folder) override
    {
        const auto path = QByteArray::fromStdString(platform::toPath(folder).string());
        if (uncreatable.contains(path)) {
            return std::nullopt;
        }
        return path + "!" + QByteArray::number(++created);
    }

    std::optional<Resolution> resolve(const QByteArray& bookmark) override
    {
        resolved.append(bookmark);
        if (dead.contains(bookmark)) {
            return std::nullopt;
        }
        const QByteArray path = bookmark.split('!').constFirst();
        const std::filesystem::path place = moved.value(path, path).toStdString();
        return Resolution { platform::fileUrl(place), stale.contains(bookmark) };
    }

    QList<QByteArray> dead; ///< bookmarks
    QList<QByteArray> stale; ///< bookmarks
    QList<QByteArray> uncreatable; ///< paths
    QMap<QByteArray, QByteArray> moved; ///< path to the path where it is now
    QList<QByteArray> resolved; ///< every bookmark that was asked for
    int created = 0;
};

QUrl folder(const char* path)
{
    return platform::fileUrl(QString::fromUtf8(path));
}

class Store : public testing::Test {
protected:
    void remember(const QList<QByteArray>& bookmarks)
    {
        m_store.settings().setOriginalLocationFolderBookmarks(*encodePropertyList(bookmarks));
    }

    [[nodiscard]] QList<QByteArray> remembered() const
    {
        const auto list = decodePropertyList(m_store.settings().originalLocationFolderBookmarks());
        EXPECT_TRUE(list.has_value());
        return list.value_or(QList<QByteArray> {});
    }

    test::PreferencesFile m_file;
    FakeBookmarks m_bookmarks;
    SettingsStore m_store { m_file.open(), m_bookmarks };
};

TEST_F(Store, snapshotOfAnEmptyStoreIsTheDefault)
{
    const OptimizerSettings snapshot = m_store.snapshot();
    EXPECT_EQ(snapshot, OptimizerSettings());
    EXPECT_EQ(snapshot.resizeMode, ResizeMode::maxWidth);
    EXPECT_EQ(snapshot.maximumPixels, 2560);
    EXPECT_EQ(snapshot.outputFormat, OutputFormat::webp);
    EXPECT_EQ(snapshot.quality, 82.0);
    EXPECT_TRUE(snapshot.optimizeColorForSharing);
    EXPECT_TRUE(snapshot.removeColorManagement);
    EXPECT_TRUE(snapshot.removeMetadata);
    EXPECT_EQ(snapshot.destinationMode, DestinationMode::originalLocation);
    EXPECT_EQ(snapshot.destinationFolderURL, std::nullopt);
    EXPECT_EQ(snapshot.filenamePrefix, QString());
    EXPECT_EQ(snapshot.filenameSuffix, QString());
    EXPECT_FALSE(snapshot.moveOriginalToTrash);
    EXPECT_TRUE(snapshot.preserveModificationTime);
    EXPECT_FALSE(snapshot.warnBeforeOverwrite);
}

TEST_F(Store, snapshotHoldsEveryPreference)
{
    VellumineSettings& settings = m_store.settings();
    settings.setResizeMode(ResizeMode::longestEdge);
    settings.setMaximumPixels(1200);
    settings.setOutputFormat(OutputFormat::png);
    settings.setQuality(61.5);
    settings.setOptimizeColorForSharing(false);
    settings.setRemoveColorManagement(false);
    settings.setRemoveMetadata(false);
    settings.setDestinationMode(DestinationMode::selectedFolder);
    settings.setDestinationFolderBookmark("/out");
    settings.setFilenamePrefix(QStringLiteral("a-"));
    settings.setFilenameSuffix(QStringLiteral("-z"));
    settings.setMoveOriginalToTrash(true);
    settings.setPreserveModificationTime(false);
    settings.setWarnBeforeOverwrite(true);
    const OptimizerSettings expected {
        .resizeMode = ResizeMode::longestEdge,
        .maximumPixels = 1200,
        .outputFormat = OutputFormat::png,
        .quality = 61.5,
        .optimizeColorForSharing = false,
        .removeColorManagement = false,
        .removeMetadata = false,
        .destinationMode = DestinationMode::selectedFolder,
        .destinationFolderURL = folder("/out"),
        .filenamePrefix = QStringLiteral("a-"),
        .filenameSuffix = QStringLiteral("-z"),
        .moveOriginalToTrash = true,
        .preserveModificationTime = false,
        .warnBeforeOverwrite = true,
    };
    EXPECT_EQ(m_store.snapshot(), expected);
}

TEST_F(Store, snapshotDoesNotFollowLaterChanges)
{
    const OptimizerSettings snapshot = m_store.snapshot();
    m_store.settings().setQuality(10);
    EXPECT_EQ(snapshot.quality, 82.0);
}

TEST_F(Store, snapshotFillsTheFolderWhateverTheMode)
{
    m_store.settings().setDestinationFolderBookmark("/out");
    ASSERT_EQ(m_store.settings().destinationMode(), DestinationMode::originalLocation);
    EXPECT_EQ(m_store.snapshot().destinationFolderURL, folder("/out"));
}

TEST_F(Store, snapshotErasesAndRefreshesTheDestination)
{
    m_bookmarks.stale = { "/out" };
    m_store.settings().setDestinationFolderBookmark("/out");
    EXPECT_EQ(m_store.snapshot().destinationFolderURL, folder("/out"));
    EXPECT_EQ(m_store.settings().destinationFolderBookmark(), "/out!1");
    m_bookmarks.dead = { "/out!1" };
    EXPECT_EQ(m_store.snapshot().destinationFolderURL, std::nullopt);
    EXPECT_EQ(m_store.settings().destinationFolderBookmark(), QByteArray());
}

TEST_F(Store, noDestinationIsNotResolved)
{
    EXPECT_EQ(m_store.destinationFolderURL(), std::nullopt);
    EXPECT_THAT(m_bookmarks.resolved, IsEmpty());
}

TEST_F(Store, destinationThatResolvesIsLeftAsItIs)
{
    m_store.settings().setDestinationFolderBookmark("/out");
    QSignalSpy spy(&m_store.settings(), &VellumineSettings::changed);
    EXPECT_EQ(m_store.destinationFolderURL(), folder("/out"));
    EXPECT_EQ(m_store.settings().destinationFolderBookmark(), "/out");
    EXPECT_THAT(spy, IsEmpty());
}

TEST_F(Store, deadDestinationIsErasedByTheFirstLookup)
{
    m_store.settings().setDestinationFolderBookmark("/gone");
    m_bookmarks.dead = { "/gone" };
    EXPECT_EQ(m_store.destinationFolderURL(), std::nullopt);
    EXPECT_EQ(m_store.settings().destinationFolderBookmark(), QByteArray());
    EXPECT_EQ(m_store.destinationFolderURL(), std::nullopt);
    EXPECT_THAT(m_bookmarks.resolved, ElementsAre("/gone"));
}

TEST_F(Store, staleDestinationIsRefreshedFromWhereItIsNow)
{
    m_store.settings().setDestinationFolderBookmark("/old");
    m_bookmarks.moved = { { "/old", "/new" } };
    m_bookmarks.stale = { "/old" };
    EXPECT_EQ(m_store.destinationFolderURL(), folder("/new"));
    EXPECT_EQ(m_store.settings().destinationFolderBookmark(), "/new!1");
}

TEST_F(Store, staleDestinationThatCannotBeRefreshedIsKept)
{
    m_store.settings().setDestinationFolderBookmark("/out");
    m_bookmarks.stale = { "/out" };
    m_bookmarks.uncreatable = { "/out" };
    EXPECT_EQ(m_store.destinationFolderURL(), folder("/out"));
    EXPECT_EQ(m_store.settings().destinationFolderBookmark(), "/out");
}

TEST_F(Store, lookupFindsTheFolderByItsStandardizedPath)
{
    remember({ "/a", "/photos/./b/../c" });
    EXPECT_EQ(
        m_store.rememberedOriginalLocationFolder(folder("/photos/c")), folder("/photos/./b/../c"));
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/x/../a")), folder("/a"));
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/A")), std::nullopt);
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/photos")), std::nullopt);
}

TEST_F(Store, lookupVisitsEveryBookmarkAndTheLastMatchWins)
{
    remember({ "/a!1", "/b!2", "/x!3", "/c!4" });
    m_bookmarks.moved = { { "/x", "/b/." } };
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/b"))->toLocalFile(),
        QStringLiteral("/b/."));
    EXPECT_THAT(m_bookmarks.resolved, ElementsAre("/a!1", "/b!2", "/x!3", "/c!4"));
}

TEST_F(Store, lookupDropsWhatLeadsNowhere)
{
    remember({ "/a", "/gone", "/b" });
    m_bookmarks.dead = { "/gone" };
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/b")), folder("/b"));
    EXPECT_THAT(remembered(), ElementsAre("/a", "/b"));
}

TEST_F(Store, lookupRefreshesWhatIsStale)
{
    remember({ "/a", "/old", "/b" });
    m_bookmarks.moved = { { "/old", "/new" } };
    m_bookmarks.stale = { "/old" };
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/new")), folder("/new"));
    EXPECT_THAT(remembered(), ElementsAre("/a", "/new!1", "/b"));
}

TEST_F(Store, lookupDropsWhatIsStaleAndCannotBeRefreshed)
{
    remember({ "/a", "/b" });
    m_bookmarks.stale = { "/a" };
    m_bookmarks.uncreatable = { "/a" };
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/a")), std::nullopt);
    EXPECT_THAT(remembered(), ElementsAre("/b"));
}

TEST_F(Store, lookupWritesTheListBackEvenUnchanged)
{
    remember({ "/a" });
    QSignalSpy spy(&m_store.settings(), &VellumineSettings::originalLocationFolderBookmarksChanged);
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/a")), folder("/a"));
    EXPECT_THAT(spy, SizeIs(1));
    EXPECT_THAT(remembered(), ElementsAre("/a"));
}

TEST_F(Store, lookupInAnEmptyStoreLeavesAnEmptyList)
{
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/a")), std::nullopt);
    EXPECT_THAT(remembered(), IsEmpty());
    EXPECT_FALSE(m_store.settings().originalLocationFolderBookmarks().isEmpty());
}

TEST_F(Store, grantIsAppendedAndFoundAgain)
{
    m_store.rememberOriginalLocationFolder(folder("/a"));
    m_store.rememberOriginalLocationFolder(folder("/b"));
    EXPECT_THAT(remembered(), ElementsAre("/a!1", "/b!2"));
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/a")), folder("/a"));
}

TEST_F(Store, grantingTwiceLeavesOneBookmarkAtTheEnd)
{
    m_store.rememberOriginalLocationFolder(folder("/a"));
    m_store.rememberOriginalLocationFolder(folder("/b"));
    m_store.rememberOriginalLocationFolder(folder("/x/../a"));
    ASSERT_THAT(remembered(), SizeIs(2));
    EXPECT_EQ(remembered().front(), "/b!2");
    EXPECT_THAT(
        m_store.rememberedOriginalLocationFolder(folder("/a")), ::testing::Ne(std::nullopt));
}

TEST_F(Store, grantRemovesEveryEarlierBookmarkOfTheFolder)
{
    remember({ "/a", "/b", "/x" });
    m_bookmarks.moved = { { "/x", "/a" } };
    m_store.rememberOriginalLocationFolder(folder("/a"));
    EXPECT_THAT(remembered(), ElementsAre("/b", "/a!1"));
}

TEST_F(Store, grantKeepsWhatLeadsNowhereAndWhatIsStale)
{
    remember({ "/gone", "/old" });
    m_bookmarks.dead = { "/gone" };
    m_bookmarks.stale = { "/old" };
    m_store.rememberOriginalLocationFolder(folder("/a"));
    EXPECT_THAT(remembered(), ElementsAre("/gone", "/old", "/a!1"));
}

TEST_F(Store, folderThatCannotBeRememberedChangesNothing)
{
    remember({ "/a", "/gone" });
    m_bookmarks.dead = { "/gone" };
    m_bookmarks.uncreatable = { "/a" };
    QSignalSpy spy(&m_store.settings(), &VellumineSettings::changed);
    m_store.rememberOriginalLocationFolder(folder("/a"));
    EXPECT_THAT(remembered(), ElementsAre("/a", "/gone"));
    EXPECT_THAT(spy, IsEmpty());
}

TEST_F(Store, listThatIsNoPropertyListIsReplacedByTheNextGrant)
{
    m_store.settings().setOriginalLocationFolderBookmarks("no property list");
    m_store.rememberOriginalLocationFolder(folder("/a"));
    EXPECT_THAT(remembered(), ElementsAre("/a!1"));
}

TEST_F(Store, listThatIsNoPropertyListIsEmptyForALookup)
{
    m_store.settings().setOriginalLocationFolderBookmarks("no property list");
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(folder("/a")), std::nullopt);
    EXPECT_THAT(m_bookmarks.resolved, IsEmpty());
}

TEST_F(Store, unknownStoredFormatReadsAsWebP)
{
    m_file.open()->setValue(QStringLiteral("outputFormat"), QStringLiteral("gif"));
    EXPECT_EQ(m_store.snapshot().outputFormat, OutputFormat::webp);
}

TEST(StoreOnThisDesktop, remembersFoldersAcrossRuns)
{
    const test::TemporaryFolder pictures;
    const QUrl url = platform::fileUrl(QFile::decodeName((pictures / "été").c_str()));
    std::filesystem::create_directory(platform::toPath(url));
    test::PreferencesFile file;
    platform::DesktopFolderBookmarks bookmarks;
    SettingsStore(file.open(), bookmarks).rememberOriginalLocationFolder(url);

    SettingsStore next(file.reopen(), bookmarks);
    EXPECT_EQ(next.rememberedOriginalLocationFolder(url), url);
    std::filesystem::remove(platform::toPath(url));
    EXPECT_EQ(next.rememberedOriginalLocationFolder(url), std::nullopt);
}

TEST(StoreOnThisDesktop, forgetsADeletedDestination)
{
    test::PreferencesFile file;
    platform::DesktopFolderBookmarks bookmarks;
    SettingsStore store(file.open(), bookmarks);
    {
        const test::TemporaryFolder output;
        const QUrl url = platform::fileUrl(QFile::decodeName(output.path().c_str()));
        store.settings().setDestinationFolderBookmark(*bookmarks.create(url));
        EXPECT_EQ(store.destinationFolderURL(), url);
    }
    EXPECT_EQ(store.destinationFolderURL(), std::nullopt);
    EXPECT_EQ(store.settings().destinationFolderBookmark(), QByteArray());
}

TEST_F(Store, tellsFoldersWithNamesThatAreNoUtf8Apart)
{
    const QUrl one = platform::fileUrl(std::filesystem::path("/photos/\xFE"));
    const QUrl other = platform::fileUrl(std::filesystem::path("/photos/\xFF"));
    m_store.rememberOriginalLocationFolder(one);
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(other), std::nullopt);
    m_store.rememberOriginalLocationFolder(other);
    EXPECT_THAT(remembered(), SizeIs(2));
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(one), one);
    EXPECT_EQ(m_store.rememberedOriginalLocationFolder(other), other);
}

} // namespace
} // namespace vellumine
