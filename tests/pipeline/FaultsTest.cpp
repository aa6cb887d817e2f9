#include "pipeline/GivenPicture.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "platform/FilePath.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"
#include "support/SmallDisk.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

// What the world does to a conversion, and what it says about that. Whatever happens, the source is
// as it was, and so is what stood at the output's place.

namespace vellumine {
namespace {

using test::listing;
using test::textOf;
using test::urlOf;
using test::writeFile;

constexpr std::size_t little = std::size_t { 256 } << 10U;

class Faults : public testing::Test {
protected:
    Faults()
    {
        test::writePicture(source(), test::syntheticPhoto({ 320, 240 }), imaging::UniformType::bmp);
        m_sourceText = textOf(source());
        std::filesystem::create_directory(chosen());
        m_settings.destinationMode = DestinationMode::selectedFolder;
        m_settings.resizeMode = ResizeMode::none;
        chooseFolder(chosen());
        m_environment.moveToTrash = [this](const QUrl& url) -> platform::Result<void> {
            ++m_trashed;
            std::filesystem::remove(platform::toPath(url));
            return {};
        };
    }

    [[nodiscard]] std::filesystem::path source() const { return m_workplace.pictures() / "a.bmp"; }
    [[nodiscard]] std::filesystem::path chosen() const { return m_workplace.pictures() / "chosen"; }

    void chooseFolder(const std::filesystem::path& folder)
    {
        m_settings.destinationFolderURL = urlOf(folder);
    }

    [[nodiscard]] std::string optimize(OutputFormat format)
    {
        m_settings.outputFormat = format;
        const auto result = ImageOptimizer::optimize(urlOf(source()), m_settings, m_environment);
        return (result ? result->message : localizedDescription(result.error())).toStdString();
    }

    /// The real encoder, with something that happens before it.
    void encodeAfter(const std::string& command) const
    {
        m_workplace.replaceEncoder(command + "\nexec cwebp \"$@\"\n");
    }

    void expectSourceUntouched() const { EXPECT_EQ(textOf(source()), m_sourceText); }

