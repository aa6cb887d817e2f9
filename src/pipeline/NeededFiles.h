#pragma once

#include "platform/FileOperations.h"

#include <QUrl>

#include <cstddef>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace vellumine {

/// The files that hold a picture of the batch which is nowhere else: sources that have still to be
/// read, those that came to nothing or whose output was replaced since, and outputs whose sources
/// were. No output may take the place of one. A file that is given as a link also stands where the
/// link leads, and at every name on the way. Any thread may ask.
class NeededFiles {
public:
    explicit NeededFiles(const std::vector<QUrl>& urls);

    /// Whether such a file stands at this very path, by this or another spelling of its name.
    [[nodiscard]] bool isAt(const std::filesystem::path& path) const;
    /// The unread sources, by their positions in the batch, of which one stands there.
    [[nodiscard]] std::vector<std::size_t> unreadAt(const std::filesystem::path& path) const;

    /// What has become of a source where it is not in its place any more.
    enum class WhenGone { lost, inTrash };
    /// The source at the position needs to be read no more; its picture is in the output as well,
    /// where there is one.
    void setRead(std::size_t index, const std::optional<QUrl>& output = std::nullopt,
        WhenGone whenGone = WhenGone::lost);

private:
    /// A file as it was at some time.
    struct Standing {
        std::filesystem::path path;
        std::optional<platform::FileVersion> version; ///< none where there was no file
    };
    struct Source {
        Standing file;
        Standing output;
        bool isRead = false;
        bool isInTrash = false;
    };

    /// The positions of the sources that stand there.
    [[nodiscard]] std::span<const std::size_t> sourcesAt(
        const platform::FileIdentity& identity) const;
    [[nodiscard]] static bool isStillThere(const Standing& file);

    mutable std::mutex m_mutex;
    std::vector<Source> m_sources; ///< by position
    std::map<platform::FileIdentity, std::vector<std::size_t>> m_positions; ///< of the sources
    std::map<platform::FileIdentity, std::size_t> m_outputs; ///< positions of their sources
};

} // namespace vellumine
