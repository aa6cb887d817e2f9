#include "pipeline/MemoryBudget.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace vellumine {
namespace {

using namespace std::chrono_literals;

bool isReady(const std::future<void>& future)
{
    return future.wait_for(0s) == std::future_status::ready;
}

TEST(MemoryBudget, grantsWhatFitsAtOnce)
{
    MemoryBudget budget(100);
    const auto first = budget.acquire(60);
    const auto second = budget.acquire(40);
    SUCCEED();
}

TEST(MemoryBudget, grantsMoreThanItHasToOneAlone)
{
    MemoryBudget budget(100);
    const auto only = budget.acquire(1000);
    SUCCEED();
}

TEST(MemoryBudget, makesWaitUntilEnoughIsGivenBack)
{
    MemoryBudget budget(100);
    std::optional<MemoryBudget::Lease> held = budget.acquire(60);
    std::atomic<bool> granted = false;
    auto waiting = std::async(std::launch::async, [&] {
        const auto lease = budget.acquire(60);
        granted = true;
    });
    EXPECT_FALSE(granted);
    EXPECT_FALSE(isReady(waiting));
    held.reset();
    waiting.get();
    EXPECT_TRUE(granted);
}

TEST(MemoryBudget, neverHasMoreInFlightThanItsTotal)
{
    MemoryBudget budget(100);
    std::atomic<int> inFlight = 0;
    std::atomic<int> most = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, share = 20 + 5 * i] {
            for (int round = 0; round < 200; ++round) {
                const auto lease = budget.acquire(static_cast<std::uint64_t>(share));
                const int now = inFlight += share;
                int seen = most;
                while (now > seen && !most.compare_exchange_weak(seen, now)) { }
                inFlight -= share;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_LE(most, 100);
    EXPECT_GT(most, 0);
}

TEST(MemoryBudget, aLeaseThatIsMovedIsGivenBackOnce)
{
    MemoryBudget budget(100);
    {
        auto first = budget.acquire(100);
        const auto second = std::move(first);
    }
    // Would wait for ever if the share had not come back.
    const auto whole = budget.acquire(100);
    SUCCEED();
}

TEST(MemoryBudget, isTwiceWhatOnePictureMayTake)
{
    imaging::Limits limits;
    limits.maximumBytes = 1000;
    EXPECT_EQ(MemoryBudget::bytesFor(limits), 2000U);
}

} // namespace
} // namespace vellumine
