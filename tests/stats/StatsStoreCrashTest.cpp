#include "stats/StatsStore.h"

#include "stats/Results.h"
#include "support/FakeProgram.h"
#include "support/TestImages.h"

#include <QFile>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string_view>

namespace vellumine {
namespace {

/// A process that records one file after the other, without end, until it is killed.
class RecordingProcess {
public:
    explicit RecordingProcess(const QString& folder)
    {
        if (::pipe(m_pipe.data()) != 0) {
            qFatal("no pipe");
        }
        m_process = ::fork();
        if (m_process == 0) {
            ::close(m_pipe.at(0));
            recordForever(folder);
        }
        ::close(m_pipe.at(1));
    }
    ~RecordingProcess()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        ::close(m_pipe.at(0));
    }
    RecordingProcess(const RecordingProcess&) = delete;
    RecordingProcess& operator=(const RecordingProcess&) = delete;

    /// Returns once another record has ended.
    [[nodiscard]] bool waitForRecord() const
    {
        char note = 0;
        return ::read(m_pipe.at(0), &note, 1) == 1;
    }

private:
    [[noreturn]] void recordForever(const QString& folder) const
    {
        StatsStore store(folder);
        for (qint64 round = 0;; ++round) {
            // Lengths change, so that a mixture of two states could not be read.
            store.record(test::success(qint64 { 1 } << (round % 40), 0));
            if (::write(m_pipe.at(1), "r", 1) != 1) {
                ::_exit(1);
            }
        }
    }

    std::array<int, 2> m_pipe {};
    pid_t m_process = -1;
};

std::optional<LifetimeStats> readStats(const QString& folder)
{
    QFile file(folder + QStringLiteral("/stats.json"));
    return file.open(QIODevice::ReadOnly) ? lifetimeStatsFromJson(file.readAll()) : std::nullopt;
}

TEST(StatsStoreCrash, killingTheProcessAtAnyMomentLeavesAWholeFile)
{
    const test::TemporaryFolder temporary;
    const QString folder = QFile::decodeName(temporary.path().c_str());
    qint64 seen = 0;
    for (int round = 0; round < 25; ++round) {
        {
            const RecordingProcess process(folder);
            for (int records = 0; records <= round * 3; ++records) {
                ASSERT_TRUE(process.waitForRecord());
                ++seen;
            }
        }
        const auto stats = readStats(folder);
        ASSERT_TRUE(stats.has_value()) << "round " << round;
        EXPECT_GE(stats->filesProcessed, seen);
        seen = stats->filesProcessed;
    }
}

TEST(StatsStoreCrash, aReaderNeverSeesAHalfWrittenFile)
{
    const test::TemporaryFolder temporary;
    const QString folder = QFile::decodeName(temporary.path().c_str());
    const RecordingProcess process(folder);
    ASSERT_TRUE(process.waitForRecord());
    qint64 last = 0;
    for (int reads = 0; reads < 2000; ++reads) {
        const auto stats = readStats(folder);
        ASSERT_TRUE(stats.has_value());
        EXPECT_GE(stats->filesProcessed, last);
        last = stats->filesProcessed;
        if (reads % 20 == 0) {
            ASSERT_TRUE(process.waitForRecord());
        }
    }
}

TEST(StatsStoreCrash, aReaderNeverSeesAMixtureOfTwoProcesses)
{
    const test::TemporaryFolder temporary;
    const QString folder = QFile::decodeName(temporary.path().c_str());
    const RecordingProcess one(folder);
    const RecordingProcess other(folder);
    ASSERT_TRUE(one.waitForRecord());
    for (int reads = 0; reads < 4000; ++reads) {
        ASSERT_TRUE(readStats(folder).has_value()) << "read " << reads;
        if (reads % 20 == 0) {
            ASSERT_TRUE(one.waitForRecord());
            ASSERT_TRUE(other.waitForRecord());
        }
    }
}

TEST(StatsStoreCrash, theNextStartRemovesWhatAKilledProcessLeft)
{
    const test::TemporaryFolder temporary;
    const QString folder = QFile::decodeName(temporary.path().c_str());
    for (const char* name : { "stats.json.Xb3kQ9.part", "stats.json.young.part", "other.part" }) {
        test::writeFile(temporary / name, std::string_view("{"));
        if (std::string_view(name) != "stats.json.young.part") {
            std::filesystem::last_write_time(temporary / name,
                std::filesystem::file_time_type::clock::now() - std::chrono::hours(2));
        }
    }
    StatsStore(folder).record(test::success(1000, 400));
    EXPECT_EQ(test::listing(temporary.path()), "other.part stats.json stats.json.young.part");
}

} // namespace
} // namespace vellumine
