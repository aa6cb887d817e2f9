#include "imaging/codecs/TiffFiles.h"
#include "imaging/codecs/tiff/TiffCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>

namespace vellumine::imaging::tiff {
namespace {

using test::tiffFile;
using test::TiffRecipe;

constexpr auto rgb = PHOTOMETRIC_RGB;
constexpr auto separate = PLANARCONFIG_SEPARATE;

Result<DecodedImage> decodeFile(const ByteBuffer& file)
{
    return decode(file, {});
}

struct AlphaRow {
    const char* name;
    TiffRecipe recipe;
    AlphaInfo expected;
};

class TiffAlpha : public testing::TestWithParam<AlphaRow> { };

TEST_P(TiffAlpha, isWhatTheFileDeclares)
{
    const auto& [name, recipe, expected] = GetParam();
    const auto decoded = decodeFile(tiffFile(recipe,
        [&](int x, int, int s) { return static_cast<unsigned>(40 * s + (s > 0 ? x : 0)); }));
    ASSERT_TRUE(decoded) << decoded.error().detail;
    const Image& image = decoded->image;
    EXPECT_EQ(image.layout().alpha, expected);
    if (hasAlpha(expected)) {
        // The samples are as stored: nothing was multiplied or divided on the way.
        const int stored = recipe.extraSamples.front() == EXTRASAMPLE_UNSPECIFIED
            ? recipe.samples - 1
            : recipe.samples - static_cast<int>(recipe.extraSamples.size());
        EXPECT_EQ(image.row8(0)[3 * image.layout().channels() - 1], 40 * stored + 2);
    }
}

constexpr std::uint16_t associated = EXTRASAMPLE_ASSOCALPHA;
constexpr std::uint16_t unassociated = EXTRASAMPLE_UNASSALPHA;
constexpr std::uint16_t unspecified = EXTRASAMPLE_UNSPECIFIED;

INSTANTIATE_TEST_SUITE_P(Declarations, TiffAlpha,
    testing::Values(AlphaRow { "rgbAssociated",
                        { .samples = 4, .photometric = rgb, .extraSamples = { associated } },
                        AlphaInfo::premultipliedLast },
        AlphaRow { "rgbUnassociated",
            { .samples = 4, .photometric = rgb, .extraSamples = { unassociated } },
            AlphaInfo::last },
        AlphaRow { "rgbUnspecified",
            { .samples = 4, .photometric = rgb, .extraSamples = { unspecified } },
            AlphaInfo::none },
        AlphaRow { "greyUnassociated", { .samples = 2, .extraSamples = { unassociated } },
            AlphaInfo::last },
        AlphaRow {
            "greyUnspecified", { .samples = 2, .extraSamples = { unspecified } }, AlphaInfo::none },
        AlphaRow { "cmykUnassociated",
            { .samples = 5,
                .photometric = PHOTOMETRIC_SEPARATED,
                .extraSamples = { unassociated } },
            AlphaInfo::last },
        AlphaRow { "secondExtraSample",
            { .samples = 5, .photometric = rgb, .extraSamples = { unspecified, unassociated } },
            AlphaInfo::last },
        AlphaRow { "planar",
            { .samples = 4,
                .photometric = rgb,
                .planar = separate,
                .extraSamples = { associated } },
            AlphaInfo::premultipliedLast }),
    [](const auto& row) { return row.param.name; });

TEST(TiffColour, palettesGiveTheirColours)
{
    std::vector<std::uint16_t> map(3 * 16);
    for (std::size_t i = 0; i < 16; ++i) {
        map[i] = static_cast<std::uint16_t>(i * 4369);
        map[16 + i] = static_cast<std::uint16_t>(65535 - i * 4369);
        map[32 + i] = static_cast<std::uint16_t>(i * 257);
    }
    const TiffRecipe recipe {
        .size = { 16, 2 }, .bits = 4, .photometric = PHOTOMETRIC_PALETTE, .colourMap = map
    };
    const auto decoded
        = decodeFile(tiffFile(recipe, [](int x, int, int) { return static_cast<unsigned>(x); }));
    ASSERT_TRUE(decoded);
    ASSERT_EQ(decoded->image.layout(), (PixelLayout { ColorModel::rgb, 8, AlphaInfo::none }));
    for (int x = 0; x < 16; ++x) {
        EXPECT_EQ(decoded->image.row8(1)[3 * x], x * 17);
        EXPECT_EQ(decoded->image.row8(1)[3 * x + 1], 255 - x * 17);
        EXPECT_EQ(decoded->image.row8(1)[3 * x + 2], x);
    }
}

TEST(TiffColour, paletteOf8BitNumbersIsRecognised)
{
    const TiffRecipe recipe { .size = { 2, 1 },
        .bits = 1,
        .photometric = PHOTOMETRIC_PALETTE,
        .colourMap = { 0, 255, 10, 20, 0, 200 } };
    const auto decoded
        = decodeFile(tiffFile(recipe, [](int x, int, int) { return static_cast<unsigned>(x); }));
    ASSERT_TRUE(decoded);
    const std::array<int, 6> expected { 0, 10, 0, 255, 20, 200 };
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), decoded->image.row8(0)));
}

