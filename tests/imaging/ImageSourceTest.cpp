#include "imaging/ImageSource.h"

#include "imaging/codecs/CodecTable.h"
#include "imaging/codecs/HeicFiles.h"
#include "imaging/metadata/ExifBuilder.h"
#include "imaging/metadata/Metadata.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace vellumine::imaging {
namespace {

using test::oddSize;
using test::TemporaryFolder;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

ByteBuffer encoded(UniformType type, const Image& image, const MetadataBlocks& blocks = {})
{
    EncodeOptions options;
    options.metadata = blocks;
    ByteBuffer file = codecForType(type).encode(image, options).value();
    return type == UniformType::tiff ? metadata::writeTiff(std::move(file), blocks) : file;
}

MetadataBlocks orientedBlocks(std::uint16_t tag)
{
    test::ExifBuilder builder;
    builder.main = { builder.shorts(0x0112, { tag }) };
    return { .exif = builder.build(), .xmp = {}, .iptc = {} };
}

ImageSource sourceOf(ByteBuffer file)
{
    return ImageSource::create(std::move(file), Limits {}).value();
}

Error::Kind kindOfFailure(const std::filesystem::path& path, const Limits& limits = {})
{
    const auto source = ImageSource::create(path, limits);
    EXPECT_FALSE(source);
    return source ? Error::Kind::encodingFailed : source.error().kind;
}

TEST(ImageSource, opensAFileByItsContentAlone)
{
    TemporaryFolder folder;
    test::writeFile(
        folder / "picture.jpg", encoded(UniformType::bmp, test::gradient(oddSize, rgb8)));
    auto source = ImageSource::create(folder / "picture.jpg", Limits {});
    ASSERT_TRUE(source) << source.error().detail;
    EXPECT_EQ(source->type(), UniformType::bmp);
    EXPECT_EQ(source->storedSize(), oddSize);
    const auto image = source->image();
    ASSERT_TRUE(image);
    EXPECT_EQ(test::maximumDifference(*image, test::gradient(oddSize, rgb8)), 0);
    EXPECT_EQ(source->decodedBytes(), 47U * 33U * 3U);
}

TEST(ImageSource, opensAFileLargerThanWhatIsSniffed)
{
    TemporaryFolder folder;
    const Image large = test::syntheticPhoto({ 301, 199 });
    test::writeFile(folder / "picture", encoded(UniformType::bmp, large));
    const auto image = ImageSource::create(folder / "picture", Limits {})->image();
    ASSERT_TRUE(image);
    EXPECT_EQ(test::maximumDifference(*image, large), 0);
}

TEST(ImageSource, tellsAFilesTypeByItsFirstBytes)
{
    TemporaryFolder folder;
    const Image picture = test::gradient(oddSize, rgb8);
    for (const UniformType type : { UniformType::jpeg, UniformType::png, UniformType::heic,
             UniformType::heif, UniformType::tiff, UniformType::gif, UniformType::bmp }) {
        ByteBuffer file = encoded(type, picture);
        test::writeFile(folder / "picture", file);
        EXPECT_EQ(ImageSource::typeOf(folder / "picture"), type);
        file.resize(32); // nothing that could be decoded
        test::writeFile(folder / "picture", file);
        EXPECT_EQ(ImageSource::typeOf(folder / "picture"), type);
    }
    test::writeFile(folder / "text", "no picture");
    EXPECT_EQ(ImageSource::typeOf(folder / "text"), std::nullopt);
    EXPECT_EQ(ImageSource::typeOf(folder / "missing"), std::nullopt);
    EXPECT_EQ(ImageSource::typeOf(folder.path()), std::nullopt);
}

TEST(ImageSource, failsWithIoWhereThereIsNoFile)
{
    TemporaryFolder folder;
    const auto source = ImageSource::create(folder / "missing.png", Limits {});
    ASSERT_FALSE(source);
    EXPECT_EQ(source.error().kind, Error::Kind::io);
    EXPECT_EQ(source.error().detail, "No such file or directory");
}

TEST(ImageSource, failsWithIoForAFolder)
{
    TemporaryFolder folder;
    EXPECT_EQ(kindOfFailure(folder.path()), Error::Kind::io);
}

TEST(ImageSource, neverWaitsForAPipe)
{
    TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe.png").c_str(), 0600), 0);
    EXPECT_EQ(kindOfFailure(folder / "pipe.png"), Error::Kind::io);
}

TEST(ImageSource, failsWithIoForADevice)
{
    EXPECT_EQ(kindOfFailure("/dev/zero"), Error::Kind::io);
}

TEST(ImageSource, failsWithIoForALinkThatLeadsNowhere)
{
    TemporaryFolder folder;
    std::filesystem::create_symlink(folder / "missing.png", folder / "link.png");
    EXPECT_EQ(kindOfFailure(folder / "link.png"), Error::Kind::io);
}

TEST(ImageSource, failsWithUnknownTypeForOtherContents)
{
    TemporaryFolder folder;
    test::writeFile(folder / "empty.png", std::string_view {});
    test::writeFile(folder / "text.png", "not a picture at all, whatever it is called");
    EXPECT_EQ(kindOfFailure(folder / "empty.png"), Error::Kind::unknownType);
    EXPECT_EQ(kindOfFailure(folder / "text.png"), Error::Kind::unknownType);
}

TEST(ImageSource, doesNotReadALargeFileOfAnUnknownType)
{
    TemporaryFolder folder;
    test::writeFile(folder / "film.jpg", "a film");
    // A terabyte, of which the disk holds nothing.
    ASSERT_EQ(::truncate((folder / "film.jpg").c_str(), off_t { 1 } << 40U), 0);
    EXPECT_EQ(kindOfFailure(folder / "film.jpg"), Error::Kind::unknownType);
}

TEST(ImageSource, doesNotReadAFileThatDoesNotFitInMemory)
{
    TemporaryFolder folder;
    const auto path = folder / "picture.bmp";
    test::writeFile(path, encoded(UniformType::bmp, test::gradient(oddSize, rgb8)));
    ASSERT_EQ(::truncate(path.c_str(), off_t { 1 } << 40U), 0);
    EXPECT_EQ(kindOfFailure(path), Error::Kind::limitExceeded);
}

TEST(ImageSource, failsWithLimitExceededBeforeItDecodes)
{
    const ByteBuffer file = encoded(UniformType::bmp, test::gradient(oddSize, rgb8));
    const auto kindFor = [&file](const Limits& limits) {
        const auto source = ImageSource::create(file, limits);
        return source ? std::nullopt : std::optional(source.error().kind);
    };
    EXPECT_EQ(kindFor({ .maximumSide = 46 }), Error::Kind::limitExceeded);
    EXPECT_EQ(kindFor({ .maximumPixels = 47ULL * 33 - 1 }), Error::Kind::limitExceeded);
    EXPECT_EQ(kindFor({ .maximumBytes = 47ULL * 33 * 3 - 1 }), Error::Kind::limitExceeded);
    EXPECT_EQ(kindFor({ .maximumBytes = 47ULL * 33 * 3 }), std::nullopt);
}

TEST(ImageSource, givesThePictureThatItDecodedOnce)
{
    ImageSource source = sourceOf(encoded(UniformType::bmp, test::gradient(oddSize, rgb8)));
    EXPECT_TRUE(source.image()->isSameAs(*source.image()));
    EXPECT_TRUE(source.thumbnailWithTransform(47)->isSameAs(*source.image()));
}

TEST(ImageSource, givesTheSameFailureTwice)
{
    ByteBuffer file = encoded(UniformType::bmp, test::gradient(oddSize, rgb8));
    file.resize(file.size() / 2);
    auto source = ImageSource::create(std::move(file), Limits {});
    ASSERT_TRUE(source);
    const auto first = source->image();
    ASSERT_FALSE(first);
    EXPECT_EQ(first.error().kind, Error::Kind::truncated);
    EXPECT_EQ(source->image().error(), first.error());
    EXPECT_EQ(source->properties().error(), first.error());
    EXPECT_EQ(source->thumbnailWithTransform(10).error(), first.error());
}

TEST(ImageSource, keepsTheFilesPictureWhenTheFileIsCutMeanwhile)
{
    TemporaryFolder folder;
    const auto path = folder / "picture.bmp";
    const Image image = test::gradient({ 200, 100 }, rgb8);
    test::writeFile(path, encoded(UniformType::bmp, image));
    auto source = ImageSource::create(path, Limits {});
    ASSERT_EQ(::truncate(path.c_str(), 60), 0);
    ASSERT_TRUE(source->image());
    EXPECT_EQ(test::maximumDifference(*source->image(), image), 0);
}

TEST(ImageSource, givesNothingButPropertiesAfterARelease)
{
    ImageSource source = sourceOf(encoded(UniformType::bmp, test::gradient(oddSize, rgb8)));
    const Image kept = *source.image();
    source.releaseImage();
    EXPECT_EQ(source.image().error().kind, Error::Kind::io);
    EXPECT_EQ(source.thumbnailWithTransform(10).error().kind, Error::Kind::io);
    EXPECT_EQ(source.imageRegion({ 0, 0, 1, 1 }).error().kind, Error::Kind::io);
    EXPECT_EQ(source.properties()->integer(PropertyKey::pixelWidth), 47);
    EXPECT_EQ(test::maximumDifference(kept, test::gradient(oddSize, rgb8)), 0);
}

TEST(ImageSource, hasThePropertiesOfAJpeg)
{
    const MetadataBlocks blocks { .exif = test::cameraExif(),
        .xmp = test::xmpPacket(R"(xmp:Rating="3")"),
        .iptc = test::captionIptc("A caption") };
    ImageSource source
        = sourceOf(encoded(UniformType::jpeg, test::gradient(oddSize, rgb8), blocks));
    const auto properties = source.properties();
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->integer(PropertyKey::pixelWidth), 47);
    EXPECT_EQ(properties->integer(PropertyKey::pixelHeight), 33);
    EXPECT_EQ(properties->integer(PropertyKey::orientation), 6);
    EXPECT_EQ(properties->storedOrientation(), Orientation::rightTop);
    EXPECT_EQ(properties->text(PropertyKey::colorModel), "RGB");
    EXPECT_FALSE(properties->text(PropertyKey::profileName).value_or("").empty());
    for (const PropertyKey key : { PropertyKey::exif, PropertyKey::gps, PropertyKey::tiff,
             PropertyKey::iptc, PropertyKey::xmp, PropertyKey::jfif }) {
        EXPECT_TRUE(properties->contains(key));
    }
    EXPECT_FALSE(properties->contains(PropertyKey::png));
    EXPECT_FALSE(properties->contains(PropertyKey::gif));
    EXPECT_EQ(properties->blocks(), blocks);
}

