#include "cli/CommandLine.h"
#include "cli/SettingKeys.h"
#include "platform/FilePath.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::cli {
namespace {

using Arguments = std::vector<std::string>;

tl::expected<CommandLine, UsageError> parse(const Arguments& arguments)
{
    return parseCommandLine(arguments);
}

TEST(CommandLine, pathsAloneAreConvertedWithTheDefaults)
{
    const auto line = parse({ "a.png", "folder" });
    ASSERT_TRUE(line);
    EXPECT_EQ(line->action, Action::convert);
    EXPECT_EQ(line->style, OutputStyle::text);
    EXPECT_EQ(line->settings, OptimizerSettings());
    EXPECT_EQ(line->paths, (std::vector<std::filesystem::path> { "a.png", "folder" }));
}

TEST(CommandLine, everyKeySetsItsField)
{
    const test::TemporaryFolder folder;
    const auto line = parse({ "--set", "resizeMode=longestEdge", "--set", "maximumPixels=1000",
        "--set", "outputFormat=heic", "--set", "quality=55.5", "--set",
        "optimizeColorForSharing=false", "--set", "removeColorManagement=false", "--set",
        "removeMetadata=false", "--set", "destinationMode=selectedFolder", "--set",
        "destinationFolderBookmark=" + folder.path().string(), "--set",
        "originalLocationFolderBookmarks=x", "--set", "filenamePrefix=p=q", "--set",
        "filenameSuffix=_s", "--set", "moveOriginalToTrash=true", "--set",
        "preserveModificationTime=false", "--set", "warnBeforeOverwrite=true", "--set",
        "exitWhenComplete=true", "--json", "a.png" });
    ASSERT_TRUE(line) << line.error().text.toStdString();
    OptimizerSettings expected;
    expected.resizeMode = ResizeMode::longestEdge;
    expected.maximumPixels = 1000;
    expected.outputFormat = OutputFormat::heic;
    expected.quality = 55.5;
    expected.optimizeColorForSharing = false;
    expected.removeColorManagement = false;
    expected.removeMetadata = false;
    expected.destinationMode = DestinationMode::selectedFolder;
    expected.destinationFolderURL
        = platform::fileUrl(QString::fromStdString(folder.path().string()));
    expected.filenamePrefix = QStringLiteral("p=q");
    expected.filenameSuffix = QStringLiteral("_s");
    expected.moveOriginalToTrash = true;
    expected.preserveModificationTime = false;
    expected.warnBeforeOverwrite = true;
    EXPECT_EQ(line->settings, expected);
    EXPECT_EQ(line->style, OutputStyle::json);
}

TEST(CommandLine, theNameOfADestinationNeedNotBeUtf8)
{
    const test::TemporaryFolder folder;
    const std::filesystem::path named = folder / "d\xff";
    std::filesystem::create_directory(named);
    std::filesystem::create_directory(folder / "d\xEF\xBF\xBD"); // what it reads as decoded
    const auto line = parse({ "--set", "destinationFolderBookmark=" + named.string(), "a.png" });
    ASSERT_TRUE(line) << line.error().text.toStdString();
    ASSERT_TRUE(line->settings.destinationFolderURL);
    EXPECT_EQ(platform::toPath(*line->settings.destinationFolderURL), named);
}

TEST(CommandLine, aDestinationIsAnAbsolutePathWithoutDetours)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directory(folder / "d");
    const auto line = parse({ "--set",
        "destinationFolderBookmark=" + folder.path().string() + "/./d/../d//", "a.png" });
    ASSERT_TRUE(line) << line.error().text.toStdString();
    EXPECT_EQ(line->settings.destinationFolderURL, platform::fileUrl(folder / "d"));
}

TEST(CommandLine, behindALinkTwoDotsLeadWhereTheSystemHasThem)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directories(folder / "real/deep");
    std::filesystem::create_directory(folder / "real/out");
    std::filesystem::create_directory(folder / "out"); // where the text alone would lead
    std::filesystem::create_directory_symlink("real/deep", folder / "link");
    const auto line = parse({ "--set",
        "destinationFolderBookmark=" + folder.path().string() + "/link/../out", "a.png" });
    ASSERT_TRUE(line) << line.error().text.toStdString();
    ASSERT_TRUE(line->settings.destinationFolderURL);
    EXPECT_TRUE(std::filesystem::equivalent(
        platform::toPath(*line->settings.destinationFolderURL), folder / "real/out"));
}

