#include "imaging/codecs/webp/WebPCodec.h"

#include "imaging/codecs/BmpFiles.h"
#include "imaging/codecs/WebPFiles.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

namespace vellumine::imaging {

namespace {

using test::oddSize;
using test::webPFile;

constexpr PixelLayout opaque { ColorModel::rgb, 8, AlphaInfo::none };
constexpr PixelLayout withAlpha { ColorModel::rgb, 8, AlphaInfo::last };

const std::vector<std::string> lossy { "-q", "90" };

DecodedImage decodeWell(ByteSpan file)
{
    EXPECT_TRUE(webp::sniff(file));
    const auto header = webp::readHeader(file);
    auto decoded = webp::decode(file, {});
    EXPECT_TRUE(header);
    if (decoded && header) {
        EXPECT_EQ(header->size, decoded->image.size());
        EXPECT_EQ(header->size, decoded->storedSize);
        EXPECT_EQ(header->layout, decoded->image.layout());
        EXPECT_FALSE(decoded->isRegion);
    }
    return decoded.value();
}

Image opaquePicture(Size size)
{
    return test::syntheticPhoto(size);
}

/// Colour everywhere, transparent to opaque from left to right.
Image translucentPicture(Size size)
{
    return test::gradient(size, withAlpha);
}

TEST(WebPReader, LosslessIsExact)
{
    for (const Image& image : { opaquePicture(oddSize), translucentPicture(oddSize) }) {
        const DecodedImage decoded = decodeWell(webPFile(image));
        ASSERT_EQ(decoded.image.layout(), image.layout());
        EXPECT_EQ(test::maximumDifference(decoded.image, image), 0);
        EXPECT_EQ(decoded.image.colorSpace(), ColorSpace::sRgb());
        EXPECT_TRUE(decoded.metadata.empty());
    }
}

TEST(WebPReader, LossyIsClose)
{
    const Image image = opaquePicture({ 160, 120 });
    const DecodedImage decoded = decodeWell(webPFile(image, lossy));
    ASSERT_EQ(decoded.image.layout(), opaque);
    const double fidelity = test::psnr(decoded.image, image);
    EXPECT_GT(fidelity, 30);
    EXPECT_LT(fidelity, 50);
}

TEST(WebPReader, LossyKeepsAlphaExact)
{
    const Image image = translucentPicture(oddSize);
    const DecodedImage decoded = decodeWell(webPFile(image, { "-q", "90", "-exact" }));
    ASSERT_EQ(decoded.image.layout(), withAlpha);
    for (int x = 0; x < oddSize.width; ++x) {
        EXPECT_EQ(test::sampleAt(decoded.image, x, 5, 3), test::sampleAt(image, x, 5, 3)) << x;
    }
}

TEST(WebPReader, DeclaredAlphaStaysEvenWhereAllIsOpaque)
{
    const Image image = opaquePicture({ 16, 16 });
    const ByteBuffer still = webPFile(image, lossy);
    const ByteSpan chunks = test::webPChunks(still);
    const ByteBuffer file = test::riffFile({ test::extendedHeader(test::webPAlpha, { 16, 16 }),
        ByteBuffer(chunks.begin(), chunks.end()) });
    const DecodedImage decoded = decodeWell(file);
    ASSERT_EQ(decoded.image.layout(), withAlpha);
    EXPECT_EQ(test::sampleAt(decoded.image, 7, 7, 3), 1.0);
}

struct RegionRow {
    std::string_view name;
    Rect region;
};

class WebPRegion : public testing::TestWithParam<RegionRow> {
protected:
    static constexpr Size size { 205, 143 };

    static void SetUpTestSuite()
    {
        const std::vector<std::vector<std::string>> ways { { "-lossless" }, { "-q", "30" },
            { "-q", "75", "-strong" }, { "-q", "50", "-nostrong" }, { "-q", "10", "-f", "100" },
            { "-q", "60", "-noalpha", "-f", "0" } };
        for (const Image& image : { opaquePicture(size), translucentPicture(size) }) {
            for (const auto& way : ways) {
                files.push_back(webPFile(image, way));
            }
        }
    }
    static void TearDownTestSuite() { files.clear(); }

