#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"

#include <gtest/gtest.h>

#include <limits>

namespace vellumine {
namespace {

using imaging::AlphaInfo;
using imaging::ColorModel;
using imaging::ColorSpace;
using imaging::Image;
using imaging::rgba8Premultiplied;
using imaging::Size;

struct SizeRow {
    const char* name;
    Size size;
    ResizeMode mode;
    qint64 limit;
    Size expected;
};

class TransformedSize : public testing::TestWithParam<SizeRow> { };

TEST_P(TransformedSize, followsTheLimit)
{
    OptimizerSettings settings;
    settings.resizeMode = GetParam().mode;
    settings.maximumPixels = GetParam().limit;
    EXPECT_EQ(ImageOptimizer::transformedSize(GetParam().size, settings), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, TransformedSize,
    testing::Values(
        SizeRow { "maxWidth", { 4000, 3000 }, ResizeMode::maxWidth, 1000, { 1000, 750 } },
        SizeRow { "maxWidthOfAPortrait", { 300, 4000 }, ResizeMode::maxWidth, 1000, { 300, 4000 } },
        SizeRow { "maxHeight", { 4000, 3000 }, ResizeMode::maxHeight, 1500, { 2000, 1500 } },
        SizeRow {
            "maxHeightOfALandscape", { 4000, 300 }, ResizeMode::maxHeight, 1000, { 4000, 300 } },
        SizeRow {
            "longestEdgeIsWidth", { 4000, 3000 }, ResizeMode::longestEdge, 2000, { 2000, 1500 } },
        SizeRow {
            "longestEdgeIsHeight", { 3000, 4000 }, ResizeMode::longestEdge, 2000, { 1500, 2000 } },
        SizeRow { "none", { 4000, 3000 }, ResizeMode::none, 10, { 4000, 3000 } },
        SizeRow {
            "limitEqualToTheEdge", { 4000, 3000 }, ResizeMode::maxWidth, 4000, { 4000, 3000 } },
        SizeRow {
            "limitOneBelowTheEdge", { 4000, 3000 }, ResizeMode::maxWidth, 3999, { 3999, 2999 } },
        SizeRow { "neverEnlarged", { 40, 30 }, ResizeMode::longestEdge, 4000, { 40, 30 } },
        SizeRow { "fractionsAreCutOff", { 4000, 10 }, ResizeMode::longestEdge, 1000, { 1000, 2 } },
        SizeRow { "neverBelowOnePixel", { 4000, 1 }, ResizeMode::longestEdge, 1000, { 1000, 1 } },
        SizeRow { "limitZeroIsOne", { 4000, 3000 }, ResizeMode::maxWidth, 0, { 1, 1 } },
        SizeRow { "negativeLimitIsOne", { 4, 2 }, ResizeMode::maxHeight, -7, { 2, 1 } },
        SizeRow { "smallestLimit", { 4, 2 }, ResizeMode::maxWidth,
            std::numeric_limits<qint64>::min(), { 1, 1 } },
        SizeRow { "largestLimit", { 4, 2 }, ResizeMode::maxWidth,
            std::numeric_limits<qint64>::max(), { 4, 2 } }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(Transformed, withNothingToDoIsTheVerySamePicture)
{
    for (const ColorModel model : { ColorModel::rgb, ColorModel::grey, ColorModel::cmyk }) {
        const Image image = test::gradient({ 47, 33 }, { model, 8, AlphaInfo::none });
        EXPECT_TRUE(ImageOptimizer::transformed(image, test::plainSettings(OutputFormat::png))
                        .isSameAs(image));
    }
}

TEST(Transformed, forSharingIsRedrawnAtTheSameSizeInSRgb)
{
    OptimizerSettings settings = test::plainSettings(OutputFormat::png);
    settings.optimizeColorForSharing = true;
    const Image image = test::gradient({ 47, 33 }, { ColorModel::rgb, 8, AlphaInfo::none });
    const Image drawn = ImageOptimizer::transformed(image, settings);
    EXPECT_FALSE(drawn.isSameAs(image));
    EXPECT_EQ(drawn.size(), image.size());
    EXPECT_EQ(drawn.layout(), rgba8Premultiplied);
    EXPECT_EQ(drawn.colorSpace(), ColorSpace::sRgb());
}

TEST(Transformed, sharingWinsOverRemovedColorManagement)
{
    OptimizerSettings settings = test::plainSettings(OutputFormat::png);
    settings.optimizeColorForSharing = true;
    settings.removeColorManagement = true;
    const Image image = test::gradient({ 4, 3 }, { ColorModel::rgb, 8, AlphaInfo::none });
    EXPECT_EQ(ImageOptimizer::transformed(image, settings).colorSpace(), ColorSpace::sRgb());
}

TEST(Transformed, removedColorManagementAloneIsDeviceRgb)
{
    OptimizerSettings settings = test::plainSettings(OutputFormat::png);
    settings.removeColorManagement = true;
    const Image image = test::gradient({ 4, 3 }, { ColorModel::rgb, 8, AlphaInfo::none });
    const Image drawn = ImageOptimizer::transformed(image, settings);
    EXPECT_EQ(drawn.colorSpace(), ColorSpace::deviceRgb());
    EXPECT_EQ(drawn.size(), image.size());
}

TEST(Transformed, onlyResizedKeepsItsOwnColors)
{
    OptimizerSettings settings = test::plainSettings(OutputFormat::png);
    settings.resizeMode = ResizeMode::maxWidth;
    settings.maximumPixels = 20;
    const auto wide = ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } },
        { imaging::TransferCurve::Kind::sRgb, 1.0 });
    ASSERT_TRUE(wide);
    const Image image
        = test::gradient({ 40, 30 }, { ColorModel::rgb, 8, AlphaInfo::none }).withColorSpace(*wide);
    const Image drawn = ImageOptimizer::transformed(image, settings);
    EXPECT_EQ(drawn.size(), (Size { 20, 15 }));
    EXPECT_EQ(drawn.colorSpace(), *wide);
}

TEST(Transformed, greyAndCmykThatKeepTheirColorsAreNotResized)
{
    OptimizerSettings settings = test::plainSettings(OutputFormat::png);
    settings.resizeMode = ResizeMode::maxWidth;
    settings.maximumPixels = 20;
    for (const ColorModel model : { ColorModel::grey, ColorModel::cmyk }) {
        const Image image = test::gradient({ 40, 30 }, { model, 8, AlphaInfo::none });
        EXPECT_TRUE(ImageOptimizer::transformed(image, settings).isSameAs(image));
    }
}

TEST(Transformed, transparencyStays)
{
    OptimizerSettings settings;
    settings.resizeMode = ResizeMode::maxWidth;
    settings.maximumPixels = 24;
    const Image image = test::gradient({ 48, 32 }, { ColorModel::rgb, 8, AlphaInfo::last });
    const Image drawn = ImageOptimizer::transformed(image, settings);
    EXPECT_EQ(drawn.size(), (Size { 24, 16 }));
    EXPECT_LT(test::sampleAt(drawn, 0, 8, 3), 0.1);
    EXPECT_GT(test::sampleAt(drawn, 23, 8, 3), 0.9);
}

} // namespace
} // namespace vellumine
