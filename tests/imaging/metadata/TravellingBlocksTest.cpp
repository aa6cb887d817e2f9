#include "imaging/metadata/Metadata.h"

#include "imaging/metadata/Blocks.h"
#include "imaging/metadata/Exiv2Reading.h"
#include "support/NamedRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace vellumine::imaging::metadata {
namespace {

using test::blocksWith;
using test::bytesOf;
using test::cameraExif;
using test::captionIptc;
using test::everything;
using test::ExifBuilder;
using test::exifFields;
using test::exifOnly;
using test::exifWithOrientation;
using test::xmpFields;
using test::xmpOnly;
using test::xmpPacket;
using testing::Contains;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::Pair;

constexpr NewPicture turnedPicture { { 1500, 2000 }, true, true };
constexpr NewPicture uprightPicture { { 2000, 1500 }, false, true };

struct GroupRow {
    std::string_view name;
    Groups kept;
    std::string_view stays;
};

class TravellingGroup : public testing::TestWithParam<GroupRow> { };

TEST_P(TravellingGroup, staysAlone)
{
    const MetadataBlocks blocks { .exif = cameraExif(),
        .xmp = xmpPacket(R"(xmp:Rating="3")"),
        .iptc = captionIptc("A caption") };
    const MetadataBlocks result = travelling(blocks, GetParam().kept, turnedPicture);
    EXPECT_EQ(groups(result), GetParam().kept);
    if (!GetParam().stays.empty()) {
        EXPECT_THAT(exifFields(result.exif), Contains(Key(std::string(GetParam().stays))));
    }
}

INSTANTIATE_TEST_SUITE_P(Metadata, TravellingGroup,
    testing::Values(GroupRow { "none", {}, "" },
        GroupRow { "exif", { .exif = true }, "Exif.Photo.LensModel" },
        GroupRow { "gps", { .gps = true }, "Exif.GPSInfo.GPSLatitude" },
        GroupRow { "tiff", { .tiff = true }, "Exif.Image.Make" },
        GroupRow { "iptc", { .iptc = true }, "" }, GroupRow { "xmp", { .xmp = true }, "" },
        GroupRow { "all", everything, "Exif.Image.Make" }),
    test::RowName {});

class TravellingExif : public testing::TestWithParam<ByteOrder> {
protected:
    [[nodiscard]] std::map<std::string, std::string> before() const
    {
        return exifFields(cameraExif(GetParam()));
    }
    [[nodiscard]] std::map<std::string, std::string> after(const NewPicture& picture) const
    {
        return exifFields(travelling(exifOnly(cameraExif(GetParam())), everything, picture).exif);
    }
};

TEST_P(TravellingExif, keepsEveryOtherFieldAsItIs)
{
    auto expected = before();
    expected.erase("Exif.Image.Orientation");
    expected.erase("Exif.Image.YCbCrPositioning");
    expected.erase("Exif.Photo.CompressedBitsPerPixel");
    expected.erase("Exif.Photo.SubjectArea");
    expected.erase("Exif.Thumbnail.Orientation");
    expected["Exif.Photo.PixelXDimension"] = "2000";
    expected["Exif.Photo.PixelYDimension"] = "1500";
    // Where things stand is the new block's own.
    auto actual = after(uprightPicture);
    for (const char* const offset : { "Exif.Image.ExifTag", "Exif.Image.GPSTag",
             "Exif.Photo.InteroperabilityTag", "Exif.Thumbnail.JPEGInterchangeFormat" }) {
        EXPECT_TRUE(actual.contains(offset)) << offset;
        actual.erase(offset);
        expected.erase(offset);
    }
    EXPECT_EQ(actual, expected);
}

TEST_P(TravellingExif, hasNoThumbnailOnceThePictureWasTurned)
{
    const auto fields = after(turnedPicture);
    EXPECT_TRUE(fields.contains("Exif.Image.Make"));
    EXPECT_TRUE(std::ranges::none_of(
        fields, [](const auto& field) { return field.first.starts_with("Exif.Thumbnail"); }));
    const ByteBuffer block
        = travelling(exifOnly(cameraExif(GetParam())), everything, turnedPicture).exif;
    EXPECT_LT(block.size() + test::cameraThumbnail().size(), cameraExif(GetParam()).size());
}

TEST_P(TravellingExif, keepsTheThumbnailsDataOfAnUprightPicture)
{
    const MetadataBlocks result
        = travelling(exifOnly(cameraExif(GetParam())), everything, uprightPicture);
    EXPECT_THAT(std::string(test::textOf(result.exif)),
        HasSubstr(std::string(test::textOf(test::cameraThumbnail()))));
}

TEST_P(TravellingExif, leavesTheMakerNoteAtItsOffset)
{
    const ByteBuffer block = cameraExif(GetParam());
    const ByteBuffer note = test::cameraMakerNote();
    const auto offsetIn
        = [&note](const ByteBuffer& bytes) { return test::textOf(bytes).find(test::textOf(note)); };
    for (const NewPicture& picture : { turnedPicture, uprightPicture }) {
        const ByteBuffer result = travelling(exifOnly(block), everything, picture).exif;
        EXPECT_EQ(offsetIn(result), offsetIn(block));
    }
}

TEST_P(TravellingExif, isTheSameAfterASecondJourney)
{
    const MetadataBlocks once
        = travelling(exifOnly(cameraExif(GetParam())), everything, uprightPicture);
    EXPECT_EQ(travelling(once, everything, uprightPicture), once);
}

TEST_P(TravellingExif, saysWhatTheColoursAre)
{
    EXPECT_THAT(after(uprightPicture), Contains(Pair("Exif.Photo.ColorSpace", "1")));
    EXPECT_THAT(
        after({ { 2000, 1500 }, false, false }), Contains(Pair("Exif.Photo.ColorSpace", "65535")));
}

TEST_P(TravellingExif, keepsThePlaceOfTheSubjectWhileItIsTrue)
{
    EXPECT_THAT(after({ { 4000, 3000 }, false, true }),
        Contains(Pair("Exif.Photo.SubjectArea", "100 200 30 40")));
    EXPECT_THAT(
        after({ { 4000, 3000 }, true, true }), Not(Contains(Key("Exif.Photo.SubjectArea"))));
    EXPECT_THAT(
        after({ { 3999, 3000 }, false, true }), Not(Contains(Key("Exif.Photo.SubjectArea"))));
}

INSTANTIATE_TEST_SUITE_P(Metadata, TravellingExif,
    testing::Values(ByteOrder::little, ByteOrder::big),
    [](const auto& row) { return row.param == ByteOrder::little ? "little" : "big"; });

TEST(Travelling, anAdobeRgbIndexGoesWithTheColours)
{
    ExifBuilder builder;
    builder.exif = { builder.shorts(0xA001, { 0xFFFF }) };
    builder.interoperability = { ExifBuilder::ascii(0x0001, "R03") };
    const auto indexFor = [&](bool isSRgb) {
        const NewPicture picture { { 10, 10 }, false, isSRgb };
        return exifFields(travelling(exifOnly(builder.build()), everything, picture).exif)
            .at("Exif.Iop.InteroperabilityIndex");
    };
    EXPECT_EQ(indexFor(true), "R98");
    EXPECT_EQ(indexFor(false), "R03");
}

TEST(Travelling, pixelDimensionsAreNotAddedWhereThereWereNone)
{
    ExifBuilder builder;
    builder.exif = { ExifBuilder::ascii(0xA434, "A lens") };
    const auto fields
        = exifFields(travelling(exifOnly(builder.build()), everything, turnedPicture).exif);
    EXPECT_THAT(fields, Contains(Key("Exif.Photo.LensModel")));
    EXPECT_THAT(fields, Not(Contains(Key("Exif.Photo.PixelXDimension"))));
    EXPECT_THAT(fields, Not(Contains(Key("Exif.Photo.ColorSpace"))));
}

TEST(Travelling, aBlockOfNothingButOrientationEnds)
{
    EXPECT_TRUE(travelling(exifOnly(exifWithOrientation(6)), everything, turnedPicture).empty());
}

TEST(Travelling, fieldsOutOfOrderComeOutInOrder)
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova"), ExifBuilder::ascii(0x0110, "K1") };
    ByteBuffer block = builder.build();
    std::swap_ranges(block.begin() + 10, block.begin() + 22, block.begin() + 22);
    const auto fields = exifFields(travelling(exifOnly(block), everything, uprightPicture).exif);
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova")));
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.Model", "K1")));
}