TEST(ImageSource, whatAHeicFileSaysOfItsPictureIsOfTheStoredOne)
{
    ImageSource source = sourceOf(test::heicFile(
        test::gradient(oddSize, rgb8), { .orientation = heif_orientation_rotate_90_cw }));
    const auto properties = source.properties();
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->integer(PropertyKey::pixelWidth), 33);
    EXPECT_EQ(properties->integer(PropertyKey::orientation), 1);
    EXPECT_EQ(properties->storedOrientation(), Orientation::rightTop);
}

TEST(ImageSource, hasTheProfilesNameWhereThereIsAProfile)
{
    const auto nameIn = [](const Image& image) {
        return sourceOf(encoded(UniformType::jpeg, image))
            .properties()
            ->text(PropertyKey::profileName);
    };
    ASSERT_FALSE(ColorSpace::sRgb().profileName().empty());
    EXPECT_EQ(nameIn(test::gradient(oddSize, rgb8)), ColorSpace::sRgb().profileName());
    const PixelLayout grey { ColorModel::grey, 8, AlphaInfo::none };
    EXPECT_EQ(nameIn(test::gradient(oddSize, grey)), std::nullopt);
}

TEST(ImageSource, namesTheColourModels)
{
    const auto modelOf = [](const Image& image) {
        return sourceOf(encoded(UniformType::tiff, image))
            .properties()
            ->text(PropertyKey::colorModel);
    };
    EXPECT_EQ(modelOf(test::gradient(oddSize, { ColorModel::grey, 8, AlphaInfo::none })), "Gray");
    EXPECT_EQ(modelOf(test::gradient(oddSize, rgb8)), "RGB");
    EXPECT_EQ(modelOf(test::gradient(oddSize, { ColorModel::cmyk, 8, AlphaInfo::none })), "CMYK");
}

