#include "imaging/codecs/PngFiles.h"
#include "imaging/codecs/png/PngCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {
namespace {

using test::chunk;
using test::zlibStream;
using namespace std::string_literals;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

ByteBuffer bytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

enum class Place { beforeThePicture, behindThePicture };

DecodedImage decodedWith(const std::string& chunks, Place place = Place::beforeThePicture)
{
    test::PngRecipe recipe;
    recipe.size = { 5, 4 };
    (place == Place::beforeThePicture ? recipe.chunks : recipe.chunksBehind) = chunks;
    recipe.sample = [](int x, int y, int c) { return static_cast<unsigned>(x * 40 + y * 9 + c); };
    return png::decode(test::pngFile(recipe), {}).value();
}

std::vector<FileText> textsWith(const std::string& chunks, Place place = Place::beforeThePicture)
{
    return decodedWith(chunks, place).texts.list();
}

ByteBuffer encoded(const FileTexts& texts, Effort effort = Effort::smallest)
{
    return png::encode(
        test::gradient(test::oddSize, rgb8), { .effort = effort, .metadata = {}, .texts = texts })
        .value();
}

const FileText title { "Title", bytesOf("A picture"), std::nullopt };
const FileText germanTitle { "Title", bytesOf("Ein sch\xC3\xB6nes Bild"),
    InternationalKeyword { "de",
        "\xC3\x9C"
        "berschrift" } };

TEST(PngTexts, areReadOfEveryKind)
{
    const std::string german = "Title\0"s
                               "\0\0de\0\xC3\x9C"
                               "berschrift\0"s;
    const std::string content = "Ein sch\xC3\xB6nes Bild";
    const std::string compressed = "Title\0"s
                                   "\x01\0de\0\xC3\x9C"
                                   "berschrift\0"s;
    for (const Place place : { Place::beforeThePicture, Place::behindThePicture }) {
        EXPECT_EQ(textsWith(chunk("tEXt", "Title\0A picture"s), place), std::vector { title });
        EXPECT_EQ(textsWith(chunk("zTXt", "Title\0\0"s + zlibStream("A picture")), place),
            std::vector { title });
        EXPECT_EQ(textsWith(chunk("iTXt", german + content), place), std::vector { germanTitle });
        EXPECT_EQ(textsWith(chunk("iTXt", compressed + zlibStream(content)), place),
            std::vector { germanTitle });
    }
}

TEST(PngTexts, keepTheirOrderAndMayRepeatTheirKeyword)
{
    const auto texts = textsWith(chunk("tEXt", "Title\0A picture"s) + chunk("tEXt", "Author\0Jane"s)
        + chunk("tEXt", "Title\0A picture"s));
    ASSERT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0], title);
    EXPECT_EQ(texts[1].keyword, "Author");
    EXPECT_EQ(texts[2], title);
}

TEST(PngTexts, thatHoldABlockAreNone)
{
    EXPECT_TRUE(textsWith(chunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0<x/>"s)
        + chunk("tEXt", "XML:com.adobe.xmp\0<x/>"s)
        + chunk("tEXt", "Raw profile type exif\0damaged"s)
        + chunk("tEXt", "Raw profile type other\0\nother\n  1\n00\n"s))
                    .empty());
}

TEST(PngTexts, thatAreDamagedAreLeftOutAlone)
{
    std::string wrongChecksum = chunk("tEXt", "Title\0A picture"s);
    wrongChecksum.back() = static_cast<char>(wrongChecksum.back() + 1);
    for (const std::string& damaged : {
             wrongChecksum,
             chunk("tEXt", ""),
             chunk("tEXt", "no content"),
             chunk("tEXt", "\0no keyword"s),
             chunk("tEXt", std::string(80, 'k') + "\0too long"s),
             chunk("tEXt", "line\nbreak\0text"s),
             chunk("zTXt", "Title\0"s),
             chunk("zTXt", "Title\0\x01method"s),
             chunk("zTXt", "Title\0\0no stream"s),
             chunk("iTXt", "Title\0\0"s),
             chunk("iTXt", "Title\0\0\0no language"s),
             chunk("iTXt", "Title\0\0\0de\0no keyword"s),
             chunk("iTXt", "Title\0\0\0d e\0\0text"s),
             chunk("iTXt", "Title\0\x01\0de\0\0no stream"s),
         }) {
        EXPECT_EQ(textsWith(damaged + chunk("tEXt", "Title\0A picture"s)), std::vector { title })
            << damaged.substr(4, 30);
    }
}

TEST(PngTexts, inflateToABoundedAmount)
{
    const std::string large(FileTexts::mostBytes / 2 + 1, ' ');
    const std::string compressed = chunk("zTXt", "Large\0\0"s + zlibStream(large));
    std::string chunks = chunk("tEXt", "Title\0A picture"s);
    for (int i = 0; i < 20; ++i) {
        chunks += compressed;
    }
    EXPECT_EQ(textsWith(chunks).size(), 2U);
    std::string many;
    for (std::size_t i = 0; i < FileTexts::mostTexts + 1; ++i) {
        many += chunk("tEXt", "Title\0A picture"s);
    }
    EXPECT_EQ(textsWith(many).size(), FileTexts::mostTexts);
}

