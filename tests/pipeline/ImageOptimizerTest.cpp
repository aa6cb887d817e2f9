#include "pipeline/ImageOptimizer.h"

#include "pipeline/Workplace.h"
#include "platform/FilePath.h"
#include "platform/SecurityScope.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <future>
#include <mutex>
#include <set>

namespace vellumine {
namespace {

using imaging::AlphaInfo;
using imaging::ColorModel;
using imaging::Image;
using imaging::UniformType;
using test::listing;
using test::textOf;
using test::urlOf;
using test::writeFile;

constexpr imaging::PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };
constexpr imaging::PixelLayout rgba8 { ColorModel::rgb, 8, AlphaInfo::last };

/// A JPEG file with an EXIF block in front that says nothing but the orientation.
std::string withOrientation(const std::string& jpeg, int tag)
{
    using namespace std::string_literals;
    const std::string exif = "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0"s
        + static_cast<char>(tag) + "\0\0\0\0\0\0"s;
    return jpeg.substr(0, 2) + "\xff\xe1\0"s + static_cast<char>(exif.size() + 2) + exif
        + jpeg.substr(2);
}

class CountingScope final : public platform::SecurityScope {
public:
    bool startAccessing(const QUrl& url) override
    {
        const std::lock_guard lock(m_mutex);
        events.push_back(QStringLiteral("start ") + platform::lastPathComponent(url));
        return !refuses.contains(platform::lastPathComponent(url));
    }
    void stopAccessing(const QUrl& url) override
    {
        const std::lock_guard lock(m_mutex);
        events.push_back(QStringLiteral("stop ") + platform::lastPathComponent(url));
    }

    QStringList events;
    QStringList refuses;

private:
    std::mutex m_mutex;
};

class Optimize : public testing::Test {
protected:
    void SetUp() override
    {
        QLocale::setDefault(QLocale::c());
        m_environment.moveToTrash = [this](const QUrl& url) -> platform::Result<void> {
            m_trashed.push_back(url);
            std::filesystem::remove(platform::toPath(url));
            return {};
        };
    }

    [[nodiscard]] std::filesystem::path in(std::string_view name) const
    {
        return m_workplace.pictures() / name;
    }

    /// A picture of noise-free colours in a format that is exact.
    std::filesystem::path makeSource(
        std::string_view name = "a.bmp", imaging::Size size = test::oddSize) const
    {
        test::writePicture(in(name), test::gradient(size, rgb8), UniformType::bmp);
        return in(name);
    }

    Outcome<ProcessingResult> optimize(const std::filesystem::path& path) const
    {
        return ImageOptimizer::optimize(urlOf(path), m_settings, m_environment);
    }

    void expectFailure(const std::filesystem::path& path, std::string_view message) const
    {
        const auto result = optimize(path);
        ASSERT_FALSE(result);
        EXPECT_EQ(localizedDescription(result.error()).toStdString(), message);
        EXPECT_EQ(listing(m_workplace.temporary()), "");
    }

    test::Workplace m_workplace;
    OptimizerSettings m_settings;
    ConversionEnvironment m_environment = m_workplace.environment();
    std::vector<QUrl> m_trashed;
};

TEST_F(Optimize, resultOfASuccessHasEveryField)
{
    makeSource("photo.bmp", { 3000, 40 });
    const auto originalSize = static_cast<qint64>(std::filesystem::file_size(in("photo.bmp")));
    const auto result = optimize(in("photo.bmp"));
    ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
    EXPECT_FALSE(result->id.isNull());
    EXPECT_EQ(result->sourceURL, urlOf(in("photo.bmp")));
    EXPECT_EQ(result->outputURL, urlOf(in("photo.webp")));
    EXPECT_EQ(result->originalBytes, originalSize);
    EXPECT_EQ(
        result->outputBytes, static_cast<qint64>(std::filesystem::file_size(in("photo.webp"))));
    EXPECT_TRUE(result->message.startsWith(QStringLiteral("Saved ")));
    EXPECT_TRUE(result->isSuccess);
    ASSERT_TRUE(result->audit);
    EXPECT_EQ(*result->audit,
        (ConversionAudit { { 3000, 40 }, { 2560, 34 }, QStringLiteral("BMP"),
            QStringLiteral("WebP Lossy"), true, true, true, false, true }));
    ASSERT_TRUE(result->comparisonPreview);
    EXPECT_EQ(result->comparisonPreview->sourcePixelSize, QSizeF(3000, 40));
    EXPECT_EQ(result->comparisonPreview->outputPixelSize, QSizeF(2560, 34));
    EXPECT_EQ(result->comparisonPreview->displaySize, QSizeF(720, 34));
    EXPECT_EQ(listing(in("")), "photo.bmp photo.webp");
}

TEST_F(Optimize, leavesOnlyTheTwoSamplesInTheTemporaryFolder)
{
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    ASSERT_TRUE(result->comparisonPreview);
    std::set<std::string> expected {
        platform::toPath(result->comparisonPreview->sourceSampleURL).string(),
        platform::toPath(result->comparisonPreview->outputSampleURL).string(),
    };
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(m_workplace.temporary())) {
        found.insert(entry.path().string());
    }
    EXPECT_EQ(found, expected);
}

