#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {

namespace {

using test::BmpFile;
using test::bytesOf;
using test::RowName;

BmpFile plainFile(int width, int height, int bits)
{
    BmpFile file { .width = width, .height = height, .bits = bits };
    file.pixels.resize(64);
    return file;
}

BmpFile with(BmpFile file, void (*change)(BmpFile&))
{
    change(file);
    return file;
}

struct Row {
    std::string_view name;
    ByteBuffer file;
    Error::Kind kind;
};

class BmpRefusal : public testing::TestWithParam<Row> { };

TEST_P(BmpRefusal, SaysWhy)
{
    const auto decoded = bmp::decode(GetParam().file, {});
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind, GetParam().kind) << decoded.error().detail;
}

INSTANTIATE_TEST_SUITE_P(Headers, BmpRefusal,
    testing::Values(Row { "Nothing", {}, Error::Kind::truncated },
        Row { "SignatureAlone", bytesOf({ 'B', 'M' }), Error::Kind::truncated },
        Row { "NoSignature", ByteBuffer(200), Error::Kind::malformed },
        Row { "HeaderOfUnknownSize",
            with(plainFile(2, 2, 24),
                [](BmpFile& file) {
                    file.infoBytes = 200;
                    file.pixels.resize(300);
                })
                .bytes(),
            Error::Kind::unsupported },
        Row { "NoWidth", plainFile(0, 2, 24).bytes(), Error::Kind::malformed },
        Row { "NoHeight", plainFile(2, 0, 24).bytes(), Error::Kind::malformed },
        Row { "NegativeWidth", plainFile(-2, 2, 24).bytes(), Error::Kind::malformed },
        Row { "LowestHeight", plainFile(2, std::numeric_limits<int>::min(), 24).bytes(),
            Error::Kind::malformed },
        Row { "ThirtyThousandBits", plainFile(2, 2, 30000).bytes(), Error::Kind::malformed },
        Row { "NoBits", plainFile(2, 2, 0).bytes(), Error::Kind::malformed },
        Row { "EmbeddedJpeg",
            with(plainFile(2, 2, 0), [](BmpFile& file) { file.compression = 4; }).bytes(),
            Error::Kind::unsupported },
        Row { "EmbeddedPng",
            with(plainFile(2, 2, 0), [](BmpFile& file) { file.compression = 5; }).bytes(),
            Error::Kind::unsupported },
        Row { "Os2Huffman",
            with(plainFile(2, 2, 1),
                [](BmpFile& file) {
                    file.infoBytes = 64;
                    file.compression = 3;
                })
                .bytes(),
            Error::Kind::unsupported },
        Row { "RunLengthsOfAnotherDepth",
            with(plainFile(2, 2, 4), [](BmpFile& file) { file.compression = 1; }).bytes(),
            Error::Kind::malformed },
        Row { "NoPalette", plainFile(2, 2, 8).bytes(), Error::Kind::malformed },
        Row { "PaletteLongerThanTheFile",
            with(plainFile(2, 2, 8),
                [](BmpFile& file) {
                    file.palette.resize(252);
                    file.declaredColors = 305'402'420;
                })
                .bytes(),
            Error::Kind::malformed },
        Row { "MaskWithAHole",
            with(plainFile(2, 2, 32),
                [](BmpFile& file) {
                    file.compression = 3;
                    file.masks = { 0xFF0000, 0xF0F0, 0xFF };
                })
                .bytes(),
            Error::Kind::malformed },
        Row { "MasksOfNothing",
            with(plainFile(2, 2, 32),
                [](BmpFile& file) {
                    file.compression = 3;
                    file.masks = { 0, 0, 0 };
                })
                .bytes(),
            Error::Kind::malformed },
        Row { "MaskOutsideThePixel",
            with(plainFile(2, 2, 16),
                [](BmpFile& file) {
                    file.compression = 3;
                    file.masks = { 0x1F0000, 0x7E0, 0x1F };
                })
                .bytes(),
            Error::Kind::malformed },
        Row { "OffsetBeyondTheFile",
            with(plainFile(2, 2, 24), [](BmpFile& file) { file.pixelOffset = 0xFFFFFFFF; }).bytes(),
            Error::Kind::truncated },
        Row { "PixelsMissing", plainFile(100, 100, 24).bytes(), Error::Kind::truncated }),
    RowName());

