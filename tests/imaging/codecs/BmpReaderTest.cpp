#include "imaging/PixelConversion.h"
#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {

namespace {

using test::BmpFile;
using test::packRows;
using test::RowName;

using Pixel = std::vector<int>;

/// The samples of a pixel, as many as the layout has.
Pixel pixelAt(const Image& image, int x, int y)
{
    const int channels = image.layout().channels();
    const std::uint8_t* const at = image.row8(y) + static_cast<std::ptrdiff_t>(x) * channels;
    return { at, at + channels };
}

Result<DecodedImage> decode(ByteSpan file)
{
    return bmp::decode(file, {});
}

/// What must hold of every file that decodes.
void expectHeaderTellsTheTruth(ByteSpan file, const DecodedImage& decoded)
{
    EXPECT_TRUE(bmp::sniff(file));
    const auto header = bmp::readHeader(file);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->size, decoded.image.size());
    EXPECT_EQ(header->size, decoded.storedSize);
    EXPECT_EQ(header->layout, decoded.image.layout());
    EXPECT_FALSE(decoded.isRegion);
}

// Two colours that 5 bits hold exactly: 16 of 31 is 132 of 255, and 8 is 66.
const std::array<int, 3> rose { 255, 0, 132 };
const std::array<int, 3> leaf { 0, 255, 66 };

std::uint32_t packed(const std::array<int, 3>& color, int bits)
{
    const auto [red, green, blue] = color;
    if (bits == 16) {
        return static_cast<std::uint32_t>((red / 8) << 10 | (green / 8) << 5 | blue / 8);
    }
    return static_cast<std::uint32_t>(red << 16 | green << 8 | blue);
}

/// Three by two: rose leaf rose above leaf rose rose, stored from the bottom.
BmpFile smallFile(std::uint32_t infoBytes, int bits)
{
    BmpFile file { .infoBytes = infoBytes, .width = 3, .height = 2, .bits = bits };
    std::uint32_t first = 0;
    std::uint32_t second = 1;
    if (bits <= 8) {
        file.palette = { rose, leaf };
        // Older headers cannot say how long their palette is.
        if (infoBytes < 36) {
            file.palette.resize(std::size_t { 1 } << static_cast<unsigned>(bits));
        }
    } else {
        first = packed(rose, bits);
        second = packed(leaf, bits);
    }
    file.pixels = packRows(bits, { { second, first, first }, { first, second, first } });
    return file;
}

void expectSmallPicture(const Image& image)
{
    ASSERT_EQ(image.size(), (Size { 3, 2 }));
    const Pixel a(rose.begin(), rose.end());
    const Pixel b(leaf.begin(), leaf.end());
    const std::vector<Pixel> expected { a, b, a, b, a, a };
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(pixelAt(image, i % 3, i / 3), expected.at(static_cast<std::size_t>(i)))
            << "pixel " << i;
    }
}

struct HeaderRow {
    std::string_view name;
    std::uint32_t infoBytes;
};

class BmpHeaderVersion : public testing::TestWithParam<std::tuple<HeaderRow, int>> { };

TEST_P(BmpHeaderVersion, ReadsTheSamePicture)
{
    const auto& [version, bits] = GetParam();
    const ByteBuffer file = smallFile(version.infoBytes, bits).bytes();
    const auto decoded = decode(file);
    ASSERT_TRUE(decoded) << decoded.error().detail;
    EXPECT_EQ(decoded->image.layout(), (PixelLayout { ColorModel::rgb, 8, AlphaInfo::none }));
    expectSmallPicture(decoded->image);
    expectHeaderTellsTheTruth(file, *decoded);
}

INSTANTIATE_TEST_SUITE_P(Every, BmpHeaderVersion,
    testing::Combine(testing::Values(HeaderRow { "Core", 12 }, HeaderRow { "Os2Shortest", 16 },
                         HeaderRow { "Os2Odd", 46 }, HeaderRow { "Os2Whole", 64 },
                         HeaderRow { "Info", 40 }, HeaderRow { "V2", 52 }, HeaderRow { "V3", 56 },
                         HeaderRow { "V4", 108 }, HeaderRow { "V5", 124 }),
        testing::Values(1, 2, 4, 8, 16, 24, 32)),
    [](const auto& row) {
        return std::string(std::get<0>(row.param).name) + "_"
            + std::to_string(std::get<1>(row.param));
    });

class BmpDepth : public testing::TestWithParam<int> { };

