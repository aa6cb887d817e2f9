// What a batch costs besides the conversions: finding pictures in a large tree, putting files in
// order, and the model's own work for a file. The counter "blocked_max_us" is the longest time for
// which the main thread's event loop did not come round.

#include "batch/FileInputResolver.h"
#include "batch/FolderAccessGrants.h"
#include "batch/ProcessingModel.h"
#include "pipeline/ConversionQueue.h"
#include "platform/FilePath.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace {

using namespace vellumine;

/// A tree of 2,000 folders with 100 files each, half of them pictures; removed at the end.
class LargeTree {
public:
    LargeTree()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vellumine-bench-XXXXXX");
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        m_root = name;
        for (int folder = 0; folder < 2000; ++folder) {
            const auto path = m_root / std::to_string(folder / 20) / std::to_string(folder % 20);
            std::filesystem::create_directories(path);
            for (int file = 0; file < 100; ++file) {
                std::ofstream(
                    path / ("IMG_" + std::to_string(file) + (file % 2 == 0 ? ".jpg" : ".txt")));
            }
        }
    }
    ~LargeTree()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_root, ignored);
    }
    LargeTree(const LargeTree&) = delete;
    LargeTree& operator=(const LargeTree&) = delete;

    [[nodiscard]] const std::filesystem::path& root() const { return m_root; }

private:
    std::filesystem::path m_root;
};

QList<QUrl> manyPictures(qsizetype count)
{
    QList<QUrl> urls;
    for (qsizetype i = 0; i < count; ++i) {
        urls.append(platform::fileUrl(
            QStringLiteral("/pictures/%1/IMG_%2.jpg").arg(i / 1000).arg(i % 1000)));
    }
    return urls;
}

void resolveLargeTree(benchmark::State& state)
{
    const LargeTree tree;
    platform::DesktopSecurityScope scope;
    for ([[maybe_unused]] auto iteration : state) {
        const QList<QUrl> found
            = FileInputResolver::imageURLs({ platform::fileUrl(tree.root()) }, scope);
        state.counters["found"] = static_cast<double>(found.size());
    }
    state.counters["entries"]
        = benchmark::Counter(202'100.0, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(resolveLargeTree)->Unit(benchmark::kMillisecond);

void orderFiles(benchmark::State& state)
{
    const QList<QUrl> urls = manyPictures(state.range(0));
    for ([[maybe_unused]] auto iteration : state) {
        ConversionQueue queue(std::vector<QUrl>(urls.begin(), urls.end()), {});
        benchmark::DoNotOptimize(queue.takeNext());
    }
}
BENCHMARK(orderFiles)->Arg(100'000)->Unit(benchmark::kMillisecond);

// On the main thread, once a batch.
void findParentFolders(benchmark::State& state)
{
    const QList<QUrl> urls = manyPictures(state.range(0));
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(FolderAccessGrants::uniqueParentFolders(urls));
    }
}
BENCHMARK(findParentFolders)->Arg(100'000)->Unit(benchmark::kMillisecond);

void runBatchOfNothing(benchmark::State& state)
{
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    const QList<QUrl> urls = manyPictures(state.range(0));
    std::vector<qint64> gaps;
    for ([[maybe_unused]] auto iteration : state) {
        ProcessingModel model({
            .snapshot = [] { return OptimizerSettings(); },
            .record = [](const ProcessingResult&) {},
            .optimize = [](const QUrl& url, const OptimizerSettings&,
                            const BatchTerms&) -> Outcome<ProcessingResult> {
                return failureResult(url, ImageOptimizerError(UnreadableImage {}));
            },
            .folderAccess = { .securityScope = std::make_shared<platform::DesktopSecurityScope>() },
            .activeProcessorCount = 2,
            .debounce = std::chrono::milliseconds(0),
        });
        QElapsedTimer clock;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, [&] {
            gaps.push_back(clock.nsecsElapsed());
            clock.start();
        });
        model.setOnComplete([] { QCoreApplication::quit(); });
        model.process(urls);
        clock.start();
        tick.start(0);
        QCoreApplication::exec();
    }
    std::sort(gaps.begin(), gaps.end());
    if (!gaps.empty()) {
        state.counters["blocked_max_us"] = static_cast<double>(gaps.back()) / 1000.0;
        state.counters["blocked_p99_us"]
            = static_cast<double>(gaps[gaps.size() * 99 / 100]) / 1000.0;
    }
    state.counters["files"] = benchmark::Counter(
        static_cast<double>(urls.size()), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(runBatchOfNothing)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
