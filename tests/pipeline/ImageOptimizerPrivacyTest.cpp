#include "imaging/ImageDestination.h"
#include "imaging/ImageSource.h"
#include "pipeline/Optimize.h"
#include "support/NamedRows.h"

#include <string>

namespace vellumine {
namespace {

using imaging::PropertyKey;
using test::urlOf;

struct Row {
    const char* name;
    OutputFormat format;
    const char* output;
    bool removesMetadata;
    bool removesColorManagement;
};

/// What of a source reaches the file that is written.
class PrivacyOptions : public test::Optimize, public testing::WithParamInterface<Row> {
protected:
    /// A JPEG file in the colours of Display P3, by a camera that knew where it was.
    [[nodiscard]] std::filesystem::path makePhotograph() const
    {
        using namespace std::string_literals;
        const auto displayP3 = imaging::ColorSpace::fromPrimaries(
            { { 0.3127, 0.3290 }, { 0.680, 0.320 }, { 0.265, 0.690 }, { 0.150, 0.060 } },
            { imaging::TransferCurve::Kind::sRgb });
        auto destination
            = imaging::ImageDestination::create(in("photo.jpg"), imaging::UniformType::jpeg);
        destination->addImage(
            test::gradient(test::oddSize, test::rgb8).withColorSpace(displayP3.value()), {});
        EXPECT_TRUE(destination->finalize());
        const std::string jpeg = test::textOf(in("photo.jpg"));
        const std::string exif = "Exif\0\0MM\0*\0\0\0\x08"
                                 "\0\x02"
                                 "\x01\x0F\0\x02\0\0\0\x04"
                                 "Cam\0"
                                 "\x88\x25\0\x04\0\0\0\x01\0\0\0\x26"
                                 "\0\0\0\0"
                                 "\0\x01"
                                 "\0\0\0\x01\0\0\0\x04\x02\x03\0\0"
                                 "\0\0\0\0"s;
        test::writeFile(in("photo.jpg"),
            jpeg.substr(0, 2) + "\xFF\xE1\0"s + static_cast<char>(exif.size() + 2) + exif
                + jpeg.substr(2));
        return in("photo.jpg");
    }

    static imaging::ImageProperties propertiesOf(const std::filesystem::path& path)
    {
        return imaging::ImageSource::create(path, {}).value().properties().value();
    }
};

TEST_P(PrivacyOptions, decideWhatIsWritten)
{
    const auto source = makePhotograph();
    const auto before = propertiesOf(source);
    ASSERT_TRUE(before.contains(PropertyKey::tiff));
    ASSERT_TRUE(before.contains(PropertyKey::gps));
    const auto profile = before.text(PropertyKey::profileName);
    // Where a file has no profile.
    const std::string none = imaging::ColorSpace::sRgb().profileName();
    ASSERT_NE(profile, none);

    m_settings.outputFormat = GetParam().format;
    m_settings.optimizeColorForSharing = false;
    m_settings.removeMetadata = GetParam().removesMetadata;
    m_settings.removeColorManagement = GetParam().removesColorManagement;
    const auto result = optimize(source);
    ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
    ASSERT_EQ(result->outputURL, urlOf(in(GetParam().output)));

    const auto after = propertiesOf(in(GetParam().output));
    EXPECT_EQ(after.contains(PropertyKey::tiff), !GetParam().removesMetadata);
    EXPECT_EQ(after.contains(PropertyKey::gps), !GetParam().removesMetadata);
    EXPECT_EQ(
        after.text(PropertyKey::profileName), GetParam().removesColorManagement ? none : profile);
    const std::string written = test::textOf(in(GetParam().output));
    EXPECT_EQ(written.find("Cam") == std::string::npos, GetParam().removesMetadata);
}

INSTANTIATE_TEST_SUITE_P(Of, PrivacyOptions,
    testing::Values(
        Row { "jpegWithNeither", OutputFormat::jpeg, "photo-optimized.jpg", true, true },
        Row { "jpegWithItsProfile", OutputFormat::jpeg, "photo-optimized.jpg", true, false },
        Row { "jpegWithItsMetadata", OutputFormat::jpeg, "photo-optimized.jpg", false, true },
        Row { "jpegWithBoth", OutputFormat::jpeg, "photo-optimized.jpg", false, false },
        Row { "pngWithNeither", OutputFormat::png, "photo.png", true, true },
        Row { "pngWithItsProfile", OutputFormat::png, "photo.png", true, false },
        Row { "pngWithItsMetadata", OutputFormat::png, "photo.png", false, true },
        Row { "pngWithBoth", OutputFormat::png, "photo.png", false, false },
        Row { "heicWithNeither", OutputFormat::heic, "photo.heic", true, true },
        Row { "heicWithItsProfile", OutputFormat::heic, "photo.heic", true, false },
        Row { "heicWithItsMetadata", OutputFormat::heic, "photo.heic", false, true },
        Row { "heicWithBoth", OutputFormat::heic, "photo.heic", false, false }),
    test::RowName());

struct OriginalRow {
    const char* name;
    imaging::UniformType type;
    bool saysResolution;
    bool holdsTexts;
};

/// What a file says of its own format's, where that is the output's as well.
class OriginalFormat : public test::Optimize, public testing::WithParamInterface<OriginalRow> {
protected:
    static constexpr std::string_view secret = "Jane was here";

