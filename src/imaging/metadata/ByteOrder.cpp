#include "imaging/metadata/ByteOrder.h"

namespace vellumine::imaging::metadata {

namespace {

template <typename Integer> Integer readInteger(ByteSpan bytes, std::size_t at, ByteOrder order)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
        const std::size_t next = order == ByteOrder::big ? i : sizeof(Integer) - 1 - i;
        value = value << 8U | std::to_integer<std::uint64_t>(bytes[at + next]);
    }
    return static_cast<Integer>(value);
}

template <typename Integer>
void writeInteger(std::span<std::byte> bytes, std::size_t at, Integer value, ByteOrder order)
{
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
        const std::size_t shift = 8 * (order == ByteOrder::big ? sizeof(Integer) - 1 - i : i);
        bytes[at + i] = static_cast<std::byte>(static_cast<std::uint64_t>(value) >> shift & 0xFFU);
    }
}

} // namespace

std::uint16_t read16(ByteSpan bytes, std::size_t at, ByteOrder order)
{
    return readInteger<std::uint16_t>(bytes, at, order);
}

std::uint32_t read32(ByteSpan bytes, std::size_t at, ByteOrder order)
{
    return readInteger<std::uint32_t>(bytes, at, order);
}

std::uint64_t read64(ByteSpan bytes, std::size_t at, ByteOrder order)
{
    return readInteger<std::uint64_t>(bytes, at, order);
}

void write16(std::span<std::byte> bytes, std::size_t at, std::uint16_t value, ByteOrder order)
{
    writeInteger(bytes, at, value, order);
}

void write32(std::span<std::byte> bytes, std::size_t at, std::uint32_t value, ByteOrder order)
{
    writeInteger(bytes, at, value, order);
}

} // namespace vellumine::imaging::metadata
