#include "imaging/codecs/JpegFiles.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellumine::imaging {
namespace {

using test::jpegFile;
using test::oddSize;
using namespace std::string_literals;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

ByteBuffer bytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

std::string textOf(ByteSpan bytes)
{
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

/// A profile that is not sRGB: the primaries of Display P3.
ColorSpace wideSpace()
{
    return ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } },
        { TransferCurve::Kind::sRgb, 1.0 })
        .value();
}

std::string wideProfile()
{
    return textOf(wideSpace().iccProfile());
}

DecodedImage decodedWith(const std::vector<std::pair<int, std::string>>& markers)
{
    const Image picture = test::gradient(oddSize, rgb8);
    return jpeg::decode(jpegFile(picture, { .markers = markers }), {}).value();
}

std::pair<int, std::string> profilePiece(int number, int count, const std::string& content)
{
    return { 0xE2,
        "ICC_PROFILE\0"s + static_cast<char>(number) + static_cast<char>(count) + content };
}

TEST(JpegProfile, isReadFromOneSegment)
{
    const auto result = decodedWith({ profilePiece(1, 1, wideProfile()) });
    EXPECT_EQ(textOf(result.image.colorSpace().iccProfile()), wideProfile());
}

TEST(JpegProfile, isReadFromSeveralSegmentsInAnyOrder)
{
    const std::string profile = wideProfile();
    const auto first = profilePiece(1, 3, profile.substr(0, 100));
    const auto second = profilePiece(2, 3, profile.substr(100, 200));
    const auto third = profilePiece(3, 3, profile.substr(300));
    for (const auto& markers : { std::vector { first, second, third },
             std::vector { third, first, second }, std::vector { second, third, first } }) {
        const auto result = decodedWith(markers);
        EXPECT_EQ(textOf(result.image.colorSpace().iccProfile()), profile);
    }
}

TEST(JpegProfile, ofBrokenPiecesIsLeftOut)
{
    const std::string profile = wideProfile();
    const auto first = profilePiece(1, 2, profile.substr(0, 100));
    const auto second = profilePiece(2, 2, profile.substr(100));
    using Markers = std::vector<std::pair<int, std::string>>;
    for (const Markers& markers : {
             Markers { first }, // the end is missing
             Markers { second }, // the start is missing
             Markers { first, first, second }, // one comes twice
             Markers { first, profilePiece(2, 3, profile.substr(100)) }, // the counts differ
             Markers { profilePiece(0, 1, profile) }, // numbers start at 1
             Markers { profilePiece(3, 2, profile) },
             Markers { profilePiece(1, 1, "") },
             Markers { profilePiece(1, 1, "this is no profile") },
             Markers { { 0xE2, "ICC_PROFILE" } },
             Markers { { 0xE2, "MPF\0something else"s } },
         }) {
        EXPECT_EQ(decodedWith(markers).image.colorSpace(), ColorSpace::sRgb());
    }
}

TEST(JpegProfile, ofAnotherModelIsLeftOut)
{
    const Image ink = test::gradient(oddSize, { ColorModel::cmyk, 8, AlphaInfo::none });
    const auto file = jpegFile(
        ink, { .fileSpace = JCS_CMYK, .markers = { profilePiece(1, 1, wideProfile()) } });
    EXPECT_EQ(jpeg::decode(file, {}).value().image.colorSpace(), ColorSpace::deviceCmyk());
}

TEST(JpegProfile, isWrittenUnlessLeftOut)
{
    const Image picture = test::gradient(oddSize, rgb8).withColorSpace(wideSpace());
    EncodeOptions options;
    const auto with = jpeg::encode(picture, options).value();
    EXPECT_EQ(jpeg::decode(with, {}).value().image.colorSpace(), wideSpace());
    options.profile = ProfilePolicy::omit;
    const auto without = jpeg::encode(picture, options).value();
    EXPECT_EQ(jpeg::decode(without, {}).value().image.colorSpace(), ColorSpace::sRgb());
}

