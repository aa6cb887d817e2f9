#include "imaging/PixelArena.h"

#include "imaging/PixelMemory.h"
#include "support/ProcessMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif

namespace vellumine::imaging {
namespace {

using test::ProcessMemory;

constexpr std::size_t megabyte = std::size_t { 1 } << 20U;

bool isAligned(const std::byte* block)
{
    return reinterpret_cast<std::uintptr_t>(block) % pixelAlignment == 0;
}

TEST(PixelArena, givesAlignedBlocksThatDoNotOverlap)
{
    PixelArena arena;
    std::vector<std::byte*> blocks;
    for (const std::size_t bytes : { 1UL, 63UL, 64UL, 65UL, 5 * megabyte }) {
        std::byte* const block = arena.take(bytes);
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(isAligned(block));
        for (const std::byte* other : blocks) {
            EXPECT_GT(block, other);
        }
        std::memset(block, 1, bytes);
        blocks.push_back(block);
    }
    EXPECT_EQ(blocks.front()[0], std::byte { 1 });
}

TEST(PixelArena, givesTheSameMemoryAgain)
{
    PixelArena arena;
    std::byte* const decoded = arena.take(30 * megabyte);
    std::byte* const drawn = arena.take(10 * megabyte);
    arena.give(decoded, 30 * megabyte);
    arena.give(drawn, 10 * megabyte);
    EXPECT_EQ(arena.take(20 * megabyte), decoded);
    EXPECT_EQ(arena.take(15 * megabyte), decoded + 20 * megabyte + 2 * pixelAlignment);
}

TEST(PixelArena, joinsGapsInWhateverOrderTheyComeBack)
{
    constexpr std::size_t bytes = 10 * megabyte;
    for (const auto& order : std::vector<std::vector<std::size_t>> {
             { 0, 1, 2 }, { 2, 1, 0 }, { 0, 2, 1 }, { 1, 0, 2 }, { 1, 2, 0 }, { 2, 0, 1 } }) {
        PixelArena arena;
        const std::vector<std::byte*> blocks { arena.take(bytes), arena.take(bytes),
            arena.take(bytes) };
        for (const std::size_t index : order) {
            arena.give(blocks.at(index), bytes);
        }
        EXPECT_EQ(arena.take(PixelArena::capacity - megabyte), blocks.front());
    }
}

TEST(PixelArena, refusesWhatItHasNoRoomFor)
{
    PixelArena arena;
    EXPECT_EQ(arena.take(PixelArena::capacity + 1), nullptr);
    EXPECT_EQ(arena.take(SIZE_MAX), nullptr);
    std::byte* const most = arena.take(120 * megabyte);
    ASSERT_NE(most, nullptr);
    EXPECT_EQ(arena.take(10 * megabyte), nullptr);
    arena.give(most, 120 * megabyte);
    EXPECT_EQ(arena.take(10 * megabyte), most);
}

TEST(PixelArena, givesPagesToTheSystemWhenAPictureIsTooLargeForIt)
{
    PixelArena arena;
    std::byte* const block = arena.take(80 * megabyte);
    ASSERT_NE(block, nullptr);
    std::memset(block, 1, 80 * megabyte);
    arena.give(block, 80 * megabyte);
    const std::int64_t before = ProcessMemory::now().resident;
    EXPECT_EQ(arena.take(PixelArena::capacity), nullptr);
    EXPECT_LT(ProcessMemory::now().resident + static_cast<std::int64_t>(40 * megabyte), before);
}

TEST(PixelMemory, isAligned)
{
    for (const std::size_t bytes : { 1UL, 100UL, megabyte - 1, megabyte, 200 * megabyte }) {
        const PixelMemory memory = allocatePixels(bytes);
        ASSERT_TRUE(memory);
        EXPECT_TRUE(isAligned(memory.get())) << bytes;
        std::memset(memory.get(), 1, bytes);
    }
}

TEST(PixelMemory, comesBackToTheThreadThatHadIt)
{
    std::thread([] {
        PixelMemory memory = allocatePixels(10 * megabyte);
        const std::byte* const first = memory.get();
        // Given back by another thread, as a picture is that was handed on.
        std::thread([memory = std::move(memory)]() mutable { memory.reset(); }).join();
        EXPECT_EQ(allocatePixels(9 * megabyte).get(), first);
    }).join();
}

TEST(PixelMemory, outlivesItsThread)
{
    PixelMemory memory;
    std::thread([&memory] { memory = allocatePixels(10 * megabyte); }).join();
    std::memset(memory.get(), 1, 10 * megabyte);
    EXPECT_EQ(memory.get()[10 * megabyte - 1], std::byte { 1 });
}

#ifdef __SANITIZE_ADDRESS__
TEST(PixelMemory, isWatchedByTheAddressSanitizer)
{
    PixelMemory memory = allocatePixels(2 * megabyte);
    std::byte* const first = memory.get();
    EXPECT_FALSE(__asan_address_is_poisoned(first + 2 * megabyte - 1));
    EXPECT_TRUE(__asan_address_is_poisoned(first + 2 * megabyte));
    memory.reset();
    EXPECT_TRUE(__asan_address_is_poisoned(first));
}
#endif

} // namespace
} // namespace vellumine::imaging
