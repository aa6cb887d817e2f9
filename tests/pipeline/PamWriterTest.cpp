#include "imaging/DeferredPixels.h"
#include "imaging/Orientation.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

using imaging::ColorModel;
using imaging::Image;
using imaging::rgba8Premultiplied;
using test::TemporaryFolder;

constexpr imaging::PixelLayout rgb8 { ColorModel::rgb, 8, imaging::AlphaInfo::none };

constexpr std::string_view smallHeader
    = "P7\nWIDTH 2\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";

std::string pamOf(const imaging::Image& image)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(ImageOptimizer::writePAM(image, test::urlOf(folder / "p.pam")));
    return test::textOf(folder / "p.pam");
}

TEST(WritePAM, headerAndStraightPixelsExactly)
{
    const auto image = test::makeImage({ 2, 1 }, rgba8Premultiplied, [](int x, int, int channel) {
        constexpr int pixels[2][4] { { 64, 32, 0, 128 }, { 10, 20, 30, 255 } };
        return pixels[x][channel] / 255.0;
    });
    EXPECT_EQ(pamOf(image),
        std::string(smallHeader) + std::string("\x80\x40\x00\x80\x0a\x14\x1e\xff", 8));
}

TEST(WritePAM, transparentPixelsAreZeroAfterDrawing)
{
    // Straight alpha has colour under its transparent pixels; drawing premultiplies it away.
    const auto image = test::flat(
        { 2, 1 }, { ColorModel::rgb, 8, imaging::AlphaInfo::last }, { 1.0, 0.5, 0.25, 0.0 });
    EXPECT_EQ(pamOf(image), std::string(smallHeader) + std::string(8, '\0'));
}

TEST(WritePAM, opaquePixelsOfAPictureWithoutAlphaAreCopied)
{
    const auto image
        = test::flat({ 2, 1 }, { ColorModel::rgb, 8, imaging::AlphaInfo::none }, { 1.0, 0.0, 0.2 });
    EXPECT_EQ(pamOf(image),
        std::string(smallHeader) + std::string("\xff\x00\x33\xff\xff\x00\x33\xff", 8));
}

TEST(WritePAM, greyBecomesRgb)
{
    const auto image
        = test::flat({ 2, 1 }, { ColorModel::grey, 8, imaging::AlphaInfo::none }, { 0.2 });
    EXPECT_EQ(pamOf(image),
        std::string(smallHeader) + std::string("\x33\x33\x33\xff\x33\x33\x33\xff", 8));
}

TEST(WritePAM, rowsOfACropFollowEachOtherWithoutPadding)
{
    const auto whole = test::gradient({ 40, 30 }, rgba8Premultiplied);
    const auto crop = whole.cropped({ 30, 5, 2, 20 });
    const std::string pam = pamOf(crop);
    const std::string head
        = "P7\nWIDTH 2\nHEIGHT 20\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
    ASSERT_EQ(pam.substr(0, head.size()), head);
    ASSERT_EQ(pam.size(), head.size() + std::size_t { 2 * 20 * 4 });
    for (int y = 0; y < 20; ++y) {
        const auto at = head.size() + static_cast<std::size_t>(y) * 8 + 7;
        EXPECT_EQ(static_cast<std::uint8_t>(pam[at]), crop.row8(y)[7]) << "row " << y;
    }
}

TEST(WritePAM, aPictureOfManyPiecesIsComplete)
{
    const auto image = test::flat({ 1500, 1101 }, rgba8Premultiplied, { 0.2, 0.4, 0.6, 1.0 });
    const std::string pam = pamOf(image);
    const std::size_t body = std::size_t { 1500 } * 1101 * 4;
    ASSERT_GT(pam.size(), body);
    std::string expected;
    for (std::size_t i = 0; i < body / 4; ++i) {
        expected += "\x33\x66\x99\xff";
    }
    EXPECT_TRUE(std::string_view(pam).substr(pam.size() - body) == expected);
}

