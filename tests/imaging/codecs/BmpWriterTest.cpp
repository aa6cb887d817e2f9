#include "imaging/PixelConversion.h"
#include "imaging/codecs/LittleEndian.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <array>

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

struct ColorsRow {
    std::string_view name;
    int colors;
    enum class Kind { grey, coloured } kind;
    int bits; ///< in the file
    std::size_t paletteEntries;
};

/// A picture with so many colours, in the layout of a drawn one.
Image drawnWith(int colors, ColorsRow::Kind kind)
{
    return test::makeImage(oddSize, rgba8Premultiplied, [&](int x, int y, int channel) {
        const int color = (y * oddSize.width + x) % colors;
        const std::array coloured { color % 256, color / 256 * 80, 200 };
        if (channel == 3) {
            return 1.0;
        }
        return (kind == ColorsRow::Kind::grey ? color
                                              : coloured.at(static_cast<std::size_t>(channel)))
            / 255.0;
    });
}

class BmpWriterColors : public testing::TestWithParam<ColorsRow> { };

TEST_P(BmpWriterColors, TakeTheFewestBitsAndNoAlpha)
{
    const ColorsRow& row = GetParam();
    const Image image = drawnWith(row.colors, row.kind);
    const auto file = bmp::encode(image, withoutProfile());
    ASSERT_TRUE(file);
    EXPECT_EQ(littleEndian32(*file, 14), 40U);
    EXPECT_EQ(littleEndian16(*file, 28), row.bits);
    EXPECT_EQ(littleEndian32(*file, 46), row.paletteEntries);
    const std::size_t stride = (47U * static_cast<std::size_t>(row.bits) + 31) / 32 * 4;
    EXPECT_EQ(file->size(), 54U + 4 * row.paletteEntries + stride * 33);

    const auto decoded = bmp::decode(*file, {});
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->image.hasAlpha());
    EXPECT_EQ(test::maximumDifference(
                  decoded->image, relayout(image, { ColorModel::rgb, 8, AlphaInfo::none }).value()),
        0);
}

INSTANTIATE_TEST_SUITE_P(Table, BmpWriterColors,
    testing::Values(ColorsRow { "OneGrey", 1, ColorsRow::Kind::grey, 1, 2 },
        ColorsRow { "TwoGreys", 2, ColorsRow::Kind::grey, 1, 2 },
        ColorsRow { "SixteenGreys", 16, ColorsRow::Kind::grey, 4, 16 },
        ColorsRow { "EveryGrey", 256, ColorsRow::Kind::grey, 8, 256 },
        ColorsRow { "TwoColours", 2, ColorsRow::Kind::coloured, 1, 2 },
        ColorsRow { "ThreeColours", 3, ColorsRow::Kind::coloured, 4, 3 },
        ColorsRow { "SeventeenColours", 17, ColorsRow::Kind::coloured, 8, 17 },
        ColorsRow { "AsManyAsAPaletteHolds", 256, ColorsRow::Kind::coloured, 8, 256 },
        ColorsRow { "Colourful", 700, ColorsRow::Kind::coloured, 24, 0 }),
    RowName());

TEST(BmpWriterColors, GreysOfAPaletteAreInOrder)
{
    const auto file = bmp::encode(drawnWith(256, ColorsRow::Kind::grey), withoutProfile());
    ASSERT_TRUE(file);
    for (std::uint32_t grey = 0; grey < 256; ++grey) {
        ASSERT_EQ(littleEndian32(*file, 54 + 4 * grey), grey * 0x010101U);
    }
}

TEST(BmpWriterColors, OnePixelThatIsNotOpaqueKeepsAlpha)
{
    const Image image = test::makeImage(oddSize, rgba8Premultiplied, [](int x, int y, int channel) {
        return channel == 3 && x == 46 && y == 32 ? 254.0 / 255 : (channel == 3 ? 1.0 : 0.0);
    });
    const auto file = bmp::encode(image, withoutProfile());
    ASSERT_TRUE(file);
    EXPECT_EQ(littleEndian16(*file, 28), 32);
    const auto decoded = bmp::decode(*file, {});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(test::maximumDifference(
                  decoded->image, relayout(image, { ColorModel::rgb, 8, AlphaInfo::last }).value()),
        0);
}

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

TEST(BmpWriterProfile, ExplainsAPaletteAsWell)
{
    const Image image = test::makeImage(
        oddSize, { ColorModel::rgb, 8, AlphaInfo::none }, [](int x, int /*y*/, int channel) {
            return channel == 0 && x % 2 == 0 ? 1.0 : 0.0;
        }).withColorSpace(wideGamut({ ColorModel::rgb, 8 }).colorSpace());
    const auto file = bmp::encode(image, {});
    ASSERT_TRUE(file);
    EXPECT_EQ(littleEndian16(*file, 28), 1);
    const auto decoded = bmp::decode(*file, {});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->image.colorSpace(),
        ColorSpace::fromIcc(image.colorSpace().iccProfile(), ColorModel::rgb).value());
    EXPECT_EQ(test::maximumDifference(decoded->image, image), 0);
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
