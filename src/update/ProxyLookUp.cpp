#include "update/ProxyLookUp.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

namespace vellumine {
namespace {

/// An answer that is on its way is awaited: the libraries that it comes from must not end, with the
/// process, in the middle of it.
constexpr std::chrono::milliseconds onItsWay { 500 };

std::atomic<int> lookUpsAtWork = 0;

struct Answer {
    std::mutex mutex;
    std::condition_variable_any changed;
    std::optional<QNetworkProxy> proxy;
};

} // namespace

std::optional<QNetworkProxy> lookedUp(
    const ProxyLookUp& lookUp, const QUrl& page, const std::stop_token& stop)
{
    const auto answer = std::make_shared<Answer>();
    ++lookUpsAtWork;
    try {
        std::thread([answer, lookUp, page] {
            const QNetworkProxy proxy = lookUp(page);
            --lookUpsAtWork;
            const std::scoped_lock lock(answer->mutex);
            answer->proxy = proxy;
            answer->changed.notify_all();
        }).detach();
    } catch (const std::system_error&) { // the system has no thread for it
        --lookUpsAtWork;
        return std::nullopt;
    }
    const auto isThere = [&answer] { return answer->proxy.has_value(); };
    std::unique_lock lock(answer->mutex);
    if (answer->changed.wait(lock, stop, isThere)
        || answer->changed.wait_for(lock, onItsWay, isThere)) {
        return answer->proxy;
    }
    return std::nullopt;
}

bool isAnyLookUpAtWork()
{
    return lookUpsAtWork > 0;
}

} // namespace vellumine
