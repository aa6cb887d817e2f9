#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

namespace vellumine::imaging {

/// An open file of the system, closed at the end of its life. Every failure is of kind Io with the
/// system's own text as detail.
class FileDescriptor {
public:
    /// Opens a regular file for reading; anything else in its place (a folder, a pipe, a device)
    /// fails at once instead of waiting.
    static Result<FileDescriptor> openForReading(const std::filesystem::path& path);
    /// Creates a file for writing, which must not exist.
    static Result<FileDescriptor> createForWriting(const std::filesystem::path& path);

    /// The same open file by a number of its own; the given one stays the caller's.
    static Result<FileDescriptor> duplicateOf(int descriptor);
    /// Takes an open descriptor over.
    static FileDescriptor adopted(int descriptor) { return FileDescriptor(descriptor); }

    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor();

    /// For calls of the system; it stays this object's.
    [[nodiscard]] int number() const { return m_descriptor; }
    /// The file's size in bytes.
    [[nodiscard]] Result<std::uint64_t> size() const;
    /// Puts up to `count` further bytes behind those in the buffer: fewer only when the file ends.
    /// Fails with OutOfMemory too; the buffer is then as it was.
    Result<void> readInto(ByteBuffer& bytes, std::size_t count);
    /// All of the bytes.
    Result<void> write(ByteSpan bytes);
    /// Brings what was written to the disk and closes the file.
    Result<void> syncAndClose();

private:
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }

    int m_descriptor;
};

} // namespace vellumine::imaging
