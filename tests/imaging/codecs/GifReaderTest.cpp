#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/GifFiles.h"
#include "imaging/codecs/gif/GifCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <numeric>

namespace vellumine::imaging {

namespace {

using test::bytesOf;
using test::GifFile;
using test::GifPicture;
using test::RowName;

constexpr PixelLayout opaque { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout withAlpha { ColorModel::rgb, 8, AlphaInfo::last };

/// Four colours whose red is 10 times their index.
const test::GifColors fourColors { { 0, 100, 200 }, { 10, 101, 201 }, { 20, 102, 202 },
    { 30, 103, 203 } };

GifPicture filled(Rect place, std::uint8_t index)
{
    GifPicture picture { .place = place };
    picture.indexes.assign(
        static_cast<std::size_t>(place.width) * static_cast<std::size_t>(place.height), index);
    return picture;
}

/// A picture in which no two rows are equal.
GifPicture patterned(Rect place)
{
    GifPicture picture = filled(place, 0);
    std::uint32_t state = 7;
    for (std::uint8_t& index : picture.indexes) {
        state = state * 1664525U + 1013904223U;
        index = static_cast<std::uint8_t>(state >> 30U);
    }
    return picture;
}

std::vector<int> pixelAt(const Image& image, int x, int y)
{
    const int channels = image.layout().channels();
    const std::uint8_t* const at = image.row8(y) + static_cast<std::ptrdiff_t>(x) * channels;
    return { at, at + channels };
}

DecodedImage decodeWell(const GifFile& file)
{
    const ByteBuffer bytes = file.bytes();
    EXPECT_TRUE(gif::sniff(bytes));
    const auto header = gif::readHeader(bytes);
    auto decoded = gif::decode(bytes, {});
    EXPECT_TRUE(header);
    if (decoded && header) {
        EXPECT_EQ(header->size, decoded->image.size());
        EXPECT_EQ(header->size, decoded->storedSize);
        EXPECT_EQ(header->layout, decoded->image.layout());
    }
    return decoded.value();
}

Error::Kind kindOfRefusal(ByteSpan file)
{
    const auto decoded = gif::decode(file, {});
    EXPECT_FALSE(decoded);
    return decoded ? Error::Kind::io : decoded.error().kind;
}

TEST(GifReader, APictureThatCoversTheScreenIsOpaque)
{
    const GifFile file { .screen = { 3, 2 },
        .palette = fourColors,
        .pictures = { { .place = { 0, 0, 3, 2 }, .indexes = { 0, 1, 2, 3, 2, 1 } } } };
    const DecodedImage decoded = decodeWell(file);
    ASSERT_EQ(decoded.image.layout(), opaque);
    EXPECT_EQ(decoded.image.size(), (Size { 3, 2 }));
    EXPECT_EQ(pixelAt(decoded.image, 1, 0), (std::vector<int> { 10, 101, 201 }));
    EXPECT_EQ(pixelAt(decoded.image, 0, 1), (std::vector<int> { 30, 103, 203 }));
    EXPECT_EQ(decoded.image.colorSpace(), ColorSpace::sRgb());
}

TEST(GifReader, AnOffsetPictureStandsOnATransparentScreen)
{
    const GifFile file {
        .screen = { 6, 5 }, .palette = fourColors, .pictures = { filled({ 2, 1, 3, 2 }, 2) }
    };
    const DecodedImage decoded = decodeWell(file);
    ASSERT_EQ(decoded.image.layout(), withAlpha);
    ASSERT_EQ(decoded.image.size(), (Size { 6, 5 }));
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 6; ++x) {
            const bool isInside = x >= 2 && x < 5 && y >= 1 && y < 3;
            const std::vector<int> expected
                = isInside ? std::vector<int> { 20, 102, 202, 255 } : std::vector<int>(4);
            EXPECT_EQ(pixelAt(decoded.image, x, y), expected) << x << ", " << y;
        }
    }
}

TEST(GifReader, TheTransparentIndexIsTransparent)
{
    GifFile file { .screen = { 2, 1 },
        .palette = fourColors,
        .pictures = { { .place = { 0, 0, 2, 1 }, .indexes = { 1, 3 }, .transparentIndex = 3 } } };
    const DecodedImage decoded = decodeWell(file);
    EXPECT_EQ(pixelAt(decoded.image, 0, 0), (std::vector<int> { 10, 101, 201, 255 }));
    EXPECT_EQ(pixelAt(decoded.image, 1, 0), (std::vector<int> { 0, 0, 0, 0 }));
}

class GifInterlace : public testing::TestWithParam<int> { };

TEST_P(GifInterlace, IsTheSamePicture)
{
    const Rect place { 0, 0, 5, GetParam() };
    GifFile file {
        .screen = place.size(), .palette = fourColors, .pictures = { patterned(place) }
    };
    const DecodedImage sequential = decodeWell(file);
    file.pictures[0].isInterlaced = true;
    const DecodedImage interlaced = decodeWell(file);
    EXPECT_EQ(test::maximumDifference(sequential.image, interlaced.image), 0);
}

INSTANTIATE_TEST_SUITE_P(Heights, GifInterlace, testing::Values(1, 2, 3, 4, 5, 8, 9, 33));

TEST(GifReader, APaletteOfThePicturesOwnComesFirst)
{
    GifFile file {
        .screen = { 1, 1 }, .palette = fourColors, .pictures = { filled({ 0, 0, 1, 1 }, 1) }
    };
    file.pictures[0].palette = { { 1, 1, 1 }, { 77, 88, 99 } };
    EXPECT_EQ(pixelAt(decodeWell(file).image, 0, 0), (std::vector<int> { 77, 88, 99 }));
    file.palette.clear();
    EXPECT_EQ(pixelAt(decodeWell(file).image, 0, 0), (std::vector<int> { 77, 88, 99 }));
}

TEST(GifReader, IndexesBeyondThePaletteAreBlack)
{
    const GifFile file {
        .screen = { 1, 1 }, .palette = fourColors, .pictures = { filled({ 0, 0, 1, 1 }, 200) }
    };
    EXPECT_EQ(pixelAt(decodeWell(file).image, 0, 0), (std::vector<int> { 0, 0, 0 }));
}

TEST(GifReader, TheScreenGrowsAroundThePicture)
{
    GifFile file {
        .screen = { 0, 0 }, .palette = fourColors, .pictures = { filled({ 0, 0, 3, 2 }, 1) }
    };
    EXPECT_EQ(decodeWell(file).storedSize, (Size { 3, 2 }));
    EXPECT_EQ(decodeWell(file).image.layout(), opaque);
    file.screen = { 2, 9 };
    EXPECT_EQ(decodeWell(file).storedSize, (Size { 3, 9 }));
    file.pictures = { filled({ 4, 8, 3, 2 }, 1) };
    EXPECT_EQ(decodeWell(file).storedSize, (Size { 7, 10 }));
}

TEST(GifReader, OnlyTheFirstPictureOfAnAnimationCounts)
{
    GifFile file { .screen = { 4, 4 },
        .palette = fourColors,
        .pictures = { filled({ 0, 0, 4, 4 }, 1), filled({ 0, 0, 4, 4 }, 2) } };
    EXPECT_EQ(pixelAt(decodeWell(file).image, 3, 3), (std::vector<int> { 10, 101, 201 }));

    // What follows it may be damaged.
    ByteBuffer bytes = file.bytes();
    bytes.resize(bytes.size() - 10);
    bytes.back() = std::byte { 0xEE };
    EXPECT_TRUE(gif::decode(bytes, {}));
}

TEST(GifReader, CutsAreRefusedUpToTheLastPixel)
{
    // Big enough for several blocks of codes
    const Rect place { 0, 0, 30, 30 };
    const GifFile file { .screen = place.size(),
        .palette = fourColors,
        .extension = bytesOf({ 0x21, 0xFE, 2, 'h', 'i', 0 }),
        .pictures = { patterned(place) } };
    const ByteBuffer whole = file.bytes();
    // Behind the last code come the end of the chain of blocks and the end of the file.
    const std::size_t enough = whole.size() - 2;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const auto decoded = gif::decode(ByteSpan(whole).first(length), {});
        EXPECT_EQ(decoded.has_value(), length >= enough) << length;
        if (!decoded) {
            EXPECT_EQ(decoded.error().kind, Error::Kind::truncated) << length;
        }
    }
}