struct FormatRow {
    const char* name;
    OutputFormat format;
    const char* output;
    UniformType type;
    const char* title;
    bool supportsAlpha;
};

class OptimizeTo : public Optimize, public testing::WithParamInterface<FormatRow> { };

TEST_P(OptimizeTo, writesThatFormatAndSaysSo)
{
    test::writePicture(in("a.tiff"), test::gradient(test::oddSize, rgba8), UniformType::tiff);
    m_settings.outputFormat = GetParam().format;
    const auto result = optimize(in("a.tiff"));
    ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
    EXPECT_EQ(result->outputURL, urlOf(in(GetParam().output)));
    EXPECT_EQ(result->audit->inputFormat, QStringLiteral("TIFF"));
    EXPECT_EQ(result->audit->outputFormat, QString::fromLatin1(GetParam().title));
    EXPECT_TRUE(result->audit->sourceHasAlpha);
    EXPECT_EQ(result->audit->outputSupportsAlpha, GetParam().supportsAlpha);
    const auto source = imaging::ImageSource::create(in(GetParam().output), {});
    ASSERT_TRUE(source);
    EXPECT_EQ(source->type(), GetParam().type);
    EXPECT_EQ(source->storedSize(), test::oddSize);
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, OptimizeTo,
    testing::Values(
        FormatRow { "webp", OutputFormat::webp, "a.webp", UniformType::webp, "WebP Lossy", true },
        FormatRow { "webpLossless", OutputFormat::webpLossless, "a.webp", UniformType::webp,
            "WebP Lossless", true },
        FormatRow { "jpeg", OutputFormat::jpeg, "a.jpg", UniformType::jpeg, "JPEG", false },
        FormatRow { "png", OutputFormat::png, "a.png", UniformType::png, "PNG", true },
        FormatRow { "heic", OutputFormat::heic, "a.heic", UniformType::heic, "HEIC", false },
        FormatRow { "original", OutputFormat::original, "a-optimized.tiff", UniformType::tiff,
            "TIFF", false }),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(Optimize, misnamedFileGoesByItsContent)
{
    makeSource("a.png");
    m_settings.outputFormat = OutputFormat::original;
    const auto result = optimize(in("a.png"));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->outputURL, urlOf(in("a.bmp")));
    EXPECT_EQ(result->audit->inputFormat, QStringLiteral("BMP"));
}

TEST_F(Optimize, webPInTheOriginalFormatIsRefused)
{
    m_settings.outputFormat = OutputFormat::webpLossless;
    ASSERT_TRUE(optimize(makeSource("a.bmp")));
    for (const auto& entry : std::filesystem::directory_iterator(m_workplace.temporary())) {
        std::filesystem::remove(entry.path());
    }
    m_settings.outputFormat = OutputFormat::original;
    expectFailure(
        in("a.webp"), "Original Format is not supported by this macOS ImageIO installation.");
    EXPECT_EQ(listing(in("")), "a.bmp a.webp");
}

