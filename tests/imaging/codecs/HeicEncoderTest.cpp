#include "imaging/PixelConversion.h"
#include "imaging/codecs/heic/HeicCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

namespace vellumine::imaging::heic {
namespace {

using namespace std::string_view_literals;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

EncodeOptions atQuality(double quality)
{
    return { .quality = quality, .metadata = {} };
}

ByteBuffer bytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

bool containsText(const ByteBuffer& file, std::string_view text)
{
    const ByteBuffer wanted = bytesOf(text);
    return std::search(file.begin(), file.end(), wanted.begin(), wanted.end()) != file.end();
}

Result<DecodedImage> roundTrip(const Image& image, const EncodeOptions& options)
{
    const auto file = encodeHeic(image, options);
    return file ? decode(*file, {}) : tl::unexpected(file.error());
}

struct QualityRow {
    const char* name;
    Size size;
    double quality;
    double lowestPsnr;
    double highestPsnr;
    std::size_t smallest;
    std::size_t largest;
};

class HeicQuality : public testing::TestWithParam<QualityRow> { };

TEST_P(HeicQuality, fidelityAndSizeAreInTheWindow)
{
    const QualityRow& row = GetParam();
    const Image image = test::syntheticPhoto(row.size);
    const auto file = encodeHeic(image, atQuality(row.quality));
    ASSERT_TRUE(file) << file.error().detail;
    EXPECT_GE(file->size(), row.smallest);
    EXPECT_LE(file->size(), row.largest);
    const auto decoded = decode(*file, {});
    ASSERT_TRUE(decoded) << decoded.error().detail;
    ASSERT_EQ(decoded->image.size(), row.size);
    EXPECT_EQ(decoded->image.layout(), rgb8);
    const double psnr = test::psnr(decoded->image, image);
    EXPECT_GE(psnr, row.lowestPsnr);
    EXPECT_LE(psnr, row.highestPsnr);
}

INSTANTIATE_TEST_SUITE_P(Qualities, HeicQuality,
    testing::Values(QualityRow { "oddLow", test::oddSize, 0.3, 25.5, 29.5, 900, 1700 },
        QualityRow { "oddHigh", test::oddSize, 0.9, 28.0, 31.5, 2000, 3400 },
        QualityRow { "low", { 200, 150 }, 0.3, 31.5, 34.5, 1400, 2500 },
        QualityRow { "middle", { 200, 150 }, 0.8, 35.5, 38.5, 10500, 17000 },
        QualityRow { "highest", { 200, 150 }, 1.0, 36.0, 39.0, 16000, 27000 }),
    [](const auto& row) { return row.param.name; });

TEST(HeicEncoder, everySizeComesBack)
{
    for (const Size size : { Size { 1, 1 }, Size { 1, 100 }, Size { 63, 2 }, Size { 64, 64 },
             Size { 65, 17 }, Size { 131, 66 } }) {
        const Image image = test::flat(size, rgb8, { 0.8, 0.4, 0.2 });
        const auto decoded = roundTrip(image, atQuality(0.95));
        ASSERT_TRUE(decoded) << size.width << " x " << size.height;
        ASSERT_EQ(decoded->image.size(), size);
        EXPECT_LT(test::maximumDifference(decoded->image, image), 0.03);
    }
}

TEST(HeicEncoder, typeIsWhatWasAskedFor)
{
    const Image image = test::gradient(test::oddSize, rgb8);
    const auto heic = encodeHeic(image, atQuality(0.5));
    const auto heif = encodeHeif(image, atQuality(0.5));
    ASSERT_TRUE(heic && heif);
    EXPECT_TRUE(sniffHeic(*heic));
    EXPECT_FALSE(sniffHeif(*heic));
    EXPECT_TRUE(sniffHeif(*heif));
    EXPECT_FALSE(sniffHeic(*heif));
    EXPECT_TRUE(decode(*heif, {}));
}

TEST(HeicEncoder, alphaIsComposedOnWhite)
{
    for (const AlphaInfo alpha : { AlphaInfo::last, AlphaInfo::premultipliedLast, AlphaInfo::first,
             AlphaInfo::premultipliedFirst }) {
        const Image image = test::gradient({ 96, 64 }, { ColorModel::rgb, 8, alpha });
        const auto decoded = roundTrip(image, atQuality(0.95));
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->image.layout(), rgb8);
        EXPECT_GT(test::psnr(decoded->image, relayout(image, rgb8).value()), 36.0);
        EXPECT_GT(test::sampleAt(decoded->image, 0, 30, 0), 0.97) << "transparent is white";
    }
}

TEST(HeicEncoder, greyAndSixteenBitsAreTaken)
{
    const Image grey = test::gradient({ 80, 64 }, { ColorModel::grey, 8, AlphaInfo::none });
    const Image deep = test::gradient({ 80, 64 }, { ColorModel::rgb, 16, AlphaInfo::none });
    for (const Image& image : { grey, deep }) {
        const auto decoded = roundTrip(image, atQuality(0.95));
        ASSERT_TRUE(decoded);
        EXPECT_GT(test::psnr(decoded->image, relayout(image, rgb8).value()), 36.0);
    }
}

TEST(HeicEncoder, cmykIsRefused)
{
    const auto file
        = encodeHeic(test::gradient({ 8, 8 }, { ColorModel::cmyk, 8, AlphaInfo::none }), {});
    ASSERT_FALSE(file);
    EXPECT_EQ(file.error().kind, Error::Kind::unsupported);
}

TEST(HeicEncoder, profileIsWrittenAsAsked)
{
    const Image image = test::gradient(test::oddSize, rgb8);
    const auto with = encodeHeic(image, { .profile = ProfilePolicy::embed, .metadata = {} });
    const auto without = encodeHeic(image, { .profile = ProfilePolicy::omit, .metadata = {} });
    const auto device = encodeHeic(image.withColorSpace(ColorSpace::deviceRgb()), {});
    ASSERT_TRUE(with && without && device);
    EXPECT_TRUE(containsText(*with, "colrprof"));
    EXPECT_FALSE(containsText(*with, "colrnclx"));
    for (const auto& file : { *without, *device }) {
        EXPECT_FALSE(containsText(file, "colrprof"));
        // BT.709's primaries, sRGB's curve, BT.601's matrix, full range.
        EXPECT_TRUE(containsText(file, "colrnclx\0\x01\0\x0D\0\x06\x80"sv));
        EXPECT_TRUE(decode(file, {}).value().image.colorSpace() == ColorSpace::sRgb());
    }
    const auto decoded = decode(*with, {});
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(std::ranges::equal(
        decoded->image.colorSpace().iccProfile(), ColorSpace::sRgb().iccProfile()));
    EXPECT_GT(test::psnr(decoded->image, image), 36.0) << "the matrix is the one that was used";
}

TEST(HeicEncoder, exifAndXmpComeBack)
{
    MetadataBlocks blocks;
    blocks.exif = bytesOf("MM\0*\0\0\0\x08\0\0\0\0\0\0"sv);
    blocks.xmp = bytesOf("<x:xmpmeta xmlns:x='adobe:ns:meta/'/>");
    blocks.iptc = bytesOf("\x1C\x02\x05\0\x01x"sv);
    const Image image = test::gradient(test::oddSize, rgb8);
    const auto decoded = roundTrip(image, { .metadata = blocks });
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->metadata.exif, blocks.exif);
    EXPECT_EQ(decoded->metadata.xmp, blocks.xmp);
    EXPECT_TRUE(decoded->metadata.iptc.empty());
    const auto bare = roundTrip(image, {});
    ASSERT_TRUE(bare);
    EXPECT_TRUE(bare->metadata.empty());
}

TEST(HeicEncoder, nothingIsPrinted)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_TRUE(roundTrip(test::gradient({ 70, 70 }, rgb8), atQuality(0.5)));
    EXPECT_FALSE(decode(bytesOf("\0\0\0\x10"
                                "ftypheic\0\0\0\0"sv),
        {}));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

} // namespace
} // namespace vellumine::imaging::heic