TEST(PngTexts, doNotTakeTheRoomOfTheBlocks)
{
    const std::string large(FileTexts::mostBytes - 100, ' ');
    const std::string xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
    std::string chunks;
    for (int i = 0; i < 4; ++i) {
        chunks += chunk("zTXt", "Large\0\0"s + zlibStream(large));
    }
    EXPECT_EQ(
        decodedWith(chunks + chunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0"s + xmp)).metadata.xmp,
        bytesOf(xmp));
}

FileTexts allKinds()
{
    FileTexts texts;
    texts.add(title);
    texts.add(germanTitle);
    texts.add({ "Empty", {}, std::nullopt });
    texts.add({ "Long", ByteBuffer(5000, std::byte { 'l' }), std::nullopt });
    texts.add({ "Long", ByteBuffer(5000, std::byte { 'l' }), InternationalKeyword {} });
    return texts;
}

TEST(PngTexts, surviveARoundTrip)
{
    for (const Effort effort : { Effort::smallest, Effort::fastest }) {
        const ByteBuffer file = encoded(allKinds(), effort);
        EXPECT_EQ(png::decode(file, {})->texts, allKinds());
        EXPECT_TRUE(png::decode(file, {})->metadata.empty());
    }
    EXPECT_EQ(png::decode(encoded({}), {})->texts, FileTexts {});
}

TEST(PngTexts, areCompressedWhereThatIsShorter)
{
    const ByteBuffer file = encoded(allKinds());
    EXPECT_EQ(test::chunkContent(file, "tEXt"), "Title\0A picture"s);
    EXPECT_LT(test::chunkContent(file, "zTXt").size(), 100U);
    EXPECT_LT(file.size(), encoded({}).size() + 500);
}

TEST(PngTexts, thatTheFormatHasNoPlaceForAreLeftOut)
{
    FileTexts texts;
    for (const std::string& keyword : { ""s, std::string(80, 'k'), "a\0b"s, "a\nb"s,
             "XML:com.adobe.xmp"s, "Raw profile type exif"s }) {
        texts.add({ keyword, bytesOf("text"), std::nullopt });
    }
    texts.add({ "Title", bytesOf("text"), InternationalKeyword { "de\0"s, "" } });
    texts.add({ "Title", bytesOf("text"), InternationalKeyword { "d e", "" } });
    texts.add({ "Title", bytesOf("text"), InternationalKeyword { "de", "a\0b"s } });
    EXPECT_EQ(encoded(texts), encoded({}));
}

std::string bigEndian(std::uint32_t value)
{
    std::string bytes;
    for (const unsigned shift : { 24U, 16U, 8U, 0U }) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

std::string densityChunk(std::uint32_t x, std::uint32_t y, char unit)
{
    return chunk("pHYs", bigEndian(x) + bigEndian(y) + unit);
}

TEST(PngResolution, isThatOfItsChunk)
{
    EXPECT_EQ(decodedWith(densityChunk(11'811, 5906, 1)).resolution,
        Resolution::create(11'811, 5906, Resolution::Unit::metre));
    EXPECT_EQ(decodedWith(densityChunk(4, 3, 0)).resolution,
        Resolution::create(4, 3, Resolution::Unit::none));
    EXPECT_EQ(decodedWith(densityChunk(Resolution::largest, 1, 1)).resolution,
        Resolution::create(Resolution::largest, 1, Resolution::Unit::metre));
}

TEST(PngResolution, thatMakesNoSenseIsNone)
{
    std::string wrongChecksum = densityChunk(11'811, 11'811, 1);
    wrongChecksum.back() = static_cast<char>(wrongChecksum.back() + 1);
    for (const std::string& chunks :
        { ""s, wrongChecksum, densityChunk(0, 11'811, 1), densityChunk(11'811, 0, 1),
            densityChunk(0x80000000, 1, 1), densityChunk(0xFFFFFFFF, 0xFFFFFFFF, 1),
            densityChunk(11'811, 11'811, 2), chunk("pHYs", bigEndian(11'811)) }) {
        EXPECT_EQ(decodedWith(chunks).resolution, std::nullopt);
    }
    EXPECT_EQ(decodedWith(densityChunk(11'811, 11'811, 1), Place::behindThePicture).resolution,
        std::nullopt);
}

TEST(PngResolution, isWrittenWhereItIsSaid)
{
    const auto densityOf = [](std::optional<Resolution> resolution) {
        return test::chunkContent(png::encode(test::gradient(test::oddSize, rgb8),
                                      { .metadata = {}, .resolution = resolution })
                                      .value(),
            "pHYs");
    };
    EXPECT_EQ(densityOf(std::nullopt), "");
    EXPECT_EQ(densityOf(Resolution::create(300, 150, Resolution::Unit::inch)),
        bigEndian(11'811) + bigEndian(5906) + '\x01');
    EXPECT_EQ(densityOf(Resolution::create(11'800, 1, Resolution::Unit::metre)),
        bigEndian(11'800) + bigEndian(1) + '\x01');
    EXPECT_EQ(densityOf(Resolution::create(4, 3, Resolution::Unit::none)),
        bigEndian(4) + bigEndian(3) + '\0');
    EXPECT_EQ(densityOf(Resolution::create(1.5, 1, Resolution::Unit::none)), "");
    EXPECT_EQ(densityOf(Resolution::create(Resolution::largest, 72, Resolution::Unit::inch)), "");
    EXPECT_EQ(densityOf(Resolution::create(0.001, 72, Resolution::Unit::inch)), "");
}

} // namespace
} // namespace vellumine::imaging
