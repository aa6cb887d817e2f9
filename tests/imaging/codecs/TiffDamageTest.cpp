#include "imaging/codecs/TiffFiles.h"
#include "imaging/codecs/tiff/TiffCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace vellumine::imaging::tiff {
namespace {

using test::tiffFile;
using test::TiffRecipe;

constexpr auto rgb = PHOTOMETRIC_RGB;
constexpr auto white = PHOTOMETRIC_MINISWHITE;

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

TEST(TiffDamage, missingStripIsRefused)
{
    const test::TemporaryFolder folder;
    const auto path = folder / "sparse.tiff";
    {
        const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(
            TIFFOpen(path.c_str(), "w"), &TIFFClose);
        TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, 16);
        TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, 16);
        TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
        TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, 8);
        std::array<std::byte, 128> strip {};
        ASSERT_GT(TIFFWriteEncodedStrip(tiff.get(), 0, strip.data(), 128), 0);
    }
    const auto decoded = decodeFile(test::readFile(path));
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind, Error::Kind::truncated);
}

class TiffCut : public testing::TestWithParam<Row> { };

/// The byte count of the only strip, in a little-endian file.
void setStripByteCount(ByteBuffer& file, std::uint32_t count)
{
    const auto read16 = [&file](std::size_t at) {
        std::uint16_t value = 0;
        std::memcpy(&value, file.data() + at, sizeof value);
        return value;
    };
    std::uint32_t directory = 0;
    std::memcpy(&directory, file.data() + 4, sizeof directory);
    for (std::size_t i = 0; i < read16(directory); ++i) {
        const std::size_t entry = directory + 2 + i * 12;
        if (read16(entry) == TIFFTAG_STRIPBYTECOUNTS) {
            const std::uint16_t type = TIFF_LONG;
            std::memcpy(file.data() + entry + 2, &type, sizeof type);
            std::memcpy(file.data() + entry + 8, &count, sizeof count);
            return;
        }
    }
    FAIL() << "no byte count";
}

/// Some decompressors report success when their data ends early.
TEST_P(TiffCut, stripThatEndsEarlyIsRefused)
{
    TiffRecipe recipe = GetParam().recipe;
    recipe.rowsPerStrip = 33;
    const ByteBuffer sound = tiffFile(recipe, [&](int x, int y, int s) {
        return static_cast<unsigned>(
            recipe.bits == 1 ? (x * x + y * y * 3) / 40 % 2 : (x * 7 + y * 13 + s * 29) & 255);
    });
    ASSERT_TRUE(decodeFile(sound));
    std::uint32_t directory = 0; // right behind the strip, which is right behind the header
    std::memcpy(&directory, sound.data() + 4, sizeof directory);
    for (const double keep : { 0.1, 0.5, 0.9 }) {
        ByteBuffer cut = sound;
        setStripByteCount(cut, static_cast<std::uint32_t>((directory - 8) * keep));
        EXPECT_FALSE(decodeFile(cut)) << keep;
    }
}

INSTANTIATE_TEST_SUITE_P(Compressions, TiffCut,
    testing::Values(
        Row { "lzw", { .samples = 3, .photometric = rgb, .compression = COMPRESSION_LZW } },
        Row { "deflate",
            { .samples = 3, .photometric = rgb, .compression = COMPRESSION_ADOBE_DEFLATE } },
        Row {
            "packBits", { .samples = 3, .photometric = rgb, .compression = COMPRESSION_PACKBITS } },
        Row { "fax3", { .bits = 1, .photometric = white, .compression = COMPRESSION_CCITTFAX3 } },
        Row { "fax4", { .bits = 1, .photometric = white, .compression = COMPRESSION_CCITTFAX4 } },
        Row { "jpeg", { .samples = 3, .photometric = rgb, .compression = COMPRESSION_JPEG } }),
    [](const auto& row) { return row.param.name; });

TEST(TiffDamage, everyCutIsRefused)
{
    const auto file = tiffFile({ .samples = 3, .photometric = rgb },
        [](int x, int y, int s) { return static_cast<unsigned>((x * 7 + y * 13 + s * 29) & 255); });
    const auto whole = decodeFile(file);
    ASSERT_TRUE(whole);
    for (std::size_t length = 0; length < file.size(); length += 23) {
        const ByteBuffer cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(decodeFile(cut)) << length;
    }
}

TEST(TiffDamage, limitsHoldBeforeAnythingIsAllocated)
{
    const auto nothing = [](int, int, int) { return 0U; };
    const auto wide = tiffFile({ .size = { 5000, 40 } }, nothing);
    const auto refused = [](const ByteBuffer& file, const Limits& limits) {
        const auto decoded = decode(file, { .limits = limits, .wish = {} });
        return !decoded && decoded.error().kind == Error::Kind::limitExceeded;
    };
    EXPECT_TRUE(refused(wide, { .maximumSide = 4999 }));
    EXPECT_TRUE(refused(wide, { .maximumPixels = 199'999 }));
    EXPECT_TRUE(refused(wide, { .maximumBytes = 199'999 }));
    EXPECT_TRUE(decode(wide, { .limits = { .maximumPixels = 200'000 }, .wish = {} }));
    // The picture is tiny and its tile is not.
    const auto tile = tiffFile(
        { .size = { 2, 2 }, .compression = COMPRESSION_ADOBE_DEFLATE, .tile = 4096 }, nothing);
    EXPECT_TRUE(refused(tile, { .maximumBytes = 1U << 20U }));
}

TEST(TiffDamage, directoryThatPointsToItselfIsNoMatter)
{
    auto file = tiffFile({ .size = { 3, 3 } }, [](int, int, int) { return 9U; });
    std::uint32_t directory = 0;
    std::memcpy(&directory, file.data() + 4, 4);
    std::uint16_t entries = 0;
    std::memcpy(&entries, file.data() + directory, 2);
    std::memcpy(file.data() + directory + 2 + entries * 12U, &directory, 4);
    const auto decoded = decodeFile(file);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->image.row8(2)[2], 9);
}

TEST(TiffDamage, nothingIsPrinted)
{
    auto file = tiffFile({}, [](int, int, int) { return 0U; });
    file.resize(file.size() / 2);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(decodeFile(file));
    EXPECT_FALSE(readHeader(ByteBuffer(4)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace vellumine::imaging::tiff