    test::Workplace m_workplace;
    OptimizerSettings m_settings;
    ConversionEnvironment m_environment = m_workplace.environment();
    std::string m_sourceText;
    int m_trashed = 0;
};

TEST_F(Faults, aFullDiskAtTheOutputKeepsTheOldOutput)
{
    const auto disk = test::SmallDisk::create(little);
    if (!disk) {
        GTEST_SKIP() << "Only a superuser may mount a small disk.";
    }
    for (const char* name : { "a.webp", "a.jpg", "a.png", "a.heic" }) {
        writeFile(disk->path() / name, "old");
    }
    disk->fill();
    const std::string before = listing(disk->path());
    chooseFolder(disk->path());
    m_settings.moveOriginalToTrash = true;
    EXPECT_EQ(optimize(OutputFormat::webp), "Could not save a.webp: No space left on device");
    EXPECT_EQ(optimize(OutputFormat::jpeg), "Could not finish writing a.jpg.");
    EXPECT_EQ(optimize(OutputFormat::png), "Could not finish writing a.png.");
    EXPECT_EQ(optimize(OutputFormat::heic), "Could not finish writing a.heic.");
    EXPECT_EQ(listing(disk->path()), before);
    for (const char* name : { "a.webp", "a.jpg", "a.png", "a.heic" }) {
        EXPECT_EQ(textOf(disk->path() / name), "old");
    }
    EXPECT_EQ(listing(m_workplace.temporary()), "");
    EXPECT_EQ(m_trashed, 0);
    expectSourceUntouched();
}

TEST_F(Faults, aFullTemporaryFolderCostsWhatIsWrittenThere)
{
    const auto disk = test::SmallDisk::create(little);
    if (!disk) {
        GTEST_SKIP() << "Only a superuser may mount a small disk.";
    }
    disk->fill();
    m_environment.temporaryFolder = disk->path();
    const std::string message = optimize(OutputFormat::webp);
    EXPECT_TRUE(message.starts_with("Could not finish writing vellumine-")) << message;
    EXPECT_TRUE(message.ends_with(".pam: No space left on device")) << message;
    EXPECT_EQ(listing(chosen()), "");
    // Only the comparison is missing there.
    const std::string saved = optimize(OutputFormat::jpeg);
    EXPECT_TRUE(saved.starts_with("Saved ")) << saved;
    EXPECT_EQ(listing(disk->path()), "filling");
    expectSourceUntouched();
}

TEST_F(Faults, anEncoderThatRunsOutOfSpaceSaysSoItself)
{
    const auto disk = test::SmallDisk::create(std::size_t { 320 } << 10U);
    if (!disk) {
        GTEST_SKIP() << "Only a superuser may mount a small disk.";
    }
    m_environment.temporaryFolder = disk->path();
    m_settings.quality = 100;
    const std::string message = optimize(OutputFormat::webpLossless);
    EXPECT_TRUE(message.starts_with("Could not finish writing a.webp: ")) << message;
    EXPECT_EQ(listing(disk->path()), "");
    EXPECT_EQ(listing(chosen()), "");
    expectSourceUntouched();
}

// The encoder itself notices only sometimes, depending on how much there is no room for.
TEST_F(Faults, anOutputIsWholeHoweverLittleRoomTheEncoderHas)
{
    constexpr std::size_t page = 4096;
    const auto pages = [](std::size_t bytes) { return (bytes + page - 1) / page; };
    ASSERT_TRUE(optimize(OutputFormat::webp).starts_with("Saved "));
    const std::string whole = textOf(chosen() / "a.webp");
    const std::size_t pamBytes = std::size_t { 320 } * 240 * 4 + 70;
    const std::size_t enough = pages(pamBytes) + pages(whole.size());
    m_environment.comparisonSamples = ComparisonSamples::leaveOut;
    int failures = 0;
    for (std::size_t missing = 0; missing < 3; ++missing) {
        const auto disk = test::SmallDisk::create((enough - missing) * page);
        if (!disk) {
            GTEST_SKIP() << "Only a superuser may mount a small disk.";
        }
        m_environment.temporaryFolder = disk->path();
        const std::string message = optimize(OutputFormat::webp);
        EXPECT_EQ(textOf(chosen() / "a.webp"), whole) << missing << " missing: " << message;
        EXPECT_EQ(listing(disk->path()), "");
        failures += message.starts_with("Could not finish writing a.webp: ") ? 1 : 0;
    }
    EXPECT_EQ(failures, 2);
    expectSourceUntouched();
}

TEST_F(Faults, aTemporaryFolderThatIsGoneCostsWhatIsWrittenThere)
{
    m_environment.temporaryFolder = m_workplace.temporary() / "gone";
    const std::string message = optimize(OutputFormat::webp);
    EXPECT_TRUE(message.ends_with(".pam: No such file or directory")) << message;
    EXPECT_TRUE(optimize(OutputFormat::jpeg).starts_with("Saved "));
    expectSourceUntouched();
}

TEST_F(Faults, aFolderThatVanishesMeanwhileFailsItsFile)
{
    encodeAfter("rmdir '" + chosen().string() + "'");
    m_settings.moveOriginalToTrash = true;
    EXPECT_EQ(optimize(OutputFormat::webp), "Could not save a.webp: No such file or directory");
    EXPECT_EQ(m_trashed, 0);
    expectSourceUntouched();
}

TEST_F(Faults, aFolderThatTakesTheOutputsNameMeanwhileStays)
{
    encodeAfter("mkdir '" + (chosen() / "a.webp").string() + "'");
    m_settings.warnBeforeOverwrite = false;
    EXPECT_EQ(optimize(OutputFormat::webp), "Could not save a.webp: Is a directory");
    EXPECT_TRUE(std::filesystem::is_directory(chosen() / "a.webp"));
    EXPECT_EQ(listing(chosen()), "a.webp");
    expectSourceUntouched();
}

TEST_F(Faults, aSourceThatVanishesMeanwhileHasItsOutput)
{
    encodeAfter("rm '" + source().string() + "'");
    m_settings.moveOriginalToTrash = true;
    const std::string message = optimize(OutputFormat::webp);
    EXPECT_TRUE(message.ends_with(". Original could not be moved to Trash")) << message;
    EXPECT_EQ(test::readPicture(chosen() / "a.webp").size(), (imaging::Size { 320, 240 }));
    EXPECT_EQ(m_trashed, 0);
}

TEST_F(Faults, aSourceThatChangesMeanwhileStaysAsItIsNow)
{
    encodeAfter("printf other > '" + source().string() + "'");
    m_settings.moveOriginalToTrash = true;
    const std::string message = optimize(OutputFormat::webp);
    EXPECT_TRUE(message.ends_with(". Original could not be moved to Trash")) << message;
    EXPECT_EQ(textOf(source()), "other");
    EXPECT_EQ(m_trashed, 0);
}

TEST_F(Faults, aSourceThatIsGoneBeforehandIsUnreadable)
{
    std::filesystem::remove(source());
    EXPECT_EQ(optimize(OutputFormat::webp), "The image could not be read.");
    EXPECT_EQ(listing(chosen()), "");
}

TEST_F(Faults, garbageOfTheEncoderNeverCostsAnOriginal)
{
    m_workplace.replaceEncoder(
        "while [ \"$1\" != \"-o\" ]; do shift; done\nprintf garbage > \"$2\"\n");
    m_settings.moveOriginalToTrash = true;
    const std::string message = optimize(OutputFormat::webp);
    EXPECT_TRUE(message.ends_with(". Original could not be moved to Trash")) << message;
    EXPECT_EQ(m_trashed, 0);
    expectSourceUntouched();
}

TEST_F(Faults, anEncoderThatPrintsAMegabyteOnItsOutputToo)
{
    encodeAfter("head -c 1000000 /dev/zero | tr '\\0' x >/dev/null\n"
                "head -c 1000000 /dev/zero | tr '\\0' x >&2");
    const std::string message = optimize(OutputFormat::webp);
    EXPECT_TRUE(message.starts_with("Saved ")) << message;
}

TEST_F(Faults, pixelsThatAreLostMakeASourceUnreadable)
{
    m_environment.openImage
        = test::openAs(source(), test::lost(test::syntheticPhoto({ 320, 240 })));
    for (const bool isDrawn : { true, false }) {
        m_settings.optimizeColorForSharing = isDrawn;
        m_settings.removeColorManagement = isDrawn;
        for (const OutputFormat format :
            { OutputFormat::webp, OutputFormat::png, OutputFormat::jpeg }) {
            EXPECT_EQ(optimize(format), "The image could not be read.");
        }
    }
    EXPECT_EQ(listing(chosen()), "");
    expectSourceUntouched();
}

TEST_F(Faults, aSourceWithoutPermissionIsUnreadable)
{
    namespace fs = std::filesystem;
    for (const auto& folder : { m_workplace.pictures().parent_path(), m_workplace.pictures(),
             chosen(), m_workplace.temporary(), m_workplace.programs() }) {
        fs::permissions(folder, fs::perms::all);
    }
    fs::permissions(source(), fs::perms::none);
    // In a process of its own, which gives up the superuser's rights where the tests have them.
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && ::setuid(65534) != 0) {
                std::_Exit(1);
            }
            std::fputs(optimize(OutputFormat::jpeg).c_str(), stderr);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "The image could not be read.");
    fs::permissions(source(), fs::perms::owner_read);
    EXPECT_EQ(listing(chosen()), "");
    expectSourceUntouched();
}

} // namespace
} // namespace vellumine