TEST(Travelling, aThumbnailWithNothingSaidAboutItStays)
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    builder.thumbnail = { builder.shorts(0x0112, { 6 }) };
    builder.thumbnailData = test::cameraThumbnail();
    const auto fields
        = exifFields(travelling(exifOnly(builder.build()), everything, uprightPicture).exif);
    EXPECT_THAT(fields, Contains(Pair("Exif.Thumbnail.JPEGInterchangeFormatLength", "400")));
}

TEST(Travelling, anUncompressedThumbnailStaysReadable)
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    builder.thumbnail = { builder.shorts(0x0103, { 6 }) };
    builder.thumbnailData = ByteBuffer(27, std::byte { 0x42 });
    ByteBuffer block = builder.build();
    // The same fields under the names that strips have.
    const auto rename = [&block](std::uint16_t from, std::uint16_t to) {
        const std::array<std::byte, 4> entry { static_cast<std::byte>(from & 0xFFU),
            static_cast<std::byte>(from >> 8U), std::byte { 4 }, std::byte { 0 } };
        const auto found = std::search(block.begin(), block.end(), entry.begin(), entry.end());
        ASSERT_NE(found, block.end());
        found[0] = static_cast<std::byte>(to & 0xFFU);
        found[1] = static_cast<std::byte>(to >> 8U);
    };
    rename(0x0201, 0x0111);
    rename(0x0202, 0x0117);
    const ByteBuffer result = travelling(exifOnly(block), everything, uprightPicture).exif;
    const auto fields = exifFields(result);
    ASSERT_THAT(fields, Contains(Key("Exif.Thumbnail.StripOffsets")));
    EXPECT_EQ(fields.at("Exif.Thumbnail.StripByteCounts"), "27");
    const auto at = std::stoul(fields.at("Exif.Thumbnail.StripOffsets"));
    ASSERT_LE(at + 27, result.size());
    EXPECT_TRUE(std::all_of(result.begin() + static_cast<std::ptrdiff_t>(at),
        result.begin() + static_cast<std::ptrdiff_t>(at + 27),
        [](std::byte value) { return value == std::byte { 0x42 }; }));
}

