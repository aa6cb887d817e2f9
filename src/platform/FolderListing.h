#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vellumine::platform {

enum class EntryKind : std::uint8_t { folder, other };

/// One entry of a folder. A link is no folder, whatever it points to.
struct FolderEntry {
    std::string name; ///< in the file system's encoding
    EntryKind kind;
};

enum class FinalLink : std::uint8_t { follow, refuse };

/// Whether a folder stands at the path, links followed.
[[nodiscard]] bool isFolder(const std::filesystem::path& path);

/// What the folder holds but for "." and "..", in the byte order of the names; nothing when it
/// cannot be read. What could be read before a failure counts.
[[nodiscard]] std::vector<FolderEntry> folderEntries(
    const std::filesystem::path& folder, FinalLink link);

} // namespace vellumine::platform