TEST(ImageSource, hasNoOrientationWhereTheFileSaysNothing)
{
    ImageSource source = sourceOf(encoded(UniformType::bmp, test::gradient(oddSize, rgb8)));
    EXPECT_EQ(source.properties()->integer(PropertyKey::orientation), std::nullopt);
}

TEST(ImageSource, readsTheBlocksOfATiff)
{
    const MetadataBlocks blocks = metadata::travelling(
        { .exif = test::cameraExif(), .xmp = {}, .iptc = test::captionIptc("A caption") },
        { true, true, true, true, true }, { oddSize, true, true });
    ImageSource source
        = sourceOf(encoded(UniformType::tiff, test::gradient(oddSize, rgb8), blocks));
    const auto properties = source.properties();
    ASSERT_TRUE(properties);
    EXPECT_TRUE(properties->contains(PropertyKey::gps));
    EXPECT_EQ(properties->blocks().iptc, blocks.iptc);
}

class OrientedSource : public testing::TestWithParam<int> { };

TEST_P(OrientedSource, isTurnedUpright)
{
    const Image stored = test::gradient(oddSize, rgb8);
    ImageSource source = sourceOf(
        encoded(UniformType::jpeg, stored, orientedBlocks(static_cast<std::uint16_t>(GetParam()))));
    const auto turned = source.thumbnailWithTransform(47);
    ASSERT_TRUE(turned);
    const Image expected = upright(*source.image(), orientationFromTag(GetParam()).value()).value();
    ASSERT_EQ(turned->size(), expected.size());
    EXPECT_EQ(test::maximumDifference(*turned, expected), 0);
    EXPECT_GT(test::psnr(*source.image(), stored), 30);
}

