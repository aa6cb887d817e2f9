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
             { OutputFormat::Jpeg, UniformType::Jpeg },
             { OutputFormat::Png, UniformType::Png },
             { OutputFormat::Heic, UniformType::Heic },
         }) {
        EXPECT_EQ(ImageOptimizer::outputUTI(UniformType::Gif, settingsFor(format)).value(), type);
    }
}

TEST(OutputUTI, ofTheOriginalFormatIsTheSourcesTypeOrPng)
{
    const OptimizerSettings settings = settingsFor(OutputFormat::Original);
    for (const UniformType type : { UniformType::Jpeg, UniformType::Png, UniformType::Heic,
             UniformType::Heif, UniformType::Tiff, UniformType::Gif, UniformType::Bmp }) {
        EXPECT_EQ(ImageOptimizer::outputUTI(type, settings).value(), type);
    }
    EXPECT_EQ(ImageOptimizer::outputUTI(std::nullopt, settings).value(), UniformType::Png);
}

TEST(OutputUTI, failsForWebPWhichTheImageServiceCannotWrite)
{
    for (const auto& [format, text] : std::initializer_list<std::pair<OutputFormat, const char*>> {
             { OutputFormat::WebP, "WebP Lossy" },
             { OutputFormat::WebPLossless, "WebP Lossless" },
             { OutputFormat::Original, "Original Format" },
         }) {
        const auto type = ImageOptimizer::outputUTI(UniformType::WebP, settingsFor(format));
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
        { PropertyKey::Exif, PropertyKey::Gps, PropertyKey::Tiff, PropertyKey::Iptc,
            PropertyKey::Png, PropertyKey::Jfif, PropertyKey::Gif, PropertyKey::Xmp }) {
        properties.set(key, DictionaryPresent {});
    }
    properties.set(PropertyKey::Orientation, std::int64_t { 6 });
    properties.set(PropertyKey::ColorModel, std::string("RGB"));
    properties.set(PropertyKey::ProfileName, std::string("Display P3"));
    properties.set(PropertyKey::PixelWidth, std::int64_t { 47 });
    return properties;
}

TEST(DestinationProperties, withoutMetadataHoldOnlyTheQuality)
{
    const auto properties = ImageOptimizer::destinationProperties(
        settingsFor(OutputFormat::Jpeg), everything(), CompressionQuality::Include);
    for (const PropertyKey key : { PropertyKey::Exif, PropertyKey::Gps, PropertyKey::Tiff,
             PropertyKey::Iptc, PropertyKey::Png, PropertyKey::Jfif, PropertyKey::Gif,
             PropertyKey::Xmp, PropertyKey::Orientation, PropertyKey::ColorModel,
             PropertyKey::ProfileName, PropertyKey::PixelWidth }) {
        EXPECT_FALSE(properties.contains(key)) << static_cast<int>(key);
    }
    EXPECT_EQ(properties.number(PropertyKey::LossyCompressionQuality), 0.82);
}

TEST(DestinationProperties, withMetadataKeepAllButTheOrientation)
{
    OptimizerSettings settings = settingsFor(OutputFormat::Jpeg);
    settings.removeMetadata = false;
    settings.removeColorManagement = false;
    const auto properties = ImageOptimizer::destinationProperties(
        settings, everything(), CompressionQuality::Include);
    for (const PropertyKey key :
        { PropertyKey::Exif, PropertyKey::Gps, PropertyKey::Tiff, PropertyKey::Iptc,
            PropertyKey::Png, PropertyKey::Jfif, PropertyKey::Gif, PropertyKey::Xmp,
            PropertyKey::ColorModel, PropertyKey::ProfileName, PropertyKey::PixelWidth }) {
        EXPECT_TRUE(properties.contains(key)) << static_cast<int>(key);
    }
    EXPECT_FALSE(properties.contains(PropertyKey::Orientation));
}

TEST(DestinationProperties, withoutColorManagementNameNoProfile)
{
    OptimizerSettings settings = settingsFor(OutputFormat::Jpeg);
    settings.removeMetadata = false;
    settings.removeColorManagement = true;
    const auto properties = ImageOptimizer::destinationProperties(
        settings, everything(), CompressionQuality::Include);
    EXPECT_FALSE(properties.contains(PropertyKey::ColorModel));
    EXPECT_FALSE(properties.contains(PropertyKey::ProfileName));
    EXPECT_TRUE(properties.contains(PropertyKey::Exif));
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
    EXPECT_EQ(ImageOptimizer::destinationProperties(settings, {}, CompressionQuality::Include)
                  .number(PropertyKey::LossyCompressionQuality),
        GetParam().expected);
    EXPECT_TRUE(
        ImageOptimizer::destinationProperties(settings, {}, CompressionQuality::LeaveOut).empty());
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, DestinationQuality,
    testing::Values(QualityRow { "jpeg", OutputFormat::Jpeg, 82, 0.82 },
        QualityRow { "heic", OutputFormat::Heic, 50, 0.5 },
        QualityRow { "originalCountsAsLossy", OutputFormat::Original, 70, 0.7 },
        QualityRow { "pngHasNone", OutputFormat::Png, 82, std::nullopt },
        QualityRow { "losslessIsFull", OutputFormat::WebPLossless, 10, 1.0 },
        QualityRow { "belowOneIsOne", OutputFormat::Jpeg, 0, 0.01 },
        QualityRow { "negativeIsOne", OutputFormat::Jpeg, -5, 0.01 },
        QualityRow { "hundredIsExactlyOne", OutputFormat::Jpeg, 100, 1.0 },
        QualityRow { "aboveHundredIsExactlyOne", OutputFormat::Jpeg, 1000, 1.0 }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(InputFormatTitle, isTheTypesExtensionInCapitals)
{
    const QUrl url = test::urlOf("/a/picture.jpg");
    for (const auto& [type, title] : std::initializer_list<std::pair<UniformType, const char*>> {
             { UniformType::Jpeg, "JPEG" },
             { UniformType::Png, "PNG" },
             { UniformType::Heic, "HEIC" },
             { UniformType::Heif, "HEIF" },
             { UniformType::Tiff, "TIFF" },
             { UniformType::Gif, "GIF" },
             { UniformType::Bmp, "BMP" },
             { UniformType::WebP, "WEBP" },
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
             { OutputFormat::WebP, "WebP Lossy" },
             { OutputFormat::WebPLossless, "WebP Lossless" },
             { OutputFormat::Jpeg, "JPEG" },
             { OutputFormat::Png, "PNG" },
             { OutputFormat::Heic, "HEIC" },
             { OutputFormat::Original, "TIFF" },
         }) {
        EXPECT_EQ(ImageOptimizer::outputFormatTitle(url, UniformType::Tiff, settingsFor(format)),
            QString::fromLatin1(title));
    }
}

TEST(OutputSupportsAlpha, byFormatAndForTheOriginalByType)
{
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::WebP, UniformType::Jpeg));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::WebPLossless, UniformType::Jpeg));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Png, UniformType::Jpeg));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Jpeg, UniformType::Png));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Heic, UniformType::Png));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Original, UniformType::Png));
    EXPECT_TRUE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Original, UniformType::WebP));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Original, UniformType::Tiff));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Original, UniformType::Gif));
    EXPECT_FALSE(ImageOptimizer::outputSupportsAlpha(OutputFormat::Original, std::nullopt));
}

} // namespace
} // namespace vellumine
