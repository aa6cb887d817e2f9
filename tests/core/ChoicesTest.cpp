#include "core/DestinationMode.h"
#include "core/OptimizerSettings.h"
#include "core/OutputFormat.h"
#include "core/ResizeMode.h"
#include "support/QtPrinters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellumine {
namespace {

using ::testing::ElementsAre;

template <typename Choice> struct Row {
    Choice choice;
    const char* rawValue;
    const char* title;
};

template <typename Choice> void expectTexts(std::initializer_list<Row<Choice>> rows)
{
    for (const Row<Choice>& row : rows) {
        SCOPED_TRACE(row.rawValue);
        EXPECT_EQ(rawValue(row.choice), QString::fromLatin1(row.rawValue));
        EXPECT_EQ(id(row.choice), QString::fromLatin1(row.rawValue));
        EXPECT_EQ(displayTitle(row.choice), QString::fromLatin1(row.title));
        EXPECT_EQ(fromRawValue<Choice>(QString::fromLatin1(row.rawValue)), row.choice);
    }
}

TEST(ResizeMode, textsOfEveryCase)
{
    expectTexts<ResizeMode>({
        { ResizeMode::maxWidth, "maxWidth", "Max Width" },
        { ResizeMode::maxHeight, "maxHeight", "Max Height" },
        { ResizeMode::longestEdge, "longestEdge", "Longest Edge" },
        { ResizeMode::none, "none", "No Resize" },
    });
    EXPECT_THAT(allCases<ResizeMode>(),
        ElementsAre(ResizeMode::maxWidth, ResizeMode::maxHeight, ResizeMode::longestEdge,
            ResizeMode::none));
}

TEST(OutputFormat, textsOfEveryCase)
{
    expectTexts<OutputFormat>({
        { OutputFormat::webp, "webp", "WebP Lossy" },
        { OutputFormat::webpLossless, "webpLossless", "WebP Lossless" },
        { OutputFormat::jpeg, "jpeg", "JPEG" },
        { OutputFormat::png, "png", "PNG" },
        { OutputFormat::heic, "heic", "HEIC" },
        { OutputFormat::original, "original", "Original Format" },
    });
}

TEST(OutputFormat, allCasesAreListedInOrder)
{
    EXPECT_THAT(allCases<OutputFormat>(),
        ElementsAre(OutputFormat::webp, OutputFormat::webpLossless, OutputFormat::jpeg,
            OutputFormat::png, OutputFormat::heic, OutputFormat::original));
}

TEST(DestinationMode, textsOfEveryCase)
{
    expectTexts<DestinationMode>({
        { DestinationMode::originalLocation, "originalLocation", "Original Location" },
        { DestinationMode::selectedFolder, "selectedFolder", "Selected Folder" },
    });
    EXPECT_THAT(allCases<DestinationMode>(),
        ElementsAre(DestinationMode::originalLocation, DestinationMode::selectedFolder));
}

TEST(OutputFormat, onlyExactRawValuesAreAccepted)
{
    for (const char* text : { "WEBP", "Webp", "jpg", "JPEG", "", " webp", "webp ", "gif" }) {
        SCOPED_TRACE(text);
        EXPECT_EQ(fromRawValue<OutputFormat>(QString::fromLatin1(text)), std::nullopt);
    }
}

TEST(ResizeMode, unknownRawValueYieldsNothing)
{
    EXPECT_EQ(fromRawValue<ResizeMode>(u"maxwidth"), std::nullopt);
}

TEST(OutputFormat, webPAndLosslessOnly)
{
    struct Properties {
        OutputFormat format;
        bool webP;
        bool losslessOnly;
    };
    for (const Properties& row : std::initializer_list<Properties> {
             { OutputFormat::webp, true, false },
             { OutputFormat::webpLossless, true, true },
             { OutputFormat::jpeg, false, false },
             { OutputFormat::png, false, true },
             { OutputFormat::heic, false, false },
             { OutputFormat::original, false, false },
         }) {
        SCOPED_TRACE(rawValue(row.format).toStdString());
        EXPECT_EQ(isWebP(row.format), row.webP);
        EXPECT_EQ(isLosslessOnly(row.format), row.losslessOnly);
        OptimizerSettings settings;
        settings.outputFormat = row.format;
        EXPECT_EQ(settings.usesLossyCompression(), !row.losslessOnly);
    }
}

TEST(OptimizerSettings, originalFormatUsesLossyCompression)
{
    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::original;
    EXPECT_TRUE(settings.usesLossyCompression());
}

TEST(OptimizerSettings, defaultsOfAFreshInstallation)
{
    const OptimizerSettings settings;
    EXPECT_EQ(settings.resizeMode, ResizeMode::maxWidth);
    EXPECT_EQ(settings.maximumPixels, 2560);
    EXPECT_EQ(settings.outputFormat, OutputFormat::webp);
    EXPECT_EQ(settings.quality, 82.0);
    EXPECT_TRUE(settings.optimizeColorForSharing);
    EXPECT_TRUE(settings.removeColorManagement);
    EXPECT_TRUE(settings.removeMetadata);
    EXPECT_EQ(settings.destinationMode, DestinationMode::originalLocation);
    EXPECT_EQ(settings.destinationFolderURL, std::nullopt);
    EXPECT_EQ(settings.filenamePrefix, QString());
    EXPECT_EQ(settings.filenameSuffix, QString());
    EXPECT_FALSE(settings.moveOriginalToTrash);
    EXPECT_TRUE(settings.preserveModificationTime);
    EXPECT_FALSE(settings.warnBeforeOverwrite);
}

} // namespace
} // namespace vellumine
