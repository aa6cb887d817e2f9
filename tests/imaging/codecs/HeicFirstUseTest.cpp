#include "imaging/codecs/heic/HeicCodec.h"
#include "support/TestImages.h"

#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <vector>

namespace vellumine::imaging {
namespace {

/// In a process of its own, these are the first pictures that it encodes.
TEST(HeicFirstUse, mayBeBySeveralThreadsAtOnce)
{
    constexpr std::size_t count = 4;
    const Image picture = test::gradient({ 96, 80 }, { ColorModel::rgb, 8, AlphaInfo::none });
    std::vector<ByteBuffer> files(count);
    std::barrier together(count);
    std::vector<std::jthread> threads;
    for (ByteBuffer& file : files) {
        threads.emplace_back([&] {
            together.arrive_and_wait();
            file = heic::encodeHeic(picture, {}).value_or(ByteBuffer());
        });
    }
    threads.clear();
    for (const ByteBuffer& file : files) {
        EXPECT_FALSE(file.empty());
        EXPECT_EQ(file, files.front());
    }
}

} // namespace
} // namespace vellumine::imaging
