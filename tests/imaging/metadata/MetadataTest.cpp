#include "imaging/metadata/Metadata.h"

#include "imaging/metadata/Blocks.h"
#include "imaging/metadata/Exiv2Reading.h"
#include "support/NamedRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

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
using test::xmpOnly;
using test::xmpPacket;
using testing::Contains;
using testing::Pair;

struct StatementRow {
    const char* name;
    std::vector<std::uint16_t> colorSpace; ///< empty for none
    std::string_view index; ///< empty for none
    bool isAdobeRgb;
};

class ColorStatement : public testing::TestWithParam<StatementRow> { };

TEST_P(ColorStatement, isReadInBothByteOrders)
{
    for (const ByteOrder order : { ByteOrder::little, ByteOrder::big }) {
        ExifBuilder builder(order);
        builder.exif = { ExifBuilder::ascii(0xA434, "A lens") };
        if (!GetParam().colorSpace.empty()) {
            builder.exif.insert(
                builder.exif.begin(), builder.shorts(0xA001, GetParam().colorSpace));
        }
        if (!GetParam().index.empty()) {
            builder.interoperability = { ExifBuilder::ascii(0x0001, GetParam().index) };
        }
        EXPECT_EQ(saysAdobeRgb(builder.build()), GetParam().isAdobeRgb);
    }
}

INSTANTIATE_TEST_SUITE_P(Of, ColorStatement,
    testing::Values(StatementRow { "adobeRgb", { 0xFFFF }, "R03", true },
        StatementRow { "sRgb", { 1 }, "R98", false },
        StatementRow { "sRgbWithTheOtherIndex", { 1 }, "R03", false },
        StatementRow { "somethingElse", { 0xFFFF }, "R98", false },
        StatementRow { "somethingElseWithoutAnIndex", { 0xFFFF }, "", false },
        StatementRow { "theIndexAlone", {}, "R03", false },
        StatementRow { "aLongerIndex", { 0xFFFF }, "R03 ", false },
        StatementRow { "nothing", {}, "", false }),
    test::RowName());

TEST(ColorStatement, ofADamagedBlockIsNone)
{
    ExifBuilder builder;
    builder.exif = { builder.shorts(0xA001, { 0xFFFF }) };
    builder.interoperability = { ExifBuilder::ascii(0x0001, "R03") };
    const ByteBuffer block = builder.build();
    ASSERT_TRUE(saysAdobeRgb(block));
    EXPECT_FALSE(saysAdobeRgb({}));
    const std::size_t directoryBytes = 2 + 12 + 4; // the last one, whose value stands in it
    for (std::size_t length = 0; length < block.size() - directoryBytes; ++length) {
        EXPECT_FALSE(saysAdobeRgb(std::span(block).first(length))) << length;
    }
}

TEST(MetadataOrientation, isReadFromExifInBothByteOrders)
{
    EXPECT_EQ(orientation(exifOnly(cameraExif(ByteOrder::little))), Orientation::rightTop);
    EXPECT_EQ(orientation(exifOnly(cameraExif(ByteOrder::big))), Orientation::rightTop);
}

TEST(MetadataOrientation, isReadFromAFieldOfTypeLongToo)
{
    for (const ByteOrder order : { ByteOrder::little, ByteOrder::big }) {
        ExifBuilder builder(order);
        builder.main = { builder.longs(0x0112, { 8 }) };
        EXPECT_EQ(orientation(exifOnly(builder.build())), Orientation::leftBottom);
    }
}

TEST(MetadataOrientation, outsideOneToEightIsNone)
{
    EXPECT_EQ(orientation(exifOnly(exifWithOrientation(0))), std::nullopt);
    EXPECT_EQ(orientation(exifOnly(exifWithOrientation(9))), std::nullopt);
    EXPECT_EQ(orientation(xmpOnly(xmpPacket(R"(tiff:Orientation="9")"))), std::nullopt);
    EXPECT_EQ(orientation(xmpOnly(xmpPacket(R"(tiff:Orientation="6x")"))), std::nullopt);
    EXPECT_EQ(orientation(xmpOnly(xmpPacket(R"(tiff:Orientation="")"))), std::nullopt);
}

