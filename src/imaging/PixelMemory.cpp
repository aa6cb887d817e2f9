#include "imaging/PixelMemory.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <sys/mman.h>
#include <utility>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

namespace vellumine::imaging {

namespace {

constexpr std::size_t hugePage = std::size_t { 2 } << 20U;
constexpr std::size_t alignmentOfSamples = 64;

struct FreeDeleter {
    void operator()(std::byte* memory) const { std::free(memory); }
};

struct Block {
    std::unique_ptr<std::byte[], FreeDeleter> memory;
    std::size_t bytes = 0;
};

/// The large blocks that a thread has given back. A thread that converts one picture after the
/// other gets the same ones again, which spares the system to map them and to clear their pages.
class BlockCache {
public:
    BlockCache() { isOpen = true; }
    ~BlockCache() { isOpen = false; }
    BlockCache(const BlockCache&) = delete;
    BlockCache& operator=(const BlockCache&) = delete;

    [[nodiscard]] Block take(std::size_t bytes)
    {
        auto best = m_blocks.end();
        for (auto block = m_blocks.begin(); block != m_blocks.end(); ++block) {
            if (block->bytes >= bytes && (best == m_blocks.end() || block->bytes < best->bytes)) {
                best = block;
            }
        }
        if (best == m_blocks.end()) {
            // What is kept must not come on top of what a larger picture needs.
            shrinkTo(mostBytesBesideNew);
            return {};
        }
        Block block = std::move(*best);
        m_blocks.erase(best);
        m_bytes -= block.bytes;
        ASAN_UNPOISON_MEMORY_REGION(block.memory.get(), bytes);
        return block;
    }

    void give(Block block)
    {
        if (block.bytes <= mostBytes) {
            shrinkTo(mostBytes - block.bytes);
            ASAN_POISON_MEMORY_REGION(block.memory.get(), block.bytes);
            m_bytes += block.bytes;
            m_blocks.push_back(std::move(block));
        }
    }

    /// Whether the thread's cache is there: it is not at the thread's very end.
    static thread_local bool isOpen;

private:
    /// A picture of 24 megapixels and the small one that is drawn of it.
    static constexpr std::size_t mostBytes = 96'000'000;
    /// The small one.
    static constexpr std::size_t mostBytesBesideNew = 32'000'000;

    void shrinkTo(std::size_t bytes)
    {
        while (m_bytes > bytes) {
            const auto largest = std::ranges::max_element(m_blocks, {}, &Block::bytes);
            m_bytes -= largest->bytes;
            m_blocks.erase(largest);
        }
    }

    std::vector<Block> m_blocks;
    std::size_t m_bytes = 0; ///< of all blocks
};

thread_local bool BlockCache::isOpen = false;
thread_local BlockCache blockCache;

/// Without the system's aligned allocation: what that frees it rarely finds again before glibc
/// 2.38, and a batch of small pictures grew by 8 KB with each.
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

Block allocateBlock(std::size_t bytes)
{
    void* memory = nullptr;
    if (::posix_memalign(&memory, hugePage, bytes) != 0) {
        return {};
    }
#ifdef MADV_HUGEPAGE
    // Whole pages only, so that no memory but the pixels' is touched.
    (void)::madvise(memory, bytes / hugePage * hugePage, MADV_HUGEPAGE);
#endif
    return { std::unique_ptr<std::byte[], FreeDeleter>(static_cast<std::byte*>(memory)), bytes };
}

PixelMemory allocateLarge(std::size_t bytes)
{
    Block block = blockCache.take(bytes);
    if (!block.memory) {
        block = allocateBlock(bytes);
    }
    if (!block.memory) {
        return nullptr;
    }
    std::byte* const memory = block.memory.get();
    return { memory, [block = std::make_shared<Block>(std::move(block))](std::byte*) {
                if (BlockCache::isOpen) {
                    blockCache.give(std::move(*block));
                }
            } };
}

} // namespace

PixelMemory allocatePixels(std::size_t bytes)
{
    return bytes < 2 * hugePage ? allocateSmall(bytes) : allocateLarge(bytes);
}

} // namespace vellumine::imaging
