#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {

namespace {

using test::BmpFile;
using test::bytesOf;
using test::RowName;

struct Row {
    std::string_view name;
    int bits;
    ByteBuffer code;
    /// Five indexes by three rows from the top, "12345/00000/00000"; empty for a refusal.
    std::string_view expected;
    Error::Kind kind = Error::Kind::truncated;
};

BmpFile fileFor(const Row& row)
{
    // 24 bits count the compression like an embedded JPEG, which has no bits.
    const std::uint32_t compression = row.bits == 8 ? 1 : (row.bits == 4 ? 2 : 4);
    BmpFile file { .width = 5, .height = 3, .bits = row.bits };
    file.compression = compression;
    for (int i = 0; row.bits <= 8 && i < 10; ++i) {
        file.palette.push_back({ i, 10 + i, 20 + i });
    }
    file.pixels = row.code;
    return file;
}

/// The picture as text. Colours of the palette above, and true colours alike, are their blue - 20.
std::string textOf(const Image& image)
{
    std::string text;
    for (int y = 0; y < image.height(); ++y) {
        text += y == 0 ? "" : "/";
        for (int x = 0; x < image.width(); ++x) {
            const int blue = image.row8(y)[x * 3 + 2];
            text += blue < 20 ? '.' : static_cast<char>('0' + blue - 20);
        }
    }
    return text;
}

class BmpRunLength : public testing::TestWithParam<Row> { };

TEST_P(BmpRunLength, ReadsOrRefuses)
{
    const Row& row = GetParam();
    const auto decoded = bmp::decode(fileFor(row).bytes(), {});
    if (row.expected.empty()) {
        ASSERT_FALSE(decoded);
        EXPECT_EQ(decoded.error().kind, row.kind);
        return;
    }
    ASSERT_TRUE(decoded) << decoded.error().detail;
    EXPECT_EQ(textOf(decoded->image), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Eight, BmpRunLength,
    testing::Values(
        Row { "RunsEndAtLineEnds", 8, bytesOf({ 5, 1, 0, 0, 5, 2, 0, 0, 5, 3, 0, 0, 0, 1 }),
            "33333/22222/11111" },
        Row { "ShortRowsKeepTheFirstColour", 8, bytesOf({ 2, 1, 0, 0, 3, 2, 0, 1 }),
            "00000/22200/11000" },
        Row { "EmptyPicture", 8, bytesOf({ 0, 1 }), "00000/00000/00000" },
        Row { "DeltaSkips", 8, bytesOf({ 1, 1, 0, 2, 2, 1, 1, 4, 0, 1 }), "00000/00040/10000" },
        Row {
            "DeltaStraightUp", 8, bytesOf({ 1, 1, 0, 2, 0, 2, 1, 4, 0, 1 }), "04000/00000/10000" },
        Row { "DeltaToTheVeryEnd", 8, bytesOf({ 0, 2, 5, 3, 0, 1 }), "00000/00000/00000" },
        Row { "EvenLiterals", 8, bytesOf({ 0, 4, 1, 2, 3, 4, 1, 5, 0, 1 }), "00000/00000/12345" },
        Row { "OddLiteralsArePadded", 8, bytesOf({ 0, 3, 1, 2, 3, 99, 2, 5, 0, 1 }),
            "00000/00000/12355" },
        Row { "PastTheRightEdgeIsDropped", 8,
            bytesOf({ 9, 1, 0, 0, 0, 6, 1, 2, 3, 4, 5, 6, 0, 0, 1, 7, 0, 1 }),
            "70000/12345/11111" },
        Row { "AboveTheTopIsDropped", 8,
            bytesOf({ 5, 1, 0, 0, 5, 2, 0, 0, 5, 3, 0, 0, 5, 4, 5, 4, 0, 1 }),
            "33333/22222/11111" },
        Row {
            "WithoutEndMarker", 8, bytesOf({ 5, 1, 0, 0, 5, 2, 0, 0, 5, 3 }), "33333/22222/11111" },
        Row { "LastFillerMissing", 8, bytesOf({ 0, 2, 0, 2, 0, 5, 1, 2, 3, 4, 5 }),
            "12345/00000/00000" },
        Row { "LastPixelMissing", 8, bytesOf({ 5, 1, 0, 0, 5, 2, 0, 0, 4, 3 }), "" },
        Row { "LastRowMissing", 8, bytesOf({ 5, 1, 0, 0, 5, 2 }), "" },
        Row { "CutInsideARun", 8, bytesOf({ 5, 1, 0, 0, 5 }), "" },
        Row { "CutInsideADelta", 8, bytesOf({ 5, 1, 0, 2, 1 }), "" },
        Row { "CutInsideLiterals", 8, bytesOf({ 0, 5, 1, 2, 3, 4 }), "" },
        Row { "NothingAtAll", 8, {}, "" },
        Row {
            "DeltaPastTheRightEdge", 8, bytesOf({ 0, 2, 6, 0, 0, 1 }), "", Error::Kind::malformed },
        Row { "DeltaAboveTheTop", 8, bytesOf({ 0, 2, 0, 4, 0, 1 }), "", Error::Kind::malformed },
        Row { "ManyDeltasPastTheEdge", 8, bytesOf({ 0, 2, 3, 0, 0, 2, 3, 0, 0, 1 }), "",
            Error::Kind::malformed }),
    RowName());

INSTANTIATE_TEST_SUITE_P(Four, BmpRunLength,
    testing::Values(
        Row { "RunsAlternate", 4, bytesOf({ 5, 0x12, 0, 0, 4, 0x34, 0, 1 }), "00000/34340/12121" },
        Row { "LiteralsComeInPairs", 4, bytesOf({ 0, 4, 0x12, 0x34, 1, 0x50, 0, 1 }),
            "00000/00000/12345" },
        Row { "OddLiterals", 4, bytesOf({ 0, 3, 0x12, 0x39, 2, 0x56, 0, 1 }), "00000/00000/12356" },
        Row { "OneByteOfLiteralsIsPadded", 4, bytesOf({ 0, 5, 0x12, 0x34, 0x50, 99, 0, 1 }),
            "00000/00000/12345" },
        Row {
            "IndexesBeyondThePaletteAreBlack", 4, bytesOf({ 2, 0xF1, 0, 1 }), "00000/00000/.1000" },
        Row { "CutInsideLiterals", 4, bytesOf({ 0, 5, 0x12, 0x34 }), "" }),
    RowName());

INSTANTIATE_TEST_SUITE_P(TwentyFour, BmpRunLength,
    testing::Values(
        Row { "Runs", 24, bytesOf({ 5, 21, 0, 0, 0, 0, 2, 22, 0, 0, 3, 23, 0, 0, 0, 1 }),
            "...../22333/11111" },
        Row { "OddLiteralsArePadded", 24,
            bytesOf({ 0, 3, 21, 0, 0, 22, 0, 0, 23, 0, 0, 99, 2, 24, 0, 0, 0, 1 }),
            "...../...../12344" },
        Row { "CutInsideARun", 24, bytesOf({ 5, 21, 0 }), "" },
        Row { "CutInsideLiterals", 24, bytesOf({ 0, 3, 21, 0, 0, 22, 0, 0, 23, 0 }), "" }),
    RowName());

TEST(BmpRunLengthCode, WorksFromTheTopAsWell)
{
    // No writer should do so, some do.
    BmpFile file = fileFor({ "", 8, bytesOf({ 5, 1, 0, 0, 5, 2, 0, 0, 5, 3, 0, 1 }), "" });
    file.height = -3;
    const auto decoded = bmp::decode(file.bytes(), {});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(textOf(decoded->image), "11111/22222/33333");
}

} // namespace

} // namespace vellumine::imaging
