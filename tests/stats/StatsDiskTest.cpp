#include "stats/StatsStore.h"

#include "stats/Results.h"
#include "support/SmallDisk.h"

#include <gtest/gtest.h>

#include <QFile>

#include <filesystem>

namespace vellumine {
namespace {

using test::success;

TEST(StatsOnAFullDisk, keepTheOldFileAndAreWrittenOnceThereIsRoom)
{
    const auto disk = test::SmallDisk::create(std::size_t { 64 } << 10U);
    if (!disk) {
        GTEST_SKIP() << "Only a superuser may mount a small disk.";
    }
    const QString folder = QFile::decodeName(disk->path().c_str());
    StatsStore store(folder);
    store.record(success(1000, 400));
    const auto before = test::readFile(disk->path() / "stats.json");
    ASSERT_FALSE(before.empty());
    disk->fill();
    store.record(success(1000, 400));
    EXPECT_EQ(test::readFile(disk->path() / "stats.json"), before);
    EXPECT_EQ(StatsStore(folder).stats().filesSucceeded, 1);
    std::filesystem::remove(disk->path() / "filling");
    store.record(success(1000, 400));
    EXPECT_EQ(StatsStore(folder).stats().filesSucceeded, 3);
}

} // namespace
} // namespace vellumine
