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

constexpr int commentMarker = 0xFE;

TEST(JpegComments, areReadInTheirOrder)
{
    const auto decoded = decodedWith(
        { { commentMarker, "one" }, { commentMarker, "" }, { commentMarker, "two" } });
    ASSERT_EQ(decoded.texts.list().size(), 2U);
    EXPECT_EQ(decoded.texts.list()[0], (FileText { .content = bytesOf("one") }));
    EXPECT_EQ(decoded.texts.list()[1], (FileText { .content = bytesOf("two") }));
    EXPECT_TRUE(decoded.metadata.empty());
    EXPECT_TRUE(decodedWith({}).texts.empty());
}

TEST(JpegComments, areBounded)
{
    EXPECT_EQ(decodedWith(
                  std::vector(FileTexts::mostTexts + 1, std::pair(commentMarker, std::string("x"))))
                  .texts.list()
                  .size(),
        FileTexts::mostTexts);
}

TEST(JpegComments, surviveARoundTripWhereTheyFit)
{
    FileTexts comments;
    comments.add({ .content = bytesOf("one") });
    comments.add({ .content = ByteBuffer(65'533, std::byte { 'x' }) });
    FileTexts more = comments;
    more.add({ .content = ByteBuffer(65'534, std::byte { 'x' }) });
    more.add({});
    const Image picture = test::gradient(oddSize, rgb8);
    const auto file = jpeg::encode(picture, { .metadata = {}, .texts = more }).value();
    EXPECT_EQ(jpeg::decode(file, {})->texts, comments);
}

/// Unit and numbers of the JFIF header, which stands right behind the file's first marker.
std::vector<int> densityIn(ByteSpan file)
{
    EXPECT_EQ(textOf(file.subspan(6, 5)), "JFIF\0"s);
    const auto at = [&file](std::size_t offset) { return std::to_integer<int>(file[offset]); };
    return { at(13), at(14) * 256 + at(15), at(16) * 256 + at(17) };
}

std::optional<Resolution> resolutionFrom(int unit, int x, int y)
{
    ByteBuffer file = jpegFile(test::gradient(oddSize, rgb8), {});
    EXPECT_EQ(densityIn(file), (std::vector { 0, 1, 1 }));
    file[13] = static_cast<std::byte>(unit);
    for (const auto& [offset, value] : { std::pair(14U, x), std::pair(16U, y) }) {
        file[offset] = static_cast<std::byte>(value / 256);
        file[offset + 1] = static_cast<std::byte>(value % 256);
    }
    return jpeg::decode(file, {})->resolution;
}

TEST(JpegResolution, isThatOfTheJfifHeader)
{
    using Unit = Resolution::Unit;
    EXPECT_EQ(resolutionFrom(0, 1, 1), std::nullopt);
    EXPECT_EQ(resolutionFrom(0, 4, 3), Resolution::create(4, 3, Unit::none));
    EXPECT_EQ(resolutionFrom(1, 300, 150), Resolution::create(300, 150, Unit::inch));
    EXPECT_EQ(resolutionFrom(2, 118, 65'535), Resolution::create(11'800, 6'553'500, Unit::metre));
    EXPECT_EQ(resolutionFrom(1, 0, 300), std::nullopt);
    EXPECT_EQ(resolutionFrom(1, 300, 0), std::nullopt);
    EXPECT_EQ(resolutionFrom(3, 300, 300), std::nullopt);
}

TEST(JpegResolution, isWrittenWhereTheHeaderHasRoomForIt)
{
    using Unit = Resolution::Unit;
    const auto densityOf = [](std::optional<Resolution> resolution) {
        return densityIn(jpeg::encode(
            test::gradient(oddSize, rgb8), { .metadata = {}, .resolution = resolution })
                             .value());
    };
    const std::vector nothing { 0, 1, 1 };
    EXPECT_EQ(densityOf(std::nullopt), nothing);
    EXPECT_EQ(densityOf(Resolution::create(300, 150, Unit::inch)), (std::vector { 1, 300, 150 }));
    EXPECT_EQ(
        densityOf(Resolution::create(299.99, 72.2, Unit::inch)), (std::vector { 1, 300, 72 }));
    EXPECT_EQ(
        densityOf(Resolution::create(11'811, 2835, Unit::metre)), (std::vector { 1, 300, 72 }));
    EXPECT_EQ(densityOf(Resolution::create(11'800, 6'553'500, Unit::metre)),
        (std::vector { 2, 118, 65'535 }));
    EXPECT_EQ(densityOf(Resolution::create(4, 3, Unit::none)), (std::vector { 0, 4, 3 }));
    EXPECT_EQ(densityOf(Resolution::create(1.5, 1, Unit::none)), nothing);
    EXPECT_EQ(densityOf(Resolution::create(65'536, 300, Unit::inch)), nothing);
    EXPECT_EQ(densityOf(Resolution::create(300, 0.4, Unit::inch)), nothing);
    EXPECT_EQ(densityOf(Resolution::create(Resolution::largest, 1, Unit::none)), nothing);
    EXPECT_EQ(densityOf(Resolution::create(Resolution::largest, 300, Unit::metre)), nothing);
}

TEST(JpegResolution, isSaidForInkAsWell)
{
    const Image ink = test::gradient(oddSize, { ColorModel::cmyk, 8, AlphaInfo::none });
    const auto resolution = Resolution::create(300, 300, Resolution::Unit::inch);
    const auto with = jpeg::encode(ink, { .metadata = {}, .resolution = resolution }).value();
    const auto without = jpeg::encode(ink, {}).value();
    EXPECT_EQ(jpeg::decode(with, {})->resolution, resolution);
    EXPECT_EQ(jpeg::decode(without, {})->resolution, std::nullopt);
    EXPECT_EQ(
        test::maximumDifference(jpeg::decode(with, {})->image, jpeg::decode(without, {})->image),
        0);
}

} // namespace
} // namespace vellumine::imaging
