#include "imaging/PixelArena.h"

#include "imaging/PixelMemory.h"

#include <algorithm>
#include <sys/mman.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

namespace vellumine::imaging {

namespace {

/// What a block takes up: a gap stays behind it, in which the address sanitizer sees who writes
/// past its end.
constexpr std::size_t roomFor(std::size_t bytes)
{
    return alignedUp(bytes + 1) + pixelAlignment;
}

/// Kept without being asked: the small picture that is drawn of a large one.
constexpr std::size_t keptBesideLargePictures = std::size_t { 24 } << 20U;

struct ThreadsArena {
    std::shared_ptr<PixelArena> arena = std::make_shared<PixelArena>();
    ThreadsArena() = default;
    ~ThreadsArena() { isThere = false; }
    ThreadsArena(const ThreadsArena&) = delete;
    ThreadsArena& operator=(const ThreadsArena&) = delete;

    /// Has no destructor: can be read until the thread has ended.
    static thread_local bool isThere;
};

thread_local bool ThreadsArena::isThere = true;

} // namespace

std::shared_ptr<PixelArena> PixelArena::ofThisThread()
{
    if (!ThreadsArena::isThere) {
        return nullptr;
    }
    static thread_local ThreadsArena threadsArena;
    return threadsArena.arena;
}

PixelArena::PixelArena()
{
    void* const memory = ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE,
        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) {
        return;
    }
#ifdef MADV_HUGEPAGE
    (void)::madvise(memory, capacity, MADV_HUGEPAGE);
#endif
    m_memory = static_cast<std::byte*>(memory);
    m_gaps.push_back({ 0, capacity });
    ASAN_POISON_MEMORY_REGION(m_memory, capacity);
}

PixelArena::~PixelArena()
{
    if (m_memory != nullptr) {
        ASAN_UNPOISON_MEMORY_REGION(m_memory, capacity);
        ::munmap(m_memory, capacity);
    }
}

std::byte* PixelArena::take(std::size_t bytes)
{
    const std::lock_guard lock(m_mutex);
    const std::size_t room = bytes < capacity ? roomFor(bytes) : capacity + 1;
    const auto gap = std::ranges::find_if(
        m_gaps, [room](const Gap& free) { return free.end - free.begin >= room; });
    if (gap == m_gaps.end()) {
        std::ranges::for_each(m_gaps, [this](const Gap& kept) { giveToSystem(kept); });
        return nullptr;
    }
    std::byte* const block = m_memory + gap->begin;
    gap->begin += room;
    if (gap->begin == gap->end) {
        m_gaps.erase(gap);
    }
    ASAN_UNPOISON_MEMORY_REGION(block, bytes);
    return block;
}

void PixelArena::give(std::byte* block, std::size_t bytes)
{
    const std::lock_guard lock(m_mutex);
    ASAN_POISON_MEMORY_REGION(block, bytes);
    const auto begin = static_cast<std::size_t>(block - m_memory);
    auto gap = m_gaps.insert(std::ranges::upper_bound(m_gaps, begin, {}, &Gap::begin),
        { begin, begin + roomFor(bytes) });
    if (const auto next = gap + 1; next != m_gaps.end() && next->begin == gap->end) {
        gap->end = next->end;
        m_gaps.erase(next);
    }
    if (gap != m_gaps.begin() && (gap - 1)->end == gap->begin) {
        (gap - 1)->end = gap->end;
        m_gaps.erase(gap);
    }
}

void PixelArena::giveToSystem(const Gap& gap)
{
    constexpr std::size_t page
        = 4096; // or a multiple of it: then the call is refused, and harmless
    const std::size_t begin
        = (std::max(gap.begin, keptBesideLargePictures) + page - 1) / page * page;
    const std::size_t end = gap.end / page * page;
    if (begin < end) {
        (void)::madvise(m_memory + begin, end - begin, MADV_DONTNEED);
    }
}

} // namespace vellumine::imaging
