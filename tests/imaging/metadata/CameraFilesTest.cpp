#include "imaging/ImageSource.h"
#include "imaging/metadata/Blocks.h"
#include "imaging/metadata/Exiv2Reading.h"
#include "imaging/metadata/Metadata.h"
#include "support/Samples.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellumine::imaging::metadata {
namespace {

bool mayChange(const std::string& key)
{
    // Where things stand, and what describes the old file.
    static const auto keys = std::to_array<std::string_view>({ "Exif.Image.ExifTag",
        "Exif.Image.GPSTag", "Exif.Photo.InteroperabilityTag", "Exif.Image.Orientation",
        "Exif.Thumbnail.Orientation", "Exif.Thumbnail.JPEGInterchangeFormat",
        "Exif.Thumbnail.StripOffsets", "Exif.Photo.PixelXDimension", "Exif.Photo.PixelYDimension",
        "Exif.Photo.ColorSpace", "Exif.Iop.InteroperabilityIndex", "Exif.Photo.SubjectArea",
        "Exif.Photo.SubjectLocation", "Exif.Photo.CompressedBitsPerPixel",
        "Exif.Image.YCbCrPositioning", "Exif.Image.YCbCrCoefficients", "Exif.Image.WhitePoint",
        "Exif.Image.PrimaryChromaticities", "Exif.Image.ReferenceBlackWhite",
        "Exif.Image.TransferFunction", "Exif.Image.ImageWidth", "Exif.Image.ImageLength",
        "Exif.Image.BitsPerSample", "Exif.Image.SamplesPerPixel", "Exif.Image.Compression",
        "Exif.Image.PhotometricInterpretation", "Exif.Image.PlanarConfiguration",
        "Exif.Image.XMLPacket", "Exif.Image.IPTCNAA", "Exif.Image.ImageResources",
        "Exif.Image.InterColorProfile", "Exif.Image.0xea1c", "Exif.Photo.0xea1c" });
    return std::ranges::find(keys, key) != keys.end();
}

TEST(CameraFiles, keepEveryFieldAndTheirMakerNotes)
{
    const auto samples = test::samplesFolder();
    if (!samples) {
        GTEST_SKIP() << "There are no samples. Name their folder in VELLUMINE_SAMPLES.";
    }
    int blocksSeen = 0;
    int makerNoteFields = 0;
    int changedMakerNoteFields = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(*samples)) {
        if (entry.path().native().find("/hostile/") != std::string::npos) {
            continue;
        }
        auto source = ImageSource::create(entry.path(), { .maximumPixels = 30'000'000 });
        const auto properties = source ? source->properties() : tl::unexpected(source.error());
        if (!properties || properties->blocks().empty()) {
            continue;
        }
        SCOPED_TRACE(entry.path());
        ++blocksSeen;
        const MetadataBlocks& blocks = properties->blocks();
        const MetadataBlocks result
            = travelling(blocks, test::everything, { source->storedSize(), false, true });
        EXPECT_EQ(orientation(result), std::nullopt);
        EXPECT_EQ(groups(result).exif, groups(blocks).exif);
        EXPECT_EQ(groups(result).gps, groups(blocks).gps);
        EXPECT_EQ(groups(result).tiff, groups(blocks).tiff);
        EXPECT_EQ(groups(result).iptc, groups(blocks).iptc);
        EXPECT_LE(result.exif.size(), blocks.exif.size() + 64);

        auto before = test::exifFields(blocks.exif);
        const auto length = before.find("Exif.Thumbnail.JPEGInterchangeFormatLength");
        if (length != before.end() && length->second == "0") {
            std::erase_if(before,
                [](const auto& field) { return field.first.starts_with("Exif.Thumbnail."); });
        }
        const auto after = test::exifFields(result.exif);
        for (const auto& [key, value] : before) {
            if (mayChange(key)) {
                continue;
            }
            const auto found = after.find(key);
            const bool isSame = found != after.end() && found->second == value;
            const bool isMakerNote = !key.starts_with("Exif.Image.")
                && !key.starts_with("Exif.Photo.") && !key.starts_with("Exif.GPSInfo.")
                && !key.starts_with("Exif.Iop.") && !key.starts_with("Exif.Thumbnail.");
            EXPECT_TRUE(isSame || isMakerNote) << key;
            makerNoteFields += isMakerNote ? 1 : 0;
            changedMakerNoteFields += isMakerNote && !isSame ? 1 : 0;
        }
    }
    EXPECT_GT(blocksSeen, 30);
    // Some notes have fields that point out of the note, at whatever stands there.
    EXPECT_GT(makerNoteFields, 500);
    EXPECT_LT(changedMakerNoteFields, makerNoteFields / 100);
}

} // namespace
} // namespace vellumine::imaging::metadata