ByteBuffer fileWithCodes(const std::vector<std::uint32_t>& codes)
{
    GifFile file { .screen = { 4, 1 }, .palette = fourColors };
    ByteBuffer bytes = file.bytes();
    bytes.pop_back();
    return test::LittleEndianBytes()
        .add(bytes)
        .add(bytesOf({ ',', 0, 0, 0, 0, 4, 0, 1, 0, 0 }))
        .add(test::gifCodes(codes))
        .add(";")
        .bytes();
}

struct CodeRow {
    std::string_view name;
    std::vector<std::uint32_t> codes;
    std::optional<Error::Kind> refusal;
};

class GifCodes : public testing::TestWithParam<CodeRow> { };

TEST_P(GifCodes, AreReadOrRefused)
{
    const CodeRow& row = GetParam();
    const auto decoded = gif::decode(fileWithCodes(row.codes), {});
    ASSERT_EQ(decoded.has_value(), !row.refusal);
    if (row.refusal) {
        EXPECT_EQ(decoded.error().kind, *row.refusal) << decoded.error().detail;
    }
}

using test::gifClear;
using test::gifEnd;

INSTANTIATE_TEST_SUITE_P(Table, GifCodes,
    testing::Values(CodeRow { "Whole", { gifClear, 0, 1, 2, 3, gifEnd }, {} },
        CodeRow { "WithoutFirstClear", { 0, 1, 2, 3, gifEnd }, {} },
        CodeRow { "WithoutEnd", { gifClear, 0, 1, 2, 3 }, {} },
        CodeRow { "FromTheTable", { gifClear, 0, 1, 258, gifEnd }, {} },
        CodeRow { "TheCodeBeingMade", { gifClear, 0, 258, 1, gifEnd }, {} },
        CodeRow { "ClearedInBetween", { gifClear, 0, 1, gifClear, gifClear, 2, 3, gifEnd }, {} },
        CodeRow { "MoreThanThePicture", { gifClear, 0, 1, 2, 3, 0, 1, 2 }, {} },
        CodeRow { "EndTooEarly", { gifClear, 0, 1, 2, gifEnd }, Error::Kind::truncated },
        CodeRow { "BlocksEndTooEarly", { gifClear, 0, 1 }, Error::Kind::truncated },
        CodeRow { "NoCodes", {}, Error::Kind::truncated },
        CodeRow { "CodeNotYetMade", { gifClear, 0, 259, 1, 2 }, Error::Kind::malformed },
        CodeRow { "CodeAfterClear", { gifClear, 258, 1, 2, 3 }, Error::Kind::malformed },
        CodeRow {
            "CodeFromBeforeAClear", { gifClear, 0, 1, gifClear, 2, 259 }, Error::Kind::malformed }),
    RowName());