    /// The file that was made of one that says all that its format can.
    [[nodiscard]] std::filesystem::path optimized(bool removesMetadata)
    {
        const auto source = in(std::string("a.").append(preferredExtension(GetParam().type)));
        imaging::FileTexts texts;
        const auto bytes = std::as_bytes(std::span(secret));
        texts.add({ .keyword = GetParam().type == imaging::UniformType::png ? "Author" : "",
            .content = { bytes.begin(), bytes.end() } });
        imaging::ImageProperties properties;
        properties.set(PropertyKey::resolution,
            *imaging::Resolution::create(300, 150, imaging::Resolution::Unit::inch));
        if (const auto dictionary = imaging::dictionaryOf(GetParam().type)) {
            properties.set(*dictionary, texts);
        }
        auto destination = imaging::ImageDestination::create(source, GetParam().type);
        destination->addImage(test::gradient(test::oddSize, test::rgb8), properties);
        EXPECT_TRUE(destination->finalize());
        EXPECT_EQ(says(source), GetParam().holdsTexts);

        m_settings.outputFormat = OutputFormat::original;
        m_settings.removeMetadata = removesMetadata;
        const auto result = optimize(source);
        EXPECT_TRUE(result);
        return platform::toPath(result->outputURL.value());
    }

    static bool says(const std::filesystem::path& path)
    {
        return test::textOf(path).find(secret) != std::string::npos;
    }

    static std::optional<imaging::Resolution> resolutionOf(const std::filesystem::path& path)
    {
        const auto said
            = imaging::ImageSource::create(path, {}).value().properties().value().resolution();
        return said ? said->in(imaging::Resolution::Unit::inch) : std::nullopt;
    }
};

TEST_P(OriginalFormat, keepsResolutionAndTexts)
{
    // Made smaller or not, its pixels stand as densely.
    for (const ResizeMode mode : { ResizeMode::none, ResizeMode::maxWidth }) {
        m_settings.resizeMode = mode;
        m_settings.maximumPixels = 20;
        const auto output = optimized(false);
        EXPECT_EQ(says(output), GetParam().holdsTexts);
        EXPECT_EQ(resolutionOf(output),
            GetParam().saysResolution
                ? imaging::Resolution::create(300, 150, imaging::Resolution::Unit::inch)
                : std::nullopt);
        for (const auto& file : std::filesystem::directory_iterator(m_workplace.pictures())) {
            std::filesystem::remove(file);
        }
    }
}

TEST_P(OriginalFormat, losesThemWithTheMetadata)
{
    const auto output = optimized(true);
    EXPECT_FALSE(says(output));
    EXPECT_EQ(resolutionOf(output), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Of, OriginalFormat,
    testing::Values(OriginalRow { "jpeg", imaging::UniformType::jpeg, true, true },
        OriginalRow { "png", imaging::UniformType::png, true, true },
        OriginalRow { "gif", imaging::UniformType::gif, false, true },
        OriginalRow { "tiff", imaging::UniformType::tiff, true, false },
        OriginalRow { "bmp", imaging::UniformType::bmp, true, false },
        OriginalRow { "heic", imaging::UniformType::heic, false, false }),
    test::RowName());

} // namespace
} // namespace vellumine