TEST_F(Optimize, outputLargerThanTheInputIsKeptAndConverted)
{
    m_settings = test::plainSettings(OutputFormat::png);
    // A picture of noise is larger as PNG than as JPEG.
    test::writePicture(in("noise.jpg"), test::syntheticPhoto({ 300, 200 }), UniformType::jpeg);
    const auto result = optimize(in("noise.jpg"));
    ASSERT_TRUE(result);
    EXPECT_GT(result->outputBytes, result->originalBytes);
    EXPECT_EQ(result->message, QStringLiteral("Converted"));
    EXPECT_TRUE(result->isSuccess);
    EXPECT_TRUE(std::filesystem::exists(in("noise.png")));
}

TEST_F(Optimize, whatIsNoPictureIsUnreadable)
{
    writeFile(in("text.png"), "hello");
    expectFailure(in("text.png"), "The image could not be read.");
    expectFailure(in("missing.png"), "The image could not be read.");
    expectFailure(in(""), "The image could not be read.");
    EXPECT_EQ(listing(in("")), "text.png");
}

TEST_F(Optimize, truncatedPictureIsUnreadableAndLeavesTheOldOutput)
{
    const auto source = makeSource();
    std::filesystem::resize_file(source, std::filesystem::file_size(source) / 2);
    writeFile(in("a.webp"), "old");
    expectFailure(source, "The image could not be read.");
    EXPECT_EQ(textOf(in("a.webp")), "old");
}

TEST_F(Optimize, pictureBeyondTheLimitsIsUnreadable)
{
    m_environment.limits.maximumPixels = 100;
    expectFailure(makeSource(), "The image could not be read.");
}

TEST_F(Optimize, unreadableImageComesBeforeTheMissingFolder)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    writeFile(in("text.png"), "hello");
    expectFailure(in("text.png"), "The image could not be read.");
    expectFailure(makeSource(), "The selected destination folder is no longer available.");
    EXPECT_EQ(listing(in("")), "a.bmp text.png");
}

TEST_F(Optimize, vanishedDestinationFolderFailsByFormat)
{
    m_settings.destinationMode = DestinationMode::selectedFolder;
    m_settings.destinationFolderURL = urlOf(in("vanished"));
    m_settings.outputFormat = OutputFormat::jpeg;
    expectFailure(makeSource("a.bmp"), "Could not create a.jpg.");
    m_settings.outputFormat = OutputFormat::webp;
    expectFailure(in("a.bmp"), "Could not save a.webp: No such file or directory");
}

TEST_F(Optimize, nameThatIsTooLongFailsByFormat)
{
    const std::string base(251, 'n');
    makeSource(base + ".bmp");
    m_settings.outputFormat = OutputFormat::heic;
    expectFailure(in(base + ".bmp"), "Could not create " + base + ".heic.");
    m_settings.outputFormat = OutputFormat::webp;
    expectFailure(in(base + ".bmp"), "Could not save " + base + ".webp: File name too long");
    EXPECT_EQ(listing(in("")), base + ".bmp");
}

TEST_F(Optimize, skipLeavesTheExistingFileUntouched)
{
    m_settings.warnBeforeOverwrite = true;
    writeFile(in("a.webp"), "old");
    m_environment.confirmOverwrite = [](const QUrl&) { return OverwriteDecision::skip; };
    expectFailure(makeSource(), "Skipped because the output file already exists.");
    EXPECT_EQ(textOf(in("a.webp")), "old");
    EXPECT_EQ(listing(in("")), "a.bmp a.webp");
}

TEST_F(Optimize, replaceReplaces)
{
    m_settings.warnBeforeOverwrite = true;
    writeFile(in("a.webp"), "old");
    m_environment.confirmOverwrite = [](const QUrl&) { return OverwriteDecision::replace; };
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_EQ(test::readPicture(in("a.webp")).size(), test::oddSize);
}

TEST_F(Optimize, fileThatVanishesAfterTheQuestionIsNoProblem)
{
    m_settings.warnBeforeOverwrite = true;
    writeFile(in("a.webp"), "old");
    m_environment.confirmOverwrite = [this](const QUrl&) {
        std::filesystem::remove(in("a.webp"));
        return OverwriteDecision::replace;
    };
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_EQ(test::readPicture(in("a.webp")).size(), test::oddSize);
}

