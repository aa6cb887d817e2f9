#include "imaging/ImageDestination.h"
#include "imaging/ImageSource.h"
#include "imaging/metadata/ExifBuilder.h"
#include "imaging/metadata/Exiv2Reading.h"
#include "support/TestImages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>

namespace vellumine::imaging {
namespace {

using test::ExifBuilder;
using test::oddSize;
using test::TemporaryFolder;
using testing::Contains;
using testing::Pair;
using Unit = Resolution::Unit;

const Resolution fine = Resolution::create(300, 150, Unit::inch).value();
/// The same in whole pixels a metre.
const Resolution fineInMetres = Resolution::create(11'811, 5906, Unit::metre).value();
const Resolution ratio = Resolution::create(4, 3, Unit::none).value();

FileTexts texts(std::string_view keyword)
{
    FileTexts texts;
    texts.add({ .keyword = std::string(keyword), .content = test::bytesOf("some text") });
    return texts;
}

/// Files that are written with some properties, and read.
class Journey : public testing::Test {
protected:
    [[nodiscard]] ByteBuffer written(UniformType type, const ImageProperties& properties,
        ColorModel model = ColorModel::rgb) const
    {
        const auto path = m_folder / "picture";
        std::filesystem::remove(path);
        auto destination = ImageDestination::create(path, type);
        destination->addImage(test::gradient(oddSize, { model, 8, AlphaInfo::none }), properties);
        EXPECT_TRUE(destination->finalize()) << preferredExtension(type);
        return test::readFile(path);
    }
    [[nodiscard]] static ImageProperties read(ByteBuffer file)
    {
        return ImageSource::create(std::move(file), Limits {})->properties().value();
    }

private:
    TemporaryFolder m_folder;
};

ImageProperties with(const Resolution& resolution, Orientation stored = Orientation::topLeft,
    MetadataBlocks blocks = {})
{
    ImageProperties properties;
    properties.setBlocks(std::move(blocks), stored);
    properties.set(PropertyKey::resolution, resolution);
    return properties;
}

MetadataBlocks exifOnly(ByteBuffer exif)
{
    return { .exif = std::move(exif), .xmp = {}, .iptc = {} };
}

/// A block of a camera's name, and perhaps of a resolution.
MetadataBlocks cameraBlocks(std::optional<std::uint32_t> pixelsPerInch = {})
{
    ExifBuilder builder;
    builder.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    if (pixelsPerInch) {
        builder.main.push_back(builder.rationals(0x011A, { *pixelsPerInch, 1 }));
        builder.main.push_back(builder.rationals(0x011B, { *pixelsPerInch, 1 }));
        builder.main.push_back(builder.shorts(0x0128, { 2 }));
    }
    return exifOnly(builder.build());
}

using ResolutionJourney = Journey;

TEST_F(ResolutionJourney, goesFromEveryFormatToEveryOther)
{
    const std::array types { UniformType::jpeg, UniformType::png, UniformType::tiff,
        UniformType::bmp };
    for (const UniformType from : types) {
        const ImageProperties source = read(written(from, with(fine)));
        ASSERT_TRUE(source.resolution()) << preferredExtension(from);
        for (const UniformType to : types) {
            const auto there = read(written(to, source)).resolution();
            ASSERT_TRUE(there) << preferredExtension(from) << ' ' << preferredExtension(to);
            EXPECT_EQ(there->in(Unit::inch), fine)
                << preferredExtension(from) << ' ' << preferredExtension(to);
        }
    }
}

TEST_F(ResolutionJourney, isExactFromAFormatToItself)
{
    for (const auto& [type, resolution] : {
             std::pair(UniformType::jpeg, fine),
             std::pair(UniformType::jpeg, *Resolution::create(11'800, 100, Unit::metre)),
             std::pair(UniformType::jpeg, ratio),
             std::pair(UniformType::png, *Resolution::create(12'345, 1, Unit::metre)),
             std::pair(UniformType::png, ratio),
             std::pair(UniformType::bmp, *Resolution::create(12'345, 1, Unit::metre)),
             std::pair(UniformType::tiff, fine),
             std::pair(UniformType::tiff, *Resolution::create(12'345, 100, Unit::metre)),
             std::pair(UniformType::tiff, ratio),
         }) {
        const auto once = read(written(type, with(resolution)));
        EXPECT_EQ(once.resolution(), resolution) << preferredExtension(type);
        EXPECT_EQ(read(written(type, once)).resolution(), resolution) << preferredExtension(type);
    }
}

TEST_F(ResolutionJourney, ofARatioGoesWhereThereIsAWordForIt)
{
    for (const UniformType type : { UniformType::jpeg, UniformType::png, UniformType::tiff }) {
        EXPECT_EQ(read(written(type, with(ratio))).resolution(), ratio);
    }
    EXPECT_EQ(read(written(UniformType::bmp, with(ratio))).resolution(), std::nullopt);
}

TEST_F(ResolutionJourney, changesSidesWithAPictureThatWasTurned)
{
    for (const UniformType type :
        { UniformType::jpeg, UniformType::png, UniformType::tiff, UniformType::bmp }) {
        for (int tag = 1; tag <= 8; ++tag) {
            const Orientation stored = *orientationFromTag(tag);
            const auto said = read(written(type, with(fine, stored))).resolution();
            EXPECT_EQ(said->in(Unit::inch), swapsSides(stored) ? fine.withSidesSwapped() : fine)
                << preferredExtension(type) << ' ' << tag;
        }
    }
}

TEST_F(ResolutionJourney, ofExifStaysBesideTheFormatsOwn)
{
    for (const auto& [type, own] :
        { std::pair(UniformType::jpeg, fine), std::pair(UniformType::png, fineInMetres) }) {
        const ByteBuffer file = written(type, with(own, Orientation::topLeft, cameraBlocks(72)));
        EXPECT_EQ(read(file).resolution(), own);
        EXPECT_THAT(test::fileFields(file), Contains(Pair("Exif.Image.XResolution", "72/1")));
        EXPECT_EQ(read(written(type, read(file))).resolution(), own);
    }
    // In a TIFF file they are the same fields.
    const ByteBuffer file
        = written(UniformType::tiff, with(fine, Orientation::topLeft, cameraBlocks(72)));
    EXPECT_EQ(read(file).resolution(), Resolution::create(72, 72, Unit::inch));
}

TEST_F(ResolutionJourney, ofExifCountsWhereTheFormatSaysNone)
{
    const ImageProperties camera
        = read(written(UniformType::heic, with(fine, Orientation::topLeft, cameraBlocks(240))));
    const auto expected = Resolution::create(240, 240, Unit::inch);
    EXPECT_EQ(camera.resolution(), expected);
    for (const UniformType type :
        { UniformType::jpeg, UniformType::png, UniformType::tiff, UniformType::bmp }) {
        EXPECT_EQ(read(written(type, camera)).resolution()->in(Unit::inch), expected);
    }
}

TEST_F(ResolutionJourney, intoHeicTakesABlockThatIsThere)
{
    const ByteBuffer with300
        = written(UniformType::heic, with(fine, Orientation::topLeft, cameraBlocks()));
    EXPECT_EQ(read(with300).resolution(), fine);
    const ByteBuffer without = written(UniformType::heic, with(fine));
    EXPECT_EQ(read(without).resolution(), std::nullopt);
    EXPECT_TRUE(read(without).blocks().exif.empty());
}

TEST_F(ResolutionJourney, goesIntoAFileOfInk)
{
    for (const UniformType type : { UniformType::jpeg, UniformType::tiff }) {
        EXPECT_EQ(read(written(type, with(fine), ColorModel::cmyk)).resolution(), fine);
    }
}

TEST_F(ResolutionJourney, ofNoneWritesNone)
{
    for (const UniformType type : ImageDestination::encodableTypes()) {
        EXPECT_EQ(read(written(type, {})).resolution(), std::nullopt) << preferredExtension(type);
        // Neither does one whose key was taken away.
        ImageProperties stripped = with(fine);
        stripped.remove(PropertyKey::resolution);
        EXPECT_EQ(written(type, stripped), written(type, {})) << preferredExtension(type);
    }
}

using TextsJourney = Journey;

TEST_F(TextsJourney, goesFromAFormatToItselfAlone)
{
    const std::array types { UniformType::jpeg, UniformType::png, UniformType::gif };
    for (const UniformType from : types) {
        const PropertyKey dictionary = dictionaryOf(from).value();
        const FileTexts said = texts(from == UniformType::png ? "Author" : "");
        ImageProperties properties;
        properties.set(dictionary, said);
        const ImageProperties source = read(written(from, properties));
        EXPECT_EQ(source.texts(dictionary), said) << preferredExtension(from);
        EXPECT_TRUE(source.blocks().empty());
        for (const UniformType to : ImageDestination::encodableTypes()) {
            const ByteBuffer file = written(to, source);
            const bool isThere = test::textOf(file).find("some text") != std::string_view::npos;
            EXPECT_EQ(isThere, to == from)
                << preferredExtension(from) << ' ' << preferredExtension(to);
            if (to == from) {
                EXPECT_EQ(read(file).texts(dictionary), said);
            } else {
                EXPECT_EQ(file, written(to, {}));
            }
        }
    }
}

TEST_F(TextsJourney, staysOutWhereTheDictionaryWasTakenAway)
{
    for (const UniformType type : { UniformType::jpeg, UniformType::png, UniformType::gif }) {
        ImageProperties properties;
        properties.set(dictionaryOf(type).value(), texts("Author"));
        properties.remove(dictionaryOf(type).value());
        EXPECT_EQ(written(type, properties), written(type, {})) << preferredExtension(type);
    }
}

} // namespace
} // namespace vellumine::imaging
