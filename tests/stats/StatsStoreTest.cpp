#include "stats/StatsStore.h"
#include "stats/Results.h"
#include "stats/StatsFolder.h"
#include "support/TestImages.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTimeZone>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <limits>

namespace vellumine {
namespace {

using test::success;
using ::testing::SizeIs;
namespace fs = std::filesystem;

constexpr qint64 largest = std::numeric_limits<qint64>::max();

QDateTime moment(int second)
{
    return { QDate(2026, 3, 1), QTime(14, 5, second), QTimeZone::utc() };
}

ProcessingResult failure()
{
    ProcessingResult result;
    result.originalBytes = 700; // never so in practice: failures must not count in any case
    result.outputBytes = 300;
    return result;
}

class Stats : public testing::Test {
protected:
    [[nodiscard]] fs::path file() const { return m_temporary / "data/Vellumine/stats.json"; }
    [[nodiscard]] QString folder() const { return QFile::decodeName(file().parent_path().c_str()); }
    [[nodiscard]] StatsStore open()
    {
        return StatsStore(folder(), [this] { return m_now; });
    }
    [[nodiscard]] QByteArray content() const
    {
        QFile input(QFile::decodeName(file().c_str()));
        return input.open(QIODevice::ReadOnly) ? input.readAll() : QByteArray();
    }
    [[nodiscard]] std::optional<LifetimeStats> stored() const
    {
        return lifetimeStatsFromJson(content());
    }
    void store(const QByteArray& bytes) const
    {
        fs::create_directories(file().parent_path());
        test::writeFile(
            file(), std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    }

    test::TemporaryFolder m_temporary;
    QDateTime m_now = moment(0);
};

TEST_F(Stats, aFreshStoreHoldsZerosAndWritesNothing)
{
    const StatsStore store = open();
    EXPECT_EQ(store.stats(), LifetimeStats());
    EXPECT_TRUE(fs::is_directory(file().parent_path()));
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(Stats, aFailureCountsAsProcessedOnlyAndIsSaved)
{
    StatsStore store = open();
    store.record(success(1000, 400));
    LifetimeStats expected = store.stats();
    fs::remove(file());
    m_now = moment(5);
    store.record(failure());
    expected.filesProcessed = 2;
    EXPECT_EQ(store.stats(), expected);
    EXPECT_EQ(stored(), expected);
}

TEST_F(Stats, aFileThatGrewCountsAsNegativeInTheNetAlone)
{
    StatsStore store = open();
    store.record(success(1000, 400));
    m_now = moment(9);
    store.record(success(1000, 1200));
    const LifetimeStats expected { .filesProcessed = 2,
        .filesSucceeded = 2,
        .originalBytes = 2000,
        .outputBytes = 1600,
        .grossBytesSaved = 600,
        .netBytesSaved = 400,
        .largestSingleSaveBytes = 600,
        .lastProcessedAt = moment(9) };
    EXPECT_EQ(store.stats(), expected);
    EXPECT_EQ(stored(), expected);
}

TEST_F(Stats, aSingleFileThatGrewLeavesTheLargestSavingAtZero)
{
    StatsStore store = open();
    store.record(success(1000, 1200));
    EXPECT_EQ(store.stats().largestSingleSaveBytes, 0);
    EXPECT_EQ(store.stats().netBytesSaved, -200);
    EXPECT_EQ(store.stats().grossBytesSaved, 0);
    EXPECT_EQ(store.stats().filesSucceeded, 1);
}

TEST_F(Stats, theLargestSavingOnlyRises)
{
    StatsStore store = open();
    for (const auto& [outputBytes, expected] : std::initializer_list<std::pair<qint64, qint64>> {
             { 900, 100 }, { 900, 100 }, { 901, 100 }, { 899, 101 }, { 2000, 101 } }) {
        store.record(success(1000, outputBytes));
        EXPECT_EQ(store.stats().largestSingleSaveBytes, expected) << outputBytes;
    }
}

TEST_F(Stats, noDateIsWrittenBeforeTheFirstSuccess)
{
    StatsStore store = open();
    store.record(failure());
    EXPECT_FALSE(content().contains("lastProcessedAt"));
    const StatsStore next = open();
    EXPECT_EQ(next.stats().lastProcessedAt, std::nullopt);
    EXPECT_EQ(next.stats().filesProcessed, 1);
}

TEST_F(Stats, totalsSurviveTheProgramsEnd)
{
    open().record(success(1000, 400));
    m_now = moment(9);
    StatsStore next = open();
    EXPECT_EQ(next.stats().lastProcessedAt, moment(0));
    next.record(success(500, 300));
    const StatsStore last = open();
    EXPECT_EQ(last.stats(), next.stats());
    EXPECT_EQ(last.stats().netBytesSaved, 800);
}

TEST_F(Stats, aFileWithoutOneTotalIsRejectedWholeAndOverwrittenByTheNextSave)
{
    open().record(success(1000, 400));
    const QByteArray bad = content().replace("netBytesSaved", "otherBytes");
    ASSERT_TRUE(bad.contains("lastProcessedAt"));
    store(bad);
    StatsStore store = open();
    EXPECT_EQ(store.stats(), LifetimeStats());
    EXPECT_EQ(content(), bad);
    store.record(failure());
    EXPECT_EQ(stored(), LifetimeStats { .filesProcessed = 1 });
}

TEST_F(Stats, aFileThatIsNotJsonIsLeftUntilTheNextSave)
{
    store("not JSON");
    StatsStore store = open();
    EXPECT_EQ(store.stats(), LifetimeStats());
    EXPECT_EQ(content(), "not JSON");
    store.reset();
    EXPECT_EQ(stored(), LifetimeStats());
}

TEST_F(Stats, whatIsNoFileIsNotWaitedFor)
{
    fs::create_directories(file().parent_path());
    ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
    StatsStore store = open();
    EXPECT_EQ(store.stats(), LifetimeStats());
    store.record(failure());
    EXPECT_EQ(stored(), LifetimeStats { .filesProcessed = 1 });
}

TEST_F(Stats, aFileThatIsFarTooLongIsNotRead)
{
    open().record(success(1000, 400));
    ASSERT_TRUE(stored());
    store(content() + QByteArray(1 << 16, ' '));
    ASSERT_TRUE(stored()); // it would be JSON
    EXPECT_EQ(open().stats(), LifetimeStats());
    fs::resize_file(file(), std::uintmax_t { 1 } << 41U); // more than there is memory
    EXPECT_EQ(open().stats(), LifetimeStats());
}

TEST_F(Stats, resetLeavesZerosAndNoDate)
{
    StatsStore store = open();
    store.record(success(1000, 400));
    QSignalSpy spy(&store, &StatsStore::statsChanged);
    store.reset();
    EXPECT_THAT(spy, SizeIs(1));
    EXPECT_EQ(store.stats(), LifetimeStats());
    EXPECT_EQ(stored(), LifetimeStats());
    EXPECT_FALSE(content().contains("lastProcessedAt"));
}

TEST_F(Stats, everyStepIsAnnouncedBeforeAndAfter)
{
    StatsStore store = open();
    QList<LifetimeStats> before;
    QList<LifetimeStats> after;
    QObject::connect(
        &store, &StatsStore::statsAboutToChange, &store, [&] { before.append(store.stats()); });
    QObject::connect(
        &store, &StatsStore::statsChanged, &store, [&] { after.append(store.stats()); });
    store.record(success(1000, 400));
    ASSERT_THAT(before, SizeIs(8)); // one for each field
    ASSERT_THAT(after, SizeIs(8));
    EXPECT_EQ(before.front(), LifetimeStats());
    for (qsizetype i = 0; i < 8; ++i) {
        EXPECT_NE(before.at(i), after.at(i)) << i;
    }
    EXPECT_EQ(after.back(), store.stats());
    store.record(failure());
    EXPECT_THAT(after, SizeIs(9));
}

TEST_F(Stats, aWriteFromOutsideIsAnnouncedButNotSaved)
{
    StatsStore store = open();
    QSignalSpy about(&store, &StatsStore::statsAboutToChange);
    QSignalSpy changed(&store, &StatsStore::statsChanged);
    store.setStats({ .filesProcessed = 3 });
    EXPECT_THAT(about, SizeIs(1));
    EXPECT_THAT(changed, SizeIs(1));
    EXPECT_EQ(store.stats().filesProcessed, 3);
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(Stats, aFolderThatCannotBeMadeIsIgnored)
{
    test::writeFile(m_temporary / "data", std::string_view("in the way"));
    StatsStore store = open();
    store.record(success(1000, 400));
    EXPECT_EQ(store.stats().netBytesSaved, 600);
    EXPECT_TRUE(fs::is_regular_file(m_temporary / "data"));
}

TEST_F(Stats, aSaveThatFailsIsMadeUpForByTheNext)
{
    fs::create_directories(file() / "in the way");
    StatsStore store = open();
    store.record(success(1000, 400));
    EXPECT_TRUE(fs::is_directory(file()));
    fs::remove_all(file());
    store.record(failure());
    EXPECT_EQ(stored(), store.stats());
    EXPECT_EQ(stored()->filesProcessed, 2);
}

TEST_F(Stats, nothingButTheFileIsLeftInTheFolder)
{
    StatsStore store = open();
    const auto names = [&] {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    store.record(success(1000, 400));
    EXPECT_EQ(names(), QStringList { QStringLiteral("stats.json") });
    fs::remove(file());
    fs::create_directories(file() / "in the way");
    store.record(failure());
    EXPECT_EQ(names(), QStringList { QStringLiteral("stats.json") });
}

TEST_F(Stats, theOldFileIsReplacedNotWrittenInto)
{
    StatsStore store = open();
    store.record(failure());
    fs::create_hard_link(file(), m_temporary / "old");
    store.record(failure());
    EXPECT_FALSE(fs::equivalent(file(), m_temporary / "old"));
    EXPECT_EQ(stored()->filesProcessed, 2);
}

TEST_F(Stats, totalsUpToTheLimitAreExact)
{
    StatsStore store = open();
    store.record(success(largest, 0));
    EXPECT_EQ(open().stats().originalBytes, largest);
    EXPECT_EQ(open().stats().largestSingleSaveBytes, largest);
}

using StatsDeathTest = Stats;

TEST_F(StatsDeathTest, aTotalBeyond64BitsIsFatal)
{
    StatsStore store = open();
    store.setStats({ .originalBytes = largest });
    EXPECT_DEATH(store.record(success(1, 1)), "does not fit");
    store.setStats({ .filesProcessed = largest });
    EXPECT_DEATH(store.record(failure()), "does not fit");
    store.setStats({ .netBytesSaved = -largest });
    EXPECT_DEATH(store.record(success(0, 2)), "does not fit");
}

TEST_F(StatsDeathTest, aSavingBeyond64BitsIsFatal)
{
    StatsStore store = open();
    EXPECT_DEATH(store.record(success(largest, -1)), "does not fit");
}

class StatsFolder : public testing::Test {
protected:
    [[nodiscard]] QString path(const char* name) const
    {
        return QFile::decodeName((m_temporary / name).c_str());
    }

    test::TemporaryFolder m_temporary;
};

TEST_F(StatsFolder, liesInTheDataFolderOfTheEnvironment)
{
    EXPECT_EQ(statsFolder(path("data"), path("home")), path("data/Vellumine"));
    EXPECT_TRUE(fs::is_directory(m_temporary / "data"));
    EXPECT_FALSE(fs::exists(m_temporary / "home"));
}

TEST_F(StatsFolder, liesInTheHomeFolderByDefault)
{
    EXPECT_EQ(statsFolder(QString(), path("home")), path("home/.local/share/Vellumine"));
    EXPECT_TRUE(fs::is_directory(m_temporary / "home/.local/share"));
}

TEST_F(StatsFolder, relativeDataFolderCountsAsNotSet)
{
    EXPECT_EQ(
        statsFolder(QStringLiteral("data"), path("home")), path("home/.local/share/Vellumine"));
}

TEST_F(StatsFolder, fallsBackWhereTheDataFolderCannotBeMade)
{
    test::writeFile(m_temporary / "file", std::string_view("in the way"));
    EXPECT_EQ(statsFolder(path("file/data"), path("home")),
        path("home/Library/Application Support/Vellumine"));
}

} // namespace
} // namespace vellumine
