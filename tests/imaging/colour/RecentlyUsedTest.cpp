#include "imaging/colour/RecentlyUsed.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vellumine::imaging::colour {
namespace {

auto is(std::string text)
{
    return [text = std::move(text)](const std::string& each) { return each == text; };
}

TEST(RecentlyUsed, givesEachThingAwayOnce)
{
    RecentlyUsed<std::string> things(2);
    things.keep("a");
    things.keep("b");
    EXPECT_EQ(things.take(is("a")), "a");
    EXPECT_EQ(things.take(is("a")), std::nullopt);
    EXPECT_EQ(things.take(is("b")), "b");
}

TEST(RecentlyUsed, dropsWhatWasKeptLongest)
{
    RecentlyUsed<std::string> things(2);
    things.keep("a");
    things.keep("b");
    things.keep(*things.take(is("a")));
    things.keep("c");
    EXPECT_EQ(things.take(is("b")), std::nullopt);
    EXPECT_EQ(things.take(is("a")), "a");
    EXPECT_EQ(things.take(is("c")), "c");
}

TEST(RecentlyUsed, aThingHasOneOwnerAtATime)
{
    struct Thing {
        std::atomic<int> owners = 0;
    };
    RecentlyUsed<std::unique_ptr<Thing>> things(2);
    things.keep(std::make_unique<Thing>());
    things.keep(std::make_unique<Thing>());
    std::atomic<int> shared = 0;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (int turn = 0; turn < 1000; ++turn) {
                    auto taken = things.take([](const auto&) { return true; });
                    if (taken) {
                        shared += ++(*taken)->owners > 1 ? 1 : 0;
                        --(*taken)->owners;
                        things.keep(std::move(*taken));
                    }
                }
            });
        }
    }
    EXPECT_EQ(shared, 0);
    const auto any = [](const auto&) { return true; };
    EXPECT_TRUE(things.take(any));
    EXPECT_TRUE(things.take(any));
    EXPECT_FALSE(things.take(any));
}

} // namespace
} // namespace vellumine::imaging::colour
