#include "imaging/ImageDestination.h"

#include "imaging/DeferredPixels.h"
#include "imaging/ImageSource.h"
#include "imaging/Orientation.h"
#include "imaging/metadata/ExifBuilder.h"
#include "imaging/metadata/Exiv2Reading.h"
#include "support/ChangedSystem.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

namespace vellumine::imaging {
namespace {

using test::oddSize;
using test::TemporaryFolder;
using testing::Contains;
using testing::Key;
using testing::Not;
using testing::Pair;

constexpr PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

ImageProperties cameraProperties(Orientation stored)
{
    ImageProperties properties;
    properties.setBlocks({ .exif = test::cameraExif(),
                             .xmp = test::xmpPacket(R"(xmp:Rating="3" tiff:Orientation="6")"),
                             .iptc = test::captionIptc("A caption") },
        stored);
    properties.set(PropertyKey::orientation, static_cast<std::int64_t>(stored));
    return properties;
}

Result<void> write(const std::filesystem::path& path, UniformType type, const Image& image,
    const ImageProperties& properties = {}, ProfilePolicy profile = ProfilePolicy::embed)
{
    auto destination = ImageDestination::create(path, type);
    if (!destination) {
        return tl::unexpected(destination.error());
    }
    destination->setProfilePolicy(profile);
    destination->addImage(image, properties);
    return destination->finalize();
}

TEST(ImageDestination, isNotFinalizedBeforeItsFileIsOnTheDisk)
{
    for (const UniformType type : ImageDestination::encodableTypes()) {
        const TemporaryFolder folder;
        const std::filesystem::path path = folder / "out";
        const int status = test::whereSyncingFails(EIO, [&] {
            const auto written = write(path, type, test::gradient(oddSize, rgb8));
            return !written && written.error().kind == Error::Kind::io ? 0 : 1;
        });
        EXPECT_EQ(status, 0) << static_cast<int>(type);
    }
}

TEST(ImageDestination, knowsItsTypes)
{
    EXPECT_THAT(ImageDestination::encodableTypes(),
        testing::UnorderedElementsAre(UniformType::jpeg, UniformType::png, UniformType::heic,
            UniformType::heif, UniformType::tiff, UniformType::gif, UniformType::bmp));
}

TEST(ImageDestination, refusesWebPWithoutMakingAFile)
{
    TemporaryFolder folder;
    const auto destination = ImageDestination::create(folder / "a.webp", UniformType::webp);
    ASSERT_FALSE(destination);
    EXPECT_EQ(destination.error().kind, Error::Kind::unsupported);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.webp"));
}

TEST(ImageDestination, makesAnEmptyFileAtOnce)
{
    TemporaryFolder folder;
    const auto destination = ImageDestination::create(folder / "a.bmp", UniformType::bmp);
    ASSERT_TRUE(destination);
    EXPECT_EQ(std::filesystem::file_size(folder / "a.bmp"), 0U);
}

TEST(ImageDestination, neverWritesOverAFile)
{
    TemporaryFolder folder;
    test::writeFile(folder / "a.bmp", "dear");
    const auto destination = ImageDestination::create(folder / "a.bmp", UniformType::bmp);
    ASSERT_FALSE(destination);
    EXPECT_EQ(destination.error(), (Error { Error::Kind::io, "File exists" }));
    EXPECT_EQ(test::textOf(test::readFile(folder / "a.bmp")), "dear");
}

TEST(ImageDestination, followsNoLink)
{
    TemporaryFolder folder;
    std::filesystem::create_symlink(folder / "elsewhere.bmp", folder / "a.bmp");
    EXPECT_FALSE(ImageDestination::create(folder / "a.bmp", UniformType::bmp));
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere.bmp"));
}

TEST(ImageDestination, failsWithTheSystemsTextWhereThereIsNoFolder)
{
    TemporaryFolder folder;
    const auto destination = ImageDestination::create(folder / "no/a.bmp", UniformType::bmp);
    ASSERT_FALSE(destination);
    EXPECT_EQ(destination.error(), (Error { Error::Kind::io, "No such file or directory" }));
}

TEST(ImageDestination, givesTheFileTheUsersModes)
{
    TemporaryFolder folder;
    const mode_t mask = ::umask(0027);
    const bool made = ImageDestination::create(folder / "a.bmp", UniformType::bmp).has_value();
    ::umask(mask);
    ASSERT_TRUE(made);
    struct stat status { };
    ASSERT_EQ(::stat((folder / "a.bmp").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST(ImageDestination, failsWithoutAPicture)
{
    TemporaryFolder folder;
    auto destination = ImageDestination::create(folder / "a.bmp", UniformType::bmp);
    EXPECT_EQ(destination->finalize().error().kind, Error::Kind::encodingFailed);
    destination->addImage(test::gradient(oddSize, rgb8), {});
    EXPECT_TRUE(destination->finalize());
    EXPECT_EQ(destination->finalize().error().kind, Error::Kind::encodingFailed);
}

TEST(ImageDestination, reportsAFullDisk)
{
    TemporaryFolder folder;
    struct rlimit before { };
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit tight = before;
    tight.rlim_cur = 1000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const auto written
        = write(folder / "a.bmp", UniformType::bmp, test::gradient({ 200, 200 }, rgb8));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), (Error { Error::Kind::io, "File too large" }));
}

/// Rows of a picture, of which the lower half is lost.
class UpperHalf final : public DeferredPixels {
public:
    [[nodiscard]] Result<Image> rows(Rect part) const override
    {
        if (part.y + part.height > size.height / 2) {
            return failure(Error::Kind::io, "the rows are gone");
        }
        return test::gradient(part.size(), rgb8);
    }
    [[nodiscard]] Result<Image> drawn(const Drawing& /*drawing*/) const override
    {
        return failure(Error::Kind::unsupported, "never drawn");
    }

    static constexpr Size size { 200, 200 };
};

TEST(ImageDestination, tellsLostPixelsFromADiskThatFails)
{
    TemporaryFolder folder;
    const Image image(UpperHalf::size, rgb8, ColorSpace::sRgb(), std::make_shared<UpperHalf>(),
        Orientation::topLeft);
    for (const UniformType type : { UniformType::jpeg, UniformType::png, UniformType::tiff }) {
        const auto name = std::string("a.").append(preferredExtension(type));
        const auto written = write(folder / name, type, image);
        ASSERT_FALSE(written) << name;
        EXPECT_EQ(written.error(), (Error { Error::Kind::truncated, "the rows are gone" })) << name;
        EXPECT_EQ(std::filesystem::file_size(folder / name), 0U) << name;
    }
}

struct TypeRow {
    std::string_view name;
    UniformType type;
    double minimumPsnr;
};

class Destination : public testing::TestWithParam<TypeRow> { };

TEST_P(Destination, writesAFileThatASourceReads)
{
    TemporaryFolder folder;
    const Image image = test::gradient(oddSize, rgb8);
    const auto written = write(folder / "picture", GetParam().type, image);
    ASSERT_TRUE(written) << written.error().detail;
    auto source = ImageSource::create(folder / "picture", Limits {});
    ASSERT_TRUE(source) << source.error().detail;
    EXPECT_EQ(source->type(), GetParam().type);
    EXPECT_GE(test::psnr(*source->image(), image), GetParam().minimumPsnr);
}

TEST_P(Destination, writesCmyk)
{
    TemporaryFolder folder;
    const Image ink = test::flat(oddSize, { ColorModel::cmyk, 8, AlphaInfo::none }, { 0, 1, 1, 0 });
    const auto written = write(folder / "picture", GetParam().type, ink);
    ASSERT_TRUE(written) << written.error().detail;
    auto source = ImageSource::create(folder / "picture", Limits {});
    ASSERT_TRUE(source) << source.error().detail;
    const Image image = source->image().value();
    if (GetParam().type == UniformType::jpeg || GetParam().type == UniformType::tiff) {
        EXPECT_EQ(image.layout().model, ColorModel::cmyk);
    } else {
        ASSERT_EQ(image.layout().model, ColorModel::rgb);
        const int red = image.layout().alpha == AlphaInfo::first
                || image.layout().alpha == AlphaInfo::premultipliedFirst
            ? 1
            : 0;
        EXPECT_GT(test::sampleAt(image, 20, 20, red), 0.7);
        EXPECT_LT(test::sampleAt(image, 20, 20, red + 1), 0.3);
        EXPECT_LT(test::sampleAt(image, 20, 20, red + 2), 0.3);
    }
}

INSTANTIATE_TEST_SUITE_P(ImageDestination, Destination,
    testing::Values(TypeRow { "jpeg", UniformType::jpeg, 35 },
        TypeRow { "tiff", UniformType::tiff, 99 }, TypeRow { "gif", UniformType::gif, 30 },
        TypeRow { "bmp", UniformType::bmp, 99 }),
    test::RowName {});

class MetadataDestination : public testing::TestWithParam<TypeRow> { };

TEST_P(MetadataDestination, carriesWhatIsKeptAndNoOrientation)
{
    TemporaryFolder folder;
    const Image image = test::gradient(oddSize, rgb8);
    const ImageProperties properties = cameraProperties(Orientation::rightTop);
    ASSERT_TRUE(write(folder / "picture", GetParam().type, image, properties));
    const auto fields = test::fileFields(test::readFile(folder / "picture"));
    EXPECT_THAT(fields, Contains(Pair("Exif.Image.Make", "Kestrova")));
    EXPECT_THAT(fields, Contains(Pair("Exif.Photo.LensModel", "A lens")));
    EXPECT_THAT(fields, Contains(Key("Exif.GPSInfo.GPSLatitude")));
    EXPECT_THAT(fields, Contains(Pair("Iptc.Application2.Caption", "A caption")));
    EXPECT_THAT(fields, Contains(Pair("Xmp.xmp.Rating", "3")));
    EXPECT_THAT(fields, Contains(Pair("Exif.Photo.PixelXDimension", "47")));
    EXPECT_THAT(fields, Contains(Pair("Exif.Photo.PixelYDimension", "33")));
    EXPECT_THAT(fields, Not(Contains(Key("Exif.Thumbnail.JPEGInterchangeFormat"))));
    EXPECT_THAT(fields, Not(Contains(Key("Xmp.tiff.Orientation"))));
    auto source = ImageSource::create(folder / "picture", Limits {});
    EXPECT_EQ(source->properties()->integer(PropertyKey::orientation).value_or(1), 1);
    EXPECT_EQ(source->thumbnailWithTransform(47)->size(), oddSize);
}

TEST_P(MetadataDestination, leavesOutWhatWasTakenAway)
{
    TemporaryFolder folder;
    ImageProperties properties = cameraProperties(Orientation::topLeft);
    properties.remove(PropertyKey::gps);
    properties.remove(PropertyKey::iptc);
    properties.remove(PropertyKey::xmp);
    ASSERT_TRUE(
        write(folder / "picture", GetParam().type, test::gradient(oddSize, rgb8), properties));
    const auto fields = test::fileFields(test::readFile(folder / "picture"));
    EXPECT_THAT(fields, Contains(Pair("Exif.Photo.LensModel", "A lens")));
    EXPECT_THAT(fields, Not(Contains(Key("Exif.GPSInfo.GPSLatitude"))));
    EXPECT_THAT(fields, Not(Contains(Key("Iptc.Application2.Caption"))));
    EXPECT_THAT(fields, Not(Contains(Key("Xmp.xmp.Rating"))));
}

TEST_P(MetadataDestination, writesNoneWithoutKeys)
{
    TemporaryFolder folder;
    ImageProperties properties = cameraProperties(Orientation::topLeft);
    for (const PropertyKey key : { PropertyKey::exif, PropertyKey::gps, PropertyKey::tiff,
             PropertyKey::iptc, PropertyKey::xmp }) {
        properties.remove(key);
    }
    const Image image = test::gradient(oddSize, rgb8);
    ASSERT_TRUE(write(folder / "with", GetParam().type, image, properties));
    ASSERT_TRUE(write(folder / "without", GetParam().type, image));
    EXPECT_EQ(test::readFile(folder / "with"), test::readFile(folder / "without"));
}

INSTANTIATE_TEST_SUITE_P(ImageDestination, MetadataDestination,
    testing::Values(
        TypeRow { "jpeg", UniformType::jpeg, 0 }, TypeRow { "tiff", UniformType::tiff, 0 }),
    test::RowName {});

TEST(ImageDestination, keepsTheThumbnailOfAnUprightPicture)
{
    TemporaryFolder folder;
    ASSERT_TRUE(write(folder / "a.jpg", UniformType::jpeg, test::gradient(oddSize, rgb8),
        cameraProperties(Orientation::topLeft)));
    const auto fields = test::fileFields(test::readFile(folder / "a.jpg"));
    EXPECT_THAT(fields, Contains(Pair("Exif.Thumbnail.JPEGInterchangeFormatLength", "400")));
    EXPECT_THAT(fields, Not(Contains(Key("Exif.Thumbnail.Orientation"))));
}

TEST(ImageDestination, leavesOutWhatTheTypeCannotCarry)
{
    TemporaryFolder folder;
    const Image image = test::gradient(oddSize, rgb8);
    ASSERT_TRUE(
        write(folder / "a.bmp", UniformType::bmp, image, cameraProperties(Orientation::rightTop)));
    ASSERT_TRUE(write(folder / "b.bmp", UniformType::bmp, image));
    EXPECT_EQ(test::readFile(folder / "a.bmp"), test::readFile(folder / "b.bmp"));
}

TEST(ImageDestination, theQualityIsThatOfTheProperties)
{
    TemporaryFolder folder;
    const Image photo = test::syntheticPhoto({ 300, 200 });
    const auto sizeAt = [&](double quality) {
        ImageProperties properties;
        properties.set(PropertyKey::lossyCompressionQuality, quality);
        const auto path = folder / std::to_string(quality);
        EXPECT_TRUE(write(path, UniformType::jpeg, photo, properties));
        return std::filesystem::file_size(path);
    };
    EXPECT_LT(2 * sizeAt(0.3), sizeAt(0.95));
    ASSERT_TRUE(write(folder / "without", UniformType::jpeg, photo));
    EXPECT_EQ(sizeAt(1.0), std::filesystem::file_size(folder / "without"));
}

// A pure green of linear light at half strength, so that the number must change.
TEST(ImageDestination, whatCannotBeSaidInTheFileBecomesSRgb)
{
    const TemporaryFolder folder;
    constexpr Primaries srgb { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.30, 0.60 }, { 0.15, 0.06 } };
    const TransferCurve linear { TransferCurve::Kind::gamma, 1.0 };
    const Image green = test::flat(oddSize, rgb8, { 0.0, 0.5, 0.0 })
                            .withColorSpace(ColorSpace::fromPrimaries(srgb, linear).value());
    ASSERT_TRUE(write(folder / "green.gif", UniformType::gif, green));
    const Image gif = ImageSource::create(folder / "green.gif", Limits {})->image().value();
    EXPECT_NEAR(test::sampleAt(gif, 20, 20, 1), 0.735, 0.01);

    const Image grey
        = test::flat(oddSize, { ColorModel::grey, 8, AlphaInfo::none }, { 0.5 })
              .withColorSpace(ColorSpace::fromPrimaries(srgb, linear, ColorModel::grey).value());
    for (const UniformType type : { UniformType::gif, UniformType::bmp }) {
        const auto path = folder / (std::string("grey.") + std::string(preferredExtension(type)));
        ASSERT_TRUE(write(path, type, grey));
        EXPECT_NEAR(test::sampleAt(ImageSource::create(path, Limits {})->image().value(), 9, 9, 0),
            0.735, 0.01);
    }
}

TEST(ImageDestination, tellsOfThePartOfInterestWhereTheCodecKnowsIt)
{
    TemporaryFolder folder;
    const Rect part { 10, 5, 30, 20 };
    for (const UniformType type : { UniformType::jpeg, UniformType::png }) {
        const auto path = folder / std::string(preferredExtension(type));
        auto destination = ImageDestination::create(path, type).value();
        destination.setPartOfInterest(part);
        destination.addImage(test::syntheticPhoto(oddSize), {});
        ASSERT_TRUE(destination.finalize());
        ASSERT_EQ(destination.writtenPart().has_value(), type == UniformType::jpeg);
        EXPECT_EQ(ImageDestination::encodesInPieces(type), type == UniformType::jpeg);
        if (destination.writtenPart()) {
            const Image read = ImageSource::create(path, Limits {})->image().value();
            EXPECT_EQ(test::maximumDifference(*destination.writtenPart(), read.cropped(part)), 0.0);
        }
    }
}

TEST(ImageDestination, tellsOfNoPartThatNobodyAskedFor)
{
    TemporaryFolder folder;
    auto destination = ImageDestination::create(folder / "photo.jpg", UniformType::jpeg).value();
    destination.addImage(test::syntheticPhoto(oddSize), {});
    ASSERT_TRUE(destination.finalize());
    EXPECT_FALSE(destination.writtenPart());
}

TEST(ImageDestination, theProfilePolicyHolds)
{
    TemporaryFolder folder;
    const Image image = test::gradient(oddSize, rgb8);
    ASSERT_TRUE(write(folder / "with", UniformType::jpeg, image, {}, ProfilePolicy::embed));
    ASSERT_TRUE(write(folder / "without", UniformType::jpeg, image, {}, ProfilePolicy::omit));
    const auto hasProfile = [&](std::string_view name) {
        const ByteBuffer file = test::readFile(folder / name);
        return test::textOf(file).find("ICC_PROFILE") != std::string_view::npos;
    };
    EXPECT_TRUE(hasProfile("with"));
    EXPECT_FALSE(hasProfile("without"));
}

} // namespace
} // namespace vellumine::imaging
