#include "imaging/BitmapContext.h"

#include "imaging/PixelConversion.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace vellumine::imaging {
namespace {

using test::flat;
using test::gradient;
using test::oddSize;
using test::sampleAt;
using test::syntheticPhoto;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout rgba8 { ColorModel::rgb, 8, AlphaInfo::last };

Image drawn(const Image& image, Size size, const ColorSpace& space = ColorSpace::sRgb())
{
    BitmapContext context = BitmapContext::create(size, 8, space).value();
    EXPECT_TRUE(context.draw(image));
    return std::move(context).makeImage().value();
}

double sinc(double x)
{
    return x == 0.0 ? 1.0 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

/// Weights of Lanczos-3 for one output position, in double precision; edges repeat.
std::vector<std::pair<int, double>> lanczosWeights(int target, int sourceSide, int targetSide)
{
    const double ratio = static_cast<double>(sourceSide) / targetSide;
    const double scale = std::max(ratio, 1.0);
    const double centre = (target + 0.5) * ratio - 0.5;
    std::vector<std::pair<int, double>> weights;
    double sum = 0;
    const int first = static_cast<int>(std::ceil(centre - 3.0 * scale));
    const int last = static_cast<int>(std::floor(centre + 3.0 * scale));
    for (int i = first; i <= last; ++i) {
        const double t = (i - centre) / scale;
        const double weight = std::abs(t) < 3.0 ? sinc(t) * sinc(t / 3.0) : 0.0;
        // Beyond the edge the picture goes on as its mirror image.
        int at = i < 0 ? -i - 1 : i;
        at = at >= sourceSide ? 2 * sourceSide - 1 - at : at;
        weights.emplace_back(std::clamp(at, 0, sourceSide - 1), weight);
        sum += weight;
    }
    for (auto& [index, weight] : weights) {
        weight /= sum;
    }
    return weights;
}

/// The reference: separable Lanczos-3 in double precision.
Image lanczosReference(const Image& image, Size size)
{
    const int channels = image.layout().channels();
    std::vector<double> wide(static_cast<std::size_t>(size.width)
        * static_cast<std::size_t>(image.height()) * static_cast<std::size_t>(channels));
    const auto at = [&](int x, int y, int c) -> double& {
        const auto row = static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width);
        return wide.at((row + static_cast<std::size_t>(x)) * static_cast<std::size_t>(channels)
            + static_cast<std::size_t>(c));
    };
    for (int x = 0; x < size.width; ++x) {
        const auto weights = lanczosWeights(x, image.width(), size.width);
        for (int y = 0; y < image.height(); ++y) {
            for (int c = 0; c < channels; ++c) {
                for (const auto& [index, weight] : weights) {
                    at(x, y, c) += weight * sampleAt(image, index, y, c);
                }
            }
        }
    }
    std::vector<std::vector<std::pair<int, double>>> rows;
    rows.reserve(static_cast<std::size_t>(size.height));
    for (int y = 0; y < size.height; ++y) {
        rows.push_back(lanczosWeights(y, image.height(), size.height));
    }
    return test::makeImage(size, image.layout(), [&](int x, int y, int c) {
        double value = 0;
        for (const auto& [index, weight] : rows.at(static_cast<std::size_t>(y))) {
            value += weight * at(x, index, c);
        }
        return value;
    });
}

struct Scaling {
    const char* name;
    Size from;
    Size to;
};

class ResamplingAgainstReference : public testing::TestWithParam<Scaling> { };

TEST_P(ResamplingAgainstReference, isWithin48Decibels)
{
    const Image photo = syntheticPhoto(GetParam().from);
    const Image reference = lanczosReference(photo, GetParam().to);
    const Image result = relayout(drawn(photo, GetParam().to), rgb8).value();
    EXPECT_GE(test::psnr(result, reference), 48.0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ResamplingAgainstReference,
    testing::Values(Scaling { "half", { 320, 200 }, { 160, 100 } },
        Scaling { "odd", { 301, 199 }, { 127, 84 } },
        Scaling { "slightly", { 200, 150 }, { 199, 149 } },
        Scaling { "tenth", { 470, 330 }, { 47, 33 } },
        Scaling { "onlyWidth", { 200, 50 }, { 90, 50 } }),
    test::RowName {});

class FlatColors : public testing::TestWithParam<Scaling> { };

TEST_P(FlatColors, stayExactlyFlat)
{
    for (const int value : { 0, 1, 17, 127, 128, 200, 254, 255 }) {
        const double sample = value / 255.0;
        const Image image = flat(GetParam().from, rgb8, { sample, 1.0 - sample, 0.5 });
        const Image result = drawn(image, GetParam().to);
        const Image expected
            = flat(GetParam().to, rgba8Premultiplied, { sample, 1.0 - sample, 0.5, 1.0 });
        EXPECT_EQ(test::maximumDifference(result, expected), 0.0) << value;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, FlatColors,
    testing::Values(Scaling { "half", { 128, 96 }, { 64, 48 } },
        Scaling { "odd", { 301, 199 }, { 127, 84 } },
        Scaling { "toOnePixel", { 47, 33 }, { 1, 1 } },
        Scaling { "oneRow", { 400, 1 }, { 100, 1 } },
        Scaling { "extreme", { 20000, 3 }, { 3, 1 } }),
    test::RowName {});

TEST(BitmapContext, theSameSizeAndSpaceOnlyChangeTheLayout)
{
    const Image image = gradient(oddSize, rgb8);
    const Image result = drawn(image, oddSize);
    EXPECT_EQ(result.layout(), rgba8Premultiplied);
    EXPECT_EQ(test::maximumDifference(relayout(result, rgb8).value(), image), 0.0);
}

TEST(BitmapContext, pixelsOfTheBitmapsOwnKindAreNotCopied)
{
    const Image image = gradient(oddSize, rgba8Premultiplied);
    const Image result = drawn(image, oddSize, ColorSpace::sRgb());
    EXPECT_TRUE(result.isSameAs(image));
}

TEST(BitmapContext, isTransparentUntilSomethingIsDrawn)
{
    BitmapContext context = BitmapContext::create({ 3, 2 }, 8, ColorSpace::sRgb()).value();
    const Image image = std::move(context).makeImage().value();
    EXPECT_EQ(image.size(), (Size { 3, 2 }));
    EXPECT_EQ(
        test::maximumDifference(image, flat({ 3, 2 }, rgba8Premultiplied, { 0, 0, 0, 0 })), 0.0);
}

TEST(BitmapContext, greyCmykAndOtherDepthsCannotHostRgba)
{
    for (const ColorSpace& space : { ColorSpace::grey(), ColorSpace::deviceCmyk() }) {
        const auto context = BitmapContext::create({ 4, 4 }, 8, space);
        ASSERT_FALSE(context);
        EXPECT_EQ(context.error().kind, Error::Kind::unsupported);
    }
    EXPECT_FALSE(BitmapContext::create({ 4, 4 }, 16, ColorSpace::sRgb()));
    EXPECT_FALSE(BitmapContext::create({ 4, 4 }, 8, ColorSpace::sRgb(), AlphaInfo::last));
    EXPECT_FALSE(BitmapContext::create({ 0, 4 }, 8, ColorSpace::sRgb()));
}

TEST(BitmapContext, transparentEdgesShowNoDarkFringe)
{
    // White on transparent black: resampled in straight form, the edge would turn grey.
    const Image image = test::makeImage(
        { 64, 64 }, rgba8, [](int x, int /*y*/, int /*channel*/) { return x < 31 ? 0.0 : 1.0; });
    const Image result = drawn(image, { 20, 20 });
    int translucent = 0;
    for (int x = 0; x < 20; ++x) {
        const auto alpha = static_cast<std::uint8_t>(std::lround(sampleAt(result, x, 10, 3) * 255));
        if (alpha == 0) {
            continue;
        }
        translucent += alpha < 255 ? 1 : 0;
        for (int c = 0; c < 3; ++c) {
            EXPECT_EQ(unpremultiplied(result.row8(10)[4 * x + c], alpha), 255) << x;
        }
    }
    EXPECT_GT(translucent, 0) << "the edge must fall inside a pixel for this test to say anything";
}

TEST(BitmapContext, noColorExceedsItsAlphaAfterOvershoot)
{
    const Image image = test::makeImage({ 90, 60 }, rgba8, [](int x, int y, int channel) {
        return channel == 3 ? ((x / 7 + y / 5) % 2 == 0 ? 1.0 : 0.3)
                            : ((x / 3) % 2 == 0 ? 1.0 : 0.0);
    });
    const Image result = drawn(image, { 41, 29 });
    for (int y = 0; y < 29; ++y) {
        for (int x = 0; x < 41; ++x) {
            for (int c = 0; c < 3; ++c) {
                ASSERT_LE(sampleAt(result, x, y, c), sampleAt(result, x, y, 3));
            }
        }
    }
}

struct AnyLayout {
    const char* name;
    PixelLayout layout;
};

class DrawingAnyLayout : public testing::TestWithParam<AnyLayout> { };

// Every layout gives, drawn smaller, what its plain 8-bit conversion gives.
TEST_P(DrawingAnyLayout, equalsItsPlainConversionDrawn)
{
    const Image image = gradient({ 94, 66 }, GetParam().layout);
    const Image plain = relayout(image,
        { ColorModel::rgb, 8,
            hasAlpha(GetParam().layout.alpha) ? AlphaInfo::last : AlphaInfo::none })
                            .value();
    const Image a = drawn(image, oddSize);
    const Image b = drawn(plain.withColorSpace(ColorSpace::sRgb()), oddSize);
    EXPECT_LE(test::maximumDifference(a, b), 2.1 / 255.0);
    EXPECT_GE(test::psnr(a, b), 50.0);
    const Image c = drawn(image, image.size());
    const Image d = drawn(plain.withColorSpace(ColorSpace::sRgb()), image.size());
    EXPECT_LE(test::maximumDifference(c, d), 2.1 / 255.0);
}

INSTANTIATE_TEST_SUITE_P(Layouts, DrawingAnyLayout,
    testing::Values(AnyLayout { "rgb16", { ColorModel::rgb, 16, AlphaInfo::none } },
        AnyLayout { "rgba16", { ColorModel::rgb, 16, AlphaInfo::last } },
        AnyLayout { "argb8", { ColorModel::rgb, 8, AlphaInfo::first } },
        AnyLayout { "xrgb8", { ColorModel::rgb, 8, AlphaInfo::noneSkipFirst } },
        AnyLayout { "premultiplied16", { ColorModel::rgb, 16, AlphaInfo::premultipliedLast } },
        AnyLayout { "grey8", { ColorModel::grey, 8, AlphaInfo::none } },
        AnyLayout { "grey16", { ColorModel::grey, 16, AlphaInfo::none } },
        AnyLayout { "greyAlpha8", { ColorModel::grey, 8, AlphaInfo::last } },
        AnyLayout { "greyAlpha16", { ColorModel::grey, 16, AlphaInfo::premultipliedLast } }),
    test::RowName {});

TEST(BitmapContext, inkBecomesLight)
{
    const PixelLayout cmyk { ColorModel::cmyk, 8, AlphaInfo::none };
    const Image paper = drawn(flat({ 40, 30 }, cmyk, { 0, 0, 0, 0 }), { 20, 15 });
    const Image black = drawn(flat({ 40, 30 }, cmyk, { 0, 0, 0, 1 }), { 20, 15 });
    const Image cyan = drawn(flat({ 40, 30 }, cmyk, { 1, 0, 0, 0 }), { 20, 15 });
    EXPECT_GT(sampleAt(paper, 5, 5, 1), 0.97);
    EXPECT_LT(sampleAt(black, 5, 5, 1), 0.25);
    EXPECT_LT(sampleAt(cyan, 5, 5, 0), 0.35);
    EXPECT_GT(sampleAt(cyan, 5, 5, 2), 0.6);
}

TEST(BitmapContext, aMaskHasNoColorToDraw)
{
    const Image mask = flat({ 4, 4 }, { ColorModel::grey, 8, AlphaInfo::only }, { 0.5 });
    BitmapContext context = BitmapContext::create({ 4, 4 }, 8, ColorSpace::sRgb()).value();
    const auto result = context.draw(mask);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind, Error::Kind::unsupported);
}

} // namespace
} // namespace vellumine::imaging