/// Gives rows of a picture until it is asked for some below the middle.
class HalfThere final : public imaging::DeferredPixels {
public:
    explicit HalfThere(Image image)
        : m_image(std::move(image))
    {
    }
    [[nodiscard]] imaging::Result<Image> rows(imaging::Rect part) const override
    {
        if (part.y > m_image.height() / 2) {
            return imaging::failure(imaging::Error::Kind::io, "gone");
        }
        return m_image.cropped(part);
    }
    [[nodiscard]] imaging::Result<Image> drawn(const imaging::Drawing& /*drawing*/) const override
    {
        return imaging::failure(imaging::Error::Kind::unsupported, "not drawn");
    }

private:
    Image m_image;
};

TEST(WritePAM, pixelsThatAreLostOnTheWayMakeThePictureUnreadable)
{
    const test::TemporaryFolder folder;
    const imaging::Size size { 900, 2400 }; // several pieces
    const Image image(size, rgba8Premultiplied, imaging::ColorSpace::sRgb(),
        std::make_shared<HalfThere>(test::gradient(size, rgba8Premultiplied)),
        imaging::Orientation::topLeft);
    const auto written = ImageOptimizer::writePAM(image, test::urlOf(folder / "p.pam"));
    ASSERT_FALSE(written);
    EXPECT_EQ(
        localizedDescription(written.error()), QStringLiteral("The image could not be read."));
}

/// Cannot be drawn, for a reason of one's choice.
class NotDrawn final : public imaging::DeferredPixels {
public:
    explicit NotDrawn(imaging::Error::Kind why)
        : m_why(why)
    {
    }
    [[nodiscard]] imaging::Result<Image> rows(imaging::Rect part) const override
    {
        return test::gradient(part.size(), rgb8);
    }
    [[nodiscard]] imaging::Result<Image> drawn(const imaging::Drawing& /*drawing*/) const override
    {
        return imaging::failure(m_why, "not drawn");
    }

private:
    imaging::Error::Kind m_why;
};

/// What is said about a picture that has to be drawn, as its layout is not that of the file.
std::string failureOfDrawing(imaging::Error::Kind why)
{
    const TemporaryFolder folder;
    const Image image({ 5, 3 }, rgb8, imaging::ColorSpace::sRgb(), std::make_shared<NotDrawn>(why),
        imaging::Orientation::topLeft);
    const auto written = ImageOptimizer::writePAM(image, test::urlOf(folder / "p.pam"));
    EXPECT_EQ(test::listing(folder.path()), "");
    return written ? "written" : localizedDescription(written.error()).toStdString();
}

TEST(WritePAM, aPictureThatIsLostBeforeItIsDrawnIsUnreadable)
{
    EXPECT_EQ(failureOfDrawing(imaging::Error::Kind::io), "The image could not be read.");
    EXPECT_EQ(failureOfDrawing(imaging::Error::Kind::truncated), "The image could not be read.");
}

TEST(WritePAM, namesTheFileWithoutABitmapToDrawInto)
{
    EXPECT_EQ(failureOfDrawing(imaging::Error::Kind::outOfMemory), "Could not create p.pam.");
    EXPECT_EQ(failureOfDrawing(imaging::Error::Kind::unsupported), "Could not create p.pam.");
}

TEST(WritePAM, aMaskHasNoBitmap)
{
    const TemporaryFolder folder;
    const auto mask
        = test::flat({ 2, 1 }, { ColorModel::grey, 8, imaging::AlphaInfo::only }, { 0.5 });
    const QUrl url = test::urlOf(folder / "p.pam");
    const auto written = ImageOptimizer::writePAM(mask, url);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), OptimizeError(CannotCreateDestination { url }));
}

TEST(WritePAM, failsWithTheSystemsTextWhereItCannotWrite)
{
    const TemporaryFolder folder;
    const QUrl url = test::urlOf(folder / "none/p.pam");
    const auto written
        = ImageOptimizer::writePAM(test::gradient({ 2, 2 }, rgba8Premultiplied), url);
    ASSERT_FALSE(written);
    EXPECT_EQ(localizedDescription(written.error()),
        QStringLiteral("Could not finish writing p.pam: No such file or directory"));
}

} // namespace
} // namespace vellumine
