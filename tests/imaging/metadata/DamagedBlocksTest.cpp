#include "imaging/metadata/Blocks.h"
#include "imaging/metadata/ExifBuilder.h"
#include "imaging/metadata/Metadata.h"
#include "support/NamedRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include <string>

namespace vellumine::imaging::metadata {
namespace {

using test::bytesOf;
using test::cameraExif;
using test::everything;
using test::ExifBuilder;
using test::exifOnly;

constexpr NewPicture picture { { 20, 10 }, false, true };

// Runs everything that reads blocks. What came out must be readable and stay what it is; a block
// can grow by the alignment of its values, but never unfold.
void readEverything(const MetadataBlocks& blocks)
{
    static_cast<void>(orientation(blocks));
    const Groups before = groups(blocks);
    const MetadataBlocks result = travelling(blocks, everything, picture);
    const Groups after = groups(result);
    EXPECT_TRUE(before.exif || !after.exif);
    EXPECT_TRUE(before.gps || !after.gps);
    EXPECT_TRUE(before.tiff || !after.tiff);
    EXPECT_EQ(orientation(result), std::nullopt);
    EXPECT_LE(result.exif.size(), 3 * blocks.exif.size() + 100);
    EXPECT_EQ(travelling(result, everything, picture).exif, result.exif);
}

TEST(DamagedExif, canBeCutAnywhere)
{
    for (const ByteOrder order : { ByteOrder::little, ByteOrder::big }) {
        const ByteBuffer whole = cameraExif(order);
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const MetadataBlocks blocks
                = exifOnly({ whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length) });
            readEverything(blocks);
            const auto found = orientation(blocks);
            EXPECT_TRUE(!found || *found == Orientation::rightTop) << "cut to " << length;
        }
    }
}

TEST(DamagedExif, canHaveAnyByteWrong)
{
    const ByteBuffer whole = cameraExif();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const std::byte wrong : { std::byte { 0 }, std::byte { 0x7F }, std::byte { 0xFF } }) {
            ByteBuffer block = whole;
            block[at] = wrong;
            readEverything(exifOnly(std::move(block)));
        }
    }
}

TEST(DamagedExif, keepsThePartsThatAreSound)
{
    ByteBuffer block = cameraExif();
    block.resize(block.size() - test::cameraThumbnail().size() - 1);
    const Groups found = groups(exifOnly(block));
    EXPECT_TRUE(found.exif && found.gps && found.tiff);
    EXPECT_EQ(groups(travelling(exifOnly(block), everything, picture)), found);
}

TEST(DamagedExif, canPointInCircles)
{
    ExifBuilder builder;
    const ExifBuilder::Directory pointers {
        builder.longs(0x8769, { 8 }),
        builder.longs(0x8825, { 8 }),
        builder.longs(0xA005, { 8 }),
    };
    builder.main = pointers;
    builder.main.push_back(ExifBuilder::ascii(0x010F, "Kestrova"));
    builder.thumbnail = pointers;
    builder.thumbnailData = test::cameraThumbnail();
    const MetadataBlocks blocks = exifOnly(builder.build());
    readEverything(blocks);
    const Groups expected { .tiff = true };
    EXPECT_EQ(groups(blocks), expected);
}

TEST(DamagedExif, theFirstOfTwoFieldsCounts)
{
    ExifBuilder builder;
    builder.main = { builder.shorts(0x0112, { 6 }), builder.shorts(0x0112, { 3 }) };
    // A second, longer maker note has no place of its own.
    builder.exif = { ExifBuilder::undefined(0x927C, test::cameraMakerNote()),
        ExifBuilder::undefined(0x927C, ByteBuffer(5000)) };
    const MetadataBlocks blocks = exifOnly(builder.build());
    readEverything(blocks);
    EXPECT_EQ(orientation(blocks), Orientation::rightTop);
    const ByteBuffer result = travelling(blocks, everything, picture).exif;
    EXPECT_LT(result.size(), 1000U);
    EXPECT_NE(test::textOf(result).find(test::textOf(test::cameraMakerNote())), std::string::npos);
}

TEST(DamagedExif, fieldsThatShareTheirBytesDoNotUnfold)
{
    // Four thousand fields that all claim the same 40,000 bytes.
    ExifBuilder builder;
    for (std::uint16_t tag = 0x1000; tag < 0x1000 + 4000; ++tag) {
        builder.main.push_back(builder.longs(tag, { 0 }));
    }
    ByteBuffer block = builder.build();
    for (std::size_t entry = 10; entry < 10 + 4000 * 12; entry += 12) {
        const auto count = std::to_array<unsigned char>({ 0x07, 0x00, 0x40, 0x9C, 0x00, 0x00, 8 });
        std::ranges::transform(count, block.begin() + static_cast<std::ptrdiff_t>(entry) + 2,
            [](unsigned char value) { return std::byte { value }; });
    }
    readEverything(exifOnly(std::move(block)));
}