TEST(MetadataOrientation, ofExifHoldsAgainstXmp)
{
    const MetadataBlocks both {
        .exif = exifWithOrientation(3), .xmp = xmpPacket(R"(tiff:Orientation="6")"), .iptc = {}
    };
    EXPECT_EQ(orientation(both), Orientation::bottomRight);
}

TEST(MetadataOrientation, ofXmpCountsWhereExifHasNone)
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    MetadataBlocks blocks = xmpOnly(xmpPacket(R"(tiff:Orientation="6")"));
    EXPECT_EQ(orientation(blocks), Orientation::rightTop);
    blocks.exif = builder.build();
    EXPECT_EQ(orientation(blocks), Orientation::rightTop);
    blocks.exif = exifWithOrientation(0);
    EXPECT_EQ(orientation(blocks), Orientation::rightTop);
    blocks.exif = bytesOf("II*");
    EXPECT_EQ(orientation(blocks), Orientation::rightTop);
}

TEST(MetadataOrientation, ofTheThumbnailIsNotThePictures)
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    builder.thumbnail = { builder.shorts(0x0112, { 6 }) };
    builder.thumbnailData = test::cameraThumbnail();
    EXPECT_EQ(orientation(exifOnly(builder.build())), std::nullopt);
}

TEST(MetadataGroups, areAllFoundInACamerasBlocks)
{
    const MetadataBlocks blocks { .exif = cameraExif(),
        .xmp = xmpPacket(R"(xmp:Rating="3")"),
        .iptc = captionIptc("A caption") };
    EXPECT_EQ(groups(blocks), everything);
}

TEST(MetadataGroups, areNoneInEmptyBlocks)
{
    EXPECT_EQ(groups({}), Groups {});
}

TEST(MetadataGroups, orientationAndStructureAloneAreNone)
{
    ExifBuilder builder;
    builder.main = { builder.shorts(0x0112, { 6 }), builder.longs(0x0100, { 640 }),
        builder.shorts(0x0213, { 1 }) };
    EXPECT_EQ(groups(exifOnly(builder.build())), Groups {});
}

TEST(MetadataGroups, ofDamagedBlocksAreNone)
{
    ByteBuffer exif = cameraExif();
    exif.resize(20);
    EXPECT_EQ(groups({ .exif = exif, .xmp = bytesOf("<rdf:RDF"), .iptc = bytesOf("caption") }),
        Groups {});
}

TEST(MetadataResolution, isReadInEveryUnitAndByteOrder)
{
    using Unit = Resolution::Unit;
    for (const ByteOrder order : { ByteOrder::little, ByteOrder::big }) {
        const ExifBuilder builder(order);
        const ExifBuilder::Directory numbers { builder.rationals(0x011A, { 3000, 10 }),
            builder.rationals(0x011B, { 301, 2 }) };
        const auto inUnit = [&](std::vector<std::uint16_t> unit) {
            return resolution(blocksWith(builder, numbers, std::move(unit)));
        };
        EXPECT_EQ(inUnit({ 1 }), Resolution::create(300, 150.5, Unit::none));
        EXPECT_EQ(inUnit({ 2 }), Resolution::create(300, 150.5, Unit::inch));
        EXPECT_EQ(inUnit({ 3 }), Resolution::create(30'000, 15'050, Unit::metre));
        EXPECT_EQ(inUnit({}), Resolution::create(300, 150.5, Unit::inch));
        EXPECT_EQ(inUnit({ 4 }), std::nullopt);
        const ExifBuilder::Directory whole { builder.shorts(0x011A, { 300 }),
            builder.longs(0x011B, { 150 }) };
        EXPECT_EQ(
            resolution(blocksWith(builder, whole, {})), Resolution::create(300, 150, Unit::inch));
    }
}

