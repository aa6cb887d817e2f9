#include "imaging/PixelConversion.h"
#include "imaging/codecs/gif/GifCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {

namespace {

using test::oddSize;

constexpr PixelLayout opaque { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout withAlpha { ColorModel::rgb, 8, AlphaInfo::last };

/// A picture of so many colours, and of so many transparent pixels at its start.
Image withColors(int count, int transparent)
{
    const PixelLayout layout = transparent > 0 ? withAlpha : opaque;
    return test::makeImage(oddSize, layout, [=](int x, int y, int channel) {
        const int at = y * oddSize.width + x;
        const int color = at % count;
        if (channel == 3) {
            return at < transparent ? 0.0 : 1.0;
        }
        if (at < transparent) {
            return 0.0; // what the reader gives for no colour
        }
        const std::array<int, 3> samples { color % 256, color / 256 * 40 + 7, color * 3 % 256 };
        return samples.at(static_cast<std::size_t>(channel)) / 255.0;
    });
}

DecodedImage writtenAndRead(const Image& image)
{
    return gif::decode(gif::encode(image, {}).value(), {}).value();
}

struct ExactRow {
    std::string_view name;
    int colors;
    int transparent;
};

class GifExactColors : public testing::TestWithParam<ExactRow> { };

TEST_P(GifExactColors, RoundTrip)
{
    const Image image = withColors(GetParam().colors, GetParam().transparent);
    const DecodedImage decoded = writtenAndRead(image);
    ASSERT_EQ(decoded.image.layout(), image.layout());
    EXPECT_EQ(test::maximumDifference(decoded.image, image), 0);
}

INSTANTIATE_TEST_SUITE_P(Table, GifExactColors,
    testing::Values(ExactRow { "One", 1, 0 }, ExactRow { "Two", 2, 0 }, ExactRow { "Three", 3, 0 },
        ExactRow { "AllThatFit", 256, 0 }, ExactRow { "OneAndTransparent", 1, 5 },
        ExactRow { "TwoAndTransparent", 2, 5 }, ExactRow { "AllThatFitBesideTransparent", 255, 5 },
        ExactRow { "NothingButTransparent", 1, oddSize.width* oddSize.height }),
    test::RowName());

TEST(GifQuantised, OneColourTooManyStaysClose)
{
    const Image image = withColors(257, 0);
    const DecodedImage decoded = writtenAndRead(image);
    ASSERT_EQ(decoded.image.layout(), opaque);
    const double fidelity = test::psnr(decoded.image, image);
    EXPECT_GT(fidelity, 38);
    EXPECT_LT(fidelity, 99);
}

TEST(GifQuantised, APhotographLooksLikeItself)
{
    const Image image = test::syntheticPhoto({ 320, 200 });
    const auto file = gif::encode(image, {});
    ASSERT_TRUE(file);
    EXPECT_GT(file->size(), 20'000U);
    EXPECT_LT(file->size(), 70'000U);
    const double fidelity = test::psnr(gif::decode(*file, {})->image, image);
    EXPECT_GT(fidelity, 31);
    EXPECT_LT(fidelity, 45);
}

TEST(GifQuantised, TransparencyIsExact)
{
    // 256 colours leave no room for the transparent one.
    const Image image = withColors(256, 300);
    const DecodedImage decoded = writtenAndRead(image);
    ASSERT_EQ(decoded.image.layout(), withAlpha);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ASSERT_EQ(test::sampleAt(decoded.image, x, y, 3), test::sampleAt(image, x, y, 3))
                << x << ", " << y;
        }
    }
    EXPECT_GT(test::psnr(decoded.image, image), 38);
}

TEST(GifAlpha, IsCutAtOneHalf)
{
    const Image image = test::makeImage({ 256, 1 }, withAlpha,
        [](int x, int /*y*/, int channel) { return channel == 3 ? x / 255.0 : 0.4; });
    const DecodedImage decoded = writtenAndRead(image);
    for (int x = 0; x < 256; ++x) {
        EXPECT_EQ(test::sampleAt(decoded.image, x, 0, 3), x < 128 ? 0.0 : 1.0) << x;
        EXPECT_EQ(test::sampleAt(decoded.image, x, 0, 0), x < 128 ? 0.0 : 0.4) << x;
    }
}

class GifLayout : public testing::TestWithParam<PixelLayout> { };

TEST_P(GifLayout, IsConverted)
{
    const Image image = test::flat({ 5, 3 }, GetParam(), { 1.0, 1.0, 1.0, 1.0 });
    const DecodedImage decoded = writtenAndRead(image);
    EXPECT_EQ(decoded.image.layout(), opaque);
    EXPECT_EQ(test::maximumDifference(decoded.image, test::flat({ 5, 3 }, opaque, { 1, 1, 1 })), 0);
}

INSTANTIATE_TEST_SUITE_P(Every, GifLayout,
    testing::Values(PixelLayout { ColorModel::grey, 8, AlphaInfo::none },
        PixelLayout { ColorModel::grey, 16, AlphaInfo::last },
        PixelLayout { ColorModel::rgb, 16, AlphaInfo::first }, rgba8Premultiplied,
        PixelLayout { ColorModel::rgb, 8, AlphaInfo::noneSkipFirst }),
    [](const auto& row) { return "Layout" + std::to_string(row.index); });

TEST(GifWriterRefusal, HasNoCmyk)
{
    const auto file = gif::encode(test::gradient(oddSize, { ColorModel::cmyk, 8 }), {});
    ASSERT_FALSE(file);
    EXPECT_EQ(file.error().kind, Error::Kind::unsupported);
}

TEST(GifWriterRefusal, HoldsSidesOf65535)
{
    const PixelLayout grey { ColorModel::grey, 8, AlphaInfo::none };
    EXPECT_TRUE(gif::encode(test::flat({ 65'535, 1 }, grey, { 0.5 }), {}));
    const auto file = gif::encode(test::flat({ 1, 65'536 }, grey, { 0.5 }), {});
    ASSERT_FALSE(file);
    EXPECT_EQ(file.error().kind, Error::Kind::encodingFailed);
}

} // namespace

} // namespace vellumine::imaging
