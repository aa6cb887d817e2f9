#include "imaging/codecs/jpeg/JpegCodec.h"
#include "pipeline/GivenPicture.h"
#include "pipeline/Optimize.h"
#include "support/NamedRows.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <set>

namespace vellumine {
namespace {

using imaging::AlphaInfo;
using imaging::ColorModel;
using imaging::Image;
using imaging::UniformType;
using test::listing;
using test::Optimize;
using test::rgb8;
using test::textOf;
using test::urlOf;
using test::writeFile;

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

TEST_F(Optimize, outputIsTheSameWithoutSamples)
{
    const auto source = makeSource("a.bmp", { 300, 200 });
    for (const OutputFormat format :
        { OutputFormat::webp, OutputFormat::jpeg, OutputFormat::png }) {
        m_settings.outputFormat = format;
        m_environment.comparisonSamples = ComparisonSamples::make;
        const auto sampled = optimize(source);
        ASSERT_TRUE(sampled && sampled->comparisonPreview);
        const auto output = platform::toPath(*sampled->outputURL);
        const std::string expected = test::textOf(output);
        std::filesystem::remove(output);
        const std::string samples = test::listing(m_workplace.temporary());

        m_environment.comparisonSamples = ComparisonSamples::leaveOut;
        const auto result = optimize(source);
        ASSERT_TRUE(result);
        EXPECT_FALSE(result->comparisonPreview);
        EXPECT_EQ(test::textOf(output), expected);
        EXPECT_EQ(test::listing(m_workplace.temporary()), samples);
    }
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

struct AlphaRow {
    const char* name;
    ColorModel model;
    AlphaInfo alpha;
    bool hasAlpha;
};

class OptimizeAlpha : public Optimize, public testing::WithParamInterface<AlphaRow> { };

TEST_P(OptimizeAlpha, ofTheSourceIsInTheAudit)
{
    const auto source = makeSource();
    const imaging::PixelLayout layout { GetParam().model, 8, GetParam().alpha };
    m_environment.openImage = test::openAs(source, test::gradient(test::oddSize, layout));
    m_settings.outputFormat = OutputFormat::png;
    for (const bool isDrawn : { true, false }) {
        m_settings.optimizeColorForSharing = isDrawn; // what is encoded then always has alpha
        const auto result = optimize(source);
        ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
        EXPECT_EQ(result->audit->sourceHasAlpha, GetParam().hasAlpha);
        EXPECT_TRUE(result->audit->outputSupportsAlpha);
    }
}

INSTANTIATE_TEST_SUITE_P(ImageOptimizer, OptimizeAlpha,
    testing::Values( //
        AlphaRow { "premultipliedLast", ColorModel::rgb, AlphaInfo::premultipliedLast, true },
        AlphaRow { "premultipliedFirst", ColorModel::rgb, AlphaInfo::premultipliedFirst, true },
        AlphaRow { "last", ColorModel::rgb, AlphaInfo::last, true },
        AlphaRow { "first", ColorModel::rgb, AlphaInfo::first, true },
        AlphaRow { "greyLast", ColorModel::grey, AlphaInfo::last, true },
        AlphaRow { "none", ColorModel::rgb, AlphaInfo::none, false },
        AlphaRow { "noneSkipFirst", ColorModel::rgb, AlphaInfo::noneSkipFirst, false },
        AlphaRow { "noneSkipLast", ColorModel::rgb, AlphaInfo::noneSkipLast, false },
        AlphaRow { "only", ColorModel::grey, AlphaInfo::only, false }),
    test::RowName());

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

TEST_F(Optimize, photographsInTheirOwnSizeGoFromPlanesToPlanes)
{
    const Image photo = test::syntheticPhoto({ 161, 99 });
    const imaging::EncodeOptions options { .quality = 0.82, .metadata = {} };
    const auto file = imaging::jpeg::encode(photo, options).value();
    writeFile(in("photo.jpg"), imaging::ByteSpan(file));
    const Image stored = test::readPicture(in("photo.jpg"));
    OptimizerSettings inItsColours = test::plainSettings(OutputFormat::jpeg);
    OptimizerSettings inSRgb = inItsColours;
    inSRgb.optimizeColorForSharing = true;
    for (const OptimizerSettings& settings : { inItsColours, inSRgb }) {
        m_settings = settings;
        m_settings.quality = 82;
        const auto result = optimize(in("photo.jpg"));
        ASSERT_TRUE(result) << localizedDescription(result.error()).toStdString();
        const Image written = test::readPicture(platform::toPath(*result->outputURL));
        EXPECT_GT(test::psnr(written, stored), 60.0); // 45 from rows
    }
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

TEST_F(Optimize, waitsForItsShareOfTheMemoryBeforeItDecodes)
{
    m_environment.memoryBudget = std::make_shared<MemoryBudget>(1);
    std::optional<MemoryBudget::Lease> lease = m_environment.memoryBudget->acquire(1);
    m_settings.warnBeforeOverwrite = true;
    test::writeFile(in("a.webp"), "old");
    std::promise<void> isDecoded;
    m_environment.confirmOverwrite = [&](const QUrl&) {
        isDecoded.set_value();
        return OverwriteDecision::replace;
    };
    const auto source = makeSource();
    auto result = std::async(std::launch::async, [&] { return optimize(source); });
    auto decoded = isDecoded.get_future();
    EXPECT_EQ(decoded.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    lease.reset();
    decoded.get();
    EXPECT_TRUE(result.get());
}

} // namespace
} // namespace vellumine