TEST(MetadataResolution, thatMakesNoSenseIsNone)
{
    const ExifBuilder builder;
    const auto of = [&](std::vector<std::uint32_t> x, std::vector<std::uint32_t> y) {
        return resolution(blocksWith(builder,
            { builder.rationals(0x011A, std::move(x)), builder.rationals(0x011B, std::move(y)) },
            { 2 }));
    };
    EXPECT_TRUE(of({ 300, 1 }, { 300, 1 }));
    EXPECT_FALSE(of({ 300, 0 }, { 300, 1 }));
    EXPECT_FALSE(of({ 300, 1 }, { 0, 1 }));
    EXPECT_FALSE(of({ 300, 1 }, { 0, 0 }));
    EXPECT_FALSE(of({ 0xFFFFFFFF, 1 }, { 300, 1 }));
    EXPECT_FALSE(resolution(blocksWith(builder, { builder.rationals(0x011A, { 300, 1 }) }, { 2 })));
    EXPECT_FALSE(resolution(blocksWith(builder,
        { ExifBuilder::ascii(0x011A, "300"), builder.rationals(0x011B, { 300, 1 }) }, { 2 })));
    EXPECT_FALSE(resolution({}));
    EXPECT_FALSE(resolution(exifOnly(bytesOf("II*"))));
}

TEST(MetadataResolution, isAddedWhereNoneIsSaid)
{
    using Unit = Resolution::Unit;
    const ExifBuilder builder(ByteOrder::big);
    const ByteBuffer maker = blocksWith(builder, {}, {}).exif;
    struct Row {
        Resolution resolution;
        const char* x;
        const char* y;
        const char* unit;
    };
    for (const auto& [stated, x, y, unit] :
        {
            Row { *Resolution::create(300, 72, Unit::inch), "300/1", "72/1", "2" },
            Row { *Resolution::create(299.5, 1.0 / 3, Unit::inch), "29950/100", "3333/10000", "2" },
            Row { *Resolution::create(11'811, 2835, Unit::metre), "300/1", "72/1", "2" },
            Row { *Resolution::create(11'800, 2835, Unit::metre), "118/1", "2835/100", "3" },
            Row { *Resolution::create(4, 3, Unit::none), "4/1", "3/1", "1" },
            Row { *Resolution::create(Resolution::largest, 0.5, Unit::inch), "2147483647/1",
                "50/100", "2" },
        }) {
        const auto fields = exifFields(withResolution(maker, stated));
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova")));
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.XResolution", x)));
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.YResolution", y)));
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.ResolutionUnit", unit)));
        EXPECT_EQ(resolution(exifOnly(withResolution({}, stated)))->unit(),
            std::string_view(unit) == "1"       ? Unit::none
                : std::string_view(unit) == "2" ? Unit::inch
                                                : Unit::metre);
    }
    const ByteBuffer camera = cameraExif();
    EXPECT_EQ(withResolution(camera, *Resolution::create(300, 300, Unit::inch)), camera);
}

TEST(Metadata, servesEightThreadsAtOnce)
{
    const auto work = [](std::size_t seed) {
        // Namespaces that no thread has met before are the dangerous part of the XMP toolkit.
        MetadataBlocks blocks { .exif = cameraExif(), .xmp = {}, .iptc = captionIptc("A caption") };
        for (int round = 0; round < 40; ++round) {
            const std::string own = "o" + std::to_string(seed) + "r" + std::to_string(round);
            blocks.xmp = xmpPacket(R"(tiff:Orientation="6" xmlns:)" + own
                + R"(="http://own.example/)" + own + R"(/" )" + own + R"(:key="value")");
            const MetadataBlocks result
                = travelling(blocks, everything, { { 1500, 2000 }, true, true });
            if (orientation(blocks) != Orientation::rightTop || groups(result) != everything
                || test::textOf(result.xmp).find(own + ":key=\"value\"")
                    == std::string_view::npos) {
                return false;
            }
        }
        return true;
    };
    std::array<bool, 8> succeeded {};
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < succeeded.size(); ++i) {
            threads.emplace_back([&, i] { succeeded.at(i) = work(i); });
        }
    }
    EXPECT_THAT(succeeded, testing::Each(true));
}

} // namespace
} // namespace vellumine::imaging::metadata
