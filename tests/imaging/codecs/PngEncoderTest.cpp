#include "imaging/PixelConversion.h"
#include "imaging/codecs/PngFiles.h"
#include "imaging/codecs/png/PngCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace vellumine::imaging {
namespace {

using test::gradient;
using test::makeImage;
using test::maximumDifference;
using test::oddSize;

constexpr PixelLayout grey8 { ColorModel::grey, 8, AlphaInfo::none };
constexpr PixelLayout greyAlpha8 { ColorModel::grey, 8, AlphaInfo::last };
constexpr PixelLayout grey16 { ColorModel::grey, 16, AlphaInfo::none };
constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout rgb16 { ColorModel::rgb, 16, AlphaInfo::none };
constexpr PixelLayout rgba8 { ColorModel::rgb, 8, AlphaInfo::last };
constexpr PixelLayout rgba16 { ColorModel::rgb, 16, AlphaInfo::last };

const EncodeOptions smallest { .profile = ProfilePolicy::omit, .metadata = {} };
const EncodeOptions fastest {
    .profile = ProfilePolicy::omit, .effort = Effort::fastest, .metadata = {}
};

ByteBuffer encoded(const Image& image, const EncodeOptions& options = smallest)
{
    return png::encode(image, options).value();
}

Image decoded(ByteSpan file)
{
    return png::decode(file, {}).value().image;
}

/// Colour type and depth as the header has them.
struct Kind {
    int colorType = 0;
    int bitDepth = 0;

