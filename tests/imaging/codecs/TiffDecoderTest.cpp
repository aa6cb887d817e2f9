#include "imaging/codecs/TiffFiles.h"
#include "imaging/codecs/tiff/TiffCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace vellumine::imaging::tiff {
namespace {

using test::tiffFile;
using test::TiffRecipe;

constexpr std::uint64_t allOnes(unsigned bits)
{
    return bits == 64 ? ~std::uint64_t { 0 } : (std::uint64_t { 1 } << bits) - 1;
}

/// Every value of a small depth, and the ends of a large one.
std::uint64_t patternOf(unsigned bits, int x, int y, int s)
{
    if (x == 0 && y == 0) {
        return allOnes(bits);
    }
    const auto mixed = static_cast<std::uint64_t>(x * 7 + y * 13 + s * 29);
    return (bits <= 8 ? mixed : mixed << (bits - 8) | mixed * 31) & allOnes(bits);
}

double unitOf(std::uint64_t raw, unsigned bits)
{
    return static_cast<double>(raw) / static_cast<double>(allOnes(bits));
}

Result<DecodedImage> decodeFile(const ByteBuffer& file)
{
    return decode(file, {});
}

struct Row {
    const char* name;
    TiffRecipe recipe;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

class TiffTable : public testing::TestWithParam<Row> { };

/// Grey, RGB and CMYK samples come out as they were stored, whatever the structure around them.
TEST_P(TiffTable, samplesAreExact)
{
    const TiffRecipe& recipe = GetParam().recipe;
    if (TIFFIsCODECConfigured(recipe.compression) == 0) {
        GTEST_SKIP() << "the library lacks the compression";
    }
    const auto file
        = tiffFile(recipe, [&](int x, int y, int s) { return patternOf(recipe.bits, x, y, s); });
    EXPECT_TRUE(sniff(file));
    const auto decoded = decodeFile(file);
    ASSERT_TRUE(decoded) << decoded.error().detail;
    const Image& image = decoded->image;
    ASSERT_EQ(image.size(), recipe.size);
    EXPECT_EQ(image.layout().bitsPerComponent, recipe.bits <= 8 ? 8 : 16);
    const auto header = readHeader(file);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->size, recipe.size);
    EXPECT_EQ(header->layout, image.layout());
    const int channels = image.layout().channels();
    ASSERT_EQ(channels, recipe.samples - static_cast<int>(recipe.extraSamples.size()));

    const bool inverted = recipe.photometric == PHOTOMETRIC_MINISWHITE;
    const double step = image.layout().bitsPerComponent == 8 ? 1.0 / 255.0 : 1.0 / 65535.0;
    const bool isExact = recipe.bits == 8 || recipe.bits == 16;
    double worst = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            for (int c = 0; c < channels; ++c) {
                const double stored = unitOf(patternOf(recipe.bits, x, y, c), recipe.bits);
                const double expected = inverted ? 1.0 - stored : stored;
                worst = std::max(worst, std::abs(test::sampleAt(image, x, y, c) - expected));
            }
        }
    }
    EXPECT_LT(worst, isExact ? step * 1e-6 : step);
    EXPECT_EQ(test::sampleAt(image, 0, 0, 0), inverted ? 0.0 : 1.0);
}

constexpr auto rgb = PHOTOMETRIC_RGB;
constexpr auto white = PHOTOMETRIC_MINISWHITE;
constexpr auto separate = PLANARCONFIG_SEPARATE;

