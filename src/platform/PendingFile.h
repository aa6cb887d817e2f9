#pragma once

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
/// pending file that is dropped unpublished is removed.
class PendingFile {
public:
    /// What the hidden names begin and end with; a UUID is in between.
    static constexpr std::string_view prefix = ".vellumine-";
    static constexpr std::string_view suffix = ".part";

    /// Chooses the name; the file is the caller's to create. Fails where the target's own name
    /// could not be used (too long, no such folder).
    static Result<PendingFile> beside(const std::filesystem::path& target);

    PendingFile(PendingFile&& other) noexcept;
    PendingFile& operator=(PendingFile&&) = delete;
    ~PendingFile();

    /// Where to write.
    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

    /// Gives the file, which must be complete and synced, the target's name, and syncs the folder.
    /// On failure the target is as it was and the pending file is gone.
    [[nodiscard]] Result<void> publish(ExistingItem existing) &&;

private:
    PendingFile(std::filesystem::path path, std::filesystem::path target);

    std::filesystem::path m_path; ///< empty once published or moved from
    std::filesystem::path m_target;
};

} // namespace vellumine::platform
