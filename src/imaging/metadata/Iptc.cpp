#include "imaging/metadata/Iptc.h"

#include "imaging/metadata/ByteOrder.h"

#include <optional>

namespace vellumine::imaging::metadata {

namespace {

// IIM 4.2, chapter 1, part II: marker, record number, dataset number, and a count of 15 bits; with
// its top bit set, the count says how many bytes hold the true one.
std::optional<std::size_t> datasetBytes(ByteSpan bytes)
{
    constexpr std::byte marker { 0x1C };
    constexpr std::size_t headerBytes = 5;
    constexpr unsigned extendedFlag = 0x8000;
    if (bytes.size() < headerBytes || bytes[0] != marker) {
        return std::nullopt;
    }
    const unsigned count = read16(bytes, 3, ByteOrder::big);
    std::size_t start = headerBytes;
    std::size_t length = count;
    if ((count & extendedFlag) != 0) {
        const std::size_t width = count & ~extendedFlag;
        if (width == 0 || width > 4 || bytes.size() - start < width) {
            return std::nullopt;
        }
        length = 0;
        for (std::size_t i = 0; i < width; ++i) {
            length = length << 8U | std::to_integer<std::size_t>(bytes[start + i]);
        }
        start += width;
    }
    if (length > bytes.size() - start) {
        return std::nullopt;
    }
    return start + length;
}

} // namespace

ByteSpan soundIptc(ByteSpan block)
{
    std::size_t end = 0;
    while (const auto length = datasetBytes(block.subspan(end))) {
        end += *length;
    }
    return block.first(end);
}

} // namespace vellumine::imaging::metadata
