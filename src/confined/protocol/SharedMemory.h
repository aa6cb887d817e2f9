#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/FileDescriptor.h"

#include <cstddef>
#include <memory>

namespace vellumine::confined {

/// Keeps memory that another process can be given: the deleter of the pixels that it is for.
class SharedMemory {
public:
    /// So many bytes, zero. Null when there are none.
    [[nodiscard]] static std::shared_ptr<std::byte[]> allocate(std::size_t bytes);

    /// The memory behind pixels that allocate() gave; null for any other.
    [[nodiscard]] static const SharedMemory* behind(
        const std::shared_ptr<const std::byte[]>& pixels);

    void operator()(std::byte* memory) const;

    [[nodiscard]] const imaging::FileDescriptor& descriptor() const { return *m_descriptor; }
    [[nodiscard]] const std::byte* begin() const { return m_begin; }
    [[nodiscard]] std::size_t size() const { return m_size; }

private:
    std::shared_ptr<const imaging::FileDescriptor> m_descriptor; // a deleter has to be copyable
    std::byte* m_begin = nullptr;
    std::size_t m_size = 0;
};

/// Appends the bytes to the memory of a descriptor, which nobody has mapped for writing, and seals
/// it: neither its size nor its content can change any more.
[[nodiscard]] imaging::Result<void> appendAndSeal(
    const imaging::FileDescriptor& memory, std::size_t size, imaging::ByteSpan appended);

/// The bytes of sealed memory, mapped for reading for as long as anybody holds them. Fails with
/// Malformed for a descriptor of anything else, or of less than `size` bytes: only what is sealed
/// can be read without danger while its maker is alive.
[[nodiscard]] imaging::Result<std::shared_ptr<const std::byte[]>> mapSealed(
    const imaging::FileDescriptor& memory, std::size_t size);

} // namespace vellumine::confined