INSTANTIATE_TEST_SUITE_P(Depths, TiffTable,
    testing::Values(Row { "grey1", { .bits = 1 } }, Row { "grey2", { .bits = 2 } },
        Row { "grey3", { .bits = 3 } }, Row { "grey4", { .bits = 4 } },
        Row { "grey5", { .bits = 5 } }, Row { "grey6", { .bits = 6 } },
        Row { "grey7", { .bits = 7 } }, Row { "grey8", { .bits = 8 } },
        Row { "grey10", { .bits = 10 } }, Row { "grey12", { .bits = 12 } },
        Row { "grey14", { .bits = 14 } }, Row { "grey16", { .bits = 16 } },
        Row { "grey24", { .bits = 24 } }, Row { "grey32", { .bits = 32 } },
        Row { "grey64", { .bits = 64 } }, Row { "white1", { .bits = 1, .photometric = white } },
        Row { "white4", { .bits = 4, .photometric = white } },
        Row { "white8", { .bits = 8, .photometric = white } },
        Row { "white12", { .bits = 12, .photometric = white } },
        Row { "white16", { .bits = 16, .photometric = white } },
        Row { "rgb4", { .bits = 4, .samples = 3, .photometric = rgb } },
        Row { "rgb8", { .bits = 8, .samples = 3, .photometric = rgb } },
        Row { "rgb10", { .bits = 10, .samples = 3, .photometric = rgb } },
        Row { "rgb16", { .bits = 16, .samples = 3, .photometric = rgb } },
        Row { "rgb24", { .bits = 24, .samples = 3, .photometric = rgb } },
        Row { "rgb32", { .bits = 32, .samples = 3, .photometric = rgb } },
        Row { "cmyk8", { .bits = 8, .samples = 4, .photometric = PHOTOMETRIC_SEPARATED } },
        Row { "cmyk16", { .bits = 16, .samples = 4, .photometric = PHOTOMETRIC_SEPARATED } }),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Structures, TiffTable,
    testing::Values(
        Row { "bigEndian16", { .mode = "wb", .bits = 16, .samples = 3, .photometric = rgb } },
        Row { "bigEndian24", { .mode = "wb", .bits = 24, .samples = 3, .photometric = rgb } },
        Row { "bigEndian32", { .mode = "wb", .bits = 32 } },
        Row { "bigEndian12", { .mode = "wb", .bits = 12 } },
        Row { "bigTiff", { .mode = "wl8", .samples = 3, .photometric = rgb } },
        Row { "bigTiffBigEndian", { .mode = "wb8", .bits = 16 } },
        Row { "oneStrip", { .samples = 3, .photometric = rgb, .rowsPerStrip = 33 } },
        Row { "planar8", { .samples = 3, .photometric = rgb, .planar = separate } },
        Row { "planar4", { .bits = 4, .samples = 3, .photometric = rgb, .planar = separate } },
        Row { "planar16", { .bits = 16, .samples = 3, .photometric = rgb, .planar = separate } },
        Row { "planarCmyk",
            { .samples = 4, .photometric = PHOTOMETRIC_SEPARATED, .planar = separate } },
        Row { "tiles", { .samples = 3, .photometric = rgb, .tile = 16 } },
        Row { "tiles1bit", { .bits = 1, .tile = 16 } },
        Row { "tiles12bit", { .bits = 12, .samples = 3, .photometric = rgb, .tile = 32 } },
        Row { "planarTiles",
            { .bits = 16, .samples = 3, .photometric = rgb, .planar = separate, .tile = 16 } },
        Row { "tileLargerThanPicture", { .tile = 64 } },
        Row { "undeclaredExtraSample",
            { .samples = 4, .photometric = rgb, .extraSamples = { EXTRASAMPLE_UNSPECIFIED } } },
        Row { "undeclaredExtraPlane",
            { .samples = 4,
                .photometric = rgb,
                .planar = separate,
                .extraSamples = { EXTRASAMPLE_UNSPECIFIED } } },
        Row { "onePixel", { .size = { 1, 1 }, .samples = 3, .photometric = rgb } }),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Compressions, TiffTable,
    testing::Values(
        Row { "lzw", { .samples = 3, .photometric = rgb, .compression = COMPRESSION_LZW } },
        Row { "lzwPredictor16",
            { .mode = "wb",
                .bits = 16,
                .samples = 3,
                .photometric = rgb,
                .compression = COMPRESSION_LZW,
                .predictor = PREDICTOR_HORIZONTAL } },
        Row { "deflate", { .compression = COMPRESSION_ADOBE_DEFLATE } },
        Row { "deflateTiles",
            { .samples = 3,
                .photometric = rgb,
                .compression = COMPRESSION_ADOBE_DEFLATE,
                .predictor = PREDICTOR_HORIZONTAL,
                .tile = 16 } },
        Row {
            "packBits", { .samples = 3, .photometric = rgb, .compression = COMPRESSION_PACKBITS } },
        Row { "lzma", { .samples = 3, .photometric = rgb, .compression = COMPRESSION_LZMA } },
        Row { "zstd", { .samples = 3, .photometric = rgb, .compression = COMPRESSION_ZSTD } },
        Row { "webp",
            { .samples = 3,
                .photometric = rgb,
                .compression = COMPRESSION_WEBP,
                .customise = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_WEBP_LOSSLESS, 1); } } },
        Row { "faxRle", { .bits = 1, .photometric = white, .compression = COMPRESSION_CCITTRLE } },
        Row { "fax3", { .bits = 1, .photometric = white, .compression = COMPRESSION_CCITTFAX3 } },
        Row { "fax3TwoDimensional",
            { .bits = 1,
                .photometric = white,
                .compression = COMPRESSION_CCITTFAX3,
                .customise =
                    [](TIFF* tiff) {
                        TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, GROUP3OPT_2DENCODING);
                    } } },
        Row { "fax4", { .bits = 1, .photometric = white, .compression = COMPRESSION_CCITTFAX4 } },
        Row { "fax4MinIsBlack", { .bits = 1, .compression = COMPRESSION_CCITTFAX4 } },
        Row { "lsbFirst",
            { .bits = 1,
                .photometric = white,
                .compression = COMPRESSION_CCITTFAX4,
                .customise
                = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_LSB2MSB); } } }),
    [](const auto& row) { return row.param.name; });

