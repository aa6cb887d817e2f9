#pragma once

#include <QNetworkProxy>
#include <QUrl>

#include <functional>
#include <optional>
#include <stop_token>

namespace vellumine {

using ProxyLookUp = std::function<QNetworkProxy(const QUrl& page)>;

/// What the look-up says, which may ask a server that never answers. It works in a thread of its
/// own, which is left behind once a stop is requested: then there is no answer. Waits for it until
/// then.
[[nodiscard]] std::optional<QNetworkProxy> lookedUp(
    const ProxyLookUp& lookUp, const QUrl& page, const std::stop_token& stop);

/// Whether any look-up is still at work. The libraries behind it would wait for it when they are
/// torn down, so that the process has to end without that.
[[nodiscard]] bool isAnyLookUpAtWork();

} // namespace vellumine
