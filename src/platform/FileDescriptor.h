#pragma once

#include "platform/FileError.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <utility>

namespace vellumine::platform {

/// An open file descriptor with one owner.
class FileDescriptor {
public:
    /// Creates a file that must not exist, readable by this user alone, for writing.
    static Result<FileDescriptor> createPrivateFile(const std::filesystem::path& path);

    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        if (this != &other) {
            reset();
            m_descriptor = std::exchange(other.m_descriptor, -1);
        }
        return *this;
    }
    ~FileDescriptor() { reset(); }

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int get() const { return m_descriptor; }
    /// Writes all of it, or fails with the system's text.
    [[nodiscard]] Result<void> writeAll(std::span<const std::byte> content) const;
    /// Closes it; what the system says about that is of no use any more.
    void reset();

private:
    int m_descriptor = -1;
};

/// Puts something in the place of standard streams that the program was started without, or files
/// that it opens would be taken for them and be written into. Before anything else is opened.
void fillStandardStreams();

} // namespace vellumine::platform