TEST_P(BmpDepth, TopDownIsTheSamePictureFromItsOtherEnd)
{
    // 47 pixels a row, so that every depth has padding at its end
    std::vector<std::vector<std::uint32_t>> rows(33);
    std::uint32_t state = 1;
    const int bits = GetParam();
    for (auto& row : rows) {
        for (int x = 0; x < 47; ++x) {
            state = state * 1664525U + 1013904223U;
            row.push_back(bits == 32 ? state : state >> 8U & ((1U << bits) - 1U));
        }
    }
    BmpFile file { .width = 47, .height = 33, .bits = bits };
    for (int i = 0; bits <= 8 && i < 1 << bits; ++i) {
        file.palette.push_back({ i, 255 - i, i * 7 % 256 });
    }
    file.pixels = packRows(bits, rows);
    const auto upwards = decode(file.bytes());
    std::ranges::reverse(rows);
    file.height = -33;
    file.pixels = packRows(bits, rows);
    const auto downwards = decode(file.bytes());
    ASSERT_TRUE(upwards);
    ASSERT_TRUE(downwards);
    EXPECT_EQ(test::maximumDifference(upwards->image, downwards->image), 0);
}

INSTANTIATE_TEST_SUITE_P(Every, BmpDepth, testing::Values(1, 2, 4, 8, 16, 24, 32),
    [](const auto& row) { return std::to_string(row.param) + "bits"; });

struct MaskRow {
    std::string_view name;
    std::uint32_t infoBytes;
    std::uint32_t compression;
    int bits;
    std::vector<std::uint32_t> masks;
    std::uint32_t pixel;
    Pixel expected;
};

class BmpMasks : public testing::TestWithParam<MaskRow> { };

// The second pixel has every bit set, so that alpha is never 0 all over.
TEST_P(BmpMasks, ScalesToEightBits)
{
    const MaskRow& row = GetParam();
    BmpFile file { .infoBytes = row.infoBytes, .width = 2, .bits = row.bits };
    file.compression = row.compression;
    file.masks = row.masks;
    file.pixels = packRows(row.bits, { { row.pixel, 0xFFFFFFFF } });
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded) << decoded.error().detail;
    EXPECT_EQ(pixelAt(decoded->image, 0, 0), row.expected);
    EXPECT_EQ(decoded->image.hasAlpha(), row.expected.size() == 4);
    expectHeaderTellsTheTruth(file.bytes(), *decoded);
}

constexpr std::uint32_t bitFields = 3;
constexpr std::uint32_t alphaBitFields = 6;

INSTANTIATE_TEST_SUITE_P(Table, BmpMasks,
    testing::Values(MaskRow { "Info565", 40, bitFields, 16, { 0xF800, 0x7E0, 0x1F }, 0x8410,
                        { 132, 130, 132 } }, // 16/31, 32/63, 16/31
        MaskRow {
            "V3_565", 56, bitFields, 16, { 0xF800, 0x7E0, 0x1F, 0 }, 0x8410, { 132, 130, 132 } },
        MaskRow { "V3_1555", 56, bitFields, 16, { 0x7C00, 0x3E0, 0x1F, 0x8000 }, 0x4210,
            { 132, 132, 132, 0 } },
        MaskRow { "V5_4444", 124, bitFields, 16, { 0xF00, 0xF0, 0xF, 0xF000 }, 0x7128,
            { 17, 34, 136, 119 } },
        MaskRow { "Uneven3103", 40, bitFields, 16, { 0x38, 0xFFC0, 0x7 }, 0x8008 | 0x3,
            { 36, 128, 109 } }, // 1/7, 512/1023, 3/7
        MaskRow { "Info8888Reversed", 40, bitFields, 32, { 0xFF, 0xFF00, 0xFF0000 }, 0x44332211,
            { 0x11, 0x22, 0x33 } },
        MaskRow { "V2WithoutAlpha", 52, bitFields, 32, { 0xFF000000, 0xFF00, 0xFF }, 0x44332211,
            { 0x44, 0x22, 0x11 } },
        MaskRow { "V3WithAlpha", 56, bitFields, 32, { 0xFF000000, 0xFF00, 0xFF, 0xFF0000 },
            0x44332211, { 0x44, 0x22, 0x11, 0x33 } },
        MaskRow { "InfoAlphaBitFields", 40, alphaBitFields, 32,
            { 0xFF000000, 0xFF00, 0xFF, 0xFF0000 }, 0x44332211, { 0x44, 0x22, 0x11, 0x33 } },
        MaskRow { "V4_1010102", 108, bitFields, 32, { 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000 },
            0x80000000 | 1U << 20U | 512U << 10U | 1022U, { 0, 128, 255, 170 } },
        MaskRow { "Info111110", 40, bitFields, 32, { 0xFFE00000, 0x1FFC00, 0x3FF },
            4U << 21U | 2047U << 10U | 511U, { 0, 255, 127 } },
        MaskRow { "V5_81284", 124, bitFields, 32, { 0xFF00, 0xFFF0000, 0xFF, 0xF0000000 },
            0x38004020, { 0x40, 128, 0x20, 51 } }, // 2048/4095 and 3/15
        MaskRow { "SixteenBitsAChannel", 124, bitFields, 32, { 0xFFFF0000, 0, 0xFFFF, 0 },
            0x80008101, { 128, 0, 129 } }, // 32768/65535 and 33025/65535
        MaskRow { "NoBlue", 40, bitFields, 16, { 0xFF00, 0xFF, 0 }, 0x1234, { 0x12, 0x34, 0 } }),
    RowName());

