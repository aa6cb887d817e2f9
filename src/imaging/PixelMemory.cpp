#include "imaging/PixelMemory.h"

#include "imaging/PixelArena.h"

#include <cstdlib>
#include <memory>
#include <sys/mman.h>
#include <utility>

namespace vellumine::imaging {

namespace {

constexpr std::size_t hugePage = std::size_t { 2 } << 20U;
/// From here on the system is slower than an arena.
constexpr std::size_t large = std::size_t { 1 } << 20U;

struct FreeDeleter {
    void operator()(std::byte* memory) const { std::free(memory); }
};

/// Without the system's aligned allocation: what that frees it rarely finds again before glibc
/// 2.38, and a batch of small pictures grew by 8 KB with each.
PixelMemory allocateSmall(std::size_t bytes)
{
    std::size_t room = bytes + pixelAlignment;
    auto* memory = static_cast<std::byte*>(std::malloc(room));
    if (memory == nullptr) {
        return nullptr;
    }
    const std::shared_ptr<std::byte> owner(memory, FreeDeleter());
    void* aligned = memory;
    std::align(pixelAlignment, bytes, aligned, room);
    return { owner, static_cast<std::byte*>(aligned) };
}

PixelMemory allocateInArena(std::size_t bytes)
{
    auto arena = PixelArena::ofThisThread();
    std::byte* const block = arena ? arena->take(bytes) : nullptr;
    if (block == nullptr) {
        return nullptr;
    }
    return { block,
        [arena = std::move(arena), bytes](std::byte* memory) { arena->give(memory, bytes); } };
}

PixelMemory allocateHuge(std::size_t bytes)
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
    if (bytes < large) {
        return allocateSmall(bytes);
    }
    if (PixelMemory memory = allocateInArena(bytes)) {
        return memory;
    }
    return allocateHuge(bytes);
}

} // namespace vellumine::imaging
