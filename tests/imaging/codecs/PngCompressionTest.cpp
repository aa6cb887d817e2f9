#include "imaging/codecs/png/PngCompression.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>

namespace vellumine::imaging::png {
namespace {

/// Bytes that nothing makes shorter.
ByteBuffer noise(std::size_t size)
{
    std::mt19937 random(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same for every run
    ByteBuffer bytes(size);
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(random() >> 24U);
    }
    return bytes;
}

/// What filtered rows of a photograph are like: small numbers of either sign.
ByteBuffer residuals(std::size_t size)
{
    std::mt19937 random(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same for every run
    ByteBuffer bytes(size);
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(random() % 9 + random() % 9 - 8);
    }
    return bytes;
}

TEST(PngCompression, quickStreamsComeBackAsTheyWere)
{
    for (const std::size_t size : { 0U, 1U, 2U, 100U, 65'535U, 65'536U, 1'000'003U }) {
        for (const ByteBuffer& bytes : { noise(size), residuals(size), ByteBuffer(size) }) {
            const ByteBuffer stream = quicklyDeflated(bytes);
            EXPECT_EQ(inflated(stream, size), bytes) << size;
            EXPECT_LE(stream.size(), size + size / 1000 + 64) << size;
        }
    }
}

TEST(PngCompression, streamsMadeOneAfterTheOtherAreThoseMadeAlone)
{
    for (const CompressionLevel level :
        { CompressionLevel::balanced, CompressionLevel::search, CompressionLevel::optimal }) {
        Deflater deflater(level);
        for (const std::size_t size : { 100'003U, 100U, 0U, 5'000U }) {
            for (const ByteBuffer& bytes : { noise(size), residuals(size), ByteBuffer(size) }) {
                const ByteBuffer stream = deflater.deflated(bytes);
                EXPECT_EQ(stream, deflated(bytes, level)) << size;
                EXPECT_EQ(inflated(stream, size), bytes) << size;
            }
        }
    }
}

TEST(PngCompression, streamsOfZlibComeBackAsTheyWere)
{
    for (const std::size_t size : { 0U, 1U, 100U, 100'003U }) {
        for (const ByteBuffer& bytes : { noise(size), residuals(size), ByteBuffer(size) }) {
            EXPECT_EQ(inflated(deflatedByZlib(bytes), size), bytes) << size;
        }
    }
    EXPECT_LT(deflatedByZlib(ByteBuffer(4)).size(),
        deflated(ByteBuffer(4), CompressionLevel::optimal).size());
}

TEST(PngCompression, quickStreamsAreNotMuchLonger)
{
    const ByteBuffer bytes = residuals(1'000'000);
    EXPECT_LT(static_cast<double>(quicklyDeflated(bytes).size()),
        1.1 * static_cast<double>(deflated(bytes, CompressionLevel::lowest).size()));
}

} // namespace
} // namespace vellumine::imaging::png