TEST(GifRefusal, NoPalette)
{
    const GifFile file { .screen = { 1, 1 }, .pictures = { filled({ 0, 0, 1, 1 }, 0) } };
    EXPECT_EQ(kindOfRefusal(file.bytes()), Error::Kind::malformed);
}

TEST(GifRefusal, NoPicture)
{
    const GifFile file { .screen = { 1, 1 }, .palette = fourColors };
    EXPECT_EQ(kindOfRefusal(file.bytes()), Error::Kind::malformed);
}

TEST(GifRefusal, NoPixels)
{
    GifFile file {
        .screen = { 1, 1 }, .palette = fourColors, .pictures = { filled({ 0, 0, 0, 1 }, 0) }
    };
    EXPECT_EQ(kindOfRefusal(file.bytes()), Error::Kind::malformed);
    file.pictures = { filled({ 0, 0, 1, 0 }, 0) };
    EXPECT_EQ(kindOfRefusal(file.bytes()), Error::Kind::malformed);
}

TEST(GifRefusal, NoGif)
{
    EXPECT_EQ(kindOfRefusal(ByteBuffer(100)), Error::Kind::malformed);
    EXPECT_FALSE(gif::sniff(ByteBuffer(100)));
    EXPECT_FALSE(gif::sniff(bytesOf({ 'G', 'I', 'F', '8', '8', 'a', 0, 0 })));
    EXPECT_FALSE(gif::sniff(bytesOf({ 'G', 'I', 'F', '8', '9' })));
}

TEST(GifLimits, HoldBeforeAnyPixel)
{
    GifFile file { .screen = { 65'535, 65'535 },
        .palette = fourColors,
        .pictures = { filled({ 0, 0, 1, 1 }, 0) } };
    EXPECT_EQ(kindOfRefusal(file.bytes()), Error::Kind::limitExceeded);
    // The screen grows to 65,536.
    file.screen = { 1, 1 };
    file.pictures = { filled({ 65'535, 0, 1, 1 }, 0) };
    EXPECT_EQ(kindOfRefusal(file.bytes()), Error::Kind::limitExceeded);

    file = {
        .screen = { 10, 10 }, .palette = fourColors, .pictures = { filled({ 0, 0, 10, 10 }, 0) }
    };
    DecodeOptions options;
    options.limits.maximumBytes = 300;
    EXPECT_TRUE(gif::decode(file.bytes(), options));
    options.limits.maximumBytes = 299;
    EXPECT_FALSE(gif::decode(file.bytes(), options));
}

TEST(GifExtensions, OneOfAWrongLengthSaysNothing)
{
    const GifFile file { .screen = { 1, 1 },
        .palette = fourColors,
        .extension = bytesOf({ 0x21, 0xF9, 2, 1, 0, 0, 0x21, 0xFF, 3, 'a', 'b', 'c', 1, 9, 0 }),
        .pictures = { filled({ 0, 0, 1, 1 }, 0) } };
    EXPECT_EQ(decodeWell(file).image.layout(), opaque);
}

TEST(GifExtensions, XmpIsMetadata)
{
    // Longer than the longest block, so that its characters really are taken for lengths
    std::string packet = "<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?><x:xmpmeta>";
    packet += std::string(700, 'x') + "</x:xmpmeta><?xpacket end='w'?>";
    test::LittleEndianBytes extension;
    extension.add(bytesOf({ 0x21, 0xFF, 11 })).add("XMP DataXMP").add(packet).add8(1);
    for (std::uint32_t value = 256; value-- > 0;) {
        extension.add8(value);
    }
    extension.add8(0);
    const GifFile file { .screen = { 1, 1 },
        .palette = fourColors,
        .extension = extension.bytes(),
        .pictures = { filled({ 0, 0, 1, 1 }, 0) } };
    const ByteBuffer xmp = decodeWell(file).metadata.xmp;
    EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(xmp.data()), xmp.size()), packet);
}

} // namespace

} // namespace vellumine::imaging
