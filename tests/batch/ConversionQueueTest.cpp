#include "batch/ConversionQueue.h"

#include "platform/FilePath.h"
#include "support/NamedRows.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellumine {
namespace {

QList<QUrl> urlsOf(const QStringList& paths)
{
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls.append(platform::fileUrl(path));
    }
    return urls;
}

std::vector<qsizetype> takeAll(ConversionQueue& queue)
{
    std::vector<qsizetype> taken;
    while (const auto position = queue.takeNext()) {
        taken.push_back(*position);
    }
    return taken;
}

using Positions = std::vector<qsizetype>;

TEST(ConversionQueue, givesFilesInInputOrder)
{
    ConversionQueue queue(urlsOf({ QStringLiteral("/p/b.png"), QStringLiteral("/p/a.png"),
                              QStringLiteral("/p/c.png") }),
        {});
    EXPECT_EQ(takeAll(queue), Positions({ 0, 1, 2 }));
}

TEST(ConversionQueue, isEmptyWithoutFiles)
{
    ConversionQueue queue;
    EXPECT_FALSE(queue.takeNext());
}

struct PairRow {
    const char* name;
    const char* first;
    const char* second;
    bool waits;
    DestinationMode destination = DestinationMode::OriginalLocation;
    const char* suffix = "";
};

class Pairs : public testing::TestWithParam<PairRow> { };

TEST_P(Pairs, waitExactlyWhenTheirOutputsMayBeTheSame)
{
    OptimizerSettings settings;
    settings.destinationMode = GetParam().destination;
    settings.destinationFolderURL = platform::fileUrl(QStringLiteral("/out"));
    settings.filenameSuffix = QString::fromUtf8(GetParam().suffix);
    ConversionQueue queue(
        urlsOf({ QString::fromUtf8(GetParam().first), QString::fromUtf8(GetParam().second) }),
        settings);
    EXPECT_EQ(takeAll(queue), GetParam().waits ? Positions({ 0 }) : Positions({ 0, 1 }));
    queue.release(0);
    EXPECT_EQ(takeAll(queue), GetParam().waits ? Positions({ 1 }) : Positions());
}

INSTANTIATE_TEST_SUITE_P(ConversionQueue, Pairs,
    testing::Values(PairRow { "sameNameOtherExtension", "/p/a.jpg", "/p/a.png", true },
        PairRow { "otherName", "/p/a.jpg", "/p/b.jpg", false },
        PairRow { "otherFolder", "/p/a.jpg", "/q/a.jpg", false },
        PairRow { "otherFolderIntoOneDestination", "/p/a.jpg", "/q/a.png", true,
            DestinationMode::SelectedFolder },
        PairRow { "otherNameIntoOneDestination", "/p/a.jpg", "/q/b.png", false,
            DestinationMode::SelectedFolder },
        PairRow { "sameFolderWrittenOtherwise", "/p/a.jpg", "/p/../p/a.png", true },
        PairRow { "otherCase", "/p/a.jpg", "/p/A.PNG", true },
        PairRow { "otherUnicodeForm", "/p/\xC3\xA9.jpg", "/p/e\xCC\x81.png", true },
        PairRow { "theMarkedNameOfTheFirst", "/p/a.webp", "/p/a-optimized.jpg", true },
        PairRow { "theMarkedNameOfTheSecond", "/p/a-optimized.jpg", "/p/a.webp", true },
        PairRow { "severalMarkers", "/p/a.webp", "/p/a-optimized-optimized.jpg", true },
        PairRow { "theMarkerAsSuffix", "/p/a.webp", "/p/a-optimized.jpg", true,
            DestinationMode::OriginalLocation, "-optimized" },
        PairRow { "aSuffixOfItsOwn", "/p/a.jpg", "/p/a_small.jpg", false,
            DestinationMode::OriginalLocation, "_small" },
        PairRow { "fullStopsInTheName", "/p/a.b.jpg", "/p/a.c.jpg", false },
        PairRow { "noExtension", "/p/a", "/p/a.jpg", true }),
    test::RowName());

TEST(ConversionQueue, takesFilesWithOneOutputOneAfterTheOtherInInputOrder)
{
    ConversionQueue queue(
        urlsOf({ QStringLiteral("/p/a.jpg"), QStringLiteral("/p/a.png"), QStringLiteral("/p/b.png"),
            QStringLiteral("/p/a.gif"), QStringLiteral("/p/c.png") }),
        {});
    EXPECT_EQ(takeAll(queue), Positions({ 0, 2, 4 }));
    queue.release(2);
    EXPECT_EQ(takeAll(queue), Positions());
    queue.release(0);
    EXPECT_EQ(takeAll(queue), Positions({ 1 }));
    queue.release(1);
    EXPECT_EQ(takeAll(queue), Positions({ 3 }));
    queue.release(3);
    EXPECT_EQ(takeAll(queue), Positions());
}

TEST(ConversionQueue, aFileThatWaitedGoesBeforeLaterOnes)
{
    ConversionQueue queue(urlsOf({ QStringLiteral("/p/a.jpg"), QStringLiteral("/p/a.png"),
                              QStringLiteral("/p/b.png"), QStringLiteral("/p/c.png") }),
        {});
    EXPECT_EQ(queue.takeNext(), 0);
    EXPECT_EQ(queue.takeNext(), 2);
    queue.release(0);
    EXPECT_EQ(queue.takeNext(), 1);
    EXPECT_EQ(queue.takeNext(), 3);
}

TEST(ConversionQueue, knowsAFolderBehindALink)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directory(folder / "real");
    std::filesystem::create_directory_symlink(folder / "real", folder / "link");
    ConversionQueue queue(
        { platform::fileUrl(folder / "real/a.jpg"), platform::fileUrl(folder / "link/a.png") }, {});
    EXPECT_EQ(takeAll(queue), Positions({ 0 }));
}

} // namespace
} // namespace vellumine
