#pragma once

#include "core/OptimizerSettings.h"
#include "pipeline/NeededFiles.h"
#include "pipeline/Precedence.h"

#include <QUrl>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace vellumine {

/// The order of a batch. Files are handed out as they were given, but never two at a time whose
/// outputs could have the same name (a.jpg and a.png to a.webp): the second waits for the first,
/// finds its output standing there, and the overwrite rule applies. So the outcome is the same
/// every time, and no worker waits for another. A file that stands where the output of another goes
/// comes before that one: a.webp is read before a.jpg replaces it, and a_small.png before a.png
/// where names get a suffix "_small". Where that makes a circle (two files whose names lie about
/// their types, each where the other's output goes) the first of it comes first, and must not
/// replace what is needed. For one thread.
class ConversionQueue {
public:
    ConversionQueue(std::vector<QUrl> urls, const OptimizerSettings& settings);

    [[nodiscard]] std::size_t size() const { return m_urls.size(); }
    [[nodiscard]] const QUrl& url(std::size_t index) const { return m_urls.at(index); }

    /// The first file that may be converted now; none when all are taken or have to wait.
    [[nodiscard]] std::optional<std::size_t> takeNext() { return m_precedence.takeNext(); }
    /// To be called for every file that was taken, whatever its outcome: frees who waits for it.
    void finished(std::size_t index, const std::optional<QUrl>& output = std::nullopt);
    /// What no output may replace.
    [[nodiscard]] std::shared_ptr<const NeededFiles> neededFiles() const { return m_needed; }

private:
    std::vector<QUrl> m_urls;
    NeededFiles::WhenGone m_whenGone;
    std::shared_ptr<NeededFiles> m_needed;
    Precedence m_precedence;
};

} // namespace vellumine