TEST(TiffDecoder, twelveBitsAreRepeatedToFillSixteen)
{
    const auto decoded = decodeFile(tiffFile({ .size = { 4, 1 }, .bits = 12 }, [](int x, int, int) {
        return std::array { 0U, 0xABCU, 0x800U, 0xFFFU }.at(size_t(x));
    }));
    ASSERT_TRUE(decoded);
    const auto* const row = decoded->image.row16(0);
    EXPECT_EQ(row[0], 0);
    EXPECT_EQ(row[1], 0xABCA);
    EXPECT_EQ(row[2], 0x8008);
    EXPECT_EQ(row[3], 0xFFFF);
}

TEST(TiffDecoder, signedIntegersCountFromTheirMinimum)
{
    for (const std::uint16_t bits : std::array<std::uint16_t, 3> { 8, 16, 32 }) {
        const auto decoded
            = decodeFile(tiffFile({ .size = { 3, 1 }, .bits = bits, .format = SAMPLEFORMAT_INT },
                [bits](int x, int, int) {
                    const std::uint64_t minimum = std::uint64_t { 1 } << (bits - 1U);
                    return std::array<std::uint64_t, 3> { minimum, 0, minimum - 1 }.at(size_t(x));
                }));
        ASSERT_TRUE(decoded);
        EXPECT_EQ(test::sampleAt(decoded->image, 0, 0, 0), 0.0);
        EXPECT_NEAR(test::sampleAt(decoded->image, 1, 0, 0), 0.5, 1.0 / 255.0);
        EXPECT_EQ(test::sampleAt(decoded->image, 2, 0, 0), 1.0);
    }
}

template <typename Float> std::uint64_t floatBits(Float value)
{
    using Word = std::conditional_t<sizeof(Float) == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<Word>(value);
}

TEST(TiffDecoder, floatsAreClampedToTheUnitRange)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr std::array values { -0.5, 0.0, 0.25, 1.0, 7.0, nan };
    constexpr std::array expected { 0, 0, 16384, 65535, 65535, 0 };
    constexpr std::array<std::uint64_t, 6> halves { 0xB800, 0, 0x3400, 0x3C00, 0x4700, 0x7E00 };
    constexpr std::array<std::uint64_t, 6> triples { 0xBE0000, 0, 0x3D0000, 0x3F0000, 0x41C000,
        0x7F8000 };
    for (const std::uint16_t bits : std::array<std::uint16_t, 4> { 16, 24, 32, 64 }) {
        for (const char* const mode : { "wl", "wb" }) {
            const auto decoded = decodeFile(tiffFile(
                { .mode = mode, .size = { 6, 1 }, .bits = bits, .format = SAMPLEFORMAT_IEEEFP },
                [&](int x, int, int) {
                    const auto i = static_cast<std::size_t>(x);
                    switch (bits) {
                    case 16:
                        return halves.at(i);
                    case 24:
                        return triples.at(i);
                    case 32:
                        return floatBits(static_cast<float>(values.at(i)));
                    default:
                        return floatBits(values.at(i));
                    }
                }));
            ASSERT_TRUE(decoded);
            ASSERT_EQ(decoded->image.layout().bitsPerComponent, 16);
            for (std::size_t i = 0; i < values.size(); ++i) {
                EXPECT_EQ(decoded->image.row16(0)[i], expected.at(i)) << bits << " bits, " << i;
            }
        }
    }
}

TEST(TiffDecoder, floatPredictorIsUndone)
{
    const auto decoded = decodeFile(tiffFile({ .bits = 32,
                                                 .samples = 3,
                                                 .format = SAMPLEFORMAT_IEEEFP,
                                                 .photometric = rgb,
                                                 .compression = COMPRESSION_ADOBE_DEFLATE,
                                                 .predictor = PREDICTOR_FLOATINGPOINT },
        [](int x, int y, int s) { return floatBits(static_cast<float>(x * y + s) / 2000.0F); }));
    ASSERT_TRUE(decoded) << decoded.error().detail;
    EXPECT_NEAR(test::sampleAt(decoded->image, 46, 32, 2), (46 * 32 + 2) / 2000.0, 1.0 / 65535.0);
}

