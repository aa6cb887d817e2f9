#include "confined/client/ConfinedDecoders.h"
#include "imaging/BitmapContext.h"
#include "imaging/DeferredPixels.h"
#include "imaging/ImageDestination.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/ycc/PlaneSource.h"
#include "support/Samples.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <future>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace vellumine::confined {
namespace {

using imaging::Error;
using imaging::Image;
using imaging::ImageSource;
using imaging::Limits;
using imaging::Rect;
using imaging::Result;
using imaging::UniformType;

bool areEqual(const Image& a, const Image& b)
{
    if (a.size() != b.size() || a.layout() != b.layout() || !(a.colorSpace() == b.colorSpace())
        || a.colorSpace().isSRgbEquivalent() != b.colorSpace().isSRgbEquivalent()) {
        return false;
    }
    for (int y = 0; y < a.height(); ++y) {
        // Not an algorithm's loop: byte by byte under a sanitizer, the samples would take minutes.
        if (std::memcmp(a.row(y).data(), b.row(y).data(), a.row(y).size()) != 0) {
            return false;
        }
    }
    return true;
}

/// What differs between a file decoded here and there, or nothing.
std::string difference(ConfinedDecoders& decoders, const std::filesystem::path& path)
{
    const Limits limits { .maximumBytes = std::uint64_t { 256 } << 20U };
    auto here = ImageSource::create(path, limits);
    auto there = decoders.open(path, limits);
    if (!here || !there) {
        return here.has_value() == there.has_value() && here.error() == there.error()
            ? ""
            : "opening: " + (here ? "good" : here.error().detail) + " here, "
                + (there ? "good" : there.error().detail) + " there";
    }
    if (here->type() != there->type() || here->storedSize() != there->storedSize()
        || here->decodedBytes() != there->decodedBytes()) {
        return "header";
    }
    const auto imageHere = here->image();
    const auto imageThere = there->image();
    if (!imageHere || !imageThere) {
        return imageHere.has_value() == imageThere.has_value()
                && imageHere.error() == imageThere.error()
            ? ""
            : "decoding: " + (imageHere ? "good" : imageHere.error().detail) + " here, "
                + (imageThere ? "good" : imageThere.error().detail) + " there";
    }
    if (!areEqual(*imageHere, *imageThere)) {
        return "picture";
    }
    const auto propertiesHere = here->properties().value();
    const auto propertiesThere = there->properties().value();
    if (propertiesHere.values() != propertiesThere.values()
        || propertiesHere.blocks() != propertiesThere.blocks()) {
        return "properties";
    }
    const auto uprightHere = here->thumbnailWithTransform(100'000);
    const auto uprightThere = there->thumbnailWithTransform(100'000);
    return areEqual(uprightHere.value(), uprightThere.value()) ? "" : "orientation";
}

class Confined : public testing::Test {
protected:
    [[nodiscard]] std::filesystem::path picture(
        UniformType type, imaging::Size size = test::oddSize) const
    {
        std::filesystem::path path
            = m_folder / (std::string("picture.") + std::string(preferredExtension(type)));
        std::filesystem::remove(path);
        auto destination = imaging::ImageDestination::create(path, type);
        destination->addImage(test::syntheticPhoto(size), {});
        if (!destination->finalize()) {
            throw std::runtime_error("cannot write " + path.string());
        }
        return path;
    }

    test::TemporaryFolder m_folder;
    ConfinedDecoders m_decoders { VELLUMINE_DECODER };
};

TEST_F(Confined, everyFormatIsDecodedAsInTheProgram)
{
    for (const UniformType type : imaging::ImageDestination::encodableTypes()) {
        EXPECT_EQ(difference(m_decoders, picture(type)), "") << preferredExtension(type);
    }
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, whereMemoryIsSharedTheResultIsTheSame)
{
    ConfinedDecoders decoders(VELLUMINE_DECODER, {}, Handover::shared);
    for (const UniformType type : imaging::ImageDestination::encodableTypes()) {
        EXPECT_EQ(difference(decoders, picture(type)), "") << preferredExtension(type);
    }
    const auto path = picture(UniformType::jpeg, { 300, 200 });
    const Rect part { 33, 50, 100, 40 };
    EXPECT_TRUE(areEqual(ImageSource::create(path, Limits())->imageRegion(part).value(),
        decoders.open(path, Limits())->imageRegion(part).value()));
    EXPECT_EQ(decoders.deathCount(), 0U);
}

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

TEST_F(Confined, everySampleIsDecodedAsInTheProgram)
{
    const auto folder = test::samplesFolder();
    if (!folder) {
        GTEST_SKIP() << "There are no samples. Name their folder in VELLUMINE_SAMPLES.";
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(*folder)) {
        if (entry.is_regular_file()) {
            EXPECT_EQ(difference(m_decoders, entry.path()), "") << entry.path();
        }
    }
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, aPartIsDecodedAsInTheProgramAndTheWholeAfterIt)
{
    for (const UniformType type : { UniformType::jpeg, UniformType::png }) {
        const auto path = picture(type, { 300, 200 });
        auto here = ImageSource::create(path, Limits()).value();
        auto there = m_decoders.open(path, Limits()).value();
        const Rect part { 33, 50, 100, 40 };
        EXPECT_TRUE(areEqual(here.imageRegion(part).value(), there.imageRegion(part).value()));
        EXPECT_FALSE(there.imageRegion({ 250, 0, 100, 40 }));
        EXPECT_TRUE(areEqual(here.image().value(), there.image().value()));
    }
}

TEST_F(Confined, thePictureOutlivesItsSourceAndTheHelpers)
{
    std::optional<Image> image;
    const auto path = picture(UniformType::png);
    {
        ConfinedDecoders decoders(VELLUMINE_DECODER);
        image = decoders.open(path, Limits())->image().value();
    }
    EXPECT_TRUE(areEqual(*image, ImageSource::create(path, Limits())->image().value()));
}

TEST_F(Confined, manyFilesAreServedAtOnce)
{
    const auto path = picture(UniformType::jpeg, { 640, 480 });
    const auto expected = ImageSource::create(path, Limits())->image().value();
    std::vector<std::future<bool>> all;
    for (int i = 0; i < 4; ++i) {
        all.push_back(std::async(std::launch::async, [&] {
            bool good = true;
            for (int round = 0; round < 10; ++round) {
                auto source = m_decoders.open(path, Limits());
                good = good && source && areEqual(source->image().value(), expected);
            }
            return good;
        }));
    }
    for (auto& one : all) {
        EXPECT_TRUE(one.get());
    }
    m_decoders.releaseIdle();
    EXPECT_TRUE(m_decoders.open(path, Limits()));
}

TEST_F(Confined, whatCannotBeOpenedFailsAsInTheProgram)
{
    ASSERT_EQ(::mkfifo((m_folder / "pipe.png").c_str(), 0600), 0);
    std::filesystem::create_directory(m_folder / "folder.png");
    test::writeFile(m_folder / "text.png", std::string_view("no picture"));
    test::writeFile(m_folder / "empty.png", std::string_view());
    for (const char* name : { "none.png", "pipe.png", "folder.png", "text.png", "empty.png" }) {
        const auto here = ImageSource::create(m_folder / name, Limits());
        const auto there = m_decoders.open(m_folder / name, Limits());
        ASSERT_FALSE(there) << name;
        EXPECT_EQ(there.error(), here.error()) << name;
    }
}

TEST_F(Confined, limitsHold)
{
    const auto path = picture(UniformType::png);
    const auto opened = m_decoders.open(path, { .maximumPixels = 100 });
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, Error::Kind::limitExceeded);
}

TEST_F(Confined, aHelperThatAsksForTooMuchMemoryCostsItsFile)
{
#ifdef VELLUMINE_SANITIZED
    GTEST_SKIP() << "A sanitizer reserves more addresses than any limit allows.";
#endif
    // No more than it has when it starts.
    ConfinedDecoders decoders(VELLUMINE_DECODER, { .memoryAtLeast = 1, .memoryPerDecodedByte = 0 });
    const auto path = picture(UniformType::png, { 1200, 900 });
    auto source = decoders.open(path, Limits());
    EXPECT_FALSE(source && source->image());
    EXPECT_TRUE(m_decoders.open(path, Limits())->image());
}

TEST_F(Confined, aFileThatChangesWhileItIsOpenHarmsNothing)
{
    const auto path = picture(UniformType::png, { 300, 200 });
    auto source = m_decoders.open(path, Limits()).value();
    std::filesystem::resize_file(path, 100);
    EXPECT_TRUE(source.image()); // it was read as a whole
    std::filesystem::remove(path);
    EXPECT_FALSE(m_decoders.open(path, Limits()));
}

TEST_F(Confined, sayWhatIsInForce)
{
    const auto confinement = m_decoders.confinement();
    ASSERT_TRUE(confinement);
    EXPECT_TRUE(confinement->noNewPrivileges);
    EXPECT_TRUE(confinement->timeLimit);
#ifndef VELLUMINE_SANITIZED
    EXPECT_TRUE(confinement->systemCallFilter);
    EXPECT_TRUE(confinement->memoryLimit);
#endif
}

TEST_F(Confined, helpersEndWithTheProgram)
{
    std::array<int, 2> ends {};
    ASSERT_EQ(::pipe(ends.data()), 0); // inherited by whoever takes no care
    const auto path = picture(UniformType::png);
    const pid_t program = ::fork();
    if (program == 0) {
        ConfinedDecoders decoders(VELLUMINE_DECODER);
        const bool good = decoders.open(path, Limits()).has_value();
        ::kill(::getpid(), good ? SIGKILL : SIGTERM);
    }
    ::close(ends[1]);
    int status = 0;
    ASSERT_EQ(::waitpid(program, &status, 0), program);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    char nothing = 0;
    EXPECT_EQ(::read(ends[0], &nothing, 1), 0);
    ::close(ends[0]);
}

TEST(DecoderExecutable, isFoundBesideTheProgramOrInstalled)
{
    const test::TemporaryFolder folder;
    const auto install = [&](const std::string& path) {
        std::filesystem::create_directories((folder / path).parent_path());
        test::writeFile(folder / path, std::string_view("x"));
        std::filesystem::permissions(folder / path, std::filesystem::perms::owner_all);
    };
    std::filesystem::create_directory(folder / "bin");
    EXPECT_FALSE(ConfinedDecoders::findExecutable(folder / "bin"));
    install("libexec/vellumine/vellumine-decoder");
    EXPECT_EQ(ConfinedDecoders::findExecutable(folder / "bin"),
        folder / "bin/../libexec/vellumine/vellumine-decoder");
    install("bin/vellumine-decoder");
    EXPECT_EQ(ConfinedDecoders::findExecutable(folder / "bin"), folder / "bin/vellumine-decoder");
}

TEST(Patience, growsWithTheFileAndThePixels)
{
    using namespace std::chrono_literals;
    const Patience patience;
    EXPECT_EQ(patience.toOpen(0).time, 60s);
    EXPECT_EQ(patience.toOpen(10'000'000).time, 70s);
    EXPECT_EQ(patience.toOpen(10'000'000).memoryBytes, (1ULL << 30U) + 20'000'000);
    const imaging::ImageHeader header { { 6000, 4000 }, imaging::rgba8Premultiplied };
    const Allowance allowance = patience.toDecode(0, header);
    EXPECT_EQ(allowance.time, 60s + 24 * 6s);
    EXPECT_EQ(allowance.processorTime, 30s + 24 * 3s);
    EXPECT_EQ(allowance.memoryBytes, (1ULL << 30U) + 8 * 96'000'000ULL);
}

} // namespace
} // namespace vellumine::confined
