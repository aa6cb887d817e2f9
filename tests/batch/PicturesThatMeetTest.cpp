#include "batch/ProcessingModel.h"
#include "imaging/ImageDestination.h"
#include "imaging/ImageSource.h"
#include "platform/FilePath.h"
#include "support/EventLoop.h"
#include "support/NamedRows.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace vellumine::test {
namespace {

using imaging::UniformType;

struct Picture {
    std::string name;
    UniformType type;
};

struct Meeting {
    const char* name;
    OutputFormat format;
    std::vector<Picture> pictures;
    const char* suffix = "";
};

/// Batches in which outputs go where other pictures stand. The folder "l" is a link to "w".
class PicturesThatMeet : public testing::TestWithParam<Meeting> {
protected:
    /// Each with a width of its own; the position tells it.
    static int widthOf(std::size_t position) { return 20 + static_cast<int>(position); }

    QList<QUrl> written() const
    {
        std::filesystem::create_directory(m_folder / "w");
        std::filesystem::create_directory_symlink("w", m_folder / "l");
        QList<QUrl> urls;
        for (std::size_t i = 0; i < GetParam().pictures.size(); ++i) {
            const auto& [name, type] = GetParam().pictures.at(i);
            const auto path = m_folder / name;
            if (!std::filesystem::exists(path)) {
                auto destination = imaging::ImageDestination::create(path, type).value();
                destination.addImage(syntheticPhoto({ widthOf(i), 12 }), {});
                EXPECT_TRUE(destination.finalize());
            }
            urls.append(platform::fileUrl(path));
        }
        return urls;
    }

    void convert(const QList<QUrl>& urls) const
    {
        OptimizerSettings settings;
        settings.outputFormat = GetParam().format;
        settings.resizeMode = ResizeMode::none;
        settings.filenameSuffix = QString::fromLatin1(GetParam().suffix);
        ConversionEnvironment environment;
        environment.comparisonSamples = ComparisonSamples::leaveOut;
        ProcessingModel model({
            .snapshot = [&settings] { return settings; },
            .record =
                [](const ProcessingResult& result) {
                    EXPECT_TRUE(result.isSuccess) << result.message.toStdString();
                },
            .optimize = optimizeIn(environment),
            .folderAccess = { .securityScope = std::make_shared<platform::DesktopSecurityScope>() },
            .activeProcessorCount = 4,
            .debounce = std::chrono::milliseconds(0),
        });
        bool isComplete = false;
        model.setOnComplete([&] { isComplete = true; });
        model.process(urls);
        ASSERT_TRUE(runUntil([&] { return isComplete; }, std::chrono::minutes(1)));
        EXPECT_EQ(model.results().size(), urls.size());
    }

    std::set<int> widthsFound() const
    {
        std::set<int> widths;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder / "w")) {
            const auto source = imaging::ImageSource::create(entry.path(), {});
            EXPECT_TRUE(source) << entry.path();
            widths.insert(source->storedSize().width);
        }
        return widths;
    }

    const TemporaryFolder m_folder;
};

TEST_P(PicturesThatMeet, areAllStillThere)
{
    const QList<QUrl> urls = written();
    const std::set<int> before = widthsFound();
    convert(urls);
    EXPECT_EQ(widthsFound(), before);
}

constexpr UniformType jpeg = UniformType::jpeg;
constexpr UniformType png = UniformType::png;

INSTANTIATE_TEST_SUITE_P(Names, PicturesThatMeet,
    testing::Values(Meeting { "upperCaseFirst", OutputFormat::jpeg,
                        { { "w/a.JPG", jpeg }, { "w/a.jpg", jpeg } } },
        Meeting {
            "upperCaseLast", OutputFormat::jpeg, { { "w/a.jpg", jpeg }, { "w/a.JPG", jpeg } } },
        Meeting { "upperCasePng", OutputFormat::png, { { "w/a.PNG", png }, { "w/a.png", png } } },
        Meeting { "ownExtensions", OutputFormat::original,
            { { "w/a.jpg", jpeg }, { "w/a.jpeg", jpeg }, { "w/a.png", png } } },
        Meeting { "circle", OutputFormat::original, { { "w/a.png", jpeg }, { "w/a.jpeg", png } } },
        Meeting { "besideACircle", OutputFormat::original,
            { { "w/a.jpg", jpeg }, { "w/a.png", jpeg }, { "w/a.jpeg", png } } },
        Meeting { "suffix", OutputFormat::png,
            { { "w/a.png", png }, { "w/a_s.png", png }, { "w/a_s_s.png", png } }, "_s" },
        Meeting {
            "marked", OutputFormat::png, { { "w/a.png", png }, { "w/a-optimized.png", png } } },
        Meeting { "ofAnEarlierBatch", OutputFormat::jpeg,
            { { "w/a.jpg", jpeg }, { "w/a.png", png }, { "w/a-optimized.png", png } } },
        Meeting { "ofAnEarlierBatchFirst", OutputFormat::jpeg,
            { { "w/a.jpg", jpeg }, { "w/a-optimized.png", png }, { "w/a.png", png } } },
        Meeting { "withItsOutputsName", OutputFormat::png,
            { { "w/b-optimized.png", png }, { "w/b-optimized.jpg", jpeg }, { "w/b.jpg", jpeg } },
            "-optimized" },
        Meeting { "byTwoNames", OutputFormat::jpeg,
            { { "w/a.png", png }, { "w/a.jpg", jpeg }, { "l/a.png", png }, { "l/a.jpg", jpeg } } }),
    RowName {});

} // namespace
} // namespace vellumine::test
