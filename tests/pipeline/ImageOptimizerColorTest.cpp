#include "imaging/BitmapContext.h"
#include "imaging/ImageSource.h"
#include "imaging/PixelConversion.h"
#include "imaging/metadata/Metadata.h"
#include "pipeline/Optimize.h"

#include <string>

namespace vellumine {
namespace {

using imaging::ColorSpace;

/// A camera's JPEG file in Adobe RGB: no profile, but EXIF's colour space "uncalibrated" and the
/// interoperability index R03.
class AdobeRgbPhotograph : public test::Optimize {
protected:
    void SetUp() override
    {
        using namespace std::string_literals;
        Optimize::SetUp();
        test::writePicture(
            in("photo.jpg"), test::syntheticPhoto({ 96, 64 }), imaging::UniformType::jpeg);
        const std::string jpeg = test::textOf(in("photo.jpg"));
        // The writer puts the profile of sRGB into the file; cameras put none.
        const std::size_t profile = jpeg.find("\xFF\xE2");
        ASSERT_NE(profile, std::string::npos);
        const std::size_t length = static_cast<unsigned char>(jpeg[profile + 2]) * 256U
            + static_cast<unsigned char>(jpeg[profile + 3]);
        const std::string exif = "Exif\0\0MM\0*\0\0\0\x08"
                                 "\0\x01"
                                 "\x87\x69\0\x04\0\0\0\x01\0\0\0\x1A"
                                 "\0\0\0\0"
                                 "\0\x02"
                                 "\xA0\x01\0\x03\0\0\0\x01\xFF\xFF\0\0"
                                 "\xA0\x05\0\x04\0\0\0\x01\0\0\0\x38"
                                 "\0\0\0\0"
                                 "\0\x01"
                                 "\0\x01\0\x02\0\0\0\x04R03\0"
                                 "\0\0\0\0"s;
        test::writeFile(in("photo.jpg"),
            jpeg.substr(0, 2) + "\xFF\xE1\0"s + static_cast<char>(exif.size() + 2) + exif
                + jpeg.substr(2, profile - 2) + jpeg.substr(profile + 2 + length));
        m_settings = test::plainSettings(OutputFormat::jpeg);
        m_settings.quality = 95;
        m_settings.removeMetadata = false;
        m_settings.removeColorManagement = false;
        m_settings.optimizeColorForSharing = false;
    }

    struct Written {
        imaging::Image image;
        bool saysAdobeRgb;
    };
    [[nodiscard]] Written converted() const
    {
        const auto result = optimize(in("photo.jpg"));
        EXPECT_TRUE(result) << localizedDescription(result.error()).toStdString();
        auto source
            = imaging::ImageSource::create(platform::toPath(*result->outputURL), {}).value();
        return { source.image().value(),
            imaging::metadata::saysAdobeRgb(source.properties()->blocks().exif) };
    }

    [[nodiscard]] imaging::Image original() const { return test::readPicture(in("photo.jpg")); }
};

TEST_F(AdobeRgbPhotograph, keepsItsColoursAndGetsTheirProfile)
{
    const Written written = converted();
    EXPECT_EQ(written.image.colorSpace(), ColorSpace::adobeRgb());
    EXPECT_TRUE(written.saysAdobeRgb);
    EXPECT_GT(test::psnr(written.image, original()), 35);
}

TEST_F(AdobeRgbPhotograph, keepsItsColoursWhereItIsMadeSmall)
{
    m_settings.resizeMode = ResizeMode::maxWidth;
    m_settings.maximumPixels = 48;
    const Written written = converted();
    EXPECT_EQ(written.image.size(), (imaging::Size { 48, 32 }));
    EXPECT_EQ(written.image.colorSpace(), ColorSpace::adobeRgb());
    EXPECT_TRUE(written.saysAdobeRgb);
}

TEST_F(AdobeRgbPhotograph, becomesSRgbWhereThatIsWanted)
{
    for (const bool isForSharing : { true, false }) {
        m_settings.optimizeColorForSharing = isForSharing;
        m_settings.removeColorManagement = !isForSharing;
        const Written written = converted();
        EXPECT_TRUE(written.image.colorSpace().isSRgbEquivalent());
        EXPECT_FALSE(written.saysAdobeRgb);
        // The colours are the same, and so the numbers are others.
        EXPECT_LT(test::psnr(written.image, original()), 33);
        auto context
            = imaging::BitmapContext::create(original().size(), 8, ColorSpace::sRgb()).value();
        ASSERT_TRUE(context.draw(original()));
        const auto expected = std::move(context).makeImage();
        ASSERT_TRUE(expected);
        EXPECT_GT(
            test::psnr(written.image, imaging::relayout(*expected, written.image.layout()).value()),
            35);
    }
}

} // namespace
} // namespace vellumine
