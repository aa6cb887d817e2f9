#include "pipeline/ComparisonSampler.h"

#include "pipeline/GivenPicture.h"
#include "pipeline/ImageOptimizer.h"
#include "pipeline/Workplace.h"
#include "platform/FilePath.h"
#include "support/FakeProgram.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

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

constexpr imaging::PixelLayout rgb8 { ColorModel::rgb, 8, AlphaInfo::none };

/// A picture in which no two places near each other are alike, made faster than by a function.
Image pattern(Size size)
{
    auto buffer = imaging::PixelBuffer::create(size, rgb8).value();
    for (int y = 0; y < size.height; ++y) {
        std::uint8_t* row = buffer.row8(y);
        for (int i = 0; i < 3 * size.width; ++i) {
            row[i] = static_cast<std::uint8_t>(i / 3 + 2 * y + 85 * (i % 3));
        }
    }
    return { std::move(buffer), imaging::ColorSpace::sRgb() };
}

/// Whether both have the same pixels.
bool areEqual(const Image& a, const Image& b)
{
    if (a.size() != b.size() || a.layout() != b.layout()) {
        return false;
    }
    for (int y = 0; y < a.height(); ++y) {
        if (!std::ranges::equal(a.row(y), b.row(y))) {
            return false;
        }
    }
    return true;
}

class Sampler : public testing::Test {
protected:
    ComparisonSampler::Comparison compare(
        const Image& oriented, const Image& encoded, ReadBack readBack = ReadBack::sampleOnly)
    {
        return compare(ComparisonSampler(oriented, encoded, ComparisonSamples::make), readBack);
    }
    ComparisonSampler::Comparison compare(const ComparisonSampler& sampler, ReadBack readBack)
    {
        return sampler.compare(
            urlOf("/from/source.jpg"), urlOf(output()), readBack, m_workplace.environment());
    }

    [[nodiscard]] std::filesystem::path output() const
    {
        return m_workplace.pictures() / "out.bmp";
    }

    static Image sample(const QUrl& url) { return test::readPicture(platform::toPath(url)); }

    test::Workplace m_workplace;
};

TEST_F(Sampler, smallPictureIsSampledWhole)
{
    const Image image = pattern({ 100, 50 });
    test::writePicture(output(), image, UniformType::bmp);
    const auto preview = compare(image, image).preview;
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->displaySize, QSizeF(100, 50));
    EXPECT_EQ(preview->sourcePixelSize, QSizeF(100, 50));
    EXPECT_EQ(preview->outputPixelSize, QSizeF(100, 50));
    EXPECT_EQ(preview->sourceName, QStringLiteral("source.jpg"));
    EXPECT_EQ(preview->outputName, QStringLiteral("out.bmp"));
    EXPECT_TRUE(areEqual(sample(preview->sourceSampleURL), image));
    EXPECT_TRUE(areEqual(sample(preview->outputSampleURL), image));
}

TEST_F(Sampler, largePictureIsSampledInTheMiddle)
{
    const Image image = pattern({ 3000, 2000 });
    test::writePicture(output(), image, UniformType::bmp);
    const auto preview = compare(image, image).preview;
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->displaySize, QSizeF(720, 460));
    const Image middle = image.cropped(Rect { 1140, 770, 720, 460 });
    EXPECT_TRUE(areEqual(sample(preview->sourceSampleURL), middle));
    EXPECT_TRUE(areEqual(sample(preview->outputSampleURL), middle));
}

TEST_F(Sampler, sampleIsNoLargerThanTheSmallerPicture)
{
    const Image oriented = pattern({ 801, 601 });
    const Image encoded = pattern({ 200, 150 });
    test::writePicture(output(), encoded, UniformType::bmp);
    const auto preview = compare(oriented, encoded).preview;
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->displaySize, QSizeF(200, 150));
    EXPECT_EQ(preview->sourcePixelSize, QSizeF(801, 601));
    EXPECT_EQ(preview->outputPixelSize, QSizeF(200, 150));
    EXPECT_TRUE(
        areEqual(sample(preview->sourceSampleURL), oriented.cropped(Rect { 300, 225, 200, 150 })));
}

TEST_F(Sampler, fileOfAnotherSizeThanWasEncodedIsSampledAsItIs)
{
    const Image oriented = pattern({ 301, 201 });
    const Image written = pattern({ 90, 61 });
    test::writePicture(output(), written, UniformType::bmp);
    const auto comparison = compare(oriented, oriented, ReadBack::whole);
    ASSERT_TRUE(comparison.preview);
    EXPECT_FALSE(comparison.isReadBack);
    EXPECT_EQ(comparison.preview->outputPixelSize, QSizeF(90, 61));
    EXPECT_EQ(comparison.preview->displaySize, QSizeF(90, 61));
    EXPECT_TRUE(areEqual(
        sample(comparison.preview->sourceSampleURL), oriented.cropped(Rect { 105, 70, 90, 61 })));
}

