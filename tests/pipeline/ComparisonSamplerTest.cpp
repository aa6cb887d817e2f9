#include "pipeline/ComparisonSampler.h"

#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "platform/FilePath.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vellumine {
namespace {

using imaging::AlphaInfo;
using imaging::ColorModel;
using imaging::Image;
using imaging::Rect;
using imaging::Size;
using imaging::UniformType;
using test::urlOf;
using ReadBack = ComparisonSampler::ReadBack;

constexpr imaging::PixelLayout rgb8 { ColorModel::Rgb, 8, AlphaInfo::None };

class Sampler : public testing::Test {
protected:
    ComparisonSampler::Comparison compare(
        const Image& oriented, const Image& encoded, ReadBack readBack = ReadBack::SampleOnly)
    {
        return ComparisonSampler(oriented, encoded)
            .compare(
                urlOf("/from/source.jpg"), urlOf(output()), readBack, {}, workplace.temporary());
    }

    [[nodiscard]] std::filesystem::path output() const { return workplace.pictures() / "out.bmp"; }

    static Image sample(const QUrl& url) { return test::readPicture(platform::toPath(url)); }

    test::Workplace workplace;
};

TEST_F(Sampler, smallPictureIsSampledWhole)
{
    const Image image = test::gradient({ 100, 50 }, rgb8);
    test::writePicture(output(), image, UniformType::Bmp);
    const auto preview = compare(image, image).preview;
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->displaySize, QSizeF(100, 50));
    EXPECT_EQ(preview->sourcePixelSize, QSizeF(100, 50));
    EXPECT_EQ(preview->outputPixelSize, QSizeF(100, 50));
    EXPECT_EQ(preview->sourceName, QStringLiteral("source.jpg"));
    EXPECT_EQ(preview->outputName, QStringLiteral("out.bmp"));
    EXPECT_EQ(test::maximumDifference(sample(preview->sourceSampleURL), image), 0.0);
    EXPECT_EQ(test::maximumDifference(sample(preview->outputSampleURL), image), 0.0);
}

TEST_F(Sampler, largePictureIsSampledInTheMiddle)
{
    const Image image = test::gradient({ 3000, 2000 }, rgb8);
    test::writePicture(output(), image, UniformType::Bmp);
    const auto preview = compare(image, image).preview;
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->displaySize, QSizeF(720, 460));
    const Image middle = image.cropped(Rect { 1140, 770, 720, 460 });
    EXPECT_EQ(test::maximumDifference(sample(preview->sourceSampleURL), middle), 0.0);
    EXPECT_EQ(test::maximumDifference(sample(preview->outputSampleURL), middle), 0.0);
}

TEST_F(Sampler, sampleIsNoLargerThanTheSmallerPicture)
{
    const Image oriented = test::gradient({ 801, 601 }, rgb8);
    const Image encoded = test::gradient({ 200, 150 }, rgb8);
    test::writePicture(output(), encoded, UniformType::Bmp);
    const auto preview = compare(oriented, encoded).preview;
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->displaySize, QSizeF(200, 150));
    EXPECT_EQ(preview->sourcePixelSize, QSizeF(801, 601));
    EXPECT_EQ(preview->outputPixelSize, QSizeF(200, 150));
    EXPECT_EQ(test::maximumDifference(
                  sample(preview->sourceSampleURL), oriented.cropped(Rect { 300, 225, 200, 150 })),
        0.0);
}

TEST_F(Sampler, fileOfAnotherSizeThanWasEncodedIsSampledAsItIs)
{
    const Image oriented = test::gradient({ 301, 201 }, rgb8);
    const Image written = test::gradient({ 90, 61 }, rgb8);
    test::writePicture(output(), written, UniformType::Bmp);
    const auto comparison = compare(oriented, oriented, ReadBack::Whole);
    ASSERT_TRUE(comparison.preview);
    EXPECT_FALSE(comparison.isReadBack);
    EXPECT_EQ(comparison.preview->outputPixelSize, QSizeF(90, 61));
    EXPECT_EQ(comparison.preview->displaySize, QSizeF(90, 61));
    EXPECT_EQ(test::maximumDifference(sample(comparison.preview->sourceSampleURL),
                  oriented.cropped(Rect { 105, 70, 90, 61 })),
        0.0);
}

TEST_F(Sampler, unreadableOutputIsSampledFromTheEncodedPicture)
{
    const Image image = test::gradient({ 100, 50 }, rgb8);
    test::writeFile(output(), "no picture");
    for (const ReadBack readBack : { ReadBack::SampleOnly, ReadBack::Whole }) {
        const auto comparison = compare(image, image, readBack);
        ASSERT_TRUE(comparison.preview);
        EXPECT_FALSE(comparison.isReadBack);
        EXPECT_EQ(comparison.preview->outputPixelSize, QSizeF(100, 50));
        EXPECT_EQ(test::maximumDifference(sample(comparison.preview->outputSampleURL), image), 0.0);
    }
}

TEST_F(Sampler, onlyAWholeReadingIsAProof)
{
    const Image image = test::gradient({ 100, 50 }, rgb8);
    test::writePicture(output(), image, UniformType::Bmp);
    EXPECT_TRUE(compare(image, image, ReadBack::Whole).isReadBack);
    EXPECT_FALSE(compare(image, image, ReadBack::SampleOnly).isReadBack);
}

TEST_F(Sampler, withoutAFolderThereIsNoPreview)
{
    const Image image = test::gradient({ 10, 5 }, rgb8);
    test::writePicture(output(), image, UniformType::Bmp);
    std::filesystem::remove(workplace.temporary());
    EXPECT_EQ(compare(image, image).preview, std::nullopt);
}

TEST_F(Sampler, previewSampleIsNamedByACapitalUuid)
{
    const auto url = ImageOptimizer::writePreviewSample(
        test::gradient({ 10, 5 }, rgb8), workplace.temporary());
    ASSERT_TRUE(url);
    const std::string name = platform::toPath(*url).filename().string();
    ASSERT_TRUE(name.starts_with("vellumine-preview-"));
    ASSERT_TRUE(name.ends_with(".png"));
    const QString uuid = QString::fromStdString(name).sliced(18, 36);
    EXPECT_EQ(QUuid::fromString(uuid).toString(QUuid::WithoutBraces).toUpper(), uuid);
}

TEST(Decoded, isNothingForWhatIsNoPicture)
{
    const test::TemporaryFolder folder;
    test::writeFile(folder / "a.png", "no picture");
    EXPECT_FALSE(ImageOptimizer::decoded(urlOf(folder / "a.png"), {}));
    EXPECT_FALSE(ImageOptimizer::decoded(urlOf(folder / "none"), {}));
}

} // namespace
} // namespace vellumine
