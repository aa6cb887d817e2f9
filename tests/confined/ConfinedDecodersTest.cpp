#include "confined/ConfinedFixture.h"
#include "imaging/ImageDestination.h"
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
#include <string>
#include <vector>

namespace vellumine::confined {
namespace {

using imaging::Error;
using imaging::Image;
using imaging::ImageSource;
using imaging::Limits;
using imaging::Rect;
using imaging::UniformType;

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

TEST_F(Confined, everyFormatIsDecodedAsInTheProgram)
{
    for (const UniformType type : imaging::ImageDestination::encodableTypes()) {
        EXPECT_EQ(difference(m_decoders, picture(type)), "") << preferredExtension(type);
    }
    EXPECT_EQ(m_decoders.deathCount(), 0U);
}

TEST_F(Confined, resolutionAndTextsComeAlong)
{
    for (const UniformType type : { UniformType::jpeg, UniformType::png, UniformType::gif }) {
        const auto path = m_folder / "texts";
        std::filesystem::remove(path);
        const imaging::PropertyKey dictionary = imaging::dictionaryOf(type).value();
        imaging::FileTexts texts;
        texts.add({ .keyword = type == UniformType::png ? "Title" : "",
            .content = imaging::ByteBuffer(9, std::byte { 'c' }) });
        imaging::ImageProperties properties;
        properties.set(dictionary, texts);
        properties.set(imaging::PropertyKey::resolution,
            *imaging::Resolution::create(300, 150, imaging::Resolution::Unit::inch));
        auto destination = imaging::ImageDestination::create(path, type);
        destination->addImage(test::syntheticPhoto(test::oddSize), properties);
        ASSERT_TRUE(destination->finalize());

        EXPECT_EQ(difference(m_decoders, path), "");
        const auto read = m_decoders.open(path, {})->properties();
        ASSERT_TRUE(read);
        EXPECT_EQ(read->texts(dictionary), texts);
        EXPECT_EQ(read->resolution().has_value(), type != UniformType::gif);
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

TEST_F(Confined, aPhotographWithDataLeftOverIsRefusedAsInTheProgram)
{
    const auto path = picture(UniformType::jpeg, { 300, 200 });
    auto file = test::readFile(path);
    file.insert(file.end() - 2, 60, std::byte { 0x5A }); // before the end marker
    test::writeFile(path, file);
    EXPECT_FALSE(ImageSource::create(path, Limits())->image());
    EXPECT_EQ(difference(m_decoders, path), "");
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

} // namespace
} // namespace vellumine::confined
