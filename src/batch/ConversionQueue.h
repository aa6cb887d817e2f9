#pragma once

#include "core/OptimizerSettings.h"

#include <QList>
#include <QUrl>

#include <functional>
#include <optional>
#include <queue>
#include <vector>

namespace vellumine {

/// The files of one batch in the order in which they may begin: input order, but a file that might
/// write where an earlier one writes waits until that one has ended. No thread ever waits for it:
/// other files go first.
///
/// Where a file will be written is known for certain only once its type is read, and whether it
/// gets "-optimized" behind its name depends on what is on disk. So files that share the folder and
/// the name without extension and marker count as writing to the same place, names compared as a
/// disk does that takes upper and lower case for the same. That makes some files wait that need
/// not, but none run that must not.
class ConversionQueue {
public:
    ConversionQueue() = default;

    /// Looks at each folder on disk once, to know it again when it was reached through links.
    ConversionQueue(QList<QUrl> urls, const OptimizerSettings& settings);

    [[nodiscard]] const QList<QUrl>& urls() const { return m_urls; }

    /// Position of the next file to begin; none when all have begun or those left have to wait.
    [[nodiscard]] std::optional<qsizetype> takeNext();

    /// The file at the position has ended: whoever waited for it may begin.
    void release(qsizetype position);

private:
    static constexpr qsizetype nobody = -1;

    QList<QUrl> m_urls;
    std::vector<qsizetype> m_waitsBehind; ///< who waits for the file at the index, or nobody
    std::priority_queue<qsizetype, std::vector<qsizetype>, std::greater<>> m_ready;
};

} // namespace vellumine
