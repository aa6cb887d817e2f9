#include "confined/protocol/SharedMemory.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <new>
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

Result<void> writeAt(const FileDescriptor& memory, std::size_t offset, imaging::ByteSpan bytes)
{
    while (!bytes.empty()) {
        const ssize_t count
            = ::pwrite(memory.number(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return systemFailure(count < 0 ? errno : ENOSPC);
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::size_t>(count);
    }
    return {};
}

} // namespace

std::shared_ptr<std::byte[]> SharedMemory::allocate(std::size_t bytes)
{
    const int number = ::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (number < 0) {
        return nullptr;
    }
    SharedMemory owner;
    try {
        auto descriptor = std::make_shared<const FileDescriptor>(FileDescriptor::adopted(number));
        owner.m_descriptor = std::move(descriptor);
    } catch (const std::bad_alloc&) {
        ::close(number);
        return nullptr;
    }
    if (::ftruncate(number, static_cast<off_t>(bytes)) != 0) {
        return nullptr;
    }
    // All pages at once cost half of what they do one by one, and a codec fills them all.
    const int populate = bytes >= populatedAtOnce ? MAP_POPULATE : 0;
    void* const memory
        = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | populate, number, 0);
    if (memory == MAP_FAILED) {
        return nullptr;
    }
    owner.m_begin = static_cast<std::byte*>(memory);
    owner.m_size = bytes;
    return { owner.m_begin, owner };
}

const SharedMemory* SharedMemory::behind(const std::shared_ptr<const std::byte[]>& pixels)
{
    return std::get_deleter<SharedMemory>(pixels);
}

void SharedMemory::operator()(std::byte* memory) const
{
    unmap(memory, m_size);
}

Result<void> appendAndSeal(
    const FileDescriptor& memory, std::size_t size, imaging::ByteSpan appended)
{
    if (auto written = writeAt(memory, size, appended); !written) {
        return written;
    }
    if (::fcntl(memory.number(), F_ADD_SEALS, sealsOfPictures) != 0) {
        return systemFailure(errno);
    }
    return {};
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
