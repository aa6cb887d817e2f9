#include "pipeline/ConversionQueue.h"
#include "pipeline/Workplace.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// Batches of files that are there, each with content of its name's type.
class ConversionQueueOfFiles : public testing::Test {
protected:
    /// Writes the files, and queues them in this order.
    ConversionQueue queueOf(
        const std::vector<std::string>& names, const OptimizerSettings& settings = {})
    {
        std::vector<QUrl> given;
        for (const std::string& name : names) {
            write(name, name.ends_with(".png") ? png : jpeg);
            given.push_back(urlOf(m_folder / name));
        }
        return { given, settings };
    }

    void write(const std::string& name, std::string_view content) const
    {
        std::filesystem::create_directories((m_folder / name).parent_path());
        test::writeFile(m_folder / name, content);
    }

    /// Expects the files to come one after the other.
    static void expectInTurn(ConversionQueue& queue, std::initializer_list<std::size_t> indices)
    {
        for (const std::size_t index : indices) {
            EXPECT_EQ(queue.takeNext(), index);
            EXPECT_EQ(queue.takeNext(), std::nullopt) << "beside " << index;
            queue.finished(index);
        }
        EXPECT_EQ(queue.takeNext(), std::nullopt);
    }

    static OptimizerSettings settingsOf(OutputFormat format, const char* suffix = "")
    {
        OptimizerSettings settings;
        settings.outputFormat = format;
        settings.filenameSuffix = QString::fromLatin1(suffix);
        return settings;
    }

    static constexpr std::string_view png = "\x89PNG\r\n\x1a\n";
    static constexpr std::string_view jpeg = "\xFF\xD8\xFF";

    const test::TemporaryFolder m_folder;
};

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

TEST_F(ConversionQueueOfFiles, whatAnOutputWouldReplaceIsConvertedBeforeIt)
{
    ConversionQueue queue = queueOf({ "a.jpg", "b.jpg", "a.webp" });
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), 2U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(2);
    EXPECT_EQ(queue.takeNext(), 0U);
}

TEST_F(ConversionQueueOfFiles, whatStandsWhereAnOutputGoesByItsSuffixIsConvertedBeforeIt)
{
    ConversionQueue queue = queueOf({ "n/a.png", "n/a_s.png", "n/a_s_s.png", "m/a_s.png" },
        settingsOf(OutputFormat::png, "_s"));
    EXPECT_EQ(queue.takeNext(), 2U);
    EXPECT_EQ(queue.takeNext(), 3U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(2);
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(1);
    EXPECT_EQ(queue.takeNext(), 0U);
}

TEST_F(ConversionQueueOfFiles, ofAnotherTypeThanTheOutputsNothingIsReplaced)
{
    OptimizerSettings settings;
    settings.filenamePrefix = QStringLiteral("z-");
    ConversionQueue queue = queueOf({ "a.png", "z-a.png" }, settings);
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), 1U);
}

TEST_F(ConversionQueueOfFiles, whatStandsWhereAMarkedOutputGoesIsConvertedBeforeIt)
{
    ConversionQueue queue = queueOf(
        { "a.png", "a-optimized.png", "a-optimized-optimized.png" }, settingsOf(OutputFormat::png));
    expectInTurn(queue, { 2, 1, 0 });
}

TEST_F(ConversionQueueOfFiles, whatStandsWhereItselfMayGoWaitsForNothing)
{
    ConversionQueue queue = queueOf({ "a.png" }, settingsOf(OutputFormat::png));
    expectInTurn(queue, { 0 });
}

TEST_F(ConversionQueueOfFiles, upperAndLowerCaseExtensionsAreNoCircle)
{
    // Only the one in upper case is written over the other.
    ConversionQueue queue = queueOf({ "a.JPG", "a.jpg" }, settingsOf(OutputFormat::jpeg));
    expectInTurn(queue, { 1, 0 });
    ConversionQueue turned = queueOf({ "b.jpg", "b.JPG" }, settingsOf(OutputFormat::jpeg));
    expectInTurn(turned, { 0, 1 });
}

TEST_F(ConversionQueueOfFiles, theSameFileByTwoNamesIsNoCircle)
{
    std::filesystem::create_directory_symlink("w", m_folder / "l");
    ConversionQueue queue = queueOf({ "w/a.png", "w/a.webp", "l/a.png", "l/a.webp" });
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(1);
    EXPECT_EQ(queue.takeNext(), 3U);
}

TEST_F(ConversionQueueOfFiles, inTheOriginalFormatTheContentTellsWhereTheOutputGoes)
{
    ConversionQueue queue
        = queueOf({ "a.jpg", "a.jpeg", "a.png" }, settingsOf(OutputFormat::original));
    EXPECT_EQ(queue.takeNext(), 1U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(1);
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), std::nullopt);
    queue.finished(0);
    EXPECT_EQ(queue.takeNext(), 2U); // by its name it might have been any type
}

TEST_F(ConversionQueueOfFiles, ofACircleTheFirstComesFirst)
{
    // Misnamed files, each of the other's type, and one that its output would replace.
    write("a.jpg", jpeg);
    write("a.png", jpeg);
    write("a.jpeg", png);
    ConversionQueue queue(
        { urlOf(m_folder / "a.jpg"), urlOf(m_folder / "a.png"), urlOf(m_folder / "a.jpeg") },
        settingsOf(OutputFormat::original));
    EXPECT_EQ(queue.neededFiles()->unreadAt(m_folder / "a.jpeg"), std::vector<std::size_t> { 2 });
    expectInTurn(queue, { 1, 2, 0 });
    EXPECT_TRUE(queue.neededFiles()->unreadAt(m_folder / "a.jpeg").empty());
}

TEST_F(ConversionQueueOfFiles, whatALinkLeadsToIsReadBeforeItIsReplaced)
{
    write("a_s.webp", "x");
    std::filesystem::create_directory(m_folder / "links");
    std::filesystem::create_symlink("../a_s.webp", m_folder / "links/b.png");
    ConversionQueue queue({ urlOf(m_folder / "a.png"), urlOf(m_folder / "links/b.png") },
        settingsOf(OutputFormat::webp, "_s"));
    expectInTurn(queue, { 1, 0 });
}

TEST_F(ConversionQueueOfFiles, aLinkOnTheWayToAFileIsReadThroughBeforeItIsReplaced)
{
    write("store/x.webp", "x");
    std::filesystem::create_symlink("store/x.webp", m_folder / "m.webp");
    std::filesystem::create_directory(m_folder / "links");
    std::filesystem::create_symlink(m_folder / "m.webp", m_folder / "links/l.webp");
    ConversionQueue queue(
        { urlOf(m_folder / "m.png"), urlOf(m_folder / "links/l.webp") }, OptimizerSettings());
    expectInTurn(queue, { 1, 0 });
}

TEST_F(ConversionQueueOfFiles, namesThatAreNoTextAreToldApart)
{
    ConversionQueue queue
        = queueOf({ "\xe9\xe8.png", "\xe9\xea.png" }, settingsOf(OutputFormat::png));
    EXPECT_EQ(queue.takeNext(), 0U);
    EXPECT_EQ(queue.takeNext(), 1U);
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
    test::writeFile(folder / "a.webp", "x");
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
