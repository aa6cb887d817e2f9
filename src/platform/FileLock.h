#pragma once

#include "platform/FileDescriptor.h"
#include "platform/FileError.h"

#include <filesystem>

namespace vellumine::platform {

/// A lock that processes share by the path of a file. The system gives it back when its process
/// ends, however it ends. Whoever holds it alone may remove the file: so a lock counts for nothing
/// unless it is still at its path once it is held.
class FileLock {
public:
    /// Opens or creates the file, without locking. Refuses what is another user's, and links.
    [[nodiscard]] static Result<FileLock> open(const std::filesystem::path& path);

    /// Whether nobody else holds it in any way, and so this lock does alone now.
    [[nodiscard]] bool tryExclusive() const;

    /// Holds it together with others. Waits for whoever has it alone.
    [[nodiscard]] Result<void> share() const;

    /// Whether others that open the path get this lock, and not one of a file that replaced it.
    [[nodiscard]] bool isAtItsPath() const;

    /// Removes the file; only while this lock holds alone.
    void removeFile() const;

private:
    FileLock(std::filesystem::path path, FileDescriptor file)
        : m_path(std::move(path))
        , m_file(std::move(file))
    {
    }

    std::filesystem::path m_path;
    FileDescriptor m_file;
};

} // namespace vellumine::platform