    friend bool operator==(const Kind&, const Kind&) = default;
    friend void PrintTo(const Kind& kind, std::ostream* stream)
    {
        *stream << "type " << kind.colorType << " with " << kind.bitDepth << " bits";
    }
};

Kind kindOf(ByteSpan file)
{
    const std::string header = test::chunkContent(file, "IHDR");
    return { header.at(9), header.at(8) };
}

/// The largest difference when both are seen as RGB and alpha with 16 bits.
double visibleDifference(const Image& a, const Image& b)
{
    return maximumDifference(relayout(a, rgba16).value(), relayout(b, rgba16).value());
}

/// The picture comes back exactly, and in the given kind.
void expectKind(const Image& image, Kind kind)
{
    const auto file = encoded(image);
    EXPECT_EQ(kindOf(file), kind);
    EXPECT_EQ(visibleDifference(image, decoded(file)), 0.0);
}

/// Noise with more than 256 colours.
double noise(int x, int y, int channel)
{
    const auto value = static_cast<unsigned>(x * 7919 + y * 104729 + channel * 1299709);
    return ((value * 2654435761U) >> 16U) % 256 / 255.0;
}

TEST(PngEncoder, keepsEveryStraightPictureExactly)
{
    for (const PixelLayout layout :
        { grey8, greyAlpha8, grey16, PixelLayout { ColorModel::grey, 16, AlphaInfo::last }, rgb8,
            rgb16, rgba8, rgba16, PixelLayout { ColorModel::rgb, 8, AlphaInfo::first },
            PixelLayout { ColorModel::rgb, 16, AlphaInfo::first },
            PixelLayout { ColorModel::rgb, 8, AlphaInfo::noneSkipLast },
            PixelLayout { ColorModel::rgb, 16, AlphaInfo::noneSkipFirst } }) {
        for (const Image& image :
            { gradient(oddSize, layout), makeImage(oddSize, layout, noise) }) {
            EXPECT_EQ(visibleDifference(image, decoded(encoded(image, smallest))), 0.0);
            EXPECT_EQ(visibleDifference(image, decoded(encoded(image, fastest))), 0.0);
        }
    }
}

TEST(PngEncoder, keepsEverySize)
{
    for (int height = 1; height <= 9; ++height) {
        for (int width = 1; width <= 9; ++width) {
            for (const PixelLayout layout : { grey8, rgba8 }) {
                const Image image = gradient({ width, height }, layout);
                ASSERT_EQ(visibleDifference(image, decoded(encoded(image))), 0.0)
                    << width << ' ' << height;
            }
        }
    }
}

TEST(PngEncoder, dividesPremultipliedColourOut)
{
    for (const AlphaInfo alpha : { AlphaInfo::premultipliedLast, AlphaInfo::premultipliedFirst }) {
        const Image image = gradient(oddSize, { ColorModel::rgb, 8, alpha });
        const Image straight = relayout(image, rgba8).value();
        for (const EncodeOptions& options : { smallest, fastest }) {
            EXPECT_EQ(maximumDifference(straight, decoded(encoded(image, options))), 0.0);
        }
    }
}

TEST(PngEncoder, dropsAlphaThatIsOpaque)
{
    const Image opaque = makeImage(
        oddSize, rgba8, [](int x, int y, int c) { return c == 3 ? 1.0 : noise(x, y, c); });
    expectKind(opaque, { 2, 8 });
    EXPECT_EQ(kindOf(encoded(opaque, fastest)), (Kind { 2, 8 }));
    const Image almost = makeImage(oddSize, rgba8, [](int x, int y, int c) {
        return c == 3 ? (x == 46 && y == 32 ? 254.0 / 255.0 : 1.0) : noise(x, y, c);
    });
    expectKind(almost, { 6, 8 });
}

TEST(PngEncoder, writesSixteenBitsOnlyWhereTheySaySomething)
{
    const auto eight = [](int x, int y, int c) { return std::round(noise(x, y, c) * 255) / 255; };
    expectKind(makeImage(oddSize, rgb16, eight), { 2, 8 });
    expectKind(makeImage(oddSize, rgba16, eight), { 6, 8 });
    expectKind(
        makeImage(oddSize, grey16, [](int x, int y, int) { return noise(x, y, 0); }), { 0, 8 });
    // One low byte that says something.
    const Image deep = makeImage(oddSize, rgb16, [&](int x, int y, int c) {
        return eight(x, y, c) + (x == 46 && y == 32 && c == 2 ? 1.0 / 65535.0 : 0.0);
    });
    // The last sample may be white already.
    ASSERT_LT(noise(46, 32, 2), 1.0);
    expectKind(deep, { 2, 16 });
    expectKind(gradient(oddSize, grey16), { 0, 16 });
}

TEST(PngEncoder, writesGreyColourAsGrey)
{
    const auto sample = [](int x, int y, int /*c*/) { return noise(x, y, 0); };
    expectKind(makeImage(oddSize, rgb8, sample), { 0, 8 });
    const auto withAlpha
        = [](int x, int y, int c) { return c == 3 ? noise(x, y, 1) : noise(x, y, 0); };
    expectKind(makeImage(oddSize, rgba8, withAlpha), { 4, 8 });
    expectKind(
        makeImage(oddSize, rgb16, [](int x, int y, int /*c*/) { return (x * 1000 + y) / 65535.0; }),
        { 0, 16 });
}

TEST(PngEncoder, writesGreyInTheFewestBits)
{
    struct Row {
        int levels;
        Kind kind;
    };
    for (const auto& [levels, kind] :
        { Row { 2, { 0, 1 } }, Row { 4, { 0, 2 } }, Row { 16, { 0, 4 } }, Row { 256, { 0, 8 } } }) {
        expectKind(makeImage(oddSize, grey8,
                       [count = levels](int x, int y, int /*c*/) {
                           return (x * 5 + y * 3) % count / (count - 1.0);
                       }),
            kind);
    }
    // Two greys that are not black and white: a palette of two takes one bit.
    expectKind(makeImage({ 200, 200 }, grey8,
                   [](int x, int y, int /*c*/) { return (x * x + y) % 3 == 0 ? 0.2 : 0.4; }),
        { 3, 1 });
}

/// The first of so many colours, each of which occurs, in enough pixels for a palette to pay.
Image pictureOf(int colors)
{
    const Size size = colors > 100 ? Size { 260, 255 } : Size { 120, 100 };
    return makeImage(size, rgb8, [colors](int x, int y, int channel) {
        const int index = (x * x + x + y * 7) % colors;
        return std::array { index % 16 * 17, index / 16 * 15, 80 }.at(
                   static_cast<std::size_t>(channel))
            / 255.0;
    });
}

TEST(PngEncoder, writesFewColoursWithAPalette)
{
    struct Row {
        int colors;
        int bitDepth;
    };
    for (const auto& [colors, bitDepth] : { Row { 2, 1 }, Row { 3, 2 }, Row { 4, 2 }, Row { 5, 4 },
             Row { 16, 4 }, Row { 17, 8 }, Row { 256, 8 } }) {
        const Image image = pictureOf(colors);
        expectKind(image, { 3, bitDepth });
        const auto file = encoded(image);
        EXPECT_EQ(test::chunkContent(file, "PLTE").size(), 3U * static_cast<unsigned>(colors));
        EXPECT_TRUE(test::chunkContent(file, "tRNS").empty());
    }
    expectKind(pictureOf(257), { 2, 8 });
}

TEST(PngEncoder, listsTheTransparentColoursOfAPaletteFirst)
{
    const auto image = makeImage({ 150, 140 }, rgba8, [](int x, int y, int c) {
        const int index = (x * x + y * 7) % 40;
        return c < 3 ? noise(index, 0, c) : (index % 4 == 0 ? index / 40.0 : 1.0);
    });
    expectKind(image, { 3, 8 });
    const auto file = encoded(image);
    EXPECT_EQ(test::chunkContent(file, "PLTE").size(), 40U * 3U);
    EXPECT_EQ(test::chunkContent(file, "tRNS").size(), 10U);
}

TEST(PngEncoder, keepsTheColourOfTransparentPixels)
{
    const auto image = makeImage(
        oddSize, rgba8, [](int x, int y, int c) { return c == 3 ? (x + y) % 2 : noise(x, y, c); });
    EXPECT_EQ(maximumDifference(image, decoded(encoded(image))), 0.0);
}

TEST(PngEncoder, choosesTheDirectFormWhereThePaletteCostsMore)
{
    const auto file = encoded(makeImage({ 4, 4 }, rgb8, noise));
    EXPECT_EQ(kindOf(file), (Kind { 2, 8 }));
}

TEST(PngEncoder, reducesNothingButOpaqueAlphaWhenItHasToBeFast)
{
    const auto white = test::flat(oddSize, rgb16, { 1.0, 1.0, 1.0 });
    EXPECT_EQ(kindOf(encoded(white, fastest)), (Kind { 2, 16 }));
}

TEST(PngEncoder, isSmallerWhenItMayTakeItsTime)
{
    const Image photo = test::syntheticPhoto({ 331, 257 });
    const auto slow = encoded(photo, smallest);
    const auto fast = encoded(photo, fastest);
    EXPECT_LT(slow.size(), fast.size());
    EXPECT_LT(fast.size(), 331U * 257U * 3U);
    EXPECT_GT(slow.size(), 331U * 257U / 2);
}

TEST(PngEncoder, keepsTheProfileWhateverTheEffort)
{
    const auto wide = ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.68, 0.32 }, { 0.265, 0.69 }, { 0.15, 0.06 } }, {})
                          .value();
    const Image image = gradient(oddSize, rgb8).withColorSpace(wide);
    for (const Effort effort : { Effort::smallest, Effort::fastest }) {
        const auto file = encoded(image, { .effort = effort, .metadata = {} });
        const Image back = decoded(file);
        EXPECT_TRUE(std::ranges::equal(back.colorSpace().iccProfile(), wide.iccProfile()));
        EXPECT_EQ(visibleDifference(image, back), 0.0);
    }
}

TEST(PngEncoder, writesTheSmallestPicturesWithoutAByteTooMany)
{
    const Image pixel = test::flat({ 1, 1 }, { ColorModel::rgb, 8, AlphaInfo::none }, { 0, 0, 1 });
    EXPECT_EQ(encoded(pixel, smallest).size(), 69U);
}

TEST(PngEncoder, refusesCmyk)
{
    const auto result
        = png::encode(gradient(oddSize, { ColorModel::cmyk, 8, AlphaInfo::none }), {});
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().kind, Error::Kind::unsupported);
}

} // namespace
} // namespace vellumine::imaging
