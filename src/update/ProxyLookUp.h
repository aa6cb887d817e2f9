#pragma once

#include <QNetworkProxy>
#include <QSemaphore>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace vellumine {

using ProxyLookUp = std::function<QNetworkProxy(const QUrl& page)>;

/// What a look-up says, which may ask a server that never answers. It works in a thread of its own,
/// which is left behind where it takes too long. Any thread may ask and give up.
class ProxyAnswer {
public:
    /// Begins to look up.
    [[nodiscard]] static std::shared_ptr<ProxyAnswer> to(
        const ProxyLookUp& lookUp, const QUrl& page);

    /// Waits for the answer, once. None where nobody wants it any more before it comes.
    [[nodiscard]] std::optional<QNetworkProxy> wait();
    void giveUp();
    [[nodiscard]] bool isGivenUp() const { return m_isGivenUp; }

private:
    QSemaphore m_changes; ///< for whoever waits
    std::mutex m_mutex;
    std::optional<QNetworkProxy> m_proxy;
    std::atomic<bool> m_isGivenUp = false;
};

/// Whether any look-up is still at work. The libraries behind it would wait for it when they are
/// torn down, so that the process has to end without that.
[[nodiscard]] bool isAnyLookUpAtWork();

} // namespace vellumine
