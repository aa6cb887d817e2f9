#pragma once

#include "core/OptimizerSettings.h"

#include <QUrl>

#include <cstddef>
#include <functional>
#include <optional>
#include <queue>
#include <vector>

namespace vellumine {

/// The order of a batch. Files are handed out as they were given, but never two at a time whose
/// outputs could have the same name (a.jpg and a.png to a.webp): the second waits for the first,
/// finds its output standing there, and the overwrite rule applies. So the outcome is the same
/// every time, and no worker waits for another. Among such files those come first that stand where
/// the output of another goes: a.webp is read before a.jpg may replace it. For one thread.
class ConversionQueue {
public:
    ConversionQueue(std::vector<QUrl> urls, const OptimizerSettings& settings);

    [[nodiscard]] std::size_t size() const { return m_urls.size(); }
    [[nodiscard]] const QUrl& url(std::size_t index) const { return m_urls.at(index); }

    /// The first file that may be converted now; none when all are taken or have to wait.
    [[nodiscard]] std::optional<std::size_t> takeNext();
    /// To be called for every file that was taken, whatever its outcome: frees who waits for it.
    void finished(std::size_t index);

private:
    static constexpr std::size_t nobody = static_cast<std::size_t>(-1);

    std::vector<QUrl> m_urls;
    std::vector<std::size_t> m_nextInLine; ///< by file: who waits for its end, or nobody
    std::priority_queue<std::size_t, std::vector<std::size_t>, std::greater<>> m_ready;
};

} // namespace vellumine
