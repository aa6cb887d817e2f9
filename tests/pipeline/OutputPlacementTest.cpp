#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "platform/FilePath.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <vector>

namespace vellumine {
namespace {

using imaging::UniformType;
using platform::ExistingItem;
using test::TemporaryFolder;
using test::urlOf;
using test::writeFile;

struct NameRow {
    const char* name;
    const char* source;
    std::optional<UniformType> type;
    OutputFormat format;
    const char* prefix;
    const char* suffix;
    const char* output;
};

class OutputName : public testing::TestWithParam<NameRow> { };

TEST_P(OutputName, isMadeOfPrefixBaseSuffixAndExtension)
{
    OptimizerSettings settings;
    settings.outputFormat = GetParam().format;
    settings.filenamePrefix = QString::fromUtf8(GetParam().prefix);
    settings.filenameSuffix = QString::fromUtf8(GetParam().suffix);
    const auto url = ImageOptimizer::outputURL(
        urlOf(std::string("/nowhere/") + GetParam().source), GetParam().type, settings);
    ASSERT_TRUE(url);
    EXPECT_EQ(*url, urlOf(std::string("/nowhere/") + GetParam().output));
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, OutputName,
    testing::Values(
        NameRow { "webp", "a.jpg", UniformType::jpeg, OutputFormat::webp, "", "", "a.webp" },
        NameRow { "webpLossless", "a.jpg", UniformType::jpeg, OutputFormat::webpLossless, "", "",
            "a.webp" },
        NameRow { "jpeg", "a.png", UniformType::png, OutputFormat::jpeg, "", "", "a.jpg" },
        NameRow { "heic", "a.png", UniformType::png, OutputFormat::heic, "", "", "a.heic" },
        NameRow { "pngOntoItself", "a.png", UniformType::png, OutputFormat::png, "", "",
            "a-optimized.png" },
        NameRow { "markerComesAfterAnOldSuffix", "xa_s.png", UniformType::png, OutputFormat::png,
            "", "", "xa_s-optimized.png" },
        NameRow {
            "suffix", "a.png", UniformType::png, OutputFormat::jpeg, "", "_small", "a_small.jpg" },
        NameRow { "prefixInTheOriginalFormat", "a.heic", UniformType::heic, OutputFormat::original,
            "web-", "", "web-a.heic" },
        NameRow { "onlyTheLastExtensionGoes", "holiday.photo.jpg", UniformType::jpeg,
            OutputFormat::webp, "", "", "holiday.photo.webp" },
        NameRow { "jpgInTheOriginalFormatLandsBesideIt", "a.jpg", UniformType::jpeg,
            OutputFormat::original, "", "", "a.jpeg" },
        NameRow { "jpegInTheOriginalFormatIsItself", "a.jpeg", UniformType::jpeg,
            OutputFormat::original, "", "", "a-optimized.jpeg" },
        NameRow { "pngInTheOriginalFormatIsItself", "a.png", UniformType::png,
            OutputFormat::original, "", "", "a-optimized.png" },
        NameRow { "misnamedFileGoesByItsContent", "a.png", UniformType::tiff,
            OutputFormat::original, "", "", "a.tiff" },
        NameRow { "unknownTypeKeepsItsExtension", "a.xyz", std::nullopt, OutputFormat::original,
            "b", "", "ba.xyz" },
        NameRow { "unknownTypeWithoutExtensionIsPng", "a", std::nullopt, OutputFormat::original, "",
            "", "a.png" },
        NameRow { "noExtension", "a", UniformType::jpeg, OutputFormat::webp, "", "", "a.webp" },
        NameRow { "hiddenName", ".a", UniformType::jpeg, OutputFormat::webp, "", "", ".a.webp" },
        NameRow { "dotAtTheEnd", "a.", UniformType::jpeg, OutputFormat::webp, "", "", "a..webp" },
        NameRow { "severalDots", "dots...png", UniformType::png, OutputFormat::webp, "", "",
            "dots...webp" },
        NameRow { "percentSigns", "100%20 #1?.png", UniformType::png, OutputFormat::webp, "%", "#",
            "%100%20 #1?#.webp" },
        NameRow { "otherCaseIsAnotherFile", "A.PNG", UniformType::png, OutputFormat::png, "", "",
            "A.png" }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(OutputURL, goesToTheSelectedFolderWhereverTheSourceIs)
{
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::png;
    settings.destinationMode = DestinationMode::selectedFolder;
    settings.destinationFolderURL = urlOf("/chosen");
    EXPECT_EQ(ImageOptimizer::outputURL(urlOf("/other/a.png"), UniformType::png, settings).value(),
        urlOf("/chosen/a.png"));
    EXPECT_EQ(ImageOptimizer::outputURL(urlOf("/chosen/a.png"), UniformType::png, settings).value(),
        urlOf("/chosen/a-optimized.png"));
}

TEST(OutputURL, sourceAndOutputAreComparedWithDotsResolved)
{
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::png;
    settings.destinationMode = DestinationMode::selectedFolder;
    settings.destinationFolderURL = urlOf("/x/../chosen");
    EXPECT_EQ(platform::lastPathComponent(
                  ImageOptimizer::outputURL(urlOf("/chosen/./a.png"), UniformType::png, settings)
                      .value()),
        QStringLiteral("a-optimized.png"));
}

TEST(OutputURL, selectedFolderIsIgnoredInTheOriginalLocation)
{
    OptimizerSettings settings;
    settings.destinationFolderURL = urlOf("/chosen");
    EXPECT_EQ(ImageOptimizer::outputURL(urlOf("/o/a.png"), UniformType::png, settings).value(),
        urlOf("/o/a.webp"));
}

TEST(OutputURL, failsWithoutAFolder)
{
    OptimizerSettings settings;
    settings.destinationMode = DestinationMode::selectedFolder;
    const auto url = ImageOptimizer::outputURL(urlOf("/a.png"), UniformType::png, settings);
    ASSERT_FALSE(url);
    EXPECT_EQ(url.error(), OptimizeError(ImageOptimizerError(MissingDestinationFolder {})));
}

TEST(OutputURL, aLinkToTheSourceCountsAsTheSource)
{
    const TemporaryFolder folder;
    writeFile(folder / "a.png", "x");
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::jpeg;

    std::filesystem::create_hard_link(folder / "a.png", folder / "a.jpg");
    EXPECT_EQ(
        ImageOptimizer::outputURL(urlOf(folder / "a.png"), UniformType::png, settings).value(),
        urlOf(folder / "a-optimized.jpg"));

    std::filesystem::remove(folder / "a.jpg");
    std::filesystem::create_symlink("a.png", folder / "a.jpg");
    EXPECT_EQ(
        ImageOptimizer::outputURL(urlOf(folder / "a.png"), UniformType::png, settings).value(),
        urlOf(folder / "a-optimized.jpg"));
    // And the other way round: the source is given by the link's name.
    settings.outputFormat = OutputFormat::png;
    EXPECT_EQ(
        ImageOptimizer::outputURL(urlOf(folder / "a.jpg"), UniformType::png, settings).value(),
        urlOf(folder / "a-optimized.png"));
}

TEST(OutputURL, theMarkerComesAfterTheSuffix)
{
    const TemporaryFolder folder;
    writeFile(folder / "a.png", "x");
    std::filesystem::create_symlink("a.png", folder / "x-a_s.jpg");
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::jpeg;
    settings.filenamePrefix = QStringLiteral("x-");
    settings.filenameSuffix = QStringLiteral("_s");
    EXPECT_EQ(
        ImageOptimizer::outputURL(urlOf(folder / "a.png"), UniformType::png, settings).value(),
        urlOf(folder / "x-a_s-optimized.jpg"));
}

TEST(OutputURL, theMarkedNameIsNotTheSourceEither)
{
    const TemporaryFolder folder;
    writeFile(folder / "a-optimized.png", "x");
    std::filesystem::create_symlink("a-optimized.png", folder / "a.png");
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::png;
    EXPECT_EQ(
        ImageOptimizer::outputURL(urlOf(folder / "a.png"), UniformType::png, settings).value(),
        urlOf(folder / "a-optimized-optimized.png"));
}

TEST(OutputURL, anExistingFileWithTheMarkedNameIsNoReasonForAnotherName)
{
    const TemporaryFolder folder;
    writeFile(folder / "a.png", "x");
    writeFile(folder / "a-optimized.png", "y");
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::png;
    EXPECT_EQ(
        ImageOptimizer::outputURL(urlOf(folder / "a.png"), UniformType::png, settings).value(),
        urlOf(folder / "a-optimized.png"));
}

TEST(OutputURL, anUnreadFileOfTheBatchIsNotWrittenOver)
{
    const TemporaryFolder folder;
    writeFile(folder / "a.jpg", "x");
    writeFile(folder / "b.png", "y");
    std::filesystem::create_symlink("b.png", folder / "a-optimized.jpg");
    NeededFiles needed({ urlOf(folder / "a.jpg"), urlOf(folder / "a-optimized.jpg") });
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::jpeg;
    const auto output = [&] {
        return ImageOptimizer::outputURL(
            urlOf(folder / "a.png"), UniformType::png, settings, &needed)
            .value();
    };
    EXPECT_EQ(output(), urlOf(folder / "a-optimized-optimized.jpg"));
    writeFile(folder / "output", "of both");
    needed.setRead(1, urlOf(folder / "output"));
    EXPECT_EQ(output(), urlOf(folder / "a-optimized.jpg"));
    needed.setRead(0, urlOf(folder / "output"));
    EXPECT_EQ(output(), urlOf(folder / "a.jpg"));
}

/// A source a.jpg whose output is a-optimized.jpg, and what then becomes of them.
class OutputAfterwards : public testing::Test {
protected:
    OutputAfterwards()
    {
        writeFile(m_folder / "a.jpg", "source");
        m_needed.emplace(std::vector { urlOf(m_folder / "a.jpg") });
    }

    void finish(NeededFiles::WhenGone whenGone = NeededFiles::WhenGone::lost)
    {
        writeFile(m_folder / "a-optimized.jpg", "output");
        m_needed->setRead(0, urlOf(m_folder / "a-optimized.jpg"), whenGone);
    }
    void replace(const char* name) const
    {
        writeFile(m_folder / "other", "another picture");
        std::filesystem::rename(m_folder / "other", m_folder / name);
    }
    [[nodiscard]] bool mayBeReplaced(const char* name) const
    {
        return !m_needed->isAt(m_folder / name);
    }

    const TemporaryFolder m_folder;
    std::optional<NeededFiles> m_needed;
};

TEST_F(OutputAfterwards, eitherMayBeReplacedWhileBothAreThere)
{
    finish();
    EXPECT_TRUE(mayBeReplaced("a.jpg"));
    EXPECT_TRUE(mayBeReplaced("a-optimized.jpg"));
}

TEST_F(OutputAfterwards, theSourceStaysWhereItsOutputWasReplaced)
{
    finish();
    replace("a-optimized.jpg");
    EXPECT_FALSE(mayBeReplaced("a.jpg"));
    EXPECT_TRUE(mayBeReplaced("a-optimized.jpg"));
    replace("a.jpg");
    EXPECT_TRUE(mayBeReplaced("a.jpg")); // it is another file
}

TEST_F(OutputAfterwards, aSourceThatCameToNothingStays)
{
    m_needed->setRead(0);
    EXPECT_FALSE(mayBeReplaced("a.jpg"));
}

TEST_F(OutputAfterwards, theOutputOfASourceInTheTrashMayBeReplaced)
{
    std::filesystem::remove(m_folder / "a.jpg");
    finish(NeededFiles::WhenGone::inTrash);
    EXPECT_TRUE(mayBeReplaced("a-optimized.jpg"));
}

TEST_F(OutputAfterwards, oneOfBothStaysWhereTheTrashDidNotTakeTheSource)
{
    finish(NeededFiles::WhenGone::inTrash);
    EXPECT_TRUE(mayBeReplaced("a.jpg"));
    EXPECT_TRUE(mayBeReplaced("a-optimized.jpg"));
    replace("a.jpg");
    EXPECT_FALSE(mayBeReplaced("a-optimized.jpg"));
}

TEST(OutputURL, anOutputWhoseSourceIsGoneIsNotWrittenOver)
{
    const TemporaryFolder folder;
    writeFile(folder / "a.jpg", "source");
    NeededFiles needed({ urlOf(folder / "a.jpg") });
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::jpeg;
    const auto output = [&] {
        return ImageOptimizer::outputURL(
            urlOf(folder / "a-optimized.png"), UniformType::png, settings, &needed)
            .value();
    };
    writeFile(folder / "a-optimized.jpg", "output");
    needed.setRead(0, urlOf(folder / "a-optimized.jpg"));
    EXPECT_EQ(output(), urlOf(folder / "a-optimized.jpg"));
    writeFile(folder / "other", "another picture");
    std::filesystem::rename(folder / "other", folder / "a.jpg");
    EXPECT_EQ(output(), urlOf(folder / "a-optimized-optimized.jpg"));
    writeFile(folder / "a-optimized.jpg", "somebody else's");
    EXPECT_EQ(output(), urlOf(folder / "a-optimized.jpg"));
}

class ConfirmOverwrite : public testing::Test {
protected:
    Outcome<ExistingItem> confirm(const std::filesystem::path& path, bool warn,
        OverwriteDecision decision = OverwriteDecision::skip)
    {
        OptimizerSettings settings;
        settings.warnBeforeOverwrite = warn;
        ConversionEnvironment environment = m_workplace.environment();
        environment.confirmOverwrite = [&](const QUrl& url) {
            m_asked.push_back(url);
            return decision;
        };
        return ImageOptimizer::confirmOverwrite(urlOf(path), settings, environment);
    }

    test::Workplace m_workplace;
    std::vector<QUrl> m_asked;
};

TEST_F(ConfirmOverwrite, nobodyIsAskedWhereNothingStands)
{
    EXPECT_EQ(confirm(m_workplace.pictures() / "out", true).value(), ExistingItem::keep);
    EXPECT_EQ(confirm(m_workplace.pictures() / "out", false).value(), ExistingItem::replace);
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(ConfirmOverwrite, nobodyIsAskedWithoutTheWarning)
{
    writeFile(m_workplace.pictures() / "out", "x");
    EXPECT_EQ(confirm(m_workplace.pictures() / "out", false).value(), ExistingItem::replace);
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(ConfirmOverwrite, replaceGoesOnAndSkipFails)
{
    writeFile(m_workplace.pictures() / "out", "x");
    EXPECT_EQ(confirm(m_workplace.pictures() / "out", true, OverwriteDecision::replace).value(),
        ExistingItem::replace);
    const auto skipped = confirm(m_workplace.pictures() / "out", true, OverwriteDecision::skip);
    ASSERT_FALSE(skipped);
    EXPECT_EQ(localizedDescription(skipped.error()),
        QStringLiteral("Skipped because the output file already exists."));
    EXPECT_EQ(m_asked.size(), 2U);
    EXPECT_EQ(m_asked.front(), urlOf(m_workplace.pictures() / "out"));
}

TEST_F(ConfirmOverwrite, aDanglingLinkIsSomethingToAskAbout)
{
    std::filesystem::create_symlink("nowhere", m_workplace.pictures() / "out");
    EXPECT_TRUE(confirm(m_workplace.pictures() / "out", true, OverwriteDecision::replace));
    EXPECT_EQ(m_asked.size(), 1U);
}

TEST_F(ConfirmOverwrite, aFolderInTheWayFailsWithoutAQuestion)
{
    std::filesystem::create_directory(m_workplace.pictures() / "out");
    const auto result = confirm(m_workplace.pictures() / "out", true, OverwriteDecision::replace);
    ASSERT_FALSE(result);
    EXPECT_EQ(localizedDescription(result.error()), QStringLiteral("Is a directory"));
    EXPECT_TRUE(m_asked.empty());
}

TEST(PreserveModificationDate, carriesNanosecondsOver)
{
    const TemporaryFolder folder;
    writeFile(folder / "from", "x");
    writeFile(folder / "to", "y");
    const struct timespec times[2] { { 1, 1 }, { 981'173'106, 987'654'321 } };
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "from").c_str(), times, 0), 0);
    ImageOptimizer::preserveModificationDate(urlOf(folder / "from"), urlOf(folder / "to"));
    struct stat status { };
    ASSERT_EQ(::stat((folder / "to").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 981'173'106);
    EXPECT_EQ(status.st_mtim.tv_nsec, 987'654'321);
}

TEST(PreserveModificationDate, ofAVanishedSourceChangesNothing)
{
    const TemporaryFolder folder;
    writeFile(folder / "to", "y");
    const auto before = std::filesystem::last_write_time(folder / "to");
    ImageOptimizer::preserveModificationDate(urlOf(folder / "from"), urlOf(folder / "to"));
    EXPECT_EQ(std::filesystem::last_write_time(folder / "to"), before);
}

TEST(FileSize, isZeroWhenUnknown)
{
    const TemporaryFolder folder;
    writeFile(folder / "a", "12345");
    EXPECT_EQ(ImageOptimizer::fileSize(urlOf(folder / "a")), 5);
    EXPECT_EQ(ImageOptimizer::fileSize(urlOf(folder / "b")), 0);
}

} // namespace
} // namespace vellumine
