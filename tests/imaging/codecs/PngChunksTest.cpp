#include "imaging/codecs/PngFiles.h"
#include "imaging/codecs/png/PngCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vellumine::imaging {
namespace {

using test::chunk;
using test::oddSize;
using test::zlibStream;
using namespace std::string_literals;

constexpr PixelLayout grey8 { ColorModel::grey, 8, AlphaInfo::none };
constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

constexpr Primaries rec709 { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.30, 0.60 }, { 0.15, 0.06 } };
constexpr Primaries displayP3 { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 },
    { 0.150, 0.060 } };

std::string textOf(ByteSpan bytes)
{
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

ByteBuffer bytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

enum class Place { beforeThePicture, behindThePicture };

DecodedImage decodedWith(
    const std::string& chunks, Place place = Place::beforeThePicture, int colorType = 2)
{
    test::PngRecipe recipe;
    recipe.size = { 5, 4 };
    recipe.colorType = colorType;
    (place == Place::beforeThePicture ? recipe.chunks : recipe.chunksBehind) = chunks;
    recipe.sample = [](int x, int y, int c) { return static_cast<unsigned>(x * 40 + y * 9 + c); };
    return png::decode(test::pngFile(recipe), {}).value();
}

ColorSpace spaceWith(const std::string& chunks, int colorType = 2)
{
    return decodedWith(chunks, Place::beforeThePicture, colorType).image.colorSpace();
}

std::string bigEndian(std::uint32_t value)
{
    std::string bytes;
    for (const unsigned shift : { 24U, 16U, 8U, 0U }) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

std::string gammaChunk(std::uint32_t gamma)
{
    return chunk("gAMA", bigEndian(gamma));
}

std::string primariesChunk(const Primaries& primaries)
{
    std::string data;
    for (const Chromaticity& point :
        { primaries.white, primaries.red, primaries.green, primaries.blue }) {
        data += bigEndian(static_cast<std::uint32_t>(std::lround(point.x * 100'000)));
        data += bigEndian(static_cast<std::uint32_t>(std::lround(point.y * 100'000)));
    }
    return chunk("cHRM", data);
}

std::string profileChunk(std::string_view profile)
{
    return chunk("iCCP", "a name\0\0"s + zlibStream(profile));
}

ColorSpace wideSpace()
{
    return ColorSpace::fromPrimaries(displayP3, { TransferCurve::Kind::sRgb, 1.0 }).value();
}

ColorSpace gammaSpace(const Primaries& primaries, double gamma, ColorModel model = ColorModel::rgb)
{
    return ColorSpace::fromPrimaries(primaries, { TransferCurve::Kind::gamma, gamma }, model)
        .value();
}

// --- Colour -------------------------------------------------------------------------------------

TEST(PngColour, withoutChunksIsSRgbOrGrey)
{
    EXPECT_EQ(spaceWith(""), ColorSpace::sRgb());
    EXPECT_EQ(spaceWith("", 0), ColorSpace::grey());
}

/// Primaries, curve, matrix and range.
std::string codePointsChunk(const std::string& codes)
{
    return chunk("cICP", codes);
}

TEST(PngColour, isThatOfCodePointsFirstOfAll)
{
    const std::string others = profileChunk(textOf(gammaSpace(rec709, 1.8).iccProfile()))
        + chunk("sRGB", "\0"s) + gammaChunk(100'000) + primariesChunk(rec709);
    const std::string displayP3Codes = codePointsChunk("\x0C\x0D\0\x01"s);
    EXPECT_EQ(spaceWith(displayP3Codes), wideSpace());
    EXPECT_EQ(spaceWith(displayP3Codes + others), wideSpace());
    EXPECT_EQ(spaceWith(others + displayP3Codes), wideSpace());
    EXPECT_EQ(spaceWith(codePointsChunk("\x01\x0D\0\x01"s) + others), ColorSpace::sRgb());
    EXPECT_EQ(spaceWith(codePointsChunk("\x01\x08\0\x01"s) + others), gammaSpace(rec709, 1.0));
    EXPECT_FALSE(spaceWith(codePointsChunk("\x09\x10\0\x01"s)).isSRgbEquivalent()); // PQ
}

TEST(PngColour, ofCodePointsIsTheCurveAloneInAGreyFile)
{
    EXPECT_EQ(spaceWith(codePointsChunk("\x09\x08\0\x01"s), 0),
        gammaSpace(rec709, 1.0, ColorModel::grey));
    EXPECT_EQ(
        spaceWith(codePointsChunk("\x0C\x0D\0\x01"s) + gammaChunk(100'000), 0), ColorSpace::grey());
}

TEST(PngColour, ofCodePointsThatAreNoUseIsTheNextChunks)
{
    struct Row {
        const char* name;
        std::string chunk;
    };
    std::string damaged = codePointsChunk("\x0C\x0D\0\x01"s);
    damaged.back() = static_cast<char>(damaged.back() ^ 1);
    const std::string profile = textOf(gammaSpace(displayP3, 1.8).iccProfile());
    for (const Row& row :
        { Row { "empty", codePointsChunk("") }, Row { "too short", codePointsChunk("\x0C\x0D\0"s) },
            Row { "too long", codePointsChunk("\x0C\x0D\0\x01\0"s) },
            Row { "huge", codePointsChunk(std::string(100'000, '\x0C')) },
            Row { "damaged", damaged },
            Row { "unspecified primaries", codePointsChunk("\x02\x0D\0\x01"s) },
            Row { "unspecified curve", codePointsChunk("\x0C\x02\0\x01"s) },
            Row { "unknown codes", codePointsChunk("\xFF\xFF\0\x01"s) },
            Row { "a matrix", codePointsChunk("\x0C\x0D\x01\x01"s) },
            Row { "narrow range", codePointsChunk("\x0C\x0D\0\0"s) },
            Row { "neither range", codePointsChunk("\x0C\x0D\0\x02"s) } }) {
        EXPECT_EQ(spaceWith(row.chunk), ColorSpace::sRgb()) << row.name;
        EXPECT_EQ(spaceWith(row.chunk + gammaChunk(100'000)), gammaSpace(rec709, 1.0)) << row.name;
        EXPECT_EQ(textOf(spaceWith(row.chunk + profileChunk(profile)).iccProfile()), profile)
            << row.name;
    }
}

TEST(PngColour, isTheProfilesBeforeThatOfTheOtherChunks)
{
    const std::string profile = textOf(wideSpace().iccProfile());
    const auto space = spaceWith(profileChunk(profile) + chunk("sRGB", "\0"s) + gammaChunk(100'000)
        + primariesChunk(rec709));
    EXPECT_EQ(textOf(space.iccProfile()), profile);
}

TEST(PngColour, ofAProfileThatIsNoUseIsTheNextChunks)
{
    const std::string profile = textOf(wideSpace().iccProfile());
    const std::string bomb(std::size_t { 20 } << 20U, '\0');
    for (const std::string& broken : { chunk("iCCP", "a name\0\0no stream"s),
             chunk("iCCP", "a name\0\x01"s + zlibStream(profile)), chunk("iCCP", ""),
             chunk("iCCP", std::string(100, 'n')), profileChunk("no profile"), profileChunk(""),
             profileChunk(bomb), profileChunk(profile.substr(0, 200)) }) {
        EXPECT_EQ(spaceWith(broken), ColorSpace::sRgb());
        EXPECT_EQ(spaceWith(broken + gammaChunk(100'000)), gammaSpace(rec709, 1.0));
    }
    // An RGB profile in a grey file.
    EXPECT_EQ(spaceWith(profileChunk(profile), 0), ColorSpace::grey());
}

TEST(PngColour, ofTheSRgbChunkGoesBeforeNumbers)
{
    EXPECT_EQ(spaceWith(chunk("sRGB", "\0"s) + gammaChunk(100'000)), ColorSpace::sRgb());
    EXPECT_EQ(spaceWith(chunk("sRGB", "\0"s) + gammaChunk(100'000), 0), ColorSpace::grey());
}

TEST(PngColour, ofNumbersHasThatCurveAndThosePrimaries)
{
    EXPECT_EQ(spaceWith(gammaChunk(50'000)), gammaSpace(rec709, 2.0));
    EXPECT_EQ(spaceWith(gammaChunk(100'000)), gammaSpace(rec709, 1.0));
    EXPECT_EQ(
        spaceWith(gammaChunk(50'000) + primariesChunk(displayP3)), gammaSpace(displayP3, 2.0));
    EXPECT_EQ(spaceWith(primariesChunk(displayP3)), wideSpace());
    EXPECT_EQ(spaceWith(gammaChunk(50'000), 0), gammaSpace(rec709, 2.0, ColorModel::grey));
}

TEST(PngColour, ofTheUsualNumbersIsSRgb)
{
    EXPECT_EQ(spaceWith(gammaChunk(45'455)), ColorSpace::sRgb());
    EXPECT_EQ(spaceWith(gammaChunk(45'455) + primariesChunk(rec709)), ColorSpace::sRgb());
    EXPECT_EQ(spaceWith(gammaChunk(45'455), 0), ColorSpace::grey());
    EXPECT_EQ(spaceWith(primariesChunk(rec709)), ColorSpace::sRgb());
}

TEST(PngColour, ofSenselessNumbersIsSRgb)
{
    EXPECT_EQ(spaceWith(gammaChunk(0)), ColorSpace::sRgb());
    EXPECT_EQ(spaceWith(chunk("gAMA", "abc")), ColorSpace::sRgb());
    const std::string noPrimaries = chunk("cHRM", std::string(32, '\0'));
    EXPECT_EQ(spaceWith(gammaChunk(50'000) + noPrimaries), gammaSpace(rec709, 2.0));
    EXPECT_TRUE(spaceWith(noPrimaries).isSRgbEquivalent());
}

TEST(PngColour, travelsAsAProfileUnlessItIsLeftOut)
{
    const Image picture = test::gradient(oddSize, rgb8).withColorSpace(wideSpace());
    EncodeOptions options;
    const auto with = png::encode(picture, options).value();
    EXPECT_EQ(png::decode(with, {}).value().image.colorSpace(), wideSpace());
    options.profile = ProfilePolicy::omit;
    const auto without = png::encode(picture, options).value();
    EXPECT_EQ(test::findChunk(without, "iCCP"), without.size());
    EXPECT_EQ(png::decode(without, {}).value().image.colorSpace(), ColorSpace::sRgb());
}

int colorTypeOf(ByteSpan file)
{
    return test::chunkContent(file, "IHDR").at(9);
}

TEST(PngColour, keepsTheColourTypeThatItsProfileIsFor)
{
    // Grey in RGB, too many levels for less than 8 bits.
    const auto level = [](int x, int y, int /*c*/) { return (x * 7 + y * 3) % 256 / 255.0; };
    const Image greyInRgb = test::makeImage({ 300, 250 }, rgb8, wideSpace(), level);
    EncodeOptions options;
    EXPECT_EQ(colorTypeOf(png::encode(greyInRgb, options).value()), 3) << "a palette counts as RGB";
    options.profile = ProfilePolicy::omit;
    EXPECT_EQ(colorTypeOf(png::encode(greyInRgb, options).value()), 0);

    // Two greys would be a palette; under a grey profile they may not.
    const auto two = [](int x, int y, int /*c*/) { return (x * x + y) % 3 == 0 ? 0.2 : 0.4; };
    const Image grey
        = test::makeImage({ 200, 200 }, grey8, gammaSpace(rec709, 2.0, ColorModel::grey), two);
    options.profile = ProfilePolicy::embed;
    const auto embedded = png::encode(grey, options).value();
    EXPECT_EQ(colorTypeOf(embedded), 0);
    EXPECT_EQ(png::decode(embedded, {}).value().image.colorSpace(), grey.colorSpace());
    options.profile = ProfilePolicy::omit;
    EXPECT_EQ(colorTypeOf(png::encode(grey, options).value()), 3);
}

// --- Metadata -----------------------------------------------------------------------------------

const std::string exif = "II*\0\x08\0\0\0\0\0\0\0\0\0"s;
const std::string xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
const std::string iptc = "\x1C\x02\x78\0\x03"
                         "abc"s;
const std::string iptcResource = "8BIM\x04\x04\0\0\0\0\0\x08"s + iptc;

std::string rawProfile(std::string_view name, std::string_view content)
{
    std::string text = "\n" + std::string(name) + "\n      " + std::to_string(content.size());
    for (std::size_t i = 0; i < content.size(); ++i) {
        if (i % 36 == 0) {
            text += '\n';
        }
        const auto byte = static_cast<unsigned char>(content[i]);
        text += "0123456789abcdef"[byte / 16];
        text += "0123456789abcdef"[byte % 16];
    }
    return text + "\n";
}

TEST(PngMetadata, isReadFromEveryPlaceThatItIsWrittenTo)
{
    struct Row {
        const char* name;
        std::string chunks;
        MetadataBlocks blocks;
    };
    const MetadataBlocks onlyExif { bytesOf(exif), {}, {} };
    const MetadataBlocks onlyXmp { {}, bytesOf(xmp), {} };
    const MetadataBlocks onlyIptc { {}, {}, bytesOf(iptc) };
    const std::string namespaceOfXmp = "http://ns.adobe.com/xap/1.0/\0"s;
    for (const auto& [name, chunks, blocks] : {
             Row { "eXIf", chunk("eXIf", exif), onlyExif },
             Row { "eXIf with signature", chunk("eXIf", "Exif\0\0"s + exif), onlyExif },
             Row { "iTXt", chunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0"s + xmp), onlyXmp },
             Row { "iTXt with language", chunk("iTXt", "XML:com.adobe.xmp\0\0\0en\0word\0"s + xmp),
                 onlyXmp },
             Row { "compressed iTXt",
                 chunk("iTXt", "XML:com.adobe.xmp\0\x01\0\0\0"s + zlibStream(xmp)), onlyXmp },
             Row { "raw exif",
                 chunk("zTXt",
                     "Raw profile type exif\0\0"s
                         + zlibStream(rawProfile("exif", "Exif\0\0"s + exif))),
                 onlyExif },
             Row { "raw exif, not compressed",
                 chunk("tEXt", "Raw profile type exif\0"s + rawProfile("exif", "Exif\0\0"s + exif)),
                 onlyExif },
             Row { "raw APP1 with exif",
                 chunk("zTXt",
                     "Raw profile type APP1\0\0"s
                         + zlibStream(rawProfile("generic profile", "Exif\0\0"s + exif))),
                 onlyExif },
             Row { "raw APP1 with xmp",
                 chunk("zTXt",
                     "Raw profile type APP1\0\0"s
                         + zlibStream(rawProfile("generic profile", namespaceOfXmp + xmp))),
                 onlyXmp },
             Row { "raw xmp",
                 chunk("zTXt", "Raw profile type xmp\0\0"s + zlibStream(rawProfile("xmp", xmp))),
                 onlyXmp },
             Row { "raw iptc",
                 chunk("zTXt",
                     "Raw profile type iptc\0\0"s + zlibStream(rawProfile("iptc", iptcResource))),
                 onlyIptc },
             Row { "raw iptc, bare",
                 chunk("zTXt", "Raw profile type iptc\0\0"s + zlibStream(rawProfile("iptc", iptc))),
                 onlyIptc },
             Row { "another text", chunk("tEXt", "Comment\0hello"s), {} },
         }) {
        EXPECT_EQ(decodedWith(chunks).metadata, blocks) << name;
        EXPECT_EQ(decodedWith(chunks, Place::behindThePicture).metadata, blocks) << name;
    }
}

TEST(PngMetadata, ofItsOwnChunkGoesBeforeARawProfile)
{
    const std::string other = "MM\0*\0\0\0\x08\0\0\0\0\0\0"s;
    const std::string raw
        = chunk("tEXt", "Raw profile type exif\0"s + rawProfile("exif", "Exif\0\0"s + other));
    EXPECT_EQ(decodedWith(raw).metadata.exif, bytesOf(other));
    EXPECT_EQ(decodedWith(raw + chunk("eXIf", exif)).metadata.exif, bytesOf(exif));
}

TEST(PngMetadata, thatIsDamagedIsLeftOut)
{
    const std::string bomb(std::size_t { 20 } << 20U, ' ');
    for (const std::string& chunks : {
             chunk("eXIf", "no structure"),
             chunk("iTXt", "XML:com.adobe.xmp"),
             chunk("iTXt", "XML:com.adobe.xmp\0\x01\0\0\0no stream"s),
             chunk("iTXt", "XML:com.adobe.xmp\0\x01\0\0\0"s + zlibStream(bomb)),
             chunk("tEXt", "Raw profile type exif\0"s),
             chunk("tEXt", "Raw profile type exif\0\nexif\n"s),
             chunk("tEXt", "Raw profile type exif\0\nexif\n     10\n00"s),
             chunk("tEXt", "Raw profile type exif\0\nexif\n99999999999999999999999\n00"s),
             chunk("tEXt", "Raw profile type iptc\0\niptc\n  4\nxyz!xyz!"s),
         }) {
        EXPECT_TRUE(decodedWith(chunks).metadata.empty()) << chunks.substr(0, 60);
    }
}

TEST(PngMetadata, inflatesABoundedAmountForAWholeFile)
{
    // Each alone is within the limit; together they are not, and the last one is not read.
    const std::string large(std::size_t { 6 } << 20U, ' ');
    std::string chunks;
    for (int i = 0; i < 20; ++i) {
        chunks += chunk("zTXt", "Raw profile type other\0\0"s + zlibStream(large));
    }
    chunks += chunk("iTXt", "XML:com.adobe.xmp\0\x01\0\0\0"s + zlibStream(xmp));
    EXPECT_TRUE(decodedWith(chunks).metadata.empty());
}

TEST(PngMetadata, survivesARoundTrip)
{
    const MetadataBlocks blocks { bytesOf(exif), bytesOf(xmp), bytesOf(iptc) };
    const auto file = png::encode(test::gradient(oddSize, rgb8), { .metadata = blocks }).value();
    EXPECT_EQ(png::decode(file, {}).value().metadata, blocks);
}

} // namespace
} // namespace vellumine::imaging
