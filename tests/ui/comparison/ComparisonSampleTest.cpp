#include "ui/comparison/ComparisonSample.h"

#include "imaging/ImageDestination.h"
#include "platform/FilePath.h"
#include "support/QtPrinters.h"
#include "support/TestImages.h"

#include <QColor>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace vellumine {
namespace {

using imaging::Image;
using imaging::PixelLayout;
using imaging::Size;

/// Grants everything and counts.
class CountingScope final : public platform::SecurityScope {
public:
    [[nodiscard]] bool startAccessing(const QUrl& url) override
    {
        started.append(url);
        return true;
    }
    void stopAccessing(const QUrl& url) override { stopped.append(url); }

    QList<QUrl> started;
    QList<QUrl> stopped;
};

/// Red left of the middle and blue right of it, with one green pixel in the very middle.
Image marked(Size size)
{
    return test::makeImage(size, PixelLayout {}, [size](int x, int y, int channel) {
        if (x == size.width / 2 && y == size.height / 2) {
            return channel == 1 ? 1.0 : 0.0;
        }
        return channel == (x < size.width / 2 ? 0 : 2) ? 1.0 : 0.0;
    });
}

class ComparisonSampleTest : public testing::Test {
protected:
    QUrl write(
        const char* name, const Image& image, imaging::UniformType type = imaging::UniformType::png)
    {
        auto destination = imaging::ImageDestination::create(m_folder / name, type);
        EXPECT_TRUE(destination);
        destination->addImage(image, {});
        EXPECT_TRUE(destination->finalize());
        return platform::fileUrl(m_folder / name);
    }
    std::optional<ComparisonSample> compare(const QUrl& source, const QUrl& output)
    {
        return ComparisonSample::fromFiles(source, output, m_scope, openHere, {});
    }

    test::TemporaryFolder m_folder;
    CountingScope m_scope;
};

TEST_F(ComparisonSampleTest, largePicturesAreCutFromTheCentreOfEach)
{
    const auto sample
        = compare(write("a.png", marked({ 4000, 3000 })), write("b.png", marked({ 2000, 1500 })));
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->displaySize, QSizeF(720, 460));
    EXPECT_EQ(sample->sourcePixelSize, QSizeF(4000, 3000));
    EXPECT_EQ(sample->outputPixelSize, QSizeF(2000, 1500));
    EXPECT_EQ(sample->sourceName, QStringLiteral("a.png"));
    EXPECT_EQ(sample->outputName, QStringLiteral("b.png"));
    for (const QImage& image : { sample->sourceImage, sample->outputImage }) {
        ASSERT_EQ(image.size(), QSize(720, 460));
        EXPECT_EQ(image.pixelColor(360, 230), QColor(0, 255, 0));
        EXPECT_EQ(image.pixelColor(359, 230), QColor(255, 0, 0));
        EXPECT_EQ(image.pixelColor(361, 230), QColor(0, 0, 255));
    }
}

TEST_F(ComparisonSampleTest, theSmallerPictureLimitsTheSampleSideBySide)
{
    const auto sample
        = compare(write("a.png", marked({ 300, 200 })), write("b.png", marked({ 100, 900 })));
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->displaySize, QSizeF(100, 200));
    EXPECT_EQ(sample->sourceImage.size(), QSize(100, 200));
    EXPECT_EQ(sample->outputImage.size(), QSize(100, 200));
}

TEST_F(ComparisonSampleTest, aFileThatCannotBeReadFails)
{
    const QUrl good = write("a.png", marked({ 30, 20 }));
    test::writeFile(m_folder / "text.png", "no picture");
    const QUrl bad = platform::fileUrl(m_folder / "text.png");
    EXPECT_FALSE(compare(good, bad));
    EXPECT_FALSE(compare(bad, good));
    EXPECT_FALSE(compare(good, platform::fileUrl(m_folder / "missing.png")));
}

TEST_F(ComparisonSampleTest, everyAccessThatStartedIsStopped)
{
    const QUrl good = write("a.png", marked({ 30, 20 }));
    const QUrl missing = platform::fileUrl(m_folder / "missing.png");
    EXPECT_FALSE(compare(good, missing));
    EXPECT_EQ(m_scope.started, (QList<QUrl> { good, missing }));
    EXPECT_EQ(m_scope.stopped, (QList<QUrl> { missing, good }));
}

/// A JPEG file with an orientation put behind its start marker, as cameras write it.
void setOrientation(const std::filesystem::path& path, char orientation)
{
    const std::string exif { '\xff', '\xe1', 0, 34, 'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0,
        0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, orientation, 0, 0, 0, 0, 0, 0, 0 };
    const imaging::ByteBuffer file = test::readFile(path);
    std::string bytes(file.size(), '\0');
    std::memcpy(bytes.data(), file.data(), file.size());
    test::writeFile(path, bytes.insert(2, exif));
}

TEST_F(ComparisonSampleTest, aRotatedJpegIsComparedUpright)
{
    // stored red at the left and blue at the right: turned clockwise, red is at the top
    const QUrl source = write("a.jpg", marked({ 64, 32 }), imaging::UniformType::jpeg);
    setOrientation(m_folder / "a.jpg", 6);
    const auto sample = compare(source, write("b.png", marked({ 32, 64 })));
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->sourcePixelSize, QSizeF(32, 64));
    EXPECT_EQ(sample->displaySize, QSizeF(32, 64));
    EXPECT_GT(sample->sourceImage.pixelColor(16, 8).red(), 200);
    EXPECT_GT(sample->sourceImage.pixelColor(16, 56).blue(), 200);
}

TEST_F(ComparisonSampleTest, greyAndTransparentPicturesAreDrawnToo)
{
    const auto grey = test::flat({ 8, 8 }, { .model = imaging::ColorModel::grey }, { 1.0 });
    const auto clear
        = test::flat({ 8, 8 }, { .alpha = imaging::AlphaInfo::last }, { 1.0, 0.0, 0.0, 0.0 });
    const auto sample = compare(write("a.png", grey), write("b.png", clear));
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->sourceImage.pixelColor(4, 4), QColor(255, 255, 255));
    EXPECT_EQ(sample->outputImage.pixelColor(4, 4).alpha(), 0);
}

TEST_F(ComparisonSampleTest, aPreviewGivesItsSamplesNamesAndSizes)
{
    const ComparisonPreview preview {
        .sourceSampleURL = write("s.png", marked({ 40, 30 })),
        .outputSampleURL = write("o.png", marked({ 40, 30 })),
        .sourceName = QStringLiteral("photo.jpg"),
        .outputName = QStringLiteral("photo.webp"),
        .sourcePixelSize = { 400, 300 },
        .outputPixelSize = { 200, 150 },
        .displaySize = { 40, 30 },
    };
    const auto sample = ComparisonSample::fromPreview(preview);
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->sourceImage.size(), QSize(40, 30));
    EXPECT_EQ(sample->outputImage.pixelColor(20, 15), QColor(0, 255, 0));
    EXPECT_EQ(sample->sourceName, QStringLiteral("photo.jpg"));
    EXPECT_EQ(sample->outputPixelSize, QSizeF(200, 150));
    EXPECT_EQ(sample->displaySize, QSizeF(40, 30));

    ComparisonPreview gone = preview;
    gone.outputSampleURL = platform::fileUrl(m_folder / "missing.png");
    EXPECT_FALSE(ComparisonSample::fromPreview(gone));
}

} // namespace
} // namespace vellumine
