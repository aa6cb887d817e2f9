// A batch of many small pictures, converted for real, as a window's model runs it: with the
// lifetime totals saved after every file. Counters:
//   blocked_max_ms, blocked_p99_ms  how long the main thread's event loop did not come round
//   model_ms                        CPU time a file beyond that of the conversion itself
//   grown_mb, live_mb               resident memory and what is in use of the heap, at the end
//   against
//                                   that after 1,000 files: the second is the results themselves

#include "batch/ProcessingModel.h"
#include "imaging/ImageDestination.h"
#include "platform/FilePath.h"
#include "stats/StatsStore.h"
#include "support/ProcessMemory.h"
#include "support/TestImages.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace {

using namespace vellumine;

qint64 cpuNanoseconds(clockid_t clock)
{
    timespec time {};
    clock_gettime(clock, &time);
    return qint64 { time.tv_sec } * 1'000'000'000 + time.tv_nsec;
}

double megabytes(std::int64_t bytes)
{
    return static_cast<double>(bytes) / 1e6;
}

/// A folder of equal small photos, and one for what becomes of them.
class Pictures {
public:
    explicit Pictures(qint64 count)
    {
        const auto first = m_folder / "0.jpg";
        auto destination = imaging::ImageDestination::create(first, imaging::UniformType::jpeg);
        destination->addImage(test::syntheticPhoto({ 64, 48 }), {});
        if (!destination->finalize()) {
            throw std::runtime_error("no picture");
        }
        m_urls.append(platform::fileUrl(first));
        for (qint64 i = 1; i < count; ++i) {
            const auto path = m_folder / (std::to_string(i) + ".jpg");
            std::filesystem::copy_file(first, path);
            m_urls.append(platform::fileUrl(path));
        }
        std::filesystem::create_directory(m_folder / "output");
    }

    [[nodiscard]] const QList<QUrl>& urls() const { return m_urls; }
    [[nodiscard]] QString dataFolder() const
    {
        return QFile::decodeName((m_folder / "data").c_str());
    }
    [[nodiscard]] OptimizerSettings settings(OutputFormat format) const
    {
        OptimizerSettings settings;
        settings.outputFormat = format;
        settings.destinationMode = DestinationMode::selectedFolder;
        settings.destinationFolderURL = platform::fileUrl(m_folder / "output");
        return settings;
    }

private:
    test::TemporaryFolder m_folder;
    QList<QUrl> m_urls;
};

/// Times how long the event loop takes to come round.
class Ticker {
public:
    Ticker()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_gaps.push_back(static_cast<double>(m_clock.nsecsElapsed()) / 1e6);
            m_clock.start();
        });
    }

    void start()
    {
        m_clock.start();
        m_timer.start(1);
    }

    void report(benchmark::State& state)
    {
        std::sort(m_gaps.begin(), m_gaps.end());
        state.counters["blocked_max_ms"] = m_gaps.back();
        state.counters["blocked_p99_ms"] = m_gaps[m_gaps.size() * 99 / 100];
    }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    std::vector<double> m_gaps;
};

void convertManyPictures(benchmark::State& state, OutputFormat format)
{
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    const Pictures pictures(state.range(0));
    Ticker ticker;
    std::atomic<qint64> converting = 0;
    test::ProcessMemory early;
    ConversionEnvironment environment;
    environment.executableFolder
        = QFile::encodeName(QCoreApplication::applicationDirPath()).toStdString();
    const qint64 before = cpuNanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    for ([[maybe_unused]] auto iteration : state) {
        StatsStore stats(pictures.dataFolder());
        qint64 recorded = 0;
        ProcessingModel model({
            .snapshot = [&] { return pictures.settings(format); },
            .record =
                [&](const ProcessingResult& result) {
                    stats.record(result);
                    if (++recorded == 1000) {
                        early = test::ProcessMemory::now();
                    }
                    if (!result.isSuccess) {
                        state.SkipWithError(qUtf8Printable(result.message));
                    }
                },
            .optimize =
                [&, optimize = optimizeIn(environment)](
                    const QUrl& url, const OptimizerSettings& settings, const BatchTerms& terms) {
                    const qint64 start = cpuNanoseconds(CLOCK_THREAD_CPUTIME_ID);
                    auto result = optimize(url, settings, terms);
                    converting += cpuNanoseconds(CLOCK_THREAD_CPUTIME_ID) - start;
                    return result;
                },
            .folderAccess = { .securityScope = std::make_shared<platform::DesktopSecurityScope>() },
            .activeProcessorCount = QThread::idealThreadCount(),
            .debounce = std::chrono::milliseconds(0),
        });
        model.setOnComplete([] { QCoreApplication::quit(); });
        model.process(pictures.urls());
        ticker.start();
        QCoreApplication::exec();
        const test::ProcessMemory late = test::ProcessMemory::now();
        state.counters["grown_mb"] = megabytes(late.resident - early.resident);
        state.counters["live_mb"] = megabytes(late.live - early.live);
    }
    const qint64 total = cpuNanoseconds(CLOCK_PROCESS_CPUTIME_ID) - before;
    const auto files = static_cast<double>(state.iterations() * state.range(0));
    state.counters["model_ms"] = static_cast<double>(total - converting) / 1e6 / files;
    ticker.report(state);
}
BENCHMARK_CAPTURE(convertManyPictures, webp, OutputFormat::webp)
    ->Arg(2'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(convertManyPictures, jpeg, OutputFormat::jpeg)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

} // namespace
