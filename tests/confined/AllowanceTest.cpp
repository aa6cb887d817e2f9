#include "confined/client/Allowance.h"

#include <gtest/gtest.h>

#include <chrono>

namespace vellumine::confined {
namespace {

TEST(Patience, growsWithTheFileAndThePixels)
{
    using namespace std::chrono_literals;
    const Patience patience;
    EXPECT_EQ(patience.toOpen(0).time, 60s);
    EXPECT_EQ(patience.toOpen(10'000'000).time, 70s);
    EXPECT_EQ(patience.toOpen(10'000'000).memoryBytes, (1ULL << 30U) + 20'000'000);
    const imaging::ImageHeader header { { 6000, 4000 }, imaging::rgba8Premultiplied };
    const Allowance allowance = patience.toDecode(0, header);
    EXPECT_EQ(allowance.time, 60s + 24 * 6s);
    EXPECT_EQ(allowance.processorTime, 30s + 24 * 3s);
    EXPECT_EQ(allowance.memoryBytes, (1ULL << 30U) + 8 * 96'000'000ULL);
}

} // namespace
} // namespace vellumine::confined
