#include "imaging/PixelConversion.h"
#include "imaging/codecs/tiff/TiffCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellumine::imaging::tiff {
namespace {

struct LayoutRow {
    const char* name;
    PixelLayout given;
    PixelLayout written;
};

class TiffRoundTrip : public testing::TestWithParam<LayoutRow> { };

TEST_P(TiffRoundTrip, isLossless)
{
    const auto& [name, given, written] = GetParam();
    const Image image = test::gradient(test::oddSize, given);
    for (const Effort effort : { Effort::smallest, Effort::fastest }) {
        const auto file = encode(image, { .effort = effort, .metadata = {} });
        ASSERT_TRUE(file) << file.error().detail;
        EXPECT_TRUE(sniff(*file));
        const auto decoded = decode(*file, {});
        ASSERT_TRUE(decoded) << decoded.error().detail;
        EXPECT_EQ(decoded->image.layout(), written);
        const auto expected = relayout(image, written);
        ASSERT_TRUE(expected);
        EXPECT_EQ(test::maximumDifference(decoded->image, *expected), 0.0);
    }
}

constexpr auto grey = ColorModel::grey;
constexpr auto rgb = ColorModel::rgb;
constexpr auto cmyk = ColorModel::cmyk;

LayoutRow same(const char* name, PixelLayout layout)
{
    return { name, layout, layout };
}

INSTANTIATE_TEST_SUITE_P(Layouts, TiffRoundTrip,
    testing::Values(same("grey8", { grey, 8, AlphaInfo::none }),
        same("grey16", { grey, 16, AlphaInfo::none }),
        same("grey8Last", { grey, 8, AlphaInfo::last }),
        same("grey16Premultiplied", { grey, 16, AlphaInfo::premultipliedLast }),
        same("rgb8", { rgb, 8, AlphaInfo::none }), same("rgb16", { rgb, 16, AlphaInfo::none }),
        same("rgb8Last", { rgb, 8, AlphaInfo::last }),
        same("rgb16Last", { rgb, 16, AlphaInfo::last }),
        same("rgb8Premultiplied", { rgb, 8, AlphaInfo::premultipliedLast }),
        same("rgb16Premultiplied", { rgb, 16, AlphaInfo::premultipliedLast }),
        LayoutRow { "rgb8First", { rgb, 8, AlphaInfo::first }, { rgb, 8, AlphaInfo::last } },
        LayoutRow { "rgb16PremultipliedFirst", { rgb, 16, AlphaInfo::premultipliedFirst },
            { rgb, 16, AlphaInfo::premultipliedLast } },
        LayoutRow {
            "rgb8SkipLast", { rgb, 8, AlphaInfo::noneSkipLast }, { rgb, 8, AlphaInfo::none } },
        LayoutRow {
            "rgb16SkipFirst", { rgb, 16, AlphaInfo::noneSkipFirst }, { rgb, 16, AlphaInfo::none } },
        same("cmyk8", { cmyk, 8, AlphaInfo::none }), same("cmyk16", { cmyk, 16, AlphaInfo::none })),
    [](const auto& row) { return row.param.name; });

PixelLayout layoutWritten(const Image& image, ProfilePolicy profile)
{
    const auto file = encode(image, { .profile = profile, .metadata = {} });
    const auto decoded = file.and_then([](const ByteBuffer& bytes) { return decode(bytes, {}); });
    if (!decoded) {
        ADD_FAILURE() << decoded.error().detail;
        return {};
    }
    const auto expected = relayout(image, decoded->image.layout());
    EXPECT_EQ(test::maximumDifference(decoded->image, expected.value()), 0.0);
    return decoded->image.layout();
}

TEST(TiffEncoder, alphaThatIsOpaqueIsLeftOut)
{
    for (const PixelLayout given :
        { rgba8Premultiplied, PixelLayout { rgb, 16, AlphaInfo::first } }) {
        const Image opaque = test::makeImage(test::oddSize, given, [&](int x, int y, int c) {
            return c == (given.alpha == AlphaInfo::first ? 0 : 3) ? 1.0 : (x * 3 + y + c) / 200.0;
        });
        EXPECT_EQ(layoutWritten(opaque, ProfilePolicy::omit),
            (PixelLayout { rgb, given.bitsPerComponent, AlphaInfo::none }));
    }
    const Image oneThrough = test::makeImage(test::oddSize, rgba8Premultiplied,
        [](int x, int y, int c) { return c < 3 ? 0.0 : (x == 46 && y == 32 ? 254.0 / 255 : 1.0); });
    EXPECT_EQ(layoutWritten(oneThrough, ProfilePolicy::omit), rgba8Premultiplied);
}

TEST(TiffEncoder, greyHasOneSampleUnlessAProfileIsForThree)
{
    const Image drawn = test::makeImage(test::oddSize, rgba8Premultiplied,
        [](int x, int y, int c) { return c == 3 ? 1.0 : (x * 5 + y) % 256 / 255.0; });
    const PixelLayout grey8 { grey, 8, AlphaInfo::none };
    EXPECT_EQ(layoutWritten(drawn, ProfilePolicy::omit), grey8);
    EXPECT_EQ(
        layoutWritten(drawn.withColorSpace(ColorSpace::deviceRgb()), ProfilePolicy::embed), grey8);
    EXPECT_EQ(
        layoutWritten(drawn, ProfilePolicy::embed), (PixelLayout { rgb, 8, AlphaInfo::none }));
}

TEST(TiffEncoder, profileIsWrittenAsAsked)
{
    const Image image = test::gradient(test::oddSize, { rgb, 8, AlphaInfo::none });
    const ByteSpan profile = ColorSpace::sRgb().iccProfile();
    ASSERT_FALSE(profile.empty());
    const auto contains = [profile](const ByteBuffer& file) {
        return std::search(file.begin(), file.end(), profile.begin(), profile.end()) != file.end();
    };
    const auto with = encode(image, { .profile = ProfilePolicy::embed, .metadata = {} });
    const auto without = encode(image, { .profile = ProfilePolicy::omit, .metadata = {} });
    const auto device = encode(image.withColorSpace(ColorSpace::deviceRgb()), {});
    ASSERT_TRUE(with && without && device);
    EXPECT_TRUE(contains(*with));
    EXPECT_FALSE(contains(*without));
    EXPECT_FALSE(contains(*device));
}

TEST(TiffEncoder, aPhotographShrinksLosslessly)
{
    const Image photo = test::syntheticPhoto({ 200, 150 });
    const auto file = encode(photo, {});
    ASSERT_TRUE(file);
    const double ratio = static_cast<double>(file->size()) / (200.0 * 150.0 * 3.0);
    EXPECT_GT(ratio, 0.3);
    EXPECT_LT(ratio, 0.9);
}

TEST(TiffEncoder, severalStripsAreJoined)
{
    const Size size { 1200, 700 }; // 2.5 MB, three strips
    const Image image = test::makeImage(size, { rgb, 8, AlphaInfo::none },
        [](int x, int y, int c) { return (x * 3 + y * 5 + c * 70) % 256 / 255.0; });
    const auto file = encode(image, { .effort = Effort::fastest, .metadata = {} });
    ASSERT_TRUE(file);
    const auto decoded = decode(*file, {});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(test::maximumDifference(decoded->image, image), 0.0);
}

} // namespace
} // namespace vellumine::imaging::tiff
