#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace vellumine::imaging {

/// A region of memory out of which pictures are given their pixels. What is given back keeps its
/// pages, so that the next picture costs the system nothing: mapping and clearing the pages of a
/// 24-megapixel picture takes as long as resampling it. Safe for several threads at once.
class PixelArena {
public:
    /// The most that an arena holds: the coefficients of a photograph of 44 megapixels that comes
    /// in several scans, with its colour at half the size.
    static constexpr std::size_t capacity = std::size_t { 128 } << 20U;

    /// The calling thread's own arena, which lives until the thread has ended and the last block
    /// has been given back. Null at the thread's very end.
    [[nodiscard]] static std::shared_ptr<PixelArena> ofThisThread();

    /// An arena without memory when the system has none.
    PixelArena();
    ~PixelArena();
    PixelArena(const PixelArena&) = delete;
    PixelArena& operator=(const PixelArena&) = delete;

    /// At least so many bytes, aligned and not initialised; null when no gap is wide enough. Then
    /// what the arena keeps without need goes back to the system: it must not come on top of a
    /// picture that is too large to share the arena.
    [[nodiscard]] std::byte* take(std::size_t bytes);
    /// Takes a block back; `bytes` as in take().
    void give(std::byte* block, std::size_t bytes);

private:
    /// Offsets into the memory.
    struct Gap {
        std::size_t begin;
        std::size_t end;
    };
    void giveToSystem(const Gap& gap);

    std::mutex m_mutex;
    std::byte* m_memory = nullptr;
    std::vector<Gap> m_gaps; ///< by address; no two of them touch
};

} // namespace vellumine::imaging