INSTANTIATE_TEST_SUITE_P(Limits, BmpRefusal,
    testing::Values(Row { "Wide", plainFile(65'536, 1, 24).bytes(), Error::Kind::limitExceeded },
        Row { "Tall", plainFile(1, -65'536, 24).bytes(), Error::Kind::limitExceeded },
        Row { "Vast", plainFile(3'000'000, 2'000'000, 24).bytes(), Error::Kind::limitExceeded },
        Row { "TooManyPixels", plainFile(65'535, 65'535, 1).bytes(), Error::Kind::limitExceeded },
        Row {
            "Largest", plainFile(0x7FFFFFFF, 0x7FFFFFFF, 32).bytes(), Error::Kind::limitExceeded }),
    RowName());

TEST(BmpLimits, CountTheBytesOfTheDecodedPicture)
{
    BmpFile file = plainFile(10, 10, 1);
    file.palette = { { 0, 0, 0 }, { 255, 255, 255 } };
    DecodeOptions options;
    options.limits.maximumBytes = 300;
    EXPECT_TRUE(bmp::decode(file.bytes(), options));
    options.limits.maximumBytes = 299;
    const auto decoded = bmp::decode(file.bytes(), options);
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind, Error::Kind::limitExceeded);
}

TEST(BmpHeader, IsReadWhereThePictureExceedsTheLimits)
{
    const auto header = bmp::readHeader(plainFile(3'000'000, -2'000'000, 24).bytes());
    ASSERT_TRUE(header);
    EXPECT_EQ(header->size, (Size { 3'000'000, 2'000'000 }));
}

class BmpCut : public testing::TestWithParam<int> { };

TEST_P(BmpCut, AtAnyByteIsRefusedUnlessItOnlyCutsPadding)
{
    const int bits = GetParam();
    BmpFile file { .infoBytes = 124, .width = 7, .height = 3, .bits = bits };
    file.palette.resize(bits <= 8 ? std::size_t { 1 } << static_cast<unsigned>(bits) : 0);
    const std::size_t stride = (7U * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    const std::size_t used = (7U * static_cast<std::size_t>(bits) + 7) / 8;
    file.pixels.resize(stride * 3);
    const ByteBuffer whole = file.bytes();
    const std::size_t enough = whole.size() - stride + used;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const auto decoded = bmp::decode(ByteSpan(whole).first(length), {});
        EXPECT_EQ(decoded.has_value(), length >= enough) << length;
        if (!decoded) {
            EXPECT_EQ(decoded.error().kind, Error::Kind::truncated) << length;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, BmpCut, testing::Values(1, 2, 4, 8, 16, 24, 32),
    [](const auto& row) { return std::to_string(row.param) + "bits"; });

TEST(BmpSniff, NeedsMoreThanTwoLetters)
{
    const std::string_view text = "BMW and other makers, in a text of some length";
    EXPECT_FALSE(bmp::sniff(std::as_bytes(std::span(text))));
    const std::string_view other = "BM is how this text begins, but it is a text";
    EXPECT_FALSE(bmp::sniff(std::as_bytes(std::span(other))));
    EXPECT_FALSE(bmp::sniff({}));
    EXPECT_FALSE(bmp::sniff(bytesOf({ 'B', 'A' })));
    EXPECT_TRUE(bmp::sniff(plainFile(2, 2, 24).bytes()));
}

} // namespace

} // namespace vellumine::imaging
