#include "confined/ConfinedFixture.h"
#include "imaging/BitmapContext.h"
#include "imaging/DeferredPixels.h"
#include "imaging/ImageDestination.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/colour/InstalledCmyk.h"
#include "imaging/ycc/PlaneSource.h"

#include <cstdint>
#include <stop_token>
#include <string>
#include <utility>

// What a helper keeps of a decoded picture, draws of it and gives of it.

namespace vellumine::confined {
namespace {

using imaging::Error;
using imaging::Image;
using imaging::ImageSource;
using imaging::Limits;
using imaging::Rect;
using imaging::UniformType;

/// Display P3, by its numbers.
imaging::ColorSpace wideSpace()
{
    return imaging::ColorSpace::fromPrimaries(
        { { 0.3127, 0.3290 }, { 0.68, 0.32 }, { 0.265, 0.69 }, { 0.15, 0.06 } }, {})
        .value();
}

/// The picture of the file, drawn into a bitmap in those colours.
Image drawn(ImageSource source, imaging::Size size, const imaging::ColorSpace& space)
{
    const Image stored = source.image(imaging::ImageUse::toBeDrawn).value();
    const Image upright = source.thumbnailWithTransform(1'000'000).value();
    auto context = imaging::BitmapContext::create(size, 8, space).value();
    EXPECT_TRUE(context.draw(upright));
    return std::move(context).makeImage().value();
}

TEST_F(Confined, picturesAreDrawnByTheHelperAsInTheProgram)
{
    const imaging::Size size { 150, 100 };
    for (const Handover handover : { Handover::fetched, Handover::shared }) {
        ConfinedDecoders decoders(VELLUMINE_DECODER, {}, handover);
        for (const UniformType type : imaging::ImageDestination::encodableTypes()) {
            const auto path = picture(type, { 300, 200 });
            for (const auto& space :
                { imaging::ColorSpace::sRgb(), imaging::ColorSpace::deviceRgb() }) {
                EXPECT_TRUE(
                    areEqual(drawn(ImageSource::create(path, Limits()).value(), size, space),
                        drawn(decoders.open(path, Limits()).value(), size, space)))
                    << preferredExtension(type);
            }
        }
        EXPECT_EQ(decoders.deathCount(), 0U);
    }
}

TEST_F(Confined, picturesAreDrawnInTheirOwnColours)
{
    const auto wide = wideSpace();
    const auto path = m_folder / "wide.jpeg";
    auto destination = imaging::ImageDestination::create(path, UniformType::jpeg);
    destination->addImage(test::syntheticPhoto({ 300, 200 }).withColorSpace(wide), {});
    ASSERT_TRUE(destination->finalize());
    const imaging::Size size { 150, 100 };
    const imaging::ColorSpace own
        = ImageSource::create(path, Limits())->image().value().colorSpace();
    ASSERT_FALSE(own.isSRgbEquivalent());
    const Image here = drawn(ImageSource::create(path, Limits()).value(), size, own);
    EXPECT_TRUE(areEqual(here, drawn(m_decoders.open(path, Limits()).value(), size, own)));
    // Not as if they were others: the numbers differ.
    const Image converted
        = drawn(m_decoders.open(path, Limits()).value(), size, imaging::ColorSpace::sRgb());
    EXPECT_LT(test::psnr(here, converted), 40);
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, inkWithoutAProfileIsDrawnWithTheInstalledOne)
{
    if (imaging::colour::installedCmykProfile().empty()) {
        GTEST_SKIP() << "No CMYK profile is installed here.";
    }
    const imaging::Size size { 48, 32 };
    for (const UniformType type : { UniformType::jpeg, UniformType::tiff }) {
        const auto path = m_folder / ("ink." + std::string(preferredExtension(type)));
        auto destination = imaging::ImageDestination::create(path, type);
        destination->addImage(
            test::flat(size, { imaging::ColorModel::cmyk, 8, imaging::AlphaInfo::none },
                { 1.0, 0.0, 0.0, 0.0 }),
            {});
        ASSERT_TRUE(destination->finalize());
        const auto srgb = imaging::ColorSpace::sRgb();
        const Image here = drawn(ImageSource::create(path, Limits()).value(), size, srgb);
        const Image there = drawn(m_decoders.open(path, Limits()).value(), size, srgb);
        EXPECT_TRUE(areEqual(here, there)) << preferredExtension(type);
        // No press prints the cyan that the plain formula gives.
        EXPECT_GT(there.row8(16)[0] + (255 - there.row8(16)[1]), 40) << preferredExtension(type);
    }
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

/// The picture drawn into a bitmap in sRGB, its pixels staying where that happened.
Image drawnWhereItIs(const Image& image, imaging::Size size)
{
    auto context = imaging::BitmapContext::create(size, 8, imaging::ColorSpace::sRgb()).value();
    EXPECT_TRUE(context.draw(image));
    return std::move(context).makeImageWhereItIs().value();
}

TEST_F(Confined, aDrawnPictureStaysWithItsHelperAndComesInPieces)
{
    const auto path = picture(UniformType::jpeg, { 300, 200 });
    const Image here = drawnWhereItIs(
        ImageSource::create(path, Limits())->image(imaging::ImageUse::toBeDrawn).value(),
        { 150, 100 });
    ASSERT_TRUE(here.hasRows());
    const Image there = drawnWhereItIs(
        m_decoders.open(path, Limits())->image(imaging::ImageUse::toBeDrawn).value(), { 150, 100 });
    ASSERT_FALSE(there.hasRows());
    for (const Rect part : { Rect { 0, 0, 150, 7 }, Rect { 0, 93, 150, 7 }, Rect { 20, 30, 5, 40 },
             Rect { 149, 99, 1, 1 }, Rect { 0, 0, 150, 100 } }) {
        EXPECT_TRUE(areEqual(there.rows(part).value(), here.cropped(part)));
    }
    // Drawn once more, from what was drawn.
    EXPECT_TRUE(areEqual(drawnWhereItIs(there, { 75, 50 }), drawnWhereItIs(here, { 75, 50 })));
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, aDrawnPictureThatItsHelperForgotIsDrawnAgain)
{
    const auto path = picture(UniformType::jpeg, { 300, 200 });
    const Image stored
        = ImageSource::create(path, Limits())->image(imaging::ImageUse::toBeDrawn).value();
    auto source = m_decoders.open(path, Limits()).value();
    const Image decoded = source.image(imaging::ImageUse::toBeDrawn).value();
    const Image first = drawnWhereItIs(decoded, { 150, 100 });
    const Image second = drawnWhereItIs(decoded, { 60, 40 });
    EXPECT_TRUE(areEqual(first.withRows().value(), drawnWhereItIs(stored, { 150, 100 })));
    EXPECT_TRUE(areEqual(second.withRows().value(), drawnWhereItIs(stored, { 60, 40 })));
    EXPECT_TRUE(areEqual(first.withRows().value(), drawnWhereItIs(stored, { 150, 100 })));
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, aDrawingInTheOwnSizeIsMadeWhereItIsLookedAt)
{
    const imaging::Size size { 300, 200 };
    const auto path = picture(UniformType::jpeg, size);
    const Image here = drawnWhereItIs(ImageSource::create(path, Limits())->image().value(), size);
    ASSERT_TRUE(here.hasRows());
    for (const Handover handover : { Handover::fetched, Handover::shared }) {
        ConfinedDecoders decoders(VELLUMINE_DECODER, {}, handover);
        auto source = decoders.open(path, Limits()).value();
        const Image decoded = source.image(imaging::ImageUse::toBeDrawn).value();
        const Image first = drawnWhereItIs(decoded, size);
        EXPECT_EQ(first.hasRows(), handover == Handover::shared);
        for (const Rect part : { Rect { 0, 0, 300, 16 }, Rect { 0, 184, 300, 16 },
                 Rect { 20, 31, 5, 40 }, Rect { 299, 199, 1, 1 }, Rect { 0, 0, 300, 200 } }) {
            EXPECT_TRUE(areEqual(first.rows(part).value(), here.cropped(part)));
            EXPECT_TRUE(decoded.rows(part)); // comes in between, and changes nothing
        }
        // The next drawing takes its place.
        EXPECT_TRUE(areEqual(drawnWhereItIs(decoded, { 60, 40 }).withRows().value(),
            drawnWhereItIs(
                ImageSource::create(path, Limits())->image(imaging::ImageUse::toBeDrawn).value(),
                { 60, 40 })));
        EXPECT_TRUE(areEqual(first.withRows().value(), here));
        EXPECT_EQ(decoders.deathCount(), 0U);
    }
}

TEST_F(Confined, aPhotographInItsOwnSizeGivesItsPlanes)
{
    const imaging::Size size { 300, 200 };
    const auto path = picture(UniformType::jpeg, size);
    const Image hereStored
        = ImageSource::create(path, Limits())->image(imaging::ImageUse::toBeDrawn).value();
    const Image thereStored
        = m_decoders.open(path, Limits())->image(imaging::ImageUse::toBeDrawn).value();
    const Image hereDrawn = drawnWhereItIs(hereStored, size);
    const Image thereDrawn = drawnWhereItIs(thereStored, size);
    const imaging::EncodeOptions options { .quality = 0.8, .metadata = {} };
    for (const auto& [here, there] :
        { std::pair(hereStored, thereStored), std::pair(hereDrawn, thereDrawn) }) {
        const auto planes = there.deferred()->planes();
        ASSERT_TRUE(planes);
        EXPECT_FALSE(planes->here());
        EXPECT_EQ(planes->size(), size);
        EXPECT_EQ(planes->subsampling(), here.deferred()->planes()->subsampling());
        EXPECT_TRUE(imaging::jpeg::encode(there, options).value()
            == imaging::jpeg::encode(here, options).value());
    }
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, planesAreGoneWithTheirPicture)
{
    const imaging::Size size { 300, 200 };
    const auto path = picture(UniformType::jpeg, size);
    const Image stored
        = m_decoders.open(path, Limits())->image(imaging::ImageUse::toBeDrawn).value();
    const Image first = drawnWhereItIs(stored, size);
    const auto planes = first.deferred()->planes();
    ASSERT_TRUE(planes);
    std::uint8_t sample = 0;
    EXPECT_TRUE(planes->copy(0, { 299, 199, 1, 1 }, &sample, 1));
    const Image second = drawnWhereItIs(stored, { 60, 40 });
    const auto copied = planes->copy(0, { 299, 199, 1, 1 }, &sample, 1);
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().kind, Error::Kind::io);
    EXPECT_EQ(first.deferred()->planes(), planes); // and no others
    EXPECT_FALSE(second.deferred()->planes());
    EXPECT_TRUE(stored.deferred()->planes());
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, planesAreGivenUntilAStopIsRequested)
{
    std::stop_source stop;
    const Image image
        = m_decoders.open(picture(UniformType::jpeg, { 300, 200 }), Limits(), stop.get_token())
              ->image(imaging::ImageUse::toBeDrawn)
              .value();
    const auto planes = image.deferred()->planes();
    ASSERT_TRUE(planes);
    std::uint8_t sample = 0;
    EXPECT_TRUE(planes->copy(2, { 0, 0, 1, 1 }, &sample, 1));
    stop.request_stop();
    EXPECT_FALSE(planes->copy(2, { 0, 0, 1, 1 }, &sample, 1));
    EXPECT_FALSE(imaging::jpeg::encode(image, { .quality = 0.8, .metadata = {} }));
}

TEST_F(Confined, picturesWithoutPlanesHaveNone)
{
    ConfinedDecoders sharing(VELLUMINE_DECODER, {}, Handover::shared);
    for (const auto& [decoders, type] : { std::pair(&m_decoders, UniformType::png),
             std::pair(&m_decoders, UniformType::tiff), std::pair(&sharing, UniformType::jpeg) }) {
        const Image image = decoders->open(picture(type, { 300, 200 }), Limits())
                                ->image(imaging::ImageUse::toBeDrawn)
                                .value();
        ASSERT_FALSE(image.hasRows());
        EXPECT_FALSE(image.deferred()->planes());
        EXPECT_TRUE(image.withRows());
        EXPECT_EQ(decoders->deathCount(), 0U);
    }
}

TEST_F(Confined, aPictureIsDrawnWhileItIsDecodedAsInTheProgram)
{
    const auto path = picture(UniformType::jpeg, { 300, 200 });
    const imaging::DrawingPlan plan { .size = { 150, 100 },
        .turnedSize = { 100, 150 },
        .colors = imaging::BitmapColors::sRgb,
        .quality = imaging::InterpolationQuality::high,
        .middle = { 72, 46 } };
    const Image here
        = ImageSource::create(path, Limits())->image(imaging::ImageUse::toBeDrawn, plan).value();
    for (const Handover handover : { Handover::fetched, Handover::shared }) {
        ConfinedDecoders decoders(VELLUMINE_DECODER, {}, handover);
        const Image there
            = decoders.open(path, Limits())->image(imaging::ImageUse::toBeDrawn, plan).value();
        ASSERT_FALSE(there.hasRows());
        EXPECT_TRUE(areEqual(drawnWhereItIs(there, { 150, 100 }).withRows().value(),
            drawnWhereItIs(here, { 150, 100 })));
        const Rect middle { 114, 77, 72, 46 };
        EXPECT_TRUE(areEqual(there.rows(middle).value(), here.rows(middle).value()));
        // What was not planned.
        EXPECT_TRUE(areEqual(drawnWhereItIs(there, { 75, 50 }).withRows().value(),
            drawnWhereItIs(here, { 75, 50 })));
        EXPECT_TRUE(areEqual(there.withRows().value(), here.withRows().value()));
        EXPECT_EQ(decoders.deathCount(), 0U);
    }
}

TEST_F(Confined, aPictureThatStaysWithItsHelperGivesItsRows)
{
    const auto path = picture(UniformType::jpeg, { 300, 200 });
    const Image here = ImageSource::create(path, Limits())->image().value();
    const Image there
        = m_decoders.open(path, Limits())->image(imaging::ImageUse::toBeDrawn).value();
    ASSERT_FALSE(there.hasRows());
    const Rect part { 33, 50, 100, 40 };
    EXPECT_TRUE(areEqual(there.rows(part).value(), here.cropped(part)));
    EXPECT_TRUE(areEqual(there.withRows().value(), here));
    // In colours that a helper cannot be told.
    auto context = imaging::BitmapContext::create({ 150, 100 }, 8, wideSpace());
    EXPECT_FALSE(context->draw(there));
}

TEST_F(Confined, aPictureThatAskedForRowsAndIsDrawnLaterIsTheSame)
{
    const auto path = picture(UniformType::png, { 300, 200 });
    auto source = m_decoders.open(path, Limits()).value();
    const Image rows = source.image().value();
    EXPECT_TRUE(rows.hasRows());
    EXPECT_TRUE(areEqual(source.image(imaging::ImageUse::toBeDrawn).value(), rows));
}

} // namespace
} // namespace vellumine::confined
