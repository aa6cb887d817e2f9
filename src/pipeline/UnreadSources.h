#pragma once

#include "platform/FileOperations.h"

#include <QUrl>

#include <cstddef>
#include <filesystem>
#include <map>
#include <mutex>
#include <vector>

namespace vellumine {

/// The files of a batch that have still to be read: no output may take the place of one, or the
/// picture would be lost. A file that is given as a link also stands where the link leads, and at
/// every name on the way. Any thread may ask.
class UnreadSources {
public:
    explicit UnreadSources(const std::vector<QUrl>& urls);

    /// The files, by their positions in the batch, of which one stands at this very path, by this
    /// or another spelling of its name.
    [[nodiscard]] std::vector<std::size_t> standingAt(const std::filesystem::path& path) const;

    void setRead(std::size_t index);

private:
    std::map<platform::FileIdentity, std::vector<std::size_t>> m_positions;
    mutable std::mutex m_mutex;
    std::vector<bool> m_isRead; ///< by position
};

} // namespace vellumine
