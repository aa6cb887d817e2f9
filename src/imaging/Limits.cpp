#include "imaging/Limits.h"

#include "imaging/MachineMemory.h"

namespace vellumine::imaging {

Limits Limits::forThisMachine()
{
    Limits limits;
    if (const auto memory = memoryForThisProcess()) {
        limits.maximumBytes = *memory / 4;
    }
    return limits;
}

Result<void> Limits::check(std::int64_t width, std::int64_t height, int bytesPerPixel) const
{
    if (width < 1 || height < 1) {
        return failure(Error::Kind::malformed, "the picture has no pixels");
    }
    const std::int64_t side = maximumSide;
    if (width > side || height > side) {
        return failure(Error::Kind::limitExceeded, "a side is too long");
    }
    const auto pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    if (pixels > maximumPixels
        || pixels > maximumBytes / static_cast<std::uint64_t>(bytesPerPixel)) {
        return failure(Error::Kind::limitExceeded, "the picture has too many pixels");
    }
    return {};
}

} // namespace vellumine::imaging
