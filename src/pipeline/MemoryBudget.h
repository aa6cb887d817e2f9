#pragma once

#include "imaging/Limits.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace vellumine {

/// Bounds the memory of all conversions in flight: whoever is about to decode waits for its share.
/// Served in the order of asking, so that a large picture is not passed over forever. Safe to use
/// from several threads at once; it must outlive its leases.
class MemoryBudget {
public:
    /// A share of the budget, given back at the end of its life.
    class Lease {
    public:
        Lease(Lease&& other) noexcept;
        Lease& operator=(Lease&& other) noexcept;
        ~Lease();

    private:
        friend class MemoryBudget;
        Lease(MemoryBudget& budget, std::uint64_t bytes);
        void release();

        MemoryBudget* m_budget;
        std::uint64_t m_bytes;
    };

    explicit MemoryBudget(std::uint64_t bytes);

    /// Half of the machine's memory, as pictures are limited to a quarter each.
    [[nodiscard]] static std::uint64_t bytesFor(const imaging::Limits& limits);

    /// Waits until the bytes fit, or until nothing else is in flight: a picture that is larger than
    /// the whole budget is converted alone.
    [[nodiscard]] Lease acquire(std::uint64_t bytes);

private:
    void giveBack(std::uint64_t bytes);

    const std::uint64_t m_total;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::uint64_t m_inUse = 0;
    std::uint64_t m_leases = 0;
    std::uint64_t m_nextTicket = 0;
    std::uint64_t m_serving = 0;
};

} // namespace vellumine