    static inline std::vector<ByteBuffer> files;
};

TEST_P(WebPRegion, IsThePartOfTheWhole)
{
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Image whole = decodeWell(files[i]).image;
        const auto part
            = webp::decode(files[i], { .limits = {}, .wish = { .region = GetParam().region } });
        ASSERT_TRUE(part);
        EXPECT_TRUE(part->isRegion);
        EXPECT_EQ(part->storedSize, size);
        ASSERT_EQ(part->image.size(), GetParam().region.size());
        EXPECT_EQ(test::maximumDifference(part->image, whole.cropped(GetParam().region)), 0)
            << "file " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, WebPRegion,
    testing::Values(RegionRow { "Even", { 64, 48, 80, 60 } },
        RegionRow { "OddOrigin", { 51, 37, 64, 40 } }, RegionRow { "OddSize", { 50, 36, 63, 41 } },
        RegionRow { "AllOdd", { 33, 17, 101, 55 } }, RegionRow { "OnePixel", { 101, 71, 1, 1 } },
        RegionRow { "OneColumn", { 77, 0, 1, 143 } }, RegionRow { "OneRow", { 0, 77, 205, 1 } },
        RegionRow { "TopLeft", { 0, 0, 31, 21 } },
        RegionRow { "BottomRight", { 170, 120, 35, 23 } },
        RegionRow { "Whole", { 0, 0, 205, 143 } }),
    test::RowName());

TEST(WebPReader, ARegionOutsideThePictureIsIgnored)
{
    const ByteBuffer file = webPFile(opaquePicture(oddSize));
    const auto decoded
        = webp::decode(file, { .limits = {}, .wish = { .region = Rect { 40, 0, 40, 10 } } });
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->isRegion);
    EXPECT_EQ(decoded->image.size(), oddSize);
}

TEST(WebPAnimation, ShowsItsFirstFrameOnATransparentCanvas)
{
    const Image first = opaquePicture({ 20, 12 });
    const Image second = translucentPicture({ 40, 30 });
    for (const unsigned flags : { 0U, static_cast<unsigned>(test::webPAlpha) }) {
        const ByteBuffer file = test::animation(flags, { 40, 30 },
            { test::animationFrame(webPFile(first), { 6, 8, 20, 12 }),
                test::animationFrame(webPFile(second), { 0, 0, 40, 30 }) });
        const DecodedImage decoded = decodeWell(file);
        ASSERT_EQ(decoded.image.layout(), withAlpha);
        ASSERT_EQ(decoded.storedSize, (Size { 40, 30 }));
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x) {
                const bool isInside = x >= 6 && x < 26 && y >= 8 && y < 20;
                ASSERT_EQ(test::sampleAt(decoded.image, x, y, 3), isInside ? 1.0 : 0.0);
                const double green = isInside ? test::sampleAt(first, x - 6, y - 8, 1) : 0.0;
                ASSERT_EQ(test::sampleAt(decoded.image, x, y, 1), green) << x << ", " << y;
            }
        }
    }
}

TEST(WebPAnimation, OfWholeOpaqueFramesIsOpaque)
{
    const Image first = opaquePicture({ 20, 12 });
    const ByteBuffer frame = test::animationFrame(webPFile(first), { 0, 0, 20, 12 });
    const DecodedImage decoded = decodeWell(test::animation(0, { 20, 12 }, { frame, frame }));
    ASSERT_EQ(decoded.image.layout(), opaque);
    EXPECT_EQ(test::maximumDifference(decoded.image, first), 0);
}

TEST(WebPAnimation, KeepsTheAlphaOfItsFirstFrame)
{
    const Image first = translucentPicture({ 20, 12 });
    const ByteBuffer frame = test::animationFrame(webPFile(first), { 0, 0, 20, 12 });
    const DecodedImage decoded
        = decodeWell(test::animation(test::webPAlpha, { 20, 12 }, { frame, frame }));
    ASSERT_EQ(decoded.image.layout(), withAlpha);
    EXPECT_EQ(test::maximumDifference(decoded.image, first), 0);
}