TEST(CommandLine, keysAreTheSixteenPreferences)
{
    EXPECT_EQ(settingKeys().size(), 16);
    for (const QString& key : settingKeys()) {
        EXPECT_TRUE(usageText().contains(key)) << key.toStdString();
        EXPECT_FALSE(valuesOf(key).isEmpty()) << key.toStdString();
    }
}

struct BadRow {
    const char* name;
    Arguments arguments;
    const char* text;
};

class BadCommandLine : public testing::TestWithParam<BadRow> { };

TEST_P(BadCommandLine, isRefusedWithAReason)
{
    const auto line = parse(GetParam().arguments);
    ASSERT_FALSE(line);
    EXPECT_EQ(line.error().text, QString::fromUtf8(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(CommandLine, BadCommandLine,
    testing::Values(BadRow { "nothing", {}, "no files or folders are named" },
        BadRow { "noPaths", { "--json" }, "no files or folders are named" },
        BadRow { "unknownOption", { "--fast", "a" }, "there is no option \"--fast\"" },
        BadRow { "setWithoutAssignment", { "a", "--set" }, "--set wants KEY=VALUE" },
        BadRow { "setWithoutEquals", { "--set", "quality", "a" },
            "--set wants KEY=VALUE, not \"quality\"" },
        BadRow { "unknownKey", { "--set", "speed=1", "a" }, "there is no setting \"speed\"" },
        BadRow {
            "keyInOtherCase", { "--set", "Quality=1", "a" }, "there is no setting \"Quality\"" },
        BadRow { "formatByExtension", { "--set", "outputFormat=jpg", "a" },
            "\"jpg\" is no value for outputFormat: webp, webpLossless, jpeg, png, heic, original" },
        BadRow { "resizeMode", { "--set", "resizeMode=", "a" },
            "\"\" is no value for resizeMode: maxWidth, maxHeight, longestEdge, none" },
        BadRow { "boolean", { "--set", "removeMetadata=yes", "a" },
            "\"yes\" is no value for removeMetadata: true, false" },
        BadRow { "pixelsAreWhole", { "--set", "maximumPixels=1.5", "a" },
            "\"1.5\" is no value for maximumPixels: a whole number from 1" },
        BadRow { "pixelsBeginAtOne", { "--set", "maximumPixels=0", "a" },
            "\"0\" is no value for maximumPixels: a whole number from 1" },
        BadRow { "qualityIsANumber", { "--set", "quality=nan", "a" },
            "\"nan\" is no value for quality: a number from 0 to 100" },
        BadRow { "qualityEndsAtHundred", { "--set", "quality=101", "a" },
            "\"101\" is no value for quality: a number from 0 to 100" },
        BadRow { "folderThatIsNone", { "--set", "destinationFolderBookmark=/no/such", "a" },
            "\"/no/such\" is no value for destinationFolderBookmark: the path of a folder, or "
            "nothing" },
        BadRow { "selectedFolderWithoutFolder", { "--set", "destinationMode=selectedFolder", "a" },
            "destinationMode=selectedFolder needs destinationFolderBookmark=FOLDER" }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(CommandLine, twoDashesEndTheOptions)
{
    const auto line = parse({ "--", "--json", "-x.png" });
    ASSERT_TRUE(line);
    EXPECT_EQ(line->style, OutputStyle::text);
    EXPECT_EQ(line->paths, (std::vector<std::filesystem::path> { "--json", "-x.png" }));
}

TEST(CommandLine, helpSaysThatOnePictureOfAFileIsTaken)
{
    EXPECT_TRUE(usageText().simplified().contains(QStringLiteral(
        "Of animations and documents with several pages the first picture is taken.")));
}

TEST(CommandLine, helpAndVersionNeedNoPaths)
{
    EXPECT_EQ(parse({ "--help" })->action, Action::showHelp);
    EXPECT_EQ(parse({ "--version" })->action, Action::showVersion);
}

TEST(CommandLine, theLastOfTwoAssignmentsHolds)
{
    EXPECT_EQ(parse({ "--set", "quality=1", "--set", "quality=2", "a" })->settings.quality, 2.0);
}

} // namespace
} // namespace vellumine::cli
