#pragma once

#include "platform/FileDescriptor.h"
#include "platform/FileError.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <tuple>
#include <vector>

namespace vellumine::platform {

enum class ItemKind { none, folder, other };

/// What stands at the path itself: a link counts as an item, whatever it points to. What cannot be
/// looked at counts as None.
[[nodiscard]] ItemKind itemAt(const std::filesystem::path& path);

/// Size in bytes of the file, links followed; 0 when it cannot be read.
[[nodiscard]] qint64 fileSize(const std::filesystem::path& path);

/// Tells a file from what may have taken its place or been written into it since.
struct FileVersion {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t size = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;

    friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// Of the file, links followed; nothing when there is none.
[[nodiscard]] std::optional<FileVersion> fileVersion(const std::filesystem::path& path);

/// A file, whatever its names are.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    friend bool operator<(const FileIdentity& a, const FileIdentity& b)
    {
        return std::tie(a.device, a.number) < std::tie(b.device, b.number);
    }
};

/// Of what stands at the path itself, which may be a link; nothing when there is none.
[[nodiscard]] std::optional<FileIdentity> identityAt(const std::filesystem::path& path);

/// The path, and where it is a link every further one on the way to the file.
[[nodiscard]] std::vector<std::filesystem::path> pathsToFile(const std::filesystem::path& path);

/// The absolute path of what the given one names, which leads there by its text alone as well: ".."
/// behind a link does not.
[[nodiscard]] std::filesystem::path absoluteByText(const std::filesystem::path& path);

/// Whether both paths exist and lead to the same file: through links of either kind, or by other
/// letters on a disk that does not tell upper from lower case.
[[nodiscard]] bool isSameFile(
    const std::filesystem::path& first, const std::filesystem::path& second);

/// Whether the path is a file that this process may execute.
[[nodiscard]] bool isExecutableFile(const std::filesystem::path& path);

/// The user's folder for temporary files: what the environment names (TMPDIR before others) where
/// that is a folder, else /tmp.
[[nodiscard]] std::filesystem::path temporaryFolder();

/// Whether an item in the folder may be replaced, as far as permissions say.
[[nodiscard]] Result<void> checkWritableFolder(const std::filesystem::path& folder);

/// Gives `to` the modification time of `from`, to the nanosecond. The access time stays.
[[nodiscard]] Result<void> copyModificationTime(
    const std::filesystem::path& from, const std::filesystem::path& to);

/// Copies content into an empty file that is open for writing, and syncs it to disk.
[[nodiscard]] Result<void> copyInto(const std::filesystem::path& from, const FileDescriptor& to);

} // namespace vellumine::platform
