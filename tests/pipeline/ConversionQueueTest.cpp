#include "pipeline/ConversionQueue.h"
#include "pipeline/Workplace.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

using test::urlOf;

std::vector<QUrl> urls(std::initializer_list<const char*> paths)
{
    std::vector<QUrl> result;
    for (const char* path : paths) {
        result.push_back(urlOf(path));
    }
    return result;
}

TEST(ConversionQueue, handsOutInOrder)
{
    ConversionQueue queue(urls({ "/n/c.png", "/n/a.png", "/n/b.png" }), {});
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), 2U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
}

TEST(ConversionQueue, ofNothingIsEmpty)
{
    ConversionQueue queue({}, {});
    EXPECT_EQ(queue.size(), 0U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
}

TEST(ConversionQueue, sameOutputWaitsForTheFirstAndLetsOthersPass)
{
    ConversionQueue queue(urls({ "/n/a.jpg", "/n/a.png", "/n/b.png", "/n/a.gif" }), {});
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), 2U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(2);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(0);
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(1);
    EXPECT_EQ(queue.takeNext(), 3U);
}

TEST(ConversionQueue, whatAnOutputWouldReplaceIsConvertedBeforeIt)
{
    ConversionQueue queue(urls({ "/n/a.jpg", "/n/b.jpg", "/n/a.WEBP" }), {});
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), 2U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(2);
    EXPECT_EQ(queue.takeNext(), 0U);
}

TEST(ConversionQueue, inTheOriginalFormatTheTypesOwnExtensionComesFirst)
{
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::original;
    ConversionQueue queue(urls({ "/n/a.jpg", "/n/a.jpeg" }), settings);
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(1);
    EXPECT_EQ(queue.takeNext(), 0U);
}

TEST(ConversionQueue, markedNamesAreTheSameOutput)
{
    // With PNG, a.png goes to a-optimized.png, and so does a-optimized.jpg.
    ConversionQueue queue(urls({ "/n/a.png", "/n/a-optimized.jpg" }), {});
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
}

TEST(ConversionQueue, spellingsThatADiskMayTakeForTheSameAreTheSameOutput)
{
    ConversionQueue queue(urls({ "/n/A\xcc\x88.png", "/n/\xc3\xa4.jpg" }), {});
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
}

TEST(ConversionQueue, foldersKeepOutputsApartUnlessOneIsSelected)
{
    OptimizerSettings settings;
    ConversionQueue apart(urls({ "/n/a.png", "/m/a.png" }), settings);
    EXPECT_EQ(apart.takeNext(), 0U);
    EXPECT_EQ(apart.takeNext(), 1U);

    settings.destinationMode = DestinationMode::selectedFolder;
    settings.destinationFolderURL = urlOf("/chosen");
    ConversionQueue together(urls({ "/n/a.png", "/m/a.png" }), settings);
    EXPECT_EQ(together.takeNext(), 0U);
    EXPECT_EQ(together.takeNext(), std::nullopt);
}

TEST(ConversionQueue, aFolderByAnotherNameIsTheSameFolder)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directory(folder / "real");
    std::filesystem::create_directory_symlink("real", folder / "link");
    ConversionQueue queue({ urlOf(folder / "real/a.png"), urlOf(folder / "link/a.jpg") }, {});
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
}

} // namespace
} // namespace vellumine