struct LabRow {
    const char* name;
    std::uint16_t photometric;
    std::uint16_t bits;
    std::array<std::uint16_t, 3> white;
    std::array<std::uint16_t, 3> black;
    std::array<std::uint16_t, 3> red; ///< L* 54, a* 81, b* 70
};

class TiffLab : public testing::TestWithParam<LabRow> { };

TEST_P(TiffLab, whiteBlackAndRedAreThemselves)
{
    const LabRow& row = GetParam();
    const TiffRecipe recipe {
        .size = { 3, 1 }, .bits = row.bits, .samples = 3, .photometric = row.photometric
    };
    const auto decoded = decodeFile(tiffFile(recipe, [&](int x, int, int s) {
        return (x == 0 ? row.white : (x == 1 ? row.black : row.red)).at(static_cast<size_t>(s));
    }));
    ASSERT_TRUE(decoded) << decoded.error().detail;
    const Image& image = decoded->image;
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(test::sampleAt(image, 0, 0, c), 1.0, 0.005);
        EXPECT_NEAR(test::sampleAt(image, 1, 0, c), 0.0, 0.005);
        EXPECT_NEAR(test::sampleAt(image, 2, 0, c), c == 0 ? 1.0 : 0.0, 0.07);
    }
    EXPECT_TRUE(image.colorSpace() == ColorSpace::sRgb());
}

INSTANTIATE_TEST_SUITE_P(Encodings, TiffLab,
    testing::Values(
        LabRow { "cieLab8", PHOTOMETRIC_CIELAB, 8, { 255, 0, 0 }, { 0, 0, 0 }, { 138, 81, 70 } },
        LabRow { "cieLab16", PHOTOMETRIC_CIELAB, 16, { 65535, 0, 0 }, { 0, 0, 0 },
            { 35389, 81 * 256, 70 * 256 } },
        LabRow { "iccLab8", PHOTOMETRIC_ICCLAB, 8, { 255, 128, 128 }, { 0, 128, 128 },
            { 138, 209, 198 } },
        LabRow { "iccLab16", PHOTOMETRIC_ICCLAB, 16, { 65280, 32768, 32768 }, { 0, 32768, 32768 },
            { 35251, 209 * 256, 198 * 256 } },
        LabRow { "ituLab8", PHOTOMETRIC_ITULAB, 8, { 255, 128, 96 }, { 0, 128, 96 },
            { 138, 249, 185 } }),
    [](const auto& row) { return row.param.name; });