TEST(WebPAnimation, IsNotCutToARegion)
{
    const Image first = opaquePicture({ 20, 12 });
    const ByteBuffer file = test::animation(
        0, { 20, 12 }, { test::animationFrame(webPFile(first), { 0, 0, 20, 12 }) });
    const auto decoded
        = webp::decode(file, { .limits = {}, .wish = { .region = Rect { 2, 2, 3, 3 } } });
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->isRegion);
    EXPECT_EQ(decoded->image.size(), (Size { 20, 12 }));
}

TEST(WebPAnimation, MayNotLeaveItsCanvas)
{
    const ByteBuffer frame
        = test::animationFrame(webPFile(opaquePicture({ 20, 12 })), { 6, 0, 20, 12 });
    EXPECT_EQ(webp::decode(test::animation(0, { 24, 12 }, { frame }), {}).error().kind,
        Error::Kind::malformed);
}

ByteBuffer textBytes(std::string_view text)
{
    const ByteSpan bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

/// A still file with chunks around its picture.
ByteBuffer extendedFile(
    unsigned flags, const std::vector<ByteBuffer>& before, const std::vector<ByteBuffer>& after)
{
    static const ByteBuffer still = webPFile(opaquePicture({ 16, 16 }));
    const ByteSpan picture = test::webPChunks(still);
    std::vector<ByteBuffer> chunks { test::extendedHeader(flags, { 16, 16 }) };
    chunks.insert(chunks.end(), before.begin(), before.end());
    chunks.emplace_back(picture.begin(), picture.end());
    chunks.insert(chunks.end(), after.begin(), after.end());
    return test::riffFile(chunks);
}

TEST(WebPChunks, TheProfileIsTheColourSpace)
{
    const Primaries displayP3 { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 },
        { 0.150, 0.060 } };
    const ColorSpace space
        = ColorSpace::fromPrimaries(displayP3, { TransferCurve::Kind::sRgb }).value();
    const DecodedImage decoded = decodeWell(
        extendedFile(test::webPProfile, { test::webPChunk("ICCP", space.iccProfile()) }, {}));
    EXPECT_EQ(decoded.image.colorSpace(),
        ColorSpace::fromIcc(space.iccProfile(), ColorModel::rgb).value());
}

TEST(WebPChunks, ADamagedProfileIsIgnored)
{
    const DecodedImage decoded = decodeWell(extendedFile(
        test::webPProfile, { test::webPChunk("ICCP", ByteBuffer(400, std::byte { 9 })) }, {}));
    EXPECT_EQ(decoded.image.colorSpace(), ColorSpace::sRgb());
}

TEST(WebPChunks, ExifAndXmpAreMetadata)
{
    const ByteBuffer exif = test::bytesOf({ 'I', 'I', '*', 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0 });
    const ByteBuffer xmp = textBytes("<x:xmpmeta/>");
    const DecodedImage decoded = decodeWell(extendedFile(test::webPExif | test::webPXmp, {},
        { test::webPChunk("EXIF", exif), test::webPChunk("XMP ", xmp) }));
    EXPECT_EQ(decoded.metadata.exif, exif);
    EXPECT_EQ(decoded.metadata.xmp, xmp);
    EXPECT_TRUE(decoded.metadata.iptc.empty());
    EXPECT_FALSE(decoded.orientation);
}

TEST(WebPChunks, ExifMayHaveJpegsPrefix)
{
    const ByteBuffer exif = test::bytesOf({ 'M', 'M', 0, '*', 0, 0, 0, 8, 0, 0, 0, 0, 0, 0 });
    ByteBuffer prefixed = test::bytesOf({ 'E', 'x', 'i', 'f', 0, 0 });
    prefixed.insert(prefixed.end(), exif.begin(), exif.end());
    EXPECT_EQ(decodeWell(extendedFile(test::webPExif, {}, { test::webPChunk("EXIF", prefixed) }))
                  .metadata.exif,
        exif);
}

TEST(WebPChunks, ExifThatIsNoneIsIgnored)
{
    EXPECT_TRUE(decodeWell(
        extendedFile(test::webPExif, {}, { test::webPChunk("EXIF", textBytes("nothing")) }))
                    .metadata.exif.empty());
}

} // namespace

} // namespace vellumine::imaging
