#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/tiff/TiffCodec.h"
#include "imaging/metadata/Blocks.h"
#include "imaging/metadata/ExifBuilder.h"
#include "imaging/metadata/Exiv2Reading.h"
#include "imaging/metadata/Metadata.h"
#include "support/TestImages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <algorithm>

namespace vellumine::imaging::metadata {
namespace {

using test::bytesOf;
using test::cameraExif;
using test::captionIptc;
using test::everything;
using test::ExifBuilder;
using test::ExifField;
using test::exifFields;
using test::fileFields;
using test::xmpPacket;
using testing::Contains;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::Pair;

constexpr NewPicture picture { test::oddSize, false, true };

const Image& sample()
{
    static const Image image
        = test::gradient(test::oddSize, { ColorModel::rgb, 8, AlphaInfo::none });
    return image;
}

ByteBuffer encodedTiff()
{
    return tiff::encode(sample(), {}).value();
}

MetadataBlocks travellingBlocks(ByteOrder order = ByteOrder::little)
{
    return travelling({ .exif = cameraExif(order),
                          .xmp = xmpPacket(R"(xmp:Rating="3")"),
                          .iptc = captionIptc("A caption") },
        everything, picture);
}

// A TIFF file of four grey pixels with the fields of the builder's first directory in it.
ByteBuffer tinyTiff(ExifBuilder builder)
{
    for (ExifField field : { builder.longs(0x0100, { 2 }), builder.longs(0x0101, { 2 }),
             builder.shorts(0x0102, { 8 }), builder.shorts(0x0103, { 1 }),
             builder.shorts(0x0106, { 1 }), builder.longs(0x0111, { 0 }),
             builder.longs(0x0116, { 2 }), builder.longs(0x0117, { 4 }) }) {
        builder.main.push_back(std::move(field));
    }
    return builder.build();
}

TEST(WriteTiff, letsAnIndependentReaderFindEverything)
{
    for (const ByteOrder order : { ByteOrder::little, ByteOrder::big }) {
        const auto fields = fileFields(writeTiff(encodedTiff(), travellingBlocks(order)));
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova")));
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.XResolution", "72/1")));
        EXPECT_THAT(fields, Contains(Pair("Exif.Photo.ExposureTime", "1/125")));
        EXPECT_THAT(fields, Contains(Pair("Exif.Photo.PixelXDimension", "47")));
        EXPECT_THAT(fields, Contains(Pair("Exif.GPSInfo.GPSLatitude", "48/1 12/1 3456/100")));
        EXPECT_THAT(fields, Contains(Pair("Exif.Iop.InteroperabilityIndex", "R98")));
        EXPECT_THAT(fields, Contains(Pair("Xmp.xmp.Rating", "3")));
        EXPECT_THAT(fields, Contains(Pair("Iptc.Application2.Caption", "A caption")));
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.ImageWidth", "47")));
    }
}

TEST(WriteTiff, leavesThePictureAsItWas)
{
    const ByteBuffer file = writeTiff(encodedTiff(), travellingBlocks());
    const auto decoded = tiff::decode(file, {});
    ASSERT_TRUE(decoded) << decoded.error().detail;
    EXPECT_EQ(test::maximumDifference(decoded->image, sample()), 0);
}

TEST(WriteTiff, makesNoSecondPictureOfTheThumbnail)
{
    test::TemporaryFolder folder;
    test::writeFile(folder / "file.tiff", writeTiff(encodedTiff(), travellingBlocks()));
    const std::unique_ptr<TIFF, void (*)(TIFF*)> library(
        TIFFOpen((folder / "file.tiff").c_str(), "r"), TIFFClose);
    ASSERT_TRUE(library);
    EXPECT_EQ(TIFFNumberOfDirectories(library.get()), 1);
}

TEST(WriteTiff, comesBackFromReadTiff)
{
    const MetadataBlocks blocks = travellingBlocks();
    const MetadataBlocks read = readTiff(writeTiff(encodedTiff(), blocks));
    EXPECT_EQ(read.xmp, blocks.xmp);
    EXPECT_EQ(read.iptc, blocks.iptc);
    auto expected = exifFields(blocks.exif);
    auto actual = exifFields(read.exif);
    for (const auto* fields : { &expected, &actual }) {
        EXPECT_THAT(*fields, Contains(Key("Exif.Photo.LensModel")));
    }
    const auto isPlaceOrThumbnail = [](const auto& field) {
        return field.first.starts_with("Exif.Thumbnail") || field.first == "Exif.Image.ExifTag"
            || field.first == "Exif.Image.GPSTag" || field.first == "Exif.Photo.InteroperabilityTag"
            || field.first == "Exif.MakerNote.Offset";
    };
    std::erase_if(expected, isPlaceOrThumbnail);
    std::erase_if(actual, isPlaceOrThumbnail);
    EXPECT_EQ(actual, expected);
}

TEST(WriteTiff, doesNotReplaceFieldsOfTheFile)
{
    ExifBuilder builder;
    builder.main = { builder.longs(0x0100, { 999 }), ExifBuilder::ascii(0x010F, "Kestrova") };
    const auto fields
        = fileFields(writeTiff(encodedTiff(), { .exif = builder.build(), .xmp = {}, .iptc = {} }));
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.ImageWidth", "47")));
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova")));
}

TEST(WriteTiff, givesAFileItCannotReadBack)
{
    for (const ByteBuffer& file : { ByteBuffer {}, bytesOf("II*"), bytesOf("not a TIFF file") }) {
        EXPECT_EQ(writeTiff(file, travellingBlocks()), file);
    }
    EXPECT_EQ(writeTiff(encodedTiff(), {}), encodedTiff());
}

TEST(ReadTiff, takesTheDescriptionAndLeavesTheStructure)
{
    for (const ByteOrder order : { ByteOrder::little, ByteOrder::big }) {
        ExifBuilder builder(order);
        builder.main = { ExifBuilder::ascii(0x010F, "Kestrova"), builder.shorts(0x0112, { 8 }),
            ExifBuilder::undefined(0x8773, ByteBuffer(200)) };
        builder.exif = { ExifBuilder::ascii(0xA434, "A lens") };
        const MetadataBlocks blocks = readTiff(tinyTiff(builder));
        const auto fields = exifFields(blocks.exif);
        EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova")));
        EXPECT_THAT(fields, Contains(Pair("Exif.Photo.LensModel", "A lens")));
        EXPECT_EQ(orientation(blocks), Orientation::leftBottom);
        for (const char* const gone : { "Exif.Image.ImageWidth", "Exif.Image.StripOffsets",
                 "Exif.Image.Compression", "Exif.Image.InterColorProfile" }) {
            EXPECT_THAT(fields, Not(Contains(Key(gone))));
        }
    }
}

TEST(ReadTiff, ofABareFileHasNoGroups)
{
    EXPECT_EQ(groups(readTiff(tinyTiff(ExifBuilder {}))), Groups {});
}

TEST(ReadTiff, leavesASecondPictureAlone)
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    builder.thumbnail = { ExifBuilder::ascii(0x010F, "Second") };
    builder.thumbnailData = test::cameraThumbnail();
    const auto fields = exifFields(readTiff(tinyTiff(builder)).exif);
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova")));
    EXPECT_THAT(fields, Not(Contains(Key("Exif.Thumbnail.Make"))));
}

TEST(ReadTiff, readsIptcUnderEveryTypeItIsWrittenAs)
{
    const ByteBuffer caption = captionIptc("A caption of 27 bytes, all"); // 31 bytes in all
    for (const ByteOrder order : { ByteOrder::little, ByteOrder::big }) {
        ExifBuilder builder(order);
        ByteBuffer padded = caption;
        padded.resize((padded.size() + 3) / 4 * 4);
        ExifField plain = ExifBuilder::undefined(0x83BB, padded);
        ExifField asLongs = plain;
        asLongs.type = 4;
        asLongs.count /= 4;
        ExifField swapped = asLongs;
        for (auto at = swapped.value.begin(); at != swapped.value.end(); at += 4) {
            std::reverse(at, at + 4);
        }
        for (const ExifField& field : { plain, asLongs, swapped }) {
            builder.main = { field };
            EXPECT_EQ(readTiff(tinyTiff(builder)).iptc, caption);
        }
    }
}

TEST(ReadTiff, findsIptcAmongPhotoshopsResources)
{
    const ByteBuffer caption = captionIptc("A caption");
    ExifBuilder builder;
    builder.main = { ExifBuilder::undefined(0x8649, photoshopResources(caption)) };
    EXPECT_EQ(readTiff(tinyTiff(builder)).iptc, caption);
}

TEST(ReadTiff, readsBigTiff)
{
    test::TemporaryFolder folder;
    const std::string path = folder / "big.tiff";
    {
        const std::unique_ptr<TIFF, void (*)(TIFF*)> library(
            TIFFOpen(path.c_str(), "w8"), TIFFClose);
        ASSERT_TRUE(library);
        TIFFSetField(library.get(), TIFFTAG_IMAGEWIDTH, 1);
        TIFFSetField(library.get(), TIFFTAG_IMAGELENGTH, 1);
        TIFFSetField(library.get(), TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(library.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(library.get(), TIFFTAG_ORIENTATION, ORIENTATION_RIGHTTOP);
        TIFFSetField(library.get(), TIFFTAG_MAKE, "Kestrova of the long name");
        TIFFSetField(library.get(), TIFFTAG_MODEL, "short");
        std::array<unsigned char, 1> pixel { 7 };
        TIFFWriteScanline(library.get(), pixel.data(), 0, 0);
        TIFFWriteDirectory(library.get());
        ASSERT_EQ(TIFFCreateEXIFDirectory(library.get()), 0);
        TIFFSetField(library.get(), EXIFTAG_USERCOMMENT, 12, "ASCII\0\0\0text");
        std::uint64_t exifAt = 0;
        ASSERT_EQ(TIFFWriteCustomDirectory(library.get(), &exifAt), 1);
        TIFFSetDirectory(library.get(), 0);
        TIFFSetField(library.get(), TIFFTAG_EXIFIFD, exifAt);
        TIFFRewriteDirectory(library.get());
    }
    const ByteBuffer file = test::readFile(path);
    ASSERT_EQ(file.at(2), std::byte { 43 });
    const MetadataBlocks blocks = readTiff(file);
    const auto fields = exifFields(blocks.exif);
    EXPECT_EQ(orientation(blocks), Orientation::rightTop);
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova of the long name")));
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.Model", "short")));
    EXPECT_THAT(fields, Contains(Pair("Exif.Photo.UserComment", HasSubstr("text"))));
}

TEST(ReadTiff, canBeCutAnywhere)
{
    const ByteBuffer whole = writeTiff(encodedTiff(), travellingBlocks());
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        const ByteBuffer cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const MetadataBlocks blocks = readTiff(cut);
        EXPECT_LE(blocks.exif.size(), 3 * cut.size());
        EXPECT_GE(writeTiff(cut, travellingBlocks()).size(), cut.size());
    }
}

} // namespace
} // namespace vellumine::imaging::metadata
