#pragma once

#include "imaging/Bytes.h"

#include <cstdint>

namespace vellumine::imaging::metadata {

enum class ByteOrder : std::uint8_t { little, big };

/// Integers at `at` in a structure; the caller has checked that they lie inside.
[[nodiscard]] std::uint16_t read16(ByteSpan bytes, std::size_t at, ByteOrder order);
[[nodiscard]] std::uint32_t read32(ByteSpan bytes, std::size_t at, ByteOrder order);
[[nodiscard]] std::uint64_t read64(ByteSpan bytes, std::size_t at, ByteOrder order);
void write16(std::span<std::byte> bytes, std::size_t at, std::uint16_t value, ByteOrder order);
void write32(std::span<std::byte> bytes, std::size_t at, std::uint32_t value, ByteOrder order);

} // namespace vellumine::imaging::metadata
