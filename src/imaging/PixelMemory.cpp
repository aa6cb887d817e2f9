#include "imaging/PixelMemory.h"

#include <cstdlib>
#include <memory>
#include <sys/mman.h>

namespace vellumine::imaging {

namespace {

constexpr std::size_t hugePage = std::size_t { 2 } << 20U;
constexpr std::size_t alignmentOfSamples = 64;

struct FreeDeleter {
    void operator()(std::byte* memory) const { std::free(memory); }
};

/// Without the system's aligned allocation: what that frees it rarely finds again before glibc
/// 2.38, and a batch of small pictures grew by 4 KB with each.
PixelMemory allocateSmall(std::size_t bytes)
{
    std::size_t room = bytes + alignmentOfSamples;
    auto* memory = static_cast<std::byte*>(std::malloc(room));
    if (memory == nullptr) {
        return nullptr;
    }
    const std::shared_ptr<std::byte> owner(memory, FreeDeleter());
    void* aligned = memory;
    std::align(alignmentOfSamples, bytes, aligned, room);
    return { owner, static_cast<std::byte*>(aligned) };
}

PixelMemory allocateLarge(std::size_t bytes)
{
    void* memory = nullptr;
    if (::posix_memalign(&memory, hugePage, bytes) != 0) {
        return nullptr;
    }
#ifdef MADV_HUGEPAGE
    // Whole pages only, so that no memory but the pixels' is touched.
    (void)::madvise(memory, bytes / hugePage * hugePage, MADV_HUGEPAGE);
#endif
    return { static_cast<std::byte*>(memory), FreeDeleter() };
}

} // namespace

PixelMemory allocatePixels(std::size_t bytes)
{
    return bytes < 2 * hugePage ? allocateSmall(bytes) : allocateLarge(bytes);
}

} // namespace vellumine::imaging