TEST_F(Optimize, existingFileStandsWhenTheEncoderFails)
{
    writeFile(in("a.webp"), "old");
    m_workplace.replaceEncoder("exit 1\n");
    expectFailure(makeSource(), "Could not finish writing a.webp: cwebp exited with status 1");
    EXPECT_EQ(textOf(in("a.webp")), "old");
    EXPECT_EQ(listing(in("")), "a.bmp a.webp");
}

TEST_F(Optimize, folderInTheWayFailsWithTheSystemsText)
{
    for (const OutputFormat format : { OutputFormat::webp, OutputFormat::jpeg }) {
        m_settings.outputFormat = format;
        const char* name = format == OutputFormat::webp ? "a.webp" : "a.jpg";
        std::filesystem::create_directory(in(name));
        m_workplace.replaceEncoder("touch '" + (m_workplace.programs() / "ran").string() + "'\n");
        expectFailure(
            makeSource(format == OutputFormat::webp ? "a.bmp" : "a.tif"), "Is a directory");
        EXPECT_TRUE(std::filesystem::is_directory(in(name)));
    }
    EXPECT_FALSE(std::filesystem::exists(m_workplace.programs() / "ran"));
}

TEST_F(Optimize, outputThatIsALinkIsReplacedItself)
{
    writeFile(in("precious"), "precious");
    std::filesystem::create_symlink("precious", in("a.webp"));
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_FALSE(std::filesystem::is_symlink(in("a.webp")));
    EXPECT_EQ(textOf(in("precious")), "precious");
}

TEST_F(Optimize, sourceIsNeverWrittenOverByAnotherName)
{
    makeSource("a.bmp");
    const auto before = test::readFile(in("a.bmp"));
    std::filesystem::create_hard_link(in("a.bmp"), in("a.webp"));
    const auto hard = optimize(in("a.bmp"));
    ASSERT_TRUE(hard);
    EXPECT_EQ(hard->outputURL, urlOf(in("a-optimized.webp")));

    std::filesystem::remove(in("a.webp"));
    std::filesystem::create_symlink("a.bmp", in("a.webp"));
    const auto soft = optimize(in("a.bmp"));
    ASSERT_TRUE(soft);
    EXPECT_EQ(soft->outputURL, urlOf(in("a-optimized.webp")));
    EXPECT_EQ(test::readFile(in("a.bmp")), before);
}