TEST(TravellingResolution, changesSidesWithThePicture)
{
    const ExifBuilder builder(ByteOrder::big);
    MetadataBlocks blocks = blocksWith(builder,
        { builder.rationals(0x011A, { 300, 1 }), builder.rationals(0x011B, { 150, 1 }) }, { 2 });
    blocks.xmp = xmpPacket(R"(tiff:XResolution="300/1" tiff:YResolution="150/1")");
    const auto numbers = [&](bool wasTurned, bool hasSidesSwapped) {
        const MetadataBlocks result = travelling(blocks, everything,
            { .size = { 10, 10 }, .wasTurned = wasTurned, .hasSidesSwapped = hasSidesSwapped });
        const auto exif = exifFields(result.exif);
        const auto xmp = xmpFields(result.xmp);
        EXPECT_EQ(exif.at("Exif.Image.XResolution"), xmp->at("Xmp.tiff.XResolution"));
        EXPECT_EQ(exif.at("Exif.Image.YResolution"), xmp->at("Xmp.tiff.YResolution"));
        return exif.at("Exif.Image.XResolution") + " " + exif.at("Exif.Image.YResolution");
    };
    EXPECT_EQ(numbers(false, false), "300/1 150/1");
    EXPECT_EQ(numbers(true, false), "300/1 150/1");
    EXPECT_EQ(numbers(true, true), "150/1 300/1");
}

TEST(TravellingXmp, losesOrientationStructureAndThumbnails)
{
    const ByteBuffer packet = xmpPacket(
        R"(tiff:Orientation="6" tiff:Make="Kestrova" tiff:Compression="6" xmp:Rating="4"
           photoshop:ICCProfile="Display P3" dc:format="image/jpeg" exif:SubjectLocation="5"
           xmlns:hdrgm="http://ns.adobe.com/hdr-gain-map/1.0/" hdrgm:Version="1.0"
           xmlns:xmpNote="http://ns.adobe.com/xmp/note/" xmpNote:HasExtendedXMP="0123"
           xmlns:Cam="http://ns.google.com/photos/1.0/camera/" Cam:MotionPhoto="1")",
        R"(<xmp:Thumbnails><rdf:Alt><rdf:li rdf:parseType="Resource"
            xmlns:img="http://ns.adobe.com/xap/1.0/g/img/"><img:image>AAAA</img:image>
            </rdf:li></rdf:Alt></xmp:Thumbnails>)");
    const MetadataBlocks result = travelling(xmpOnly(packet), everything, turnedPicture);
    const std::map<std::string, std::string> expected { { "Xmp.tiff.Make", "Kestrova" },
        { "Xmp.xmp.Rating", "4" } };
    EXPECT_EQ(xmpFields(result.xmp), expected);
}