TEST_P(OrientedSource, isScaledAndTurned)
{
    const Image stored = test::gradient({ 100, 50 }, rgb8);
    ImageSource source = sourceOf(
        encoded(UniformType::jpeg, stored, orientedBlocks(static_cast<std::uint16_t>(GetParam()))));
    const auto turned = source.thumbnailWithTransform(41);
    ASSERT_TRUE(turned);
    EXPECT_EQ(turned->size(), GetParam() >= 5 ? (Size { 21, 41 }) : (Size { 41, 21 }));
    // The same corner of the stored picture has the same colour as before.
    const Image whole = upright(*source.image(), orientationFromTag(GetParam()).value()).value();
    for (const bool right : { false, true }) {
        for (const bool bottom : { false, true }) {
            for (int channel = 0; channel < 3; ++channel) {
                EXPECT_NEAR(test::sampleAt(*turned, right ? turned->width() - 1 : 0,
                                bottom ? turned->height() - 1 : 0, channel),
                    test::sampleAt(whole, right ? whole.width() - 1 : 0,
                        bottom ? whole.height() - 1 : 0, channel),
                    0.05);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ImageSource, OrientedSource, testing::Range(1, 9));

TEST(ImageSource, aTiffsOwnTagHoldsAgainstXmp)
{
    test::ExifBuilder builder;
    builder.main = { builder.shorts(0x0112, { 3 }) };
    const MetadataBlocks blocks {
        .exif = builder.build(), .xmp = test::xmpPacket(R"(tiff:Orientation="6")"), .iptc = {}
    };
    ImageSource source
        = sourceOf(encoded(UniformType::tiff, test::gradient(oddSize, rgb8), blocks));
    EXPECT_EQ(source.properties()->integer(PropertyKey::orientation), 3);
}

TEST(ImageSource, orientationOfXmpCounts)
{
    const MetadataBlocks blocks {
        .exif = {}, .xmp = test::xmpPacket(R"(tiff:Orientation="6")"), .iptc = {}
    };
    ImageSource source
        = sourceOf(encoded(UniformType::jpeg, test::gradient(oddSize, rgb8), blocks));
    EXPECT_EQ(source.properties()->integer(PropertyKey::orientation), 6);
    EXPECT_EQ(source.thumbnailWithTransform(47)->size(), (Size { 33, 47 }));
}

struct RegionRow {
    std::string_view name;
    UniformType type;
};

class SourceRegion : public testing::TestWithParam<RegionRow> { };

TEST_P(SourceRegion, isThatPartOfThePicture)
{
    const ByteBuffer file = encoded(GetParam().type, test::syntheticPhoto({ 150, 130 }));
    const Image whole = *sourceOf(file).image();
    for (const Rect region : { Rect { 0, 0, 150, 130 }, Rect { 0, 0, 1, 1 },
             Rect { 149, 129, 1, 1 }, Rect { 33, 41, 70, 51 } }) {
        ImageSource fresh = sourceOf(file);
        const auto part = fresh.imageRegion(region);
        ASSERT_TRUE(part) << part.error().detail;
        ASSERT_EQ(part->size(), region.size());
        EXPECT_EQ(test::maximumDifference(*part, whole.cropped(region)), 0);
        // Afterwards the whole picture is still to be had, and its parts with it.
        ASSERT_TRUE(fresh.image());
        EXPECT_EQ(test::maximumDifference(*fresh.imageRegion(region), whole.cropped(region)), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(ImageSource, SourceRegion,
    testing::Values(RegionRow { "bmp", UniformType::bmp }, RegionRow { "jpeg", UniformType::jpeg },
        RegionRow { "tiff", UniformType::tiff }, RegionRow { "gif", UniformType::gif }),
    test::RowName {});

TEST(ImageSource, refusesAPartOutsideOfThePicture)
{
    ImageSource source = sourceOf(encoded(UniformType::bmp, test::gradient(oddSize, rgb8)));
    for (const Rect region : { Rect { -1, 0, 5, 5 }, Rect { 0, 0, 48, 33 }, Rect { 46, 32, 2, 1 },
             Rect { 5, 5, 0, 5 } }) {
        const auto part = source.imageRegion(region);
        ASSERT_FALSE(part);
        EXPECT_EQ(part.error().kind, Error::Kind::malformed);
    }
}

TEST(ImageSource, scalesGreyAndCmykIntoSrgb)
{
    for (const ColorModel model : { ColorModel::grey, ColorModel::cmyk }) {
        ImageSource source = sourceOf(
            encoded(UniformType::tiff, test::gradient(oddSize, { model, 8, AlphaInfo::none })));
        const auto small = source.thumbnailWithTransform(10);
        ASSERT_TRUE(small) << small.error().detail;
        EXPECT_EQ(small->size(), (Size { 10, 7 }));
        EXPECT_EQ(small->colorSpace(), ColorSpace::sRgb());
    }
}

TEST(ImageSource, scaledSidesAreNeverEmpty)
{
    ImageSource source = sourceOf(encoded(UniformType::bmp, test::gradient({ 400, 1 }, rgb8)));
    EXPECT_EQ(source.thumbnailWithTransform(10)->size(), (Size { 10, 1 }));
    EXPECT_EQ(source.thumbnailWithTransform(0)->size(), (Size { 1, 1 }));
}

} // namespace
} // namespace vellumine::imaging