TEST(TiffColour, jpegInsideComesOutAsRgb)
{
    for (const std::uint32_t tile : { 0U, 16U }) {
        const TiffRecipe recipe { .size = { 48, 32 },
            .samples = 3,
            .photometric = PHOTOMETRIC_YCBCR,
            .compression = COMPRESSION_JPEG,
            .tile = tile,
            .rowsPerStrip = 16,
            .customise = [](TIFF* tiff) {
                TIFFSetField(tiff, TIFFTAG_JPEGQUALITY, 95);
                TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            } };
        const Image original = test::gradient(recipe.size, { ColorModel::rgb, 8, AlphaInfo::none });
        const auto decoded = decodeFile(
            tiffFile(recipe, [&](int x, int y, int s) { return original.row8(y)[3 * x + s]; }));
        ASSERT_TRUE(decoded) << decoded.error().detail;
        ASSERT_EQ(decoded->image.layout(), original.layout());
        EXPECT_GT(test::psnr(decoded->image, original), 38.0);
    }
}

/// Two by two pixels of Y, then Cb and Cr, all in the rows of "pixels" of one sample that the file
/// helper writes: the strip's bytes are what counts.
TEST(TiffColour, subsampledYCbCrIsConverted)
{
    constexpr std::array<std::uint8_t, 6> redBlock { 76, 76, 76, 76, 85, 255 };
    const TiffRecipe recipe { .size = { 16, 16 },
        .samples = 3,
        .photometric = PHOTOMETRIC_YCBCR,
        .rowsPerStrip = 16,
        .customise = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 2); } };
    ASSERT_EQ(recipe.size.width * recipe.size.height % 4, 0);
    const auto decoded = decodeFile(tiffFile(recipe, [&](int x, int y, int s) {
        return redBlock.at(static_cast<std::size_t>((y * 16 + x) * 3 + s) % redBlock.size());
    }));
    ASSERT_TRUE(decoded) << decoded.error().detail;
    ASSERT_EQ(decoded->image.layout(), (PixelLayout { ColorModel::rgb, 8, AlphaInfo::none }));
    for (const int x : { 0, 7, 15 }) {
        EXPECT_NEAR(decoded->image.row8(15)[3 * x], 254, 2);
        EXPECT_NEAR(decoded->image.row8(15)[3 * x + 1], 0, 2);
        EXPECT_NEAR(decoded->image.row8(15)[3 * x + 2], 0, 2);
    }
}

TEST(TiffColour, logLuvIsConverted)
{
    constexpr std::array xyz { 1.0F, 1.0F, 1.0F }; // white to the library
    const TiffRecipe recipe { .size = { 8, 8 },
        .bits = 32,
        .samples = 3,
        .format = SAMPLEFORMAT_IEEEFP,
        .photometric = PHOTOMETRIC_LOGLUV,
        .compression = COMPRESSION_SGILOG,
        .customise
        = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_FLOAT); } };
    const auto decoded = decodeFile(tiffFile(recipe, [&](int, int y, int s) {
        return std::bit_cast<std::uint32_t>(y < 4 ? xyz.at(static_cast<std::size_t>(s)) : 0.0F);
    }));
    ASSERT_TRUE(decoded) << decoded.error().detail;
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(decoded->image.row8(0)[c], 255, 4) << "the first row is white: not flipped";
        EXPECT_NEAR(decoded->image.row8(7)[c], 0, 4);
    }
}

TEST(TiffColour, profileIsKeptWhenItFitsTheModel)
{
    const ByteSpan srgb = ColorSpace::sRgb().iccProfile();
    const ByteBuffer profile(srgb.begin(), srgb.end());
    ASSERT_FALSE(profile.empty());
    const auto grey = [](int, int, int) { return 0U; };
    const auto fitting
        = decodeFile(tiffFile({ .samples = 3, .photometric = rgb, .profile = profile }, grey));
    ASSERT_TRUE(fitting);
    EXPECT_TRUE(std::ranges::equal(fitting->image.colorSpace().iccProfile(), profile));
    const auto unfitting = decodeFile(tiffFile({ .profile = profile }, grey));
    ASSERT_TRUE(unfitting);
    EXPECT_TRUE(unfitting->image.colorSpace() == ColorSpace::grey());
    const auto without
        = decodeFile(tiffFile({ .samples = 4, .photometric = PHOTOMETRIC_SEPARATED }, grey));
    ASSERT_TRUE(without);
    EXPECT_TRUE(without->image.colorSpace() == ColorSpace::deviceCmyk());
}

} // namespace
} // namespace vellumine::imaging::tiff
