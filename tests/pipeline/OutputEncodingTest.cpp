#include "imaging/ImageProperties.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

using imaging::DictionaryPresent;
using imaging::ImageProperties;
using imaging::PropertyKey;
using imaging::UniformType;

OptimizerSettings settingsFor(OutputFormat format)
{
    OptimizerSettings settings;
    settings.outputFormat = format;
    return settings;
}

TEST(OutputUTI, isTheTypeOfTheFormat)
{
    for (const auto& [format, type] : std::initializer_list<std::pair<OutputFormat, UniformType>> {
             { OutputFormat::jpeg, UniformType::jpeg },
             { OutputFormat::png, UniformType::png },
             { OutputFormat::heic, UniformType::heic },
         }) {
        EXPECT_EQ(ImageOptimizer::outputUTI(UniformType::gif, settingsFor(format)).value(), type);
    }
}

TEST(OutputUTI, ofTheOriginalFormatIsTheSourcesTypeOrPng)
{
    const OptimizerSettings settings = settingsFor(OutputFormat::original);
    for (const UniformType type : { UniformType::jpeg, UniformType::png, UniformType::heic,
             UniformType::heif, UniformType::tiff, UniformType::gif, UniformType::bmp }) {
        EXPECT_EQ(ImageOptimizer::outputUTI(type, settings).value(), type);
    }
    EXPECT_EQ(ImageOptimizer::outputUTI(std::nullopt, settings).value(), UniformType::png);
}

TEST(OutputUTI, failsForWebPWhichTheImageServiceCannotWrite)
{
    for (const auto& [format, text] : std::initializer_list<std::pair<OutputFormat, const char*>> {
             { OutputFormat::webp, "WebP Lossy" },
             { OutputFormat::webpLossless, "WebP Lossless" },
             { OutputFormat::original, "Original Format" },
         }) {
        const auto type = ImageOptimizer::outputUTI(UniformType::webp, settingsFor(format));
        ASSERT_FALSE(type);
        EXPECT_EQ(localizedDescription(type.error()),
            QString::fromLatin1(text)
                + QStringLiteral(" is not supported by this macOS ImageIO installation."));
    }
}

ImageProperties everything()
{
    ImageProperties properties;
    for (const PropertyKey key :
        { PropertyKey::exif, PropertyKey::gps, PropertyKey::tiff, PropertyKey::iptc,
            PropertyKey::png, PropertyKey::jfif, PropertyKey::gif, PropertyKey::xmp }) {
        properties.set(key, DictionaryPresent {});
    }
    properties.set(PropertyKey::orientation, std::int64_t { 6 });
    properties.set(PropertyKey::colorModel, std::string("RGB"));
    properties.set(PropertyKey::profileName, std::string("Display P3"));
    properties.set(PropertyKey::pixelWidth, std::int64_t { 47 });
    return properties;
}

TEST(DestinationProperties, withoutMetadataHoldOnlyTheQuality)
{
    const auto properties = ImageOptimizer::destinationProperties(
        settingsFor(OutputFormat::jpeg), everything(), CompressionQuality::include);
    for (const PropertyKey key : { PropertyKey::exif, PropertyKey::gps, PropertyKey::tiff,
             PropertyKey::iptc, PropertyKey::png, PropertyKey::jfif, PropertyKey::gif,
             PropertyKey::xmp, PropertyKey::orientation, PropertyKey::colorModel,
             PropertyKey::profileName, PropertyKey::pixelWidth }) {
        EXPECT_FALSE(properties.contains(key)) << static_cast<int>(key);
    }
    EXPECT_EQ(properties.number(PropertyKey::lossyCompressionQuality), 0.82);
}

TEST(DestinationProperties, withMetadataKeepAllButTheOrientation)
{
    OptimizerSettings settings = settingsFor(OutputFormat::jpeg);
    settings.removeMetadata = false;
    settings.removeColorManagement = false;
    const auto properties = ImageOptimizer::destinationProperties(
        settings, everything(), CompressionQuality::include);
    for (const PropertyKey key :
        { PropertyKey::exif, PropertyKey::gps, PropertyKey::tiff, PropertyKey::iptc,
            PropertyKey::png, PropertyKey::jfif, PropertyKey::gif, PropertyKey::xmp,
            PropertyKey::colorModel, PropertyKey::profileName, PropertyKey::pixelWidth }) {
        EXPECT_TRUE(properties.contains(key)) << static_cast<int>(key);
    }
    EXPECT_FALSE(properties.contains(PropertyKey::orientation));
}

