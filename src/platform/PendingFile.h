#pragma once

#include "platform/FileDescriptor.h"
#include "platform/FileError.h"

#include <filesystem>
#include <string_view>

namespace vellumine::platform {

/// What publishing does to an item that has the name already.
enum class ExistingItem {
    replace, ///< a link is replaced itself, what it points to is not touched
    keep, ///< publishing fails
};

/// A file on its way to its place: it is written under a hidden name beside its target, and takes
/// the target's name in one step once it is complete. An item of that name stands until then. A
/// pending file that is dropped unpublished is removed; what a process left that could no longer do
/// so is told by its name and by a lock that went with its owner, where the disk has locks.
class PendingFile {
public:
    /// What the hidden names begin and end with; a UUID is in between.
    static constexpr std::string_view prefix = ".vellumine-";
    static constexpr std::string_view suffix = ".part";

    /// Creates the file, empty. Fails where that is not possible, and where the target's own name
    /// could not be used (too long, no such folder).
    static Result<PendingFile> beside(const std::filesystem::path& target);

    /// Removes the pending files of this user in the folder whose owners are gone.
    static void removeLeftOver(const std::filesystem::path& folder);

    PendingFile(PendingFile&& other) noexcept;
    PendingFile& operator=(PendingFile&&) = delete;
    ~PendingFile();

    /// Where to write.
    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    /// The same file, open for writing.
    [[nodiscard]] const FileDescriptor& file() const { return m_file; }

    /// Gives the file, which must be complete and synced, the target's name, and syncs the folder.
    /// On failure the target is as it was and the pending file is gone.
    [[nodiscard]] Result<void> publish(ExistingItem existing) &&;

private:
    PendingFile(std::filesystem::path path, std::filesystem::path target, FileDescriptor file);

    std::filesystem::path m_path; ///< empty once published or moved from
    std::filesystem::path m_target;
    FileDescriptor m_file; ///< holds the lock
};

} // namespace vellumine::platform
