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

TEST(ConversionQueue, whatStandsWhereAnOutputGoesByItsSuffixIsConvertedBeforeIt)
{
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::png;
    settings.filenameSuffix = QStringLiteral("_s");
    ConversionQueue queue(
        urls({ "/n/a.png", "/n/a_s.png", "/n/a_s_s.PNG", "/m/a_s.png" }), settings);
    EXPECT_EQ(queue.takeNext(), 2U);
    EXPECT_EQ(queue.takeNext(), 3U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(2);
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(1);
    EXPECT_EQ(queue.takeNext(), 0U);
}

TEST(ConversionQueue, ofAnotherTypeThanTheOutputsNothingIsReplaced)
{
    OptimizerSettings settings;
    settings.filenamePrefix = QStringLiteral("z-");
    ConversionQueue queue(urls({ "/n/a.png", "/n/z-a.png" }), settings);
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), 1U);
}

TEST(ConversionQueue, whatStandsWhereAMarkedOutputGoesIsConvertedBeforeIt)
{
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::png;
    ConversionQueue queue(
        urls({ "/n/a.png", "/n/a-optimized.png", "/n/a-optimized-optimized.png" }), settings);
    for (const std::size_t index : { 2U, 1U, 0U }) {
        EXPECT_EQ(queue.takeNext(), index);
        EXPECT_EQ(queue.takeNext(), std::nullopt);
        queue.finished(index);
    }
}

TEST(ConversionQueue, whatStandsWhereItselfMayGoWaitsForNothing)
{
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::png;
    ConversionQueue queue(urls({ "/n/a.png" }), settings);
    EXPECT_EQ(queue.takeNext(), 0U);
}

TEST(ConversionQueue, ofACircleTheFirstComesFirst)
{
    // Misnamed files, of which each is of the other's type.
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::original;
    ConversionQueue queue(urls({ "/n/a.png", "/n/a.jpeg", "/n/a.gif" }), settings);
    for (const std::size_t index : { 0U, 1U, 2U }) {
        EXPECT_EQ(queue.takeNext(), index);
        EXPECT_EQ(queue.takeNext(), std::nullopt);
        queue.finished(index);
    }
}

TEST(ConversionQueue, whatALinkLeadsToIsReadBeforeItIsReplaced)
{
    const test::TemporaryFolder folder;
    test::writeFile(folder / "a_s.webp", "x");
    std::filesystem::create_directory(folder / "links");
    std::filesystem::create_symlink("../a_s.webp", folder / "links/b.png");
    OptimizerSettings settings;
    settings.filenameSuffix = QStringLiteral("_s");
    ConversionQueue queue({ urlOf(folder / "a.png"), urlOf(folder / "links/b.png") }, settings);
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(1);
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

TEST(ConversionQueue, aFolderWhoseOtherNameIsNoTextIsTheSameFolder)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directory(folder / "real");
    std::filesystem::create_directory_symlink("real", folder / "l\xff");
    ConversionQueue queue({ urlOf(folder / "l\xff/a.png"), urlOf(folder / "real/a.jpg") }, {});
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
}

TEST(ConversionQueue, aPrefixMayLeadToAnotherFolder)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directories(folder / "one");
    std::filesystem::create_directories(folder / "two");
    OptimizerSettings settings;
    settings.filenamePrefix = QStringLiteral("../");
    ConversionQueue queue(
        { urlOf(folder / "one/a.png"), urlOf(folder / "two/a.png"), urlOf(folder / "a.webp") },
        settings);
    EXPECT_EQ(queue.takeNext(), 2U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(2);
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(0);
    EXPECT_EQ(queue.takeNext(), 1U);
}

} // namespace
} // namespace vellumine