TEST(DestinationProperties, withoutColorManagementNameNoProfile)
{
    OptimizerSettings settings = settingsFor(OutputFormat::jpeg);
    settings.removeMetadata = false;
    settings.removeColorManagement = true;
    const auto properties = ImageOptimizer::destinationProperties(
        settings, everything(), CompressionQuality::include);
    EXPECT_FALSE(properties.contains(PropertyKey::colorModel));
    EXPECT_FALSE(properties.contains(PropertyKey::profileName));
    EXPECT_TRUE(properties.contains(PropertyKey::exif));
}

struct QualityRow {
    const char* name;
    OutputFormat format;
    double quality;
    std::optional<double> expected;
};

class DestinationQuality : public testing::TestWithParam<QualityRow> { };

TEST_P(DestinationQuality, isAFractionOfOne)
{
    OptimizerSettings settings = settingsFor(GetParam().format);
    settings.quality = GetParam().quality;
    EXPECT_EQ(ImageOptimizer::destinationProperties(settings, {}, CompressionQuality::include)
                  .number(PropertyKey::lossyCompressionQuality),
        GetParam().expected);
    EXPECT_TRUE(
        ImageOptimizer::destinationProperties(settings, {}, CompressionQuality::leaveOut).empty());
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, DestinationQuality,
    testing::Values(QualityRow { "jpeg", OutputFormat::jpeg, 82, 0.82 },
        QualityRow { "heic", OutputFormat::heic, 50, 0.5 },
        QualityRow { "originalCountsAsLossy", OutputFormat::original, 70, 0.7 },
        QualityRow { "pngHasNone", OutputFormat::png, 82, std::nullopt },
        QualityRow { "losslessIsFull", OutputFormat::webpLossless, 10, 1.0 },
        QualityRow { "belowOneIsOne", OutputFormat::jpeg, 0, 0.01 },
        QualityRow { "negativeIsOne", OutputFormat::jpeg, -5, 0.01 },
        QualityRow { "hundredIsExactlyOne", OutputFormat::jpeg, 100, 1.0 },
        QualityRow { "aboveHundredIsExactlyOne", OutputFormat::jpeg, 1000, 1.0 }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(InputFormatTitle, isTheTypesExtensionInCapitals)
{
    const QUrl url = test::urlOf("/a/picture.jpg");
    for (const auto& [type, title] : std::initializer_list<std::pair<UniformType, const char*>> {
             { UniformType::jpeg, "JPEG" },
             { UniformType::png, "PNG" },
             { UniformType::heic, "HEIC" },
             { UniformType::heif, "HEIF" },
             { UniformType::tiff, "TIFF" },
             { UniformType::gif, "GIF" },
             { UniformType::bmp, "BMP" },
             { UniformType::webp, "WEBP" },
         }) {
        EXPECT_EQ(ImageOptimizer::inputFormatTitle(url, type), QString::fromLatin1(title));
    }
}

TEST(InputFormatTitle, withoutATypeIsTheNamesExtensionOrImage)
{
    EXPECT_EQ(ImageOptimizer::inputFormatTitle(test::urlOf("/a/b.jpe"), std::nullopt),
        QStringLiteral("JPE"));
    EXPECT_EQ(ImageOptimizer::inputFormatTitle(test::urlOf("/a.d/b"), std::nullopt),
        QStringLiteral("Image"));
}

TEST(OutputFormatTitle, isTheFormatsOrTheInputs)
{
    const QUrl url = test::urlOf("/a/picture.jpg");
    for (const auto& [format, title] : std::initializer_list<std::pair<OutputFormat, const char*>> {
             { OutputFormat::webp, "WebP Lossy" },
             { OutputFormat::webpLossless, "WebP Lossless" },
             { OutputFormat::jpeg, "JPEG" },
             { OutputFormat::png, "PNG" },
             { OutputFormat::heic, "HEIC" },
             { OutputFormat::original, "TIFF" },
         }) {
        EXPECT_EQ(ImageOptimizer::outputFormatTitle(url, UniformType::tiff, settingsFor(format)),
            QString::fromLatin1(title));
    }
}

TEST(OutputSupportsAlpha, byFormatAndForTheOriginalByType)
{
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::webp, UniformType::jpeg));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::webpLossless, UniformType::jpeg));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::png, UniformType::jpeg));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::jpeg, UniformType::png));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::heic, UniformType::png));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::original, UniformType::png));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::original, UniformType::webp));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::original, UniformType::tiff));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::original, UniformType::gif));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::original, std::nullopt));
}

} // namespace
} // namespace vellumine
