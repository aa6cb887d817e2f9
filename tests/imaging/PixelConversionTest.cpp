#include "imaging/PixelConversion.h"

#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {
namespace {

using test::flat;
using test::gradient;
using test::oddSize;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

TEST(PixelConversion, unpremultipliesWithRounding)
{
    EXPECT_EQ(unpremultiplied(64, 128), 128);
    EXPECT_EQ(unpremultiplied(32, 128), 64);
    EXPECT_EQ(unpremultiplied(0, 128), 0);
    EXPECT_EQ(unpremultiplied(1, 3), 85);
    EXPECT_EQ(unpremultiplied(200, 100), 255);
    EXPECT_EQ(unpremultiplied(255, 255), 255);
}

TEST(PixelConversion, theSameLayoutGivesTheVerySamePicture)
{
    const Image image = gradient(oddSize, rgb8);
    EXPECT_TRUE(relayout(image, rgb8)->isSameAs(image));
}

struct RoundTrip {
    const char* name;
    PixelLayout from;
    PixelLayout through;
};

class PixelConversionRoundTrip : public testing::TestWithParam<RoundTrip> { };

TEST_P(PixelConversionRoundTrip, isLossless)
{
    const Image image = gradient(oddSize, GetParam().from);
    const Image there = relayout(image, GetParam().through).value();
    EXPECT_EQ(there.layout(), GetParam().through);
    const Image back = relayout(there, GetParam().from).value();
    EXPECT_EQ(test::maximumDifference(image, back), 0.0);
}

INSTANTIATE_TEST_SUITE_P(Layouts, PixelConversionRoundTrip,
    testing::Values(RoundTrip { "rgb8ThroughRgba8", rgb8, rgba8Premultiplied },
        RoundTrip { "rgb8ThroughRgb16", rgb8, { ColorModel::rgb, 16, AlphaInfo::none } },
        RoundTrip { "rgb8ThroughArgb16", rgb8, { ColorModel::rgb, 16, AlphaInfo::first } },
        RoundTrip { "rgba8ThroughArgb8", { ColorModel::rgb, 8, AlphaInfo::last },
            { ColorModel::rgb, 8, AlphaInfo::first } },
        RoundTrip { "rgb8ThroughXrgb8", rgb8, { ColorModel::rgb, 8, AlphaInfo::noneSkipFirst } },
        RoundTrip { "cmyk8ThroughCmyk16", { ColorModel::cmyk, 8, AlphaInfo::none },
            { ColorModel::cmyk, 16, AlphaInfo::none } },
        RoundTrip { "grey8ThroughGreyAlpha16", { ColorModel::grey, 8, AlphaInfo::none },
            { ColorModel::grey, 16, AlphaInfo::last } },
        RoundTrip { "premultipliedFirstThroughLast",
            { ColorModel::rgb, 16, AlphaInfo::premultipliedFirst },
            { ColorModel::rgb, 16, AlphaInfo::premultipliedLast } }),
    test::RowName {});

TEST(PixelConversion, premultiplyingAndBackKeepsOpaqueAndClearsTransparentPixels)
{
    const Image image = gradient(oddSize, { ColorModel::rgb, 8, AlphaInfo::last });
    const Image there = relayout(image, rgba8Premultiplied).value();
    EXPECT_EQ(test::sampleAt(there, 0, 5, 0), 0.0) << "alpha is 0 in the first column";
    const int last = oddSize.width - 1;
    EXPECT_EQ(test::sampleAt(there, last, 5, 1), test::sampleAt(image, last, 5, 1));
    for (int x = 0; x < oddSize.width; ++x) {
        for (int c = 0; c < 3; ++c) {
            EXPECT_LE(test::sampleAt(there, x, 7, c), test::sampleAt(there, x, 7, 3));
        }
    }
}

TEST(PixelConversion, takingAlphaAwayComposesOnWhite)
{
    const Image straight
        = flat({ 2, 2 }, { ColorModel::rgb, 8, AlphaInfo::last }, { 0, 0.2, 1, 0.6 });
    const Image opaque = relayout(straight, rgb8).value();
    EXPECT_NEAR(test::sampleAt(opaque, 1, 1, 0), 0.4, 0.003);
    EXPECT_NEAR(test::sampleAt(opaque, 1, 1, 1), 0.52, 0.003);
    EXPECT_NEAR(test::sampleAt(opaque, 1, 1, 2), 1.0, 0.003);

    const Image premultiplied = relayout(straight, rgba8Premultiplied).value();
    EXPECT_LE(test::maximumDifference(opaque, relayout(premultiplied, rgb8).value()), 1.0 / 255);
}

TEST(PixelConversion, sixteenBitsAreRoundedToEight)
{
    const Image deep = test::makeImage({ 256, 3 }, { ColorModel::grey, 16, AlphaInfo::none },
        [](int x, int y, int /*channel*/) { return (x * 257 + (y - 1) * 128) / 65535.0; });
    const Image shallow = relayout(deep, { ColorModel::grey, 8, AlphaInfo::none }).value();
    for (int x = 1; x < 255; ++x) {
        EXPECT_EQ(shallow.row8(0)[x], x);
        EXPECT_EQ(shallow.row8(1)[x], x);
        EXPECT_EQ(shallow.row8(2)[x], x);
    }
}

TEST(PixelConversion, greySpreadsOverRgb)
{
    const Image grey = gradient(oddSize, { ColorModel::grey, 8, AlphaInfo::none });
    const Image rgb = relayout(grey, rgb8).value();
    EXPECT_TRUE(isGrey(rgb));
    EXPECT_EQ(test::sampleAt(rgb, 20, 9, 2), test::sampleAt(grey, 20, 9, 0));
}

TEST(PixelConversion, GreyComesBackFromItsThreeSamples)
{
    for (const PixelLayout layout : { PixelLayout { ColorModel::grey, 8, AlphaInfo::none },
             PixelLayout { ColorModel::grey, 16, AlphaInfo::none },
             PixelLayout { ColorModel::grey, 8, AlphaInfo::last },
             PixelLayout { ColorModel::grey, 8, AlphaInfo::premultipliedFirst } }) {
        const Image grey = gradient(oddSize, layout);
        const Image rgb
            = relayout(grey, { ColorModel::rgb, layout.bitsPerComponent, layout.alpha }).value();
        ASSERT_TRUE(isGrey(rgb));
        const Image back = relayout(rgb, layout).value();
        EXPECT_EQ(back.colorSpace(), ColorSpace::grey());
        EXPECT_EQ(test::maximumDifference(grey, back), 0.0);
    }
}

TEST(PixelConversion, AlphaIsNeededWhereItSaysSomething)
{
    EXPECT_FALSE(needsAlpha(gradient(oddSize, rgb8)));
    EXPECT_FALSE(needsAlpha(flat(oddSize, rgba8Premultiplied, { 0.2, 0.4, 0.6, 1.0 })));
    EXPECT_FALSE(needsAlpha(gradient(oddSize, { ColorModel::rgb, 8, AlphaInfo::noneSkipLast })));
    EXPECT_TRUE(needsAlpha(gradient(oddSize, rgba8Premultiplied)));
    EXPECT_TRUE(needsAlpha(flat(oddSize, { ColorModel::grey, 8, AlphaInfo::only }, { 1.0 })));
}

TEST(PixelConversion, opacityIsSeenInEveryLayout)
{
    EXPECT_TRUE(isOpaque(gradient(oddSize, rgb8)));
    EXPECT_FALSE(isOpaque(gradient(oddSize, rgba8Premultiplied)));
    EXPECT_FALSE(isOpaque(gradient(oddSize, { ColorModel::grey, 16, AlphaInfo::last })));
    EXPECT_TRUE(isOpaque(flat(oddSize, { ColorModel::rgb, 8, AlphaInfo::first }, { 1, 0, 0, 0 })));
    EXPECT_FALSE(isGrey(gradient(oddSize, rgb8)));
}

TEST(PixelConversion, onePixelThatShinesThroughIsFoundAnywhere)
{
    constexpr int width = 37;
    for (const AlphaInfo alpha : { AlphaInfo::first, AlphaInfo::last }) {
        const int channelOfAlpha = alpha == AlphaInfo::first ? 0 : 3;
        for (int at = 0; at <= width; ++at) {
            const Image image = test::makeImage({ width, 1 }, { ColorModel::rgb, 8, alpha },
                [at, channelOfAlpha](int x, int /*y*/, int channel) {
                    return channel == channelOfAlpha && x != at ? 1.0 : 0.99;
                });
            EXPECT_EQ(isOpaque(image), at == width) << at;
        }
    }
}

TEST(PixelConversion, cropsAreConvertedFromTheirOwnRows)
{
    const Image image = gradient(oddSize, rgb8);
    const Image crop = image.cropped({ 11, 7, 20, 13 });
    const Image converted = relayout(crop, rgba8Premultiplied).value();
    EXPECT_EQ(test::sampleAt(converted, 3, 2, 1), test::sampleAt(image, 14, 9, 1));
    EXPECT_EQ(test::sampleAt(converted, 19, 12, 2), test::sampleAt(image, 30, 19, 2));
}

} // namespace
} // namespace vellumine::imaging
