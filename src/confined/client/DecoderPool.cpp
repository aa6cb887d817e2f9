#include "confined/client/DecoderPool.h"

#include <utility>

namespace vellumine::confined {

using imaging::Result;

DecoderPool::DecoderPool(std::filesystem::path executable, Patience patience, Handover handover)
    : m_executable(std::move(executable))
    , m_patience(patience)
    , m_handover(handover)
{
}

Result<DecoderPool::Loan> DecoderPool::takeAny()
{
    while (auto idle = takeIdle()) {
        if (idle->isAlive()) {
            return Loan { std::move(idle), true };
        }
        countDeath();
    }
    return takeFresh();
}

Result<DecoderPool::Loan> DecoderPool::takeFresh() const
{
    return DecoderProcess::start(m_executable).map([](std::unique_ptr<DecoderProcess>&& process) {
        return Loan { std::move(process), false };
    });
}

void DecoderPool::giveBack(Loan loan)
{
    const std::scoped_lock lock(m_mutex);
    m_idle.push_back(std::move(loan.process));
}

void DecoderPool::releaseIdle()
{
    std::vector<std::unique_ptr<DecoderProcess>> ending; // when nobody waits for the lock any more
    const std::scoped_lock lock(m_mutex);
    ending.swap(m_idle);
}

void DecoderPool::countDeath()
{
    const std::scoped_lock lock(m_mutex);
    ++m_deaths;
}

std::size_t DecoderPool::deathCount() const
{
    const std::scoped_lock lock(m_mutex);
    return m_deaths;
}

std::unique_ptr<DecoderProcess> DecoderPool::takeIdle()
{
    const std::scoped_lock lock(m_mutex);
    if (m_idle.empty()) {
        return nullptr;
    }
    auto process = std::move(m_idle.back());
    m_idle.pop_back();
    return process;
}

} // namespace vellumine::confined