/// Satellites' pictures have hundreds. A small file can say that it has 65,535, most of which a
/// picture of ours has no use for.
TEST(TiffDecoder, samplesThatAreOfNoUseAreSteppedOver)
{
    for (const unsigned bits : { 1U, 8U, 12U, 16U }) {
        TiffRecipe recipe {
            .size = { 5, 3 }, .bits = static_cast<std::uint16_t>(bits), .samples = 3000
        };
        recipe.extraSamples.assign(2999, EXTRASAMPLE_UNSPECIFIED);
        recipe.extraSamples.back() = EXTRASAMPLE_UNASSALPHA;
        const auto decoded = decodeFile(
            tiffFile(recipe, [bits](int x, int y, int s) { return patternOf(bits, x, y, s); }));
        ASSERT_TRUE(decoded) << bits << ": " << decoded.error().detail;
        const Image& image = decoded->image;
        ASSERT_EQ(image.layout().channels(), 2) << bits;
        const double largest = bits <= 8 ? 255 : 65535;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < 2 * image.width(); ++x) {
                const int sample = x % 2 == 0 ? 0 : 2999;
                const double stored = bits <= 8 ? image.row8(y)[x] : image.row16(y)[x];
                ASSERT_NEAR(stored / largest, unitOf(patternOf(bits, x / 2, y, sample), bits), 1e-4)
                    << bits << " bits, " << x << ", " << y;
            }
        }
    }
}

TEST(TiffDecoder, firstPageIsThePicture)
{
    const auto file = test::tiffPages(
        std::vector<TiffRecipe> { { .size = { 5, 4 } }, { .size = { 300, 200 } } },
        [](int x, int y, int) { return static_cast<unsigned>(x + 10 * y); });
    const auto decoded = decodeFile(file);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->image.size(), (Size { 5, 4 }));
    EXPECT_EQ(decoded->image.row8(3)[4], 34);
}

TEST(TiffDecoder, orientationIsToldAndNotApplied)
{
    for (std::uint16_t tag = 1; tag <= 8; ++tag) {
        for (const bool throughLibrary : { false, true }) {
            const TiffRecipe recipe { .size = { 16, 4 },
                .samples = 3,
                .photometric = static_cast<std::uint16_t>(throughLibrary ? PHOTOMETRIC_YCBCR : rgb),
                .orientation = tag,
                .customise
                = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1); } };
            // Bright in the first stored pixel only.
            const auto decoded = decodeFile(tiffFile(recipe, [&](int x, int y, int s) {
                const bool isChroma = throughLibrary && s > 0;
                return isChroma ? 128U : (x == 0 && y == 0 ? 255U : 0U);
            }));
            ASSERT_TRUE(decoded) << decoded.error().detail;
            EXPECT_EQ(decoded->orientation, orientationFromTag(tag));
            EXPECT_EQ(decoded->image.size(), (Size { 16, 4 }));
            EXPECT_GT(decoded->image.row8(0)[0], 250) << tag;
            EXPECT_LT(decoded->image.row8(3)[45], 5) << tag;
        }
    }
    const auto untagged = decodeFile(tiffFile({}, [](int, int, int) { return 0U; }));
    ASSERT_TRUE(untagged);
    EXPECT_FALSE(untagged->orientation);
}

TEST(TiffDecoder, regionIsThatPartOfThePicture)
{
    const Rect region { 13, 9, 21, 17 };
    for (const TiffRecipe& recipe :
        std::vector<TiffRecipe> { { .samples = 3, .photometric = rgb }, { .bits = 12, .tile = 16 },
            { .samples = 3, .photometric = rgb, .planar = separate, .tile = 16 } }) {
        const auto file = tiffFile(
            recipe, [&](int x, int y, int s) { return patternOf(recipe.bits, x, y, s); });
        const auto whole = decodeFile(file);
        const auto part = decode(file, { .limits = {}, .wish = { .region = region } });
        ASSERT_TRUE(whole && part);
        EXPECT_TRUE(part->isRegion);
        EXPECT_EQ(part->storedSize, recipe.size);
        ASSERT_EQ(part->image.size(), region.size());
        EXPECT_EQ(test::maximumDifference(part->image, whole->image.cropped(region)), 0.0);
    }
}

TEST(TiffDecoder, otherContentIsNotSniffed)
{
    for (const char* const text : { "", "II", "II*", "MM*\0", "GIF89a", "II\0*" }) {
        EXPECT_FALSE(sniff(std::as_bytes(std::span(text, std::strlen(text))))) << text;
    }
}

} // namespace
} // namespace vellumine::imaging::tiff