TEST(BmpReader, MasksOfPlainPixelsCountForNothing)
{
    // Long headers declare an alpha mask by rote; without bit fields the byte is padding.
    BmpFile file { .infoBytes = 124, .width = 1, .bits = 32 };
    file.masks = { 0xFF0000, 0xFF00, 0xFF, 0xFF000000 };
    file.pixels = packRows(32, { { 0x80010203 } });
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(pixelAt(decoded->image, 0, 0), (Pixel { 1, 2, 3 }));
}

TEST(BmpReader, AlphaThatIsZeroEverywhereIsOpaque)
{
    BmpFile file { .infoBytes = 56, .width = 2, .bits = 32 };
    file.compression = bitFields;
    file.masks = { 0xFF0000, 0xFF00, 0xFF, 0xFF000000 };
    file.pixels = packRows(32, { { 0x00010203, 0x00040506 } });
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(pixelAt(decoded->image, 0, 0), (Pixel { 1, 2, 3, 255 }));
    EXPECT_EQ(pixelAt(decoded->image, 1, 0), (Pixel { 4, 5, 6, 255 }));
    expectHeaderTellsTheTruth(file.bytes(), *decoded);
}

TEST(BmpReader, ColoursThatThePaletteLacksAreBlack)
{
    BmpFile file { .width = 2, .bits = 8, .palette = { { 1, 2, 3 } } };
    file.pixels = packRows(8, { { 0, 200 } });
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(pixelAt(decoded->image, 0, 0), (Pixel { 1, 2, 3 }));
    EXPECT_EQ(pixelAt(decoded->image, 1, 0), (Pixel { 0, 0, 0 }));
}

TEST(BmpReader, APaletteLongerThanItsIndexesIsSkipped)
{
    BmpFile file = smallFile(40, 1);
    file.palette.resize(300);
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded);
    expectSmallPicture(decoded->image);
}

TEST(BmpReader, APaletteEndsWhereThePixelsStart)
{
    BmpFile file = smallFile(40, 8);
    file.declaredColors = 0; // 256, of which the file holds two
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded);
    expectSmallPicture(decoded->image);
}

TEST(BmpReader, AnOffsetIntoTheHeaderIsIgnored)
{
    BmpFile file = smallFile(40, 8);
    file.pixelOffset = 0;
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded);
    expectSmallPicture(decoded->image);
}

TEST(BmpReader, AGapBeforeThePixelsIsSkipped)
{
    BmpFile file = smallFile(40, 24);
    file.pixels.insert(file.pixels.begin(), 100, std::byte { 0xAA });
    file.pixelOffset = 54 + 100;
    const auto decoded = decode(file.bytes());
    ASSERT_TRUE(decoded);
    expectSmallPicture(decoded->image);
}

TEST(BmpReader, ReadsTheFirstBitmapOfAnOs2Array)
{
    BmpFile inner = smallFile(12, 24);
    inner.pixelOffset = 14 + 14 + 12;
    const ByteBuffer file
        = test::LittleEndianBytes().add("BA").add32(40).addZeros(8).add(inner.bytes()).bytes();
    const auto decoded = decode(file);
    ASSERT_TRUE(decoded);
    expectSmallPicture(decoded->image);
    expectHeaderTellsTheTruth(file, *decoded);
}

TEST(BmpReader, TheResolutionIsThatOfTheHeader)
{
    const auto resolutionOf = [](std::uint32_t x, std::uint32_t y, std::uint32_t infoBytes = 40) {
        BmpFile file = smallFile(infoBytes, 24);
        file.pixelsPerMetreX = x;
        file.pixelsPerMetreY = y;
        return decode(file.bytes())->resolution;
    };
    const auto expected = Resolution::create(11'811, 5906, Resolution::Unit::metre);
    for (const std::uint32_t infoBytes : { 40U, 64U, 108U, 124U }) {
        EXPECT_EQ(resolutionOf(11'811, 5906, infoBytes), expected);
    }
    EXPECT_EQ(resolutionOf(11'811, 5906, 12), std::nullopt); // no room for it
    EXPECT_EQ(resolutionOf(0, 0), std::nullopt);
    EXPECT_EQ(resolutionOf(11'811, 0), std::nullopt);
    EXPECT_EQ(resolutionOf(0x80000000, 11'811), std::nullopt);
    EXPECT_EQ(resolutionOf(0xFFFFFFFF, 0xFFFFFFFF), std::nullopt);
    EXPECT_EQ(resolutionOf(0x7FFFFFFF, 1),
        Resolution::create(Resolution::largest, 1, Resolution::Unit::metre));
}

TEST(BmpReader, ARegionIsNotCutOut)
{
    const ByteBuffer file = smallFile(40, 24).bytes();
    const auto decoded
        = bmp::decode(file, { .limits = {}, .wish = { .region = Rect { 1, 1, 1, 1 } } });
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->isRegion);
    expectSmallPicture(decoded->image);
}

} // namespace

} // namespace vellumine::imaging
