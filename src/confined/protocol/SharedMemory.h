#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/FileDescriptor.h"

#include <cstddef>
#include <memory>

namespace vellumine::confined {

/// Memory that is filled by one process and handed to another one when it is complete.
class SharedMemory {
public:
    [[nodiscard]] static imaging::Result<SharedMemory> create();

    /// Behind what is there already.
    [[nodiscard]] imaging::Result<void> append(imaging::ByteSpan bytes);

    /// Neither size nor content can change any more.
    [[nodiscard]] imaging::Result<imaging::FileDescriptor> seal() &&;

private:
    explicit SharedMemory(imaging::FileDescriptor descriptor)
        : m_descriptor(std::move(descriptor))
    {
    }

    imaging::FileDescriptor m_descriptor;
    std::size_t m_size = 0;
};

/// The bytes of sealed memory, mapped for reading for as long as anybody holds them. Fails with
/// Malformed for a descriptor of anything else, or of less than `size` bytes: only what is sealed
/// can be read without danger while its maker is alive.
[[nodiscard]] imaging::Result<std::shared_ptr<const std::byte[]>> mapSealed(
    const imaging::FileDescriptor& memory, std::size_t size);

} // namespace vellumine::confined
