#include "pipeline/MemoryBudget.h"

#include <utility>

namespace vellumine {

MemoryBudget::Lease::Lease(MemoryBudget& budget, std::uint64_t bytes)
    : m_budget(&budget)
    , m_bytes(bytes)
{
}

MemoryBudget::Lease::Lease(Lease&& other) noexcept
    : m_budget(std::exchange(other.m_budget, nullptr))
    , m_bytes(other.m_bytes)
{
}

MemoryBudget::Lease& MemoryBudget::Lease::operator=(Lease&& other) noexcept
{
    if (this != &other) {
        release();
        m_budget = std::exchange(other.m_budget, nullptr);
        m_bytes = other.m_bytes;
    }
    return *this;
}

MemoryBudget::Lease::~Lease()
{
    release();
}

void MemoryBudget::Lease::release()
{
    if (m_budget != nullptr) {
        std::exchange(m_budget, nullptr)->giveBack(m_bytes);
    }
}

MemoryBudget::MemoryBudget(std::uint64_t bytes)
    : m_total(bytes)
{
}

std::uint64_t MemoryBudget::bytesFor(const imaging::Limits& limits)
{
    return 2 * limits.maximumBytes;
}

MemoryBudget::Lease MemoryBudget::acquire(std::uint64_t bytes)
{
    std::unique_lock lock(m_mutex);
    const std::uint64_t ticket = m_nextTicket++;
    m_changed.wait(lock, [&] {
        const bool fits = m_inUse <= m_total && bytes <= m_total - m_inUse;
        return ticket == m_serving && (m_leases == 0 || fits);
    });
    ++m_serving;
    ++m_leases;
    m_inUse += bytes;
    lock.unlock();
    m_changed.notify_all(); // the next in line may fit too
    return { *this, bytes };
}

void MemoryBudget::giveBack(std::uint64_t bytes)
{
    {
        const std::lock_guard lock(m_mutex);
        --m_leases;
        m_inUse -= bytes;
    }
    m_changed.notify_all();
}

} // namespace vellumine
