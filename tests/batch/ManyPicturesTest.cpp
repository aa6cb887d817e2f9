#include "batch/ProcessingModel.h"
#include "imaging/ImageDestination.h"
#include "platform/FilePath.h"
#include "support/EventLoop.h"
#include "support/ProcessMemory.h"
#include "support/TestImages.h"

#include <QSet>
#include <QThread>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>

namespace vellumine::test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isInstrumented = true;
#else
constexpr bool isInstrumented = false;
#endif

/// Instrumented programs take longer and keep what was freed, which says nothing about memory.
constexpr qsizetype pictureCount = isInstrumented ? 1'000 : 10'000;
constexpr qsizetype warmUpCount = pictureCount / 10;

/// In bytes.
TEST(ManyPictures, areEachRecordedOnceInFlatMemory)
{
    // In memory where there is such a place: every output is synced, and disks take their time.
    const std::filesystem::path memory = "/dev/shm";
    const TemporaryFolder folder(
        ::access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path());
    const auto first = folder / "0.png";
    auto destination = imaging::ImageDestination::create(first, imaging::UniformType::png);
    ASSERT_TRUE(destination);
    destination->addImage(syntheticPhoto({ 16, 12 }), {});
    ASSERT_TRUE(destination->finalize());
    for (qsizetype i = 1; i < pictureCount; ++i) {
        std::filesystem::copy_file(first, folder / (std::to_string(i) + ".png"));
    }
    const auto output = folder / "output";
    std::filesystem::create_directory(output);

    OptimizerSettings settings;
    settings.outputFormat = OutputFormat::jpeg;
    settings.destinationMode = DestinationMode::selectedFolder;
    settings.destinationFolderURL = platform::fileUrl(output);
    QSet<QUrl> recorded;
    test::ProcessMemory early;
    ProcessingModel model({
        .snapshot = [&settings] { return settings; },
        .record =
            [&](const ProcessingResult& result) {
                EXPECT_TRUE(result.isSuccess) << result.message.toStdString();
                recorded.insert(result.sourceURL);
                if (recorded.size() == warmUpCount) {
                    early = test::ProcessMemory::now();
                }
            },
        .optimize = optimizeIn(ConversionEnvironment()),
        .folderAccess = { .securityScope = std::make_shared<platform::DesktopSecurityScope>() },
        .activeProcessorCount = QThread::idealThreadCount(),
        .debounce = std::chrono::milliseconds(0),
    });
    bool isComplete = false;
    model.setOnComplete([&] { isComplete = true; });
    model.process({ platform::fileUrl(folder.path()) });
    ASSERT_TRUE(runUntil([&] { return isComplete; }, std::chrono::minutes(10)));
    const test::ProcessMemory late = test::ProcessMemory::now();

    EXPECT_EQ(model.statusText(), QStringLiteral("Done"));
    EXPECT_EQ(model.results().size(), pictureCount);
    EXPECT_EQ(recorded.size(), pictureCount);
    using Iterator = std::filesystem::directory_iterator;
    EXPECT_EQ(std::distance(Iterator(output), Iterator()), pictureCount);
    if (!isInstrumented) {
        // What lives on is the results.
        const qint64 results = late.live - early.live;
        EXPECT_LT(results, 4'000 * (pictureCount - warmUpCount));
        EXPECT_LT(late.resident - early.resident - results, 20'000'000);
    }
}

} // namespace
} // namespace vellumine::test
