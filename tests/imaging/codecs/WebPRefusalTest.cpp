#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/WebPFiles.h"
#include "imaging/codecs/webp/WebPCodec.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <functional>

namespace vellumine::imaging {

namespace {

using test::oddSize;
using test::webPFile;

struct CutRow {
    std::string_view name;
    std::function<ByteBuffer()> file;
};

class WebPCut : public testing::TestWithParam<CutRow> { };

TEST_P(WebPCut, AtAnyByteIsRefused)
{
    const ByteBuffer whole = GetParam().file();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto decoded = webp::decode(ByteSpan(whole).first(length), {});
        ASSERT_FALSE(decoded) << length << " of " << whole.size();
        EXPECT_EQ(decoded.error().kind, Error::Kind::truncated) << length;
    }
}

TEST_P(WebPCut, WhatFollowsTheFileIsIgnored)
{
    ByteBuffer file = GetParam().file();
    const auto before = webp::decode(file, {});
    file.resize(file.size() + 999, std::byte { 0x5A });
    const auto after = webp::decode(file, {});
    ASSERT_TRUE(before);
    ASSERT_TRUE(after);
    EXPECT_EQ(test::maximumDifference(before->image, after->image), 0);
}

INSTANTIATE_TEST_SUITE_P(Table, WebPCut,
    testing::Values(CutRow { "Lossless",
                        [] {
                            return webPFile(test::syntheticPhoto({ 24, 18 }));
                        } },
        CutRow { "Lossy",
            [] {
                return webPFile(test::syntheticPhoto({ 64, 48 }), { "-q", "60" });
            } },
        CutRow { "LossyWithAlpha",
            [] {
                return webPFile(test::gradient({ 64, 48 }, { ColorModel::rgb, 8, AlphaInfo::last }),
                    { "-q", "60" });
            } },
        CutRow { "Animation",
            [] {
                const ByteBuffer frame = test::animationFrame(
                    webPFile(test::syntheticPhoto({ 16, 12 })), { 0, 0, 16, 12 });
                return test::animation(0, { 16, 12 }, { frame, frame });
            } }),
    test::RowName());

TEST(WebPRefusal, PictureDataMissingInsideAWholeFile)
{
    // The containers agree with each other, and half of the compressed data is not there. Of a
    // lossless picture the library only says that something is wrong.
    const auto kindOfHalf = [](const std::vector<std::string>& way) {
        const ByteBuffer whole = webPFile(test::syntheticPhoto({ 64, 48 }), way);
        const ByteSpan chunk = test::webPChunks(whole);
        const std::string name(reinterpret_cast<const char*>(chunk.data()), 4);
        const std::size_t half = (chunk.size() - 8) / 2;
        const ByteBuffer file = test::riffFile({ test::webPChunk(name, chunk.subspan(8, half)) });
        return webp::decode(file, {}).error().kind;
    };
    EXPECT_EQ(kindOfHalf({ "-q", "70" }), Error::Kind::truncated);
    EXPECT_EQ(kindOfHalf({ "-lossless" }), Error::Kind::malformed);
}

TEST(WebPRefusal, DamagedData)
{
    const ByteBuffer file
        = test::riffFile({ test::webPChunk("VP8L", ByteBuffer(100, std::byte { 0x13 })) });
    const auto decoded = webp::decode(file, {});
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind, Error::Kind::malformed);
}

TEST(WebPRefusal, ACanvasOfAnotherSizeThanItsPicture)
{
    const ByteBuffer still = webPFile(test::syntheticPhoto({ 16, 16 }));
    const ByteSpan picture = test::webPChunks(still);
    const ByteBuffer file = test::riffFile(
        { test::extendedHeader(0, { 32, 32 }), ByteBuffer(picture.begin(), picture.end()) });
    const auto decoded = webp::decode(file, {});
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind, Error::Kind::malformed);
}

TEST(WebPLimits, CountTheWholePicture)
{
    const ByteBuffer file = webPFile(test::syntheticPhoto(oddSize));
    DecodeOptions options;
    options.wish.region = Rect { 0, 0, 1, 1 };
    options.limits.maximumBytes = std::uint64_t { 47 } * 33 * 3;
    EXPECT_TRUE(webp::decode(file, options));
    options.limits.maximumBytes -= 1;
    const auto decoded = webp::decode(file, options);
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind, Error::Kind::limitExceeded);
}

TEST(WebPLimits, HoldForTheCanvasOfAnAnimation)
{
    // Sixteen million a side fit into the header.
    const ByteBuffer frame
        = test::animationFrame(webPFile(test::syntheticPhoto({ 16, 12 })), { 0, 0, 16, 12 });
    const auto decoded = webp::decode(test::animation(0, { 60'000, 60'000 }, { frame }), {});
    ASSERT_FALSE(decoded);
    EXPECT_EQ(decoded.error().kind, Error::Kind::limitExceeded);
}

TEST(WebPSniff, LooksAtBothNames)
{
    EXPECT_FALSE(webp::sniff({}));
    const std::string_view wave = "RIFF\x24\0\0\0WAVEfmt ";
    EXPECT_FALSE(webp::sniff(std::as_bytes(std::span(wave))));
    EXPECT_TRUE(webp::sniff(test::riffFile({})));
}

} // namespace

} // namespace vellumine::imaging
