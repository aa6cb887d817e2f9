#include "confined/protocol/SharedMemory.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::Result;

namespace {

constexpr int sealsOfPictures = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;

/// Below this, a page that is touched for the first time may fault as usual.
constexpr std::size_t populatedAtOnce = std::size_t { 1 } << 20U;

tl::unexpected<Error> systemFailure(int code)
{
    return imaging::failure(Error::Kind::io, std::system_category().message(code));
}

void unmap(const std::byte* memory, std::size_t size)
{
    ::munmap(const_cast<std::byte*>(memory), size);
}

} // namespace

Result<SharedMemory> SharedMemory::create()
{
    const int number = ::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (number < 0) {
        return systemFailure(errno);
    }
    return SharedMemory(FileDescriptor::adopted(number));
}

// Written, not mapped: a page that is written as a whole is not zeroed before.
Result<void> SharedMemory::append(imaging::ByteSpan bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::pwrite(
            m_descriptor.number(), bytes.data(), bytes.size(), static_cast<off_t>(m_size));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return systemFailure(count < 0 ? errno : ENOSPC);
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        m_size += static_cast<std::size_t>(count);
    }
    return {};
}

Result<FileDescriptor> SharedMemory::seal() &&
{
    if (::fcntl(m_descriptor.number(), F_ADD_SEALS, sealsOfPictures) != 0) {
        return systemFailure(errno);
    }
    return std::move(m_descriptor);
}

Result<std::shared_ptr<const std::byte[]>> mapSealed(const FileDescriptor& memory, std::size_t size)
{
    const int seals = ::fcntl(memory.number(), F_GET_SEALS);
    if (seals < 0 || (seals & sealsOfPictures) != sealsOfPictures) {
        return imaging::failure(Error::Kind::malformed, "the memory is not sealed");
    }
    // Huge pages can be sealed too, but can run out when they are looked at.
    struct statfs system { };
    if (::fstatfs(memory.number(), &system) != 0 || system.f_type != TMPFS_MAGIC) {
        return imaging::failure(Error::Kind::malformed, "the memory is not ordinary");
    }
    const auto there = memory.size();
    if (!there || size == 0 || *there < size) {
        return imaging::failure(Error::Kind::malformed, "the memory is too small");
    }
    // Private, since older kernels refuse to share what can never be written to. No page is copied.
    const int populate = size >= populatedAtOnce ? MAP_POPULATE : 0;
    void* const mapped
        = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | populate, memory.number(), 0);
    if (mapped == MAP_FAILED) {
        return imaging::failure(Error::Kind::outOfMemory, "no room for the picture");
    }
    return std::shared_ptr<const std::byte[]>(static_cast<const std::byte*>(mapped),
        [size](const std::byte* bytes) { unmap(bytes, size); });
}

} // namespace vellumine::confined
