#include "confined/client/Allowance.h"

namespace vellumine::confined {

namespace {

constexpr std::uint64_t million = 1'000'000;

std::chrono::milliseconds times(std::chrono::milliseconds time, std::uint64_t count)
{
    return time * static_cast<std::int64_t>(count) / static_cast<std::int64_t>(million);
}

std::uint64_t pixels(const imaging::ImageHeader& header)
{
    return static_cast<std::uint64_t>(header.size.width)
        * static_cast<std::uint64_t>(header.size.height);
}

} // namespace

Allowance Patience::toOpen(std::uint64_t fileBytes) const
{
    return {
        .time = timeAtLeast + times(timePerMegabyte, fileBytes),
        .processorTime = std::chrono::ceil<std::chrono::seconds>(processorTimeAtLeast),
        .memoryBytes = memoryAtLeast + 2 * fileBytes,
    };
}

Allowance Patience::toDecode(std::uint64_t fileBytes, const imaging::ImageHeader& header) const
{
    const std::uint64_t count = pixels(header);
    const auto bytesPerPixel = static_cast<std::uint64_t>(header.layout.bytesPerPixel());
    return {
        .time = timeAtLeast + times(timePerMegapixel, count),
        .processorTime = std::chrono::ceil<std::chrono::seconds>(
            processorTimeAtLeast + times(processorTimePerMegapixel, count)),
        .memoryBytes = memoryAtLeast + 2 * fileBytes + memoryPerDecodedByte * bytesPerPixel * count,
    };
}

} // namespace vellumine::confined
