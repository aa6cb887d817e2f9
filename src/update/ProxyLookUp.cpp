#include "update/ProxyLookUp.h"

#include <atomic>
#include <chrono>
#include <system_error>
#include <thread>

namespace vellumine {
namespace {

/// An answer that is on its way is awaited: the libraries that it comes from must not end, with the
/// process, in the middle of it.
constexpr std::chrono::milliseconds onItsWay { 500 };

std::atomic<int> lookUpsAtWork = 0;

} // namespace

std::shared_ptr<ProxyAnswer> ProxyAnswer::to(const ProxyLookUp& lookUp, const QUrl& page)
{
    auto answer = std::make_shared<ProxyAnswer>();
    ++lookUpsAtWork;
    try {
        std::thread([answer, lookUp, page] {
            const QNetworkProxy proxy = lookUp(page);
            --lookUpsAtWork;
            {
                const std::scoped_lock lock(answer->m_mutex);
                answer->m_proxy = proxy;
            }
            answer->m_changes.release();
        }).detach();
    } catch (const std::system_error&) { // the system has no thread for it
        --lookUpsAtWork;
        answer->giveUp();
    }
    return answer;
}

std::optional<QNetworkProxy> ProxyAnswer::wait()
{
    m_changes.acquire();
    if (isGivenUp()) {
        m_changes.tryAcquire(1, static_cast<int>(onItsWay.count()));
        return std::nullopt;
    }
    const std::scoped_lock lock(m_mutex);
    return m_proxy;
}

void ProxyAnswer::giveUp()
{
    m_isGivenUp = true;
    m_changes.release();
}

bool isAnyLookUpAtWork()
{
    return lookUpsAtWork > 0;
}

} // namespace vellumine