TEST_F(Sampler, unreadableOutputIsSampledFromTheEncodedPicture)
{
    const Image image = pattern({ 100, 50 });
    test::writeFile(output(), "no picture");
    for (const ReadBack readBack : { ReadBack::sampleOnly, ReadBack::whole }) {
        const auto comparison = compare(image, image, readBack);
        ASSERT_TRUE(comparison.preview);
        EXPECT_FALSE(comparison.isReadBack);
        EXPECT_EQ(comparison.preview->outputPixelSize, QSizeF(100, 50));
        EXPECT_TRUE(areEqual(sample(comparison.preview->outputSampleURL), image));
    }
}

TEST_F(Sampler, whatTheEncoderKnowsIsNotReadAgain)
{
    const Image image = pattern({ 1000, 700 });
    ComparisonSampler sampler(image, image, ComparisonSamples::make);
    EXPECT_EQ(sampler.encodedPart()->size(), ComparisonSampler::largest);
    const Image known = pattern({ 1440, 920 }).cropped({ 720, 460, 720, 460 });
    sampler.setWrittenPart(known);
    const auto comparison = compare(sampler, ReadBack::sampleOnly);
    ASSERT_TRUE(comparison.preview);
    EXPECT_FALSE(comparison.isReadBack);
    EXPECT_EQ(comparison.preview->outputPixelSize, QSizeF(1000, 700));
    EXPECT_TRUE(areEqual(sample(comparison.preview->outputSampleURL), known));
}

TEST_F(Sampler, aProofIsReadWhateverTheEncoderKnows)
{
    const Image image = pattern({ 100, 50 });
    test::writePicture(output(), image, UniformType::bmp);
    ComparisonSampler sampler(image, image, ComparisonSamples::make);
    sampler.setWrittenPart(pattern({ 200, 50 }).cropped({ 100, 0, 100, 50 }));
    const auto comparison = compare(sampler, ReadBack::whole);
    EXPECT_TRUE(comparison.isReadBack);
    ASSERT_TRUE(comparison.preview);
    EXPECT_TRUE(areEqual(sample(comparison.preview->outputSampleURL), image));
}

TEST_F(Sampler, onlyAWholeReadingIsAProof)
{
    const Image image = pattern({ 100, 50 });
    test::writePicture(output(), image, UniformType::bmp);
    EXPECT_TRUE(compare(image, image, ReadBack::whole).isReadBack);
    EXPECT_FALSE(compare(image, image, ReadBack::sampleOnly).isReadBack);
}

TEST_F(Sampler, withoutSamplesOnlyAProofIsRead)
{
    const Image image = pattern({ 60, 40 });
    const ComparisonSampler sampler(image, image, ComparisonSamples::leaveOut);
    EXPECT_FALSE(sampler.encodedPart());
    test::writePicture(output(), image, UniformType::bmp);
    EXPECT_FALSE(compare(sampler, ReadBack::sampleOnly).isReadBack);
    const auto proof = compare(sampler, ReadBack::whole);
    EXPECT_TRUE(proof.isReadBack);
    EXPECT_FALSE(proof.preview);
    test::writeFile(output(), "no picture");
    EXPECT_FALSE(compare(sampler, ReadBack::whole).isReadBack);
    EXPECT_EQ(test::listing(m_workplace.temporary()), "");
}

TEST_F(Sampler, withoutAFolderThereIsNoPreview)
{
    const Image image = pattern({ 10, 5 });
    test::writePicture(output(), image, UniformType::bmp);
    std::filesystem::remove(m_workplace.temporary());
    EXPECT_EQ(compare(image, image).preview, std::nullopt);
}

TEST_F(Sampler, theFirstSampleStaysWhereTheSecondCannotBeWritten)
{
    const Image image = pattern({ 30, 20 });
    ComparisonSampler sampler(image, image, ComparisonSamples::make);
    sampler.setWrittenPart(test::lost(image));
    EXPECT_EQ(compare(sampler, ReadBack::sampleOnly).preview, std::nullopt);
    const std::string name = test::listing(m_workplace.temporary());
    ASSERT_TRUE(name.starts_with("vellumine-preview-")) << name;
    ASSERT_EQ(name.find(' '), std::string::npos) << name;
    EXPECT_TRUE(areEqual(test::readPicture(m_workplace.temporary() / name), image));
}

TEST_F(Sampler, withoutTheFirstSampleThereIsNoSecond)
{
    const Image image = pattern({ 30, 20 });
    ComparisonSampler sampler(test::lost(image), image, ComparisonSamples::make);
    sampler.setWrittenPart(image);
    EXPECT_EQ(compare(sampler, ReadBack::sampleOnly).preview, std::nullopt);
    EXPECT_EQ(test::listing(m_workplace.temporary()), "");
}

TEST_F(Sampler, previewSampleIsNamedByACapitalUuid)
{
    const auto url
        = ImageOptimizer::writePreviewSample(pattern({ 10, 5 }), m_workplace.temporary());
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