TEST(DamagedExif, aDirectoryOfMoreFieldsThanThereAreIsDamaged)
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    ByteBuffer block = builder.build();
    block[8] = block[9] = std::byte { 0xFF };
    EXPECT_EQ(groups(exifOnly(block)), Groups {});
    block.resize(1U << 20U);
    EXPECT_EQ(groups(exifOnly(std::move(block))), Groups {});
}

TEST(DamagedExif, countsThatOverflowAreLeftOut)
{
    for (const std::uint32_t count :
        { 0U, 0x1000'0000U, 0x2000'0000U, 0x8000'0000U, 0xFFFF'FFFFU }) {
        ExifBuilder builder;
        builder.main
            = { ExifBuilder::ascii(0x010F, "Kestrova"), builder.rationals(0x011A, { 72, 1 }) };
        builder.main.back().count = count;
        const MetadataBlocks blocks = exifOnly(builder.build());
        readEverything(blocks);
        const Groups expected { .tiff = true };
        EXPECT_EQ(groups(blocks), expected);
    }
}

struct XmpRow {
    std::string_view name;
    std::string start;
    int levels = 0; ///< of elements, after the start
    std::string_view open {};
    std::string_view close {};

    /// Made when it is asked for: every start of the program makes every row.
    [[nodiscard]] std::string packet() const;
};

std::string XmpRow::packet() const
{
    if (levels == 0) {
        return start;
    }
    std::string text
        = start + R"(<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)";
    for (int i = 0; i < levels; ++i) {
        text += open;
    }
    for (int i = 0; i < levels; ++i) {
        text += close;
    }
    return text + "</rdf:RDF>";
}

class DamagedXmp : public testing::TestWithParam<XmpRow> { };

TEST_P(DamagedXmp, holdsNothing)
{
    testing::internal::CaptureStderr();
    const MetadataBlocks blocks { .exif = {}, .xmp = bytesOf(GetParam().packet()), .iptc = {} };
    EXPECT_EQ(orientation(blocks), std::nullopt);
    EXPECT_EQ(groups(blocks), Groups {});
    EXPECT_TRUE(travelling(blocks, everything, picture).empty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

INSTANTIATE_TEST_SUITE_P(Metadata, DamagedXmp,
    testing::Values(XmpRow { "empty", "" }, XmpRow { "noXml", "tiff:Orientation=6" },
        XmpRow { "zeros", std::string(100, '\0') }, XmpRow { "notClosed", "<a><b></a>" },
        XmpRow { "openQuote", "<a b=\"" }, XmpRow { "openTag", "<" },
        XmpRow { "openComment", "<a><!-- " }, XmpRow { "otherXml", "<svg><g/></svg>" },
        XmpRow { "notUtf8", "<rdf:RDF \xFF\xFE\xC0>" },
        XmpRow { "documentType", "<!DOCTYPE a [<!ENTITY b \"cccc\">]>", 1, "<rdf:Description>&b;",
            "</rdf:Description>" },
        XmpRow { "aMillionLevels", "", 1'000'000, "<a>", "</a>" },
        XmpRow { "levelsBehindComments", "", 100'000, "<a><!-- </a> -->", "</a>" },
        XmpRow { "levelsBehindQuotes", "", 100'000, "<a b='/>'>", "</a>" },
        XmpRow { "levelsBehindData", "", 100'000, "<a><![CDATA[</a>]]>", "</a>" },
        XmpRow { "levelsThatNeverClose", "", 1'000'000, "<a>", "" }),
    test::RowName {});

TEST(DamagedXmpPacket, canBeCutAnywhere)
{
    const ByteBuffer whole = test::xmpPacket(R"(tiff:Orientation="6" xmp:Rating="3")",
        "<dc:subject><rdf:Bag><rdf:li>one</rdf:li></rdf:Bag></dc:subject>");
    const std::size_t end = test::textOf(whole).find("</x:xmpmeta>");
    for (std::size_t length = 0; length < end; length += 3) {
        const MetadataBlocks blocks { .exif = {},
            .xmp = { whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length) },
            .iptc = {} };
        EXPECT_EQ(groups(blocks), Groups {}) << "cut to " << length;
        EXPECT_TRUE(travelling(blocks, everything, picture).empty());
    }
}

TEST(DamagedIptc, keepsTheDatasetsBeforeTheDamage)
{
    const ByteBuffer caption = test::captionIptc("A caption");
    ByteBuffer whole = caption;
    whole.insert(whole.end(), caption.begin(), caption.end());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const MetadataBlocks blocks { .exif = {},
            .xmp = {},
            .iptc = { whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length) } };
        EXPECT_EQ(travelling(blocks, everything, picture).iptc,
            length < caption.size() ? ByteBuffer {} : caption);
    }
}

} // namespace
} // namespace vellumine::imaging::metadata