TEST(TravellingXmp, saysTheTrueSizeAndColours)
{
    const ByteBuffer packet = xmpPacket(R"(tiff:ImageWidth="4000" tiff:ImageLength="3000"
        exif:PixelXDimension="4000" exif:PixelYDimension="3000" exif:ColorSpace="1")");
    const MetadataBlocks result
        = travelling(xmpOnly(packet), everything, { { 300, 400 }, true, false });
    const std::map<std::string, std::string> expected { { "Xmp.tiff.ImageWidth", "300" },
        { "Xmp.tiff.ImageLength", "400" }, { "Xmp.exif.PixelXDimension", "300" },
        { "Xmp.exif.PixelYDimension", "400" }, { "Xmp.exif.ColorSpace", "65535" } };
    EXPECT_EQ(xmpFields(result.xmp), expected);
}

TEST(TravellingXmp, keepsItsTextWhereNothingChangesAndLosesThePadding)
{
    const ByteBuffer packet = xmpPacket(R"(xmp:Rating="4" dc:source="A  B")");
    const MetadataBlocks result = travelling(xmpOnly(packet), everything, turnedPicture);
    std::string expected(test::textOf(packet));
    expected.erase(expected.find(std::string(500, ' ')), 501);
    EXPECT_EQ(test::textOf(result.xmp), expected);
}

TEST(TravellingXmp, keepsStructuresListsAndLanguages)
{
    const ByteBuffer packet = xmpPacket(R"(tiff:Orientation="6")",
        R"(<dc:subject><rdf:Bag><rdf:li>one</rdf:li><rdf:li>tw&amp;o</rdf:li></rdf:Bag></dc:subject>
           <dc:title><rdf:Alt><rdf:li xml:lang="x-default">Title</rdf:li><rdf:li
           xml:lang="de">Titel &#228;</rdf:li></rdf:Alt></dc:title>
           <xmp:Own xmlns:own="http://own.example/ns/" rdf:parseType="Resource"><own:a>1</own:a>
           <own:b>2</own:b></xmp:Own>)");
    auto expected = xmpFields(packet).value();
    ASSERT_EQ(expected.erase("Xmp.tiff.Orientation"), 1U);
    ASSERT_GT(expected.size(), 3U);
    const MetadataBlocks result = travelling(xmpOnly(packet), everything, turnedPicture);
    EXPECT_EQ(xmpFields(result.xmp), expected);
}

TEST(TravellingXmp, aForeignMeaningOfAPrefixEndsWithItsPacket)
{
    std::string foreign(test::textOf(xmpPacket(R"(tiff:Orientation="6")")));
    foreign.replace(foreign.find("adobe.com/tiff"), 9, "other.com");
    EXPECT_EQ(orientation(xmpOnly(bytesOf(foreign))), std::nullopt);
    const ByteBuffer packet = xmpPacket(R"(tiff:Orientation="6" tiff:Make="Kestrova")");
    EXPECT_EQ(orientation(xmpOnly(packet)), Orientation::rightTop);
    const MetadataBlocks result = travelling(xmpOnly(packet), everything, turnedPicture);
    EXPECT_THAT(std::string(test::textOf(result.xmp)), HasSubstr("http://ns.adobe.com/tiff/1.0/"));
    EXPECT_THAT(std::string(test::textOf(result.xmp)), Not(HasSubstr("Orientation")));
}

TEST(TravellingXmp, aPacketOfNothingButOrientationEnds)
{
    EXPECT_TRUE(travelling(xmpOnly(xmpPacket(R"(tiff:Orientation="6")")), everything, turnedPicture)
                    .empty());
}

TEST(TravellingIptc, losesNothingButTheFillingAtItsEnd)
{
    const ByteBuffer caption = captionIptc("A caption");
    ByteBuffer block = caption;
    block.insert(block.end(), caption.begin(), caption.end());
    const ByteBuffer expected = block;
    block.resize(block.size() + 3);
    const MetadataBlocks blocks { .exif = {}, .xmp = {}, .iptc = block };
    EXPECT_EQ(travelling(blocks, everything, turnedPicture).iptc, expected);
}

TEST(TravellingIptc, readsExtendedLengths)
{
    ByteBuffer block { std::byte { 0x1C }, std::byte { 2 }, std::byte { 202 }, std::byte { 0x80 },
        std::byte { 4 }, std::byte { 0 }, std::byte { 1 }, std::byte { 0 }, std::byte { 0 } };
    block.resize(block.size() + 65536, std::byte { 7 });
    const MetadataBlocks blocks { .exif = {}, .xmp = {}, .iptc = block };
    EXPECT_EQ(travelling(blocks, everything, turnedPicture).iptc, block);
    ByteBuffer cut = block;
    cut.pop_back();
    EXPECT_TRUE(
        travelling({ .exif = {}, .xmp = {}, .iptc = cut }, everything, turnedPicture).empty());
}

} // namespace
} // namespace vellumine::imaging::metadata