TEST(JpegProfile, ofManySegmentsSurvivesARoundTrip)
{
    // A private tag of 200,000 bytes: more than three segments hold. The sizes in the header and
    // in the tag table are corrected by hand.
    ByteBuffer profile = bytesOf(wideProfile());
    profile.resize(200'000);
    for (int i = 0; i < 4; ++i) {
        profile[static_cast<std::size_t>(i)]
            = static_cast<std::byte>(profile.size() >> static_cast<unsigned>(24 - 8 * i));
    }
    const auto space = ColorSpace::fromIcc(profile, ColorModel::rgb);
    ASSERT_TRUE(space.has_value());
    const Image picture = test::gradient(oddSize, rgb8).withColorSpace(*space);
    const auto file = jpeg::encode(picture, {}).value();
    EXPECT_EQ(jpeg::decode(file, {}).value().image.colorSpace(), *space);
}

MetadataBlocks someBlocks()
{
    return { bytesOf("II*\0\x08\0\0\0\0\0\0\0\0\0"s),
        bytesOf("<x:xmpmeta xmlns:x='adobe:ns:meta/'/>"),
        bytesOf("\x1C\x02\x78\0\x03"
                "abc"s) };
}

TEST(JpegMetadata, survivesARoundTrip)
{
    const Image picture = test::gradient(oddSize, rgb8);
    const auto file = jpeg::encode(picture, { .metadata = someBlocks() }).value();
    EXPECT_EQ(jpeg::decode(file, {}).value().metadata, someBlocks());
}

TEST(JpegMetadata, isAbsentWhereThereIsNone)
{
    EXPECT_TRUE(decodedWith({}).metadata.empty());
}

TEST(JpegMetadata, isLeftOutWhereItDoesNotFit)
{
    const Image picture = test::gradient(oddSize, rgb8);
    const auto roundTrip = [&](const MetadataBlocks& blocks) {
        const auto file = jpeg::encode(picture, { .metadata = blocks }).value();
        return jpeg::decode(file, {}).value().metadata;
    };
    MetadataBlocks blocks = someBlocks();
    blocks.exif.resize(65'527);
    blocks.xmp.resize(65'502, std::byte { ' ' });
    EXPECT_EQ(roundTrip(blocks), blocks);
    blocks.exif.resize(65'528);
    blocks.xmp.resize(65'503, std::byte { ' ' });
    EXPECT_EQ(roundTrip(blocks), (MetadataBlocks { {}, {}, blocks.iptc }));
    blocks.iptc.resize(70'000);
    EXPECT_TRUE(roundTrip(blocks).empty());
}

TEST(JpegMetadata, findsIptcAmongPhotoshopsResources)
{
    const std::string iptc = "\x1C\x02\x78\0\x03"
                             "abc"s;
    const std::string other = "8BIM\x03\xED\0\0\0\0\0\x03xyz\0"s;
    const std::string named = "8BIM\x04\x0B\x04name\0\0\0\0\x02xy"s;
    const std::string wanted = "8BIM\x04\x04\0\0\0\0\0\x08"s + iptc;
    const std::string all = other + named + wanted;
    const std::string signature = "Photoshop 3.0\0"s;
    EXPECT_EQ(decodedWith({ { 0xED, signature + all } }).metadata.iptc, bytesOf(iptc));
    // The resources may go on in a second segment anywhere.
    for (std::size_t cut = 0; cut <= all.size(); ++cut) {
        const auto result = decodedWith(
            { { 0xED, signature + all.substr(0, cut) }, { 0xED, signature + all.substr(cut) } });
        ASSERT_EQ(result.metadata.iptc, bytesOf(iptc)) << cut;
    }
    for (std::size_t cut = 0; cut < all.size(); ++cut) {
        ASSERT_TRUE(
            decodedWith({ { 0xED, signature + all.substr(0, cut) } }).metadata.iptc.empty());
    }
}

TEST(JpegMetadata, takesTheFirstBlockOfAKind)
{
    const std::string exif = "II*\0\x08\0\0\0\0\0\0\0\0\0"s;
    const auto result = decodedWith({ { 0xE1, "Exif\0\0"s + exif },
        { 0xE1, "Exif\0\0MM\0*second"s }, { 0xE1, "http://ns.adobe.com/xap/1.0/\0one"s },
        { 0xE1, "http://ns.adobe.com/xap/1.0/\0two"s } });
    EXPECT_EQ(textOf(result.metadata.exif), exif);
    EXPECT_EQ(textOf(result.metadata.xmp), "one");
}

TEST(JpegMetadata, dropsExifThatIsNoTiffStructure)
{
    EXPECT_TRUE(decodedWith({ { 0xE1, "Exif\0\0garbage"s } }).metadata.exif.empty());
    EXPECT_TRUE(decodedWith({ { 0xE1, "Exif\0\0"s } }).metadata.exif.empty());
}

} // namespace
} // namespace vellumine::imaging
