#pragma once

#include "platform/FileOperations.h"

#include <QUrl>

#include <cstddef>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace vellumine {

/// The files that hold a picture of the batch which is nowhere else: sources that have still to be
/// read, and outputs whose sources other outputs have replaced. No output may take the place of
/// one. A file that is given as a link also stands where the link leads, and at every name on the
/// way. Any thread may ask.
class NeededFiles {
public:
    explicit NeededFiles(const std::vector<QUrl>& urls);

    /// Whether such a file stands at this very path, by this or another spelling of its name.
    [[nodiscard]] bool isAt(const std::filesystem::path& path) const;
    /// The unread sources, by their positions in the batch, of which one stands there.
    [[nodiscard]] std::vector<std::size_t> unreadAt(const std::filesystem::path& path) const;

    /// The source at the position needs to be read no more; its picture is in the output as well,
    /// where there is one.
    void setRead(std::size_t index, const std::optional<QUrl>& output = std::nullopt);

private:
    struct Output {
        platform::FileVersion version;
        std::size_t source; ///< its position
    };

    [[nodiscard]] bool isSourceThere(std::size_t index) const;

    std::vector<std::filesystem::path> m_paths; ///< of the sources, by position
    std::vector<std::optional<platform::FileVersion>> m_versions; ///< likewise
    std::map<platform::FileIdentity, std::vector<std::size_t>> m_positions;
    mutable std::mutex m_mutex;
    std::vector<bool> m_isRead; ///< by position
    std::map<platform::FileIdentity, Output> m_outputs;
};

} // namespace vellumine
