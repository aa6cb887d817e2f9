#include "imaging/codecs/PngFiles.h"
#include "imaging/codecs/png/PngCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>

namespace vellumine::imaging {
namespace {

using test::chunk;
using test::maximumDifference;
using test::oddSize;
using test::pngFile;
using test::PngRecipe;
using test::sampleAt;
using namespace std::string_literals;
using namespace std::string_view_literals;

Image decoded(ByteSpan file)
{
    return png::decode(file, {}).value().image;
}

Error::Kind refusal(ByteSpan file, const DecodeOptions& options = {})
{
    const auto result = png::decode(file, options);
    EXPECT_FALSE(result.has_value());
    return result ? Error::Kind::io : result.error().kind;
}

/// Something that differs between neighbours in every direction and channel.
unsigned pattern(int x, int y, int channel, int bitDepth)
{
    const auto value = static_cast<unsigned>(x * 2477 + y * 7919 + channel * 13007 + x * y * 31);
    return value % (1U << static_cast<unsigned>(bitDepth));
}

PngRecipe recipe(int colorType, int bitDepth, Size size = oddSize)
{
    PngRecipe made;
    made.size = size;
    made.colorType = colorType;
    made.bitDepth = bitDepth;
    made.sample = [bitDepth](int x, int y, int c) { return pattern(x, y, c, bitDepth); };
    if (colorType == 3) {
        for (unsigned i = 0; i < (1U << static_cast<unsigned>(bitDepth)); ++i) {
            for (const unsigned factor : { 3U, 5U, 7U }) {
                made.palette.push_back(static_cast<std::uint8_t>(i * factor + 1));
            }
        }
    }
    return made;
}

// --- Kinds of files -----------------------------------------------------------------------------

struct KindCase {
    const char* name;
    int colorType;
    int bitDepth;
    PixelLayout layout;
};

void PrintTo(const KindCase& kind, std::ostream* stream)
{
    *stream << kind.name;
}

constexpr auto grey = ColorModel::grey;
constexpr auto rgb = ColorModel::rgb;
constexpr auto none = AlphaInfo::none;
constexpr auto last = AlphaInfo::last;

class PngKinds : public testing::TestWithParam<KindCase> { };

TEST_P(PngKinds, decodesEverySample)
{
    const auto& [name, colorType, bitDepth, layout] = GetParam();
    const auto made = recipe(colorType, bitDepth);
    const auto file = pngFile(made);
    const auto header = png::readHeader(file).value();
    EXPECT_EQ(header.size, oddSize);
    EXPECT_EQ(header.layout, layout);
    const Image image = decoded(file);
    ASSERT_EQ(image.layout(), layout);
    for (int y = 0; y < oddSize.height; ++y) {
        for (int x = 0; x < oddSize.width; ++x) {
            for (int c = 0; c < layout.channels(); ++c) {
                const auto index = static_cast<std::size_t>(
                    3 * pattern(x, y, 0, bitDepth) + static_cast<unsigned>(c));
                const double expected = colorType == 3
                    ? made.palette.at(index) / 255.0
                    : pattern(x, y, c, bitDepth) / ((1U << static_cast<unsigned>(bitDepth)) - 1.0);
                ASSERT_NEAR(sampleAt(image, x, y, c), expected, 1e-9) << x << ' ' << y << ' ' << c;
            }
        }
    }
}

TEST_P(PngKinds, decodesTheSameInterlacedInEverySize)
{
    for (int height = 1; height <= 17; ++height) {
        for (int width = 1; width <= 17; ++width) {
            auto made = recipe(GetParam().colorType, GetParam().bitDepth, { width, height });
            const Image plain = decoded(pngFile(made));
            made.interlacing = PngRecipe::Interlacing::adam7;
            const auto interlaced = png::decode(pngFile(made), {});
            ASSERT_TRUE(interlaced.has_value()) << width << ' ' << height;
            ASSERT_EQ(maximumDifference(plain, interlaced->image), 0.0) << width << ' ' << height;
        }
    }
}

TEST_P(PngKinds, regionEqualsTheFullDecode)
{
    for (const auto interlacing : { PngRecipe::Interlacing::none, PngRecipe::Interlacing::adam7 }) {
        auto made = recipe(GetParam().colorType, GetParam().bitDepth);
        made.interlacing = interlacing;
        const auto file = pngFile(made);
        const Image whole = decoded(file);
        for (int i = 0; i < 40; ++i) {
            const int x = (i * 17) % 47;
            const int y = (i * 11) % 33;
            const Rect region { x, y, 1 + (i * 29) % (47 - x), 1 + (i * 31) % (33 - y) };
            const auto part
                = png::decode(file, { .limits = {}, .wish = { .region = region } }).value();
            ASSERT_TRUE(part.isRegion);
            ASSERT_EQ(part.storedSize, oddSize);
            ASSERT_EQ(part.image.size(), region.size());
            ASSERT_EQ(maximumDifference(part.image, whole.cropped(region)), 0.0);
        }
    }
}

TEST_P(PngKinds, refusesEveryCutOfThePictureDataAndPassesWithoutTheEnd)
{
    for (const auto interlacing : { PngRecipe::Interlacing::none, PngRecipe::Interlacing::adam7 }) {
        auto made = recipe(GetParam().colorType, GetParam().bitDepth);
        made.interlacing = interlacing;
        const auto file = pngFile(made);
        const Image whole = decoded(file);
        const std::size_t end = test::findChunk(file, "IEND");
        // The last rows can be whole before the stream's own checksum and the chunk's.
        const std::size_t dataEnd = end - 8 - 4;
        for (std::size_t cut = 0; cut < dataEnd; ++cut) {
            const auto result = png::decode(ByteSpan(file).first(cut), {});
            ASSERT_FALSE(result.has_value()) << cut << " of " << file.size();
            ASSERT_EQ(result.error().kind, Error::Kind::truncated) << cut;
        }
        for (std::size_t cut = end; cut < file.size(); ++cut) {
            const auto result = png::decode(ByteSpan(file).first(cut), {});
            ASSERT_TRUE(result.has_value()) << cut << " of " << file.size();
            ASSERT_EQ(maximumDifference(whole, result->image), 0.0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Png, PngKinds,
    testing::Values(KindCase { "grey1", 0, 1, { grey, 8, none } },
        KindCase { "grey2", 0, 2, { grey, 8, none } },
        KindCase { "grey4", 0, 4, { grey, 8, none } },
        KindCase { "grey8", 0, 8, { grey, 8, none } },
        KindCase { "grey16", 0, 16, { grey, 16, none } },
        KindCase { "greyAlpha8", 4, 8, { grey, 8, last } },
        KindCase { "greyAlpha16", 4, 16, { grey, 16, last } },
        KindCase { "rgb8", 2, 8, { rgb, 8, none } }, KindCase { "rgb16", 2, 16, { rgb, 16, none } },
        KindCase { "rgba8", 6, 8, { rgb, 8, last } },
        KindCase { "rgba16", 6, 16, { rgb, 16, last } },
        KindCase { "palette1", 3, 1, { rgb, 8, none } },
        KindCase { "palette2", 3, 2, { rgb, 8, none } },
        KindCase { "palette4", 3, 4, { rgb, 8, none } },
        KindCase { "palette8", 3, 8, { rgb, 8, none } }),
    test::RowName());

// --- Transparency chunks ------------------------------------------------------------------------

std::string bigEndian16(unsigned value)
{
    return { static_cast<char>(value >> 8U), static_cast<char>(value & 0xFFU) };
}

TEST(PngTransparency, ofOneGreyBecomesAlpha)
{
    for (const int bitDepth : { 1, 2, 4, 8, 16 }) {
        auto made = recipe(0, bitDepth);
        const unsigned key = pattern(3, 5, 0, bitDepth);
        made.chunks = chunk("tRNS", bigEndian16(key));
        const auto file = pngFile(made);
        const PixelLayout layout { grey, bitDepth == 16 ? 16 : 8, last };
        EXPECT_EQ(png::readHeader(file).value().layout, layout);
        const Image image = decoded(file);
        ASSERT_EQ(image.layout(), layout);
        for (int y = 0; y < oddSize.height; ++y) {
            for (int x = 0; x < oddSize.width; ++x) {
                const bool isKey = pattern(x, y, 0, bitDepth) == key;
                ASSERT_EQ(sampleAt(image, x, y, 1), isKey ? 0.0 : 1.0);
            }
        }
    }
}

TEST(PngTransparency, ofOneColourBecomesAlpha)
{
    for (const int bitDepth : { 8, 16 }) {
        auto made = recipe(2, bitDepth);
        std::string key;
        for (const int c : { 0, 1, 2 }) {
            key += bigEndian16(pattern(3, 5, c, bitDepth));
        }
        made.chunks = chunk("tRNS", key);
        const Image image = decoded(pngFile(made));
        ASSERT_EQ(image.layout(), (PixelLayout { rgb, bitDepth, last }));
        EXPECT_EQ(sampleAt(image, 3, 5, 3), 0.0);
        EXPECT_EQ(sampleAt(image, 4, 5, 3), 1.0);
        EXPECT_EQ(sampleAt(image, 3, 6, 3), 1.0);
    }
}

TEST(PngTransparency, ofAPaletteBecomesAlpha)
{
    auto made = recipe(3, 4);
    made.chunks = chunk("tRNS", "\x00\x80\xFF\x40"s); // of the first four of sixteen
    const Image image = decoded(pngFile(made));
    ASSERT_EQ(image.layout(), (PixelLayout { rgb, 8, last }));
    const std::array alphas { 0, 128, 255, 64 };
    for (int y = 0; y < oddSize.height; ++y) {
        for (int x = 0; x < oddSize.width; ++x) {
            const unsigned index = pattern(x, y, 0, 4);
            ASSERT_EQ(sampleAt(image, x, y, 3) * 255.0, index < 4 ? alphas.at(index) : 255);
        }
    }
}

TEST(PngTransparency, ofTheWrongShapeDoesNotCount)
{
    struct Row {
        int colorType;
        std::string chunks;
    };
    for (const auto& [colorType, chunks] : {
             Row { 0, chunk("tRNS", "\x01") },
             Row { 2, chunk("tRNS", "\x01\x02\x03") },
             Row { 3, chunk("tRNS", "") },
             Row { 3, chunk("tRNS", std::string(257, 'x')) },
             Row { 6, chunk("tRNS", "\x01\x02\x03\x04\x05\x06") },
         }) {
        auto made = recipe(colorType, 8);
        const Image plain = decoded(pngFile(made));
        made.chunks = chunks;
        const auto file = pngFile(made);
        const auto result = png::decode(file, {});
        ASSERT_TRUE(result.has_value()) << colorType << result.error().detail;
        EXPECT_EQ(png::readHeader(file).value().layout, result->image.layout());
        EXPECT_EQ(maximumDifference(plain, result->image), 0.0);
    }
}

// --- Limits, damage -----------------------------------------------------------------------------

TEST(PngDecoder, checksTheLimitsBeforeItAllocates)
{
    const auto file = pngFile(recipe(2, 16, { 64, 64 }));
    Limits exact { .maximumPixels = 4096, .maximumSide = 64, .maximumBytes = 4096 * 6 };
    EXPECT_TRUE(png::decode(file, { .limits = exact, .wish = {} }).has_value());
    for (const Limits& tight : {
             Limits { .maximumPixels = 4095, .maximumSide = 64, .maximumBytes = 4096 * 6 },
             Limits { .maximumPixels = 4096, .maximumSide = 63, .maximumBytes = 4096 * 6 },
             Limits { .maximumPixels = 4096, .maximumSide = 64, .maximumBytes = 4096 * 6 - 1 },
         }) {
        EXPECT_EQ(refusal(file, { .limits = tight, .wish = {} }), Error::Kind::limitExceeded);
    }
}

TEST(PngDecoder, countsTheAlphaOfATransparencyChunkAgainstTheLimits)
{
    auto made = recipe(3, 8, { 64, 64 });
    made.chunks = chunk("tRNS", "\x80");
    const auto file = pngFile(made);
    Limits limits;
    limits.maximumBytes = 4096 * 4;
    EXPECT_TRUE(png::decode(file, { .limits = limits, .wish = {} }).has_value());
    --limits.maximumBytes;
    EXPECT_EQ(refusal(file, { .limits = limits, .wish = {} }), Error::Kind::limitExceeded);
}

TEST(PngDecoder, givesNoOtherPictureForAChangedByte)
{
    const auto file = pngFile(recipe(3, 4, { 19, 17 }));
    const Image whole = decoded(file);
    const std::size_t end = test::findChunk(file, "IEND");
    int decodedAnyway = 0;
    for (std::size_t at = 0; at < end; ++at) {
        auto broken = file;
        broken[at] ^= std::byte { 0x10 };
        if (const auto result = png::decode(broken, {})) {
            ASSERT_EQ(maximumDifference(whole, result->image), 0.0) << at;
            ++decodedAnyway;
        }
    }
    // A chunk of picture data that says to be too long still has all of it.
    EXPECT_LE(decodedAnyway, 3);
}

TEST(PngDecoder, doesNotMindDamageBesideThePicture)
{
    auto made = recipe(2, 8);
    const Image plain = decoded(pngFile(made));
    std::string damaged = chunk("gAMA", "\0\x01\x86\xA0"s);
    damaged.back() = static_cast<char>(~damaged.back());
    made.chunks = damaged + chunk("zTXt", "keyword\0\0no stream"s) + chunk("iCCP", "no profile")
        + chunk("cHRM", "short") + chunk("prVt", "private");
    made.chunksBehind = damaged + chunk("tEXt", "keyword") + chunk("fdAT", "of an animation");
    const auto result = png::decode(pngFile(made), {}).value();
    EXPECT_EQ(maximumDifference(plain, result.image), 0.0);
    EXPECT_EQ(result.image.colorSpace(), ColorSpace::sRgb());
}

TEST(PngDecoder, acceptsBytesBehindTheEnd)
{
    auto file = pngFile(recipe(2, 8));
    const Image plain = decoded(file);
    file.resize(file.size() + 1000);
    EXPECT_EQ(maximumDifference(plain, decoded(file)), 0.0);
}

TEST(PngDecoder, refusesPictureDataThatIsTooShortForThePicture)
{
    const auto file = pngFile(recipe(0, 8, { 20, 20 }));
    const std::size_t data = test::findChunk(file, "IDAT");
    const std::string rows(21 * 19, '\0'); // a row too few
    ByteBuffer made(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(data));
    const std::string rest = chunk("IDAT", test::zlibStream(rows)) + chunk("IEND", "");
    const auto bytes = std::as_bytes(std::span(rest));
    made.insert(made.end(), bytes.begin(), bytes.end());
    EXPECT_EQ(refusal(made), Error::Kind::truncated);
}

TEST(PngDecoder, refusesAStreamThatIsDamagedUnderARightChecksum)
{
    const auto file = pngFile(recipe(0, 8, { 20, 20 }));
    const std::size_t data = test::findChunk(file, "IDAT");
    std::string stream = test::chunkContent(file, "IDAT");
    for (std::size_t i = stream.size() / 2; i < stream.size(); ++i) {
        stream[i] = static_cast<char>(~stream[i]);
    }
    ByteBuffer made(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(data));
    const std::string rest = chunk("IDAT", stream) + chunk("IEND", "");
    const auto bytes = std::as_bytes(std::span(rest));
    made.insert(made.end(), bytes.begin(), bytes.end());
    EXPECT_FALSE(png::decode(made, {}).has_value());
}

struct MalformedCase {
    const char* name;
    std::string content;
    Error::Kind kind;
};

void PrintTo(const MalformedCase& malformed, std::ostream* stream)
{
    *stream << malformed.name;
}

std::string withHeader(std::string_view header)
{
    return "\x89PNG\r\n\x1A\n"s + chunk("IHDR", header) + chunk("IDAT", "x") + chunk("IEND", "");
}

class PngMalformed : public testing::TestWithParam<MalformedCase> { };

TEST_P(PngMalformed, isRefused)
{
    const auto bytes = std::as_bytes(std::span(GetParam().content));
    const auto header = png::readHeader(bytes);
    ASSERT_FALSE(header.has_value());
    EXPECT_EQ(header.error().kind, GetParam().kind) << header.error().detail;
    EXPECT_EQ(refusal(bytes), GetParam().kind);
}

INSTANTIATE_TEST_SUITE_P(Png, PngMalformed,
    testing::Values(MalformedCase { "empty", "", Error::Kind::truncated },
        MalformedCase { "halfASignature", "\x89PNG"s, Error::Kind::truncated },
        MalformedCase { "signatureOnly", "\x89PNG\r\n\x1A\n"s, Error::Kind::truncated },
        MalformedCase {
            "otherSignature", "\x89PNG\n\n\x1A\n"s + std::string(60, 'x'), Error::Kind::malformed },
        MalformedCase { "otherFirstChunk",
            "\x89PNG\r\n\x1A\n"s + chunk("tEXt", "keyword\0some text"s), Error::Kind::malformed },
        MalformedCase {
            "shortHeader", withHeader("\0\0\0\x01\0\0\0\x01\x08\0\0\0"s), Error::Kind::malformed },
        MalformedCase {
            "noWidth", withHeader("\0\0\0\0\0\0\0\x01\x08\0\0\0\0"s), Error::Kind::malformed },
        MalformedCase {
            "noHeight", withHeader("\0\0\0\x01\0\0\0\0\x08\0\0\0\0"s), Error::Kind::malformed },
        MalformedCase { "negativeWidth", withHeader("\x80\0\0\x01\0\0\0\x01\x08\0\0\0\0"s),
            Error::Kind::malformed },
        MalformedCase {
            "depth3", withHeader("\0\0\0\x01\0\0\0\x01\x03\0\0\0\0"s), Error::Kind::malformed },
        MalformedCase { "rgbOf4Bits", withHeader("\0\0\0\x01\0\0\0\x01\x04\x02\0\0\0"s),
            Error::Kind::malformed },
        MalformedCase { "paletteOf16Bits", withHeader("\0\0\0\x01\0\0\0\x01\x10\x03\0\0\0"s),
            Error::Kind::malformed },
        MalformedCase { "colorType1", withHeader("\0\0\0\x01\0\0\0\x01\x08\x01\0\0\0"s),
            Error::Kind::malformed },
        MalformedCase { "compression1", withHeader("\0\0\0\x01\0\0\0\x01\x08\0\x01\0\0"s),
            Error::Kind::malformed },
        MalformedCase { "interlacing2", withHeader("\0\0\0\x01\0\0\0\x01\x08\0\0\0\x02"s),
            Error::Kind::malformed }),
    test::RowName());

TEST(PngDecoder, refusesAPaletteThatIsMissing)
{
    const std::string file = withHeader("\0\0\0\x01\0\0\0\x01\x08\x03\0\0\0"s);
    EXPECT_EQ(refusal(std::as_bytes(std::span(file))), Error::Kind::malformed);
}

} // namespace
} // namespace vellumine::imaging
