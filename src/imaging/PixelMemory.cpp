#include "imaging/PixelMemory.h"

#include <cstdlib>
#include <sys/mman.h>

namespace vellumine::imaging {

namespace {

constexpr std::size_t hugePage = std::size_t { 2 } << 20U;
constexpr std::size_t alignmentOfSamples = 64;

} // namespace

std::shared_ptr<std::byte[]> allocatePixels(std::size_t bytes)
{
    const bool isLarge = bytes >= 2 * hugePage;
    void* memory = nullptr;
    if (::posix_memalign(&memory, isLarge ? hugePage : alignmentOfSamples, bytes) != 0) {
        return nullptr;
    }
#ifdef MADV_HUGEPAGE
    if (isLarge) {
        // Whole pages only, so that no memory but the pixels' is touched.
        (void)::madvise(memory, bytes / hugePage * hugePage, MADV_HUGEPAGE);
    }
#endif
    return { static_cast<std::byte*>(memory), [](std::byte* pixels) { std::free(pixels); } };
}

} // namespace vellumine::imaging