TEST_F(Optimize, modificationTimeIsCarriedOverToTheNanosecond)
{
    const auto source = makeSource();
    const struct timespec times[2] { { 1, 1 }, { 1'234'567'890, 123'456'789 } };
    ASSERT_EQ(::utimensat(AT_FDCWD, source.c_str(), times, 0), 0);
    ASSERT_TRUE(optimize(source));
    struct stat status { };
    ASSERT_EQ(::stat(in("a.webp").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1'234'567'890);
    EXPECT_EQ(status.st_mtim.tv_nsec, 123'456'789);

    m_settings.preserveModificationTime = false;
    ASSERT_TRUE(optimize(source));
    ASSERT_EQ(::stat(in("a.webp").c_str(), &status), 0);
    EXPECT_GT(status.st_mtim.tv_sec, 1'700'000'000);
}

TEST_F(Optimize, originalGoesToTheTrashAfterItsOutputWasReadBack)
{
    m_settings.moveOriginalToTrash = true;
    bool outputWasThere = false;
    m_environment.moveToTrash = [&](const QUrl& url) -> platform::Result<void> {
        outputWasThere = test::readPicture(in("a.webp")).size() == test::oddSize;
        m_trashed.push_back(url);
        return {};
    };
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    EXPECT_EQ(m_trashed, std::vector { urlOf(in("a.bmp")) });
    EXPECT_TRUE(outputWasThere);
    EXPECT_FALSE(result->message.contains(QStringLiteral("Trash")));
    EXPECT_TRUE(result->comparisonPreview);
}

TEST_F(Optimize, originalStaysWhenItIsNotWanted)
{
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_TRUE(m_trashed.empty());
}

TEST_F(Optimize, originalStaysWhenTheOutputCannotBeReadBack)
{
    m_settings.moveOriginalToTrash = true;
    m_workplace.replaceEncoder(R"(
while [ "$1" != "-o" ]; do shift; done
printf garbage > "$2"
)");
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    EXPECT_TRUE(m_trashed.empty());
    EXPECT_TRUE(std::filesystem::exists(in("a.bmp")));
    EXPECT_TRUE(result->isSuccess);
    EXPECT_TRUE(result->message.endsWith(QStringLiteral(". Original could not be moved to Trash")));
}

TEST_F(Optimize, originalStaysWhenTheOutputHasAnotherSize)
{
    m_settings = test::plainSettings(OutputFormat::webpLossless);
    ASSERT_TRUE(optimize(makeSource("small.bmp", { 9, 9 })));
    m_settings.moveOriginalToTrash = true;
    m_workplace.replaceEncoder("while [ \"$1\" != \"-o\" ]; do shift; done\ncp '"
        + in("small.webp").string() + "' \"$2\"\n");
    const auto result = optimize(makeSource("a.bmp"));
    ASSERT_TRUE(result);
    EXPECT_TRUE(m_trashed.empty());
    EXPECT_TRUE(result->message.contains(QStringLiteral("could not be moved to Trash")));
}

TEST_F(Optimize, trashThatFailsIsOnlyMentioned)
{
    m_settings.moveOriginalToTrash = true;
    m_environment.moveToTrash = [](const QUrl&) { return platform::failure(EPERM); };
    const auto result = optimize(makeSource());
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->isSuccess);
    EXPECT_TRUE(result->message.endsWith(QStringLiteral(". Original could not be moved to Trash")));
}

TEST_F(Optimize, accessesAreEndedOnEveryWayOut)
{
    const auto run = [this](const std::filesystem::path& path) {
        const auto scope = std::make_shared<CountingScope>();
        m_environment.securityScope = scope;
        (void)optimize(path);
        return scope->events;
    };
    const QStringList expected { QStringLiteral("start a.bmp"), QStringLiteral("start pictures"),
        QStringLiteral("stop pictures"), QStringLiteral("stop a.bmp") };
    EXPECT_EQ(run(makeSource()), expected);
    m_workplace.removeEncoder();
    EXPECT_EQ(run(in("a.bmp")), expected);
    writeFile(in("a.bmp"), "broken");
    EXPECT_EQ(run(in("a.bmp")), expected);
}

TEST_F(Optimize, accessThatWasNotGrantedIsNotEnded)
{
    const auto scope = std::make_shared<CountingScope>();
    scope->refuses = QStringList { QStringLiteral("a.bmp") };
    m_environment.securityScope = scope;
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_EQ(scope->events,
        (QStringList { QStringLiteral("start a.bmp"), QStringLiteral("start pictures"),
            QStringLiteral("stop pictures") }));
}

TEST_F(Optimize, folderOfThePreferencesIsAccessedWhateverTheMode)
{
    const auto scope = std::make_shared<CountingScope>();
    m_environment.securityScope = scope;
    m_settings.destinationFolderURL = urlOf(m_workplace.programs());
    ASSERT_TRUE(optimize(makeSource()));
    EXPECT_TRUE(scope->events.contains(QStringLiteral("start programs")));
    EXPECT_TRUE(std::filesystem::exists(in("a.webp")));
}

using OptimizeDeathTest = Optimize;

TEST_F(OptimizeDeathTest, folderThatCannotBeWrittenFailsByFormatAndKeepsWhatItHas)
{
    makeSource();
    makeSource("b.bmp");
    writeFile(in("b.jpg"), "old");
    writeFile(in("b.webp"), "old");
    namespace fs = std::filesystem;
    constexpr fs::perms readable { 0555 };
    fs::permissions(in(""), readable);
    fs::permissions(m_workplace.pictures().parent_path(), readable | fs::perms::owner_write);
    fs::permissions(m_workplace.programs(), readable | fs::perms::owner_write);
    fs::permissions(m_workplace.temporary(), fs::perms::all);
    const auto messages = [this] {
        QStringList texts;
        for (const char* name : { "a.bmp", "b.bmp" }) {
            for (const OutputFormat format : { OutputFormat::jpeg, OutputFormat::webp }) {
                m_settings.outputFormat = format;
                const auto result = optimize(in(name));
                texts.append(result ? result->message : localizedDescription(result.error()));
            }
        }
        return texts.join(u'|').toStdString();
    };
    // In a process of its own, which gives up the superuser's rights where the tests have them.
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && ::setuid(65534) != 0) {
                std::_Exit(1);
            }
            std::fputs(messages().c_str(), stderr);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0),
        "Could not create a.jpg.\\|Could not save a.webp: Permission denied"
        "\\|Permission denied\\|Permission denied");
    fs::permissions(in(""), fs::perms::owner_all);
    EXPECT_EQ(textOf(in("b.jpg")), "old");
    EXPECT_EQ(textOf(in("b.webp")), "old");
    EXPECT_EQ(listing(in("")), "a.bmp b.bmp b.jpg b.webp");
}

TEST_F(Optimize, eightOrientationsGiveTheSameUprightPicture)
{
    const Image picture = test::syntheticPhoto({ 161, 99 });
    m_settings.quality = 95;
    m_settings.resizeMode = ResizeMode::none;
    std::optional<Image> first;
    for (int tag = 1; tag <= 8; ++tag) {
        SCOPED_TRACE(tag);
        // A quarter turn is undone by the other one; every other orientation undoes itself.
        const int undoing = tag == 6 ? 8 : tag == 8 ? 6 : tag;
        const Image stored
            = imaging::upright(picture, *imaging::orientationFromTag(undoing)).value();
        const std::string name = "o" + std::to_string(tag);
        test::writePicture(in(name + ".bare"), stored, UniformType::jpeg);
        writeFile(in(name + ".jpg"), withOrientation(textOf(in(name + ".bare")), tag));
        const auto result = optimize(in(name + ".jpg"));
        ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
        EXPECT_EQ(result->audit->inputDimensions, QSizeF(161, 99));
        const Image written = test::readPicture(in(name + ".webp"));
        ASSERT_EQ(written.size(), picture.size());
        if (!first) {
            first = written;
        }
        EXPECT_GE(test::psnr(written, *first), 35.0);
    }
}

TEST_F(Optimize, namedPipeIsRefusedWithoutWaiting)
{
    ASSERT_EQ(::mkfifo(in("pipe.png").c_str(), 0600), 0);
    expectFailure(in("pipe.png"), "The image could not be read.");
}

TEST_F(Optimize, outputHasThePermissionsOfANewFile)
{
    const mode_t before = ::umask(027);
    m_settings.outputFormat = OutputFormat::webp;
    const bool webP = optimize(makeSource()).has_value();
    m_settings.outputFormat = OutputFormat::jpeg;
    const bool jpeg = optimize(in("a.bmp")).has_value();
    ::umask(before);
    ASSERT_TRUE(webP && jpeg);
    for (const char* name : { "a.webp", "a.jpg" }) {
        struct stat status { };
        ASSERT_EQ(::stat(in(name).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, 0640U) << name;
    }
}

TEST_F(Optimize, eightConversionsAtOnceAreAllRight)
{
    constexpr int count = 8;
    for (int i = 0; i < count; ++i) {
        makeSource("p" + std::to_string(i) + ".bmp", { 40 + i, 30 + i });
    }
    std::vector<std::future<Outcome<ProcessingResult>>> running;
    m_settings.outputFormat = OutputFormat::webpLossless;
    for (int i = 0; i < count; ++i) {
        running.push_back(std::async(std::launch::async,
            [this, i] { return optimize(in("p" + std::to_string(i) + ".bmp")); }));
    }
    for (int i = 0; i < count; ++i) {
        const auto result = running[static_cast<std::size_t>(i)].get();
        ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
        const Image expected = test::gradient({ 40 + i, 30 + i }, rgb8);
        const Image written = test::readPicture(in("p" + std::to_string(i) + ".webp"));
        ASSERT_EQ(written.size(), expected.size());
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(
                test::sampleAt(written, 20, 15, c), test::sampleAt(expected, 20, 15, c), 1e-9);
        }
    }
}

} // namespace
} // namespace vellumine
