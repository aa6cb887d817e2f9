#include "imaging/PixelConversion.h"
#include "imaging/codecs/LittleEndian.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {

namespace {

using test::oddSize;
using test::RowName;

struct Row {
    std::string_view name;
    PixelLayout layout;
    int bits; ///< in the file
    std::uint32_t infoBytes;
    std::size_t fileBytes;
};

EncodeOptions withoutProfile()
{
    EncodeOptions options;
    options.profile = ProfilePolicy::omit;
    return options;
}

class BmpWriter : public testing::TestWithParam<Row> { };

TEST_P(BmpWriter, RoundTripsInTheSmallestForm)
{
    const Row& row = GetParam();
    const Image image = test::gradient(oddSize, row.layout);
    const auto file = bmp::encode(image, withoutProfile());
    ASSERT_TRUE(file);
    EXPECT_EQ(littleEndian32(*file, 14), row.infoBytes);
    EXPECT_EQ(littleEndian16(*file, 28), row.bits);
    EXPECT_EQ(file->size(), row.fileBytes);
    EXPECT_EQ(littleEndian32(*file, 2), row.fileBytes);

    const auto decoded = bmp::decode(*file, {});
    ASSERT_TRUE(decoded);
    const PixelLayout expected { ColorModel::rgb, 8,
        row.bits == 32 ? AlphaInfo::last : AlphaInfo::none };
    ASSERT_EQ(decoded->image.layout(), expected);
    EXPECT_EQ(test::maximumDifference(decoded->image, relayout(image, expected).value()), 0);
}

// 47 pixels a row: 48, 144 and 188 bytes, 33 rows
INSTANTIATE_TEST_SUITE_P(Table, BmpWriter,
    testing::Values(
        Row { "Grey8", { ColorModel::grey, 8, AlphaInfo::none }, 8, 40, 54 + 1024 + 48 * 33 },
        Row { "Grey16", { ColorModel::grey, 16, AlphaInfo::none }, 8, 40, 54 + 1024 + 48 * 33 },
        Row { "GreyAlpha", { ColorModel::grey, 8, AlphaInfo::last }, 32, 124, 138 + 188 * 33 },
        Row { "Rgb8", { ColorModel::rgb, 8, AlphaInfo::none }, 24, 40, 54 + 144 * 33 },
        Row { "Rgb16", { ColorModel::rgb, 16, AlphaInfo::none }, 24, 40, 54 + 144 * 33 },
        Row { "Padded", { ColorModel::rgb, 8, AlphaInfo::noneSkipFirst }, 24, 40, 54 + 144 * 33 },
        Row { "AlphaLast", { ColorModel::rgb, 8, AlphaInfo::last }, 32, 124, 138 + 188 * 33 },
        Row { "AlphaFirst16", { ColorModel::rgb, 16, AlphaInfo::first }, 32, 124, 138 + 188 * 33 },
        Row { "Premultiplied", rgba8Premultiplied, 32, 124, 138 + 188 * 33 }),
    RowName());

TEST(BmpWriterResolution, IsOnlyWhatIsSaid)
{
    using Unit = Resolution::Unit;
    const auto numbers = [](std::optional<Resolution> resolution, AlphaInfo alpha) {
        const auto file = bmp::encode(test::gradient(oddSize, { ColorModel::rgb, 8, alpha }),
            { .metadata = {}, .resolution = resolution });
        return std::pair(littleEndian32(*file, 38), littleEndian32(*file, 42));
    };
    const std::pair nothing { 0U, 0U };
    for (const AlphaInfo alpha : { AlphaInfo::none, AlphaInfo::last }) {
        EXPECT_EQ(numbers(std::nullopt, alpha), nothing);
        EXPECT_EQ(numbers(Resolution::create(11'811, 5906, Unit::metre), alpha),
            std::pair(11'811U, 5906U));
        EXPECT_EQ(
            numbers(Resolution::create(72, 300, Unit::inch), alpha), std::pair(2835U, 11'811U));
        EXPECT_EQ(numbers(Resolution::create(4, 3, Unit::none), alpha), nothing);
        EXPECT_EQ(numbers(Resolution::create(Resolution::largest, 1, Unit::inch), alpha), nothing);
        EXPECT_EQ(numbers(Resolution::create(0.4, 1, Unit::metre), alpha), nothing);
    }
}

Image wideGamut(PixelLayout layout)
{
    const Primaries displayP3 { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 },
        { 0.150, 0.060 } };
    return test::gradient(oddSize, layout)
        .withColorSpace(
            ColorSpace::fromPrimaries(displayP3, { TransferCurve::Kind::sRgb }).value());
}

TEST(BmpWriterProfile, TravelsWhereItIsWanted)
{
    for (const AlphaInfo alpha : { AlphaInfo::none, AlphaInfo::last }) {
        const Image image = wideGamut({ ColorModel::rgb, 8, alpha });
        const auto file = bmp::encode(image, {});
        ASSERT_TRUE(file);
        EXPECT_EQ(littleEndian32(*file, 2), file->size());
        const auto decoded = bmp::decode(*file, {});
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->image.colorSpace(),
            ColorSpace::fromIcc(image.colorSpace().iccProfile(), ColorModel::rgb).value());
        EXPECT_EQ(test::maximumDifference(decoded->image, image), 0);
    }
}

TEST(BmpWriterProfile, StaysBehindWhereItIsNot)
{
    const Image image = wideGamut({ ColorModel::rgb, 8, AlphaInfo::none });
    const auto file = bmp::encode(image, withoutProfile());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->size(), 54U + 144U * 33U);
    EXPECT_EQ(bmp::decode(*file, {})->image.colorSpace(), ColorSpace::sRgb());
}

TEST(BmpWriterProfile, DeviceColoursHaveNone)
{
    const Image image = test::gradient(oddSize, { ColorModel::rgb, 8, AlphaInfo::none })
                            .withColorSpace(ColorSpace::deviceRgb());
    EXPECT_EQ(bmp::encode(image, {})->size(), 54U + 144U * 33U);
}

TEST(BmpWriterRefusal, HasNoCmyk)
{
    const auto file = bmp::encode(test::gradient(oddSize, { ColorModel::cmyk, 8 }), {});
    ASSERT_FALSE(file);
    EXPECT_EQ(file.error().kind, Error::Kind::unsupported);
}

TEST(BmpWriterSize, OnePixel)
{
    for (const PixelLayout layout : { PixelLayout { ColorModel::grey, 8, AlphaInfo::none },
             PixelLayout { ColorModel::rgb, 8, AlphaInfo::none },
             PixelLayout { ColorModel::rgb, 8, AlphaInfo::last } }) {
        const auto file = bmp::encode(test::flat({ 1, 1 }, layout, { 0.2, 0.4, 0.6, 1.0 }), {});
        ASSERT_TRUE(file);
        EXPECT_TRUE(bmp::decode(*file, {}));
    }
}

} // namespace

} // namespace vellumine::imaging
