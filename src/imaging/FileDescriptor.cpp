#include "imaging/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vellumine::imaging {

namespace {

tl::unexpected<Error> systemFailure(int code)
{
    return failure(Error::Kind::io, std::system_category().message(code));
}

// Linux moves at most this much in one call.
constexpr std::size_t largestTransfer = 0x7FFFF000;

} // namespace

Result<FileDescriptor> FileDescriptor::openForReading(const std::filesystem::path& path)
{
    // Without O_NONBLOCK, opening a pipe waits for a writer.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (file.m_descriptor < 0) {
        return systemFailure(errno);
    }
    struct stat status { };
    if (::fstat(file.m_descriptor, &status) != 0) {
        return systemFailure(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return systemFailure(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        return failure(Error::Kind::io, "not a regular file");
    }
    return file;
}

Result<FileDescriptor> FileDescriptor::createForWriting(const std::filesystem::path& path)
{
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file.m_descriptor < 0) {
        return systemFailure(errno);
    }
    return file;
}

Result<FileDescriptor> FileDescriptor::duplicateOf(int descriptor)
{
    FileDescriptor file(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    if (file.m_descriptor < 0) {
        return systemFailure(errno);
    }
    return file;
}

FileDescriptor::~FileDescriptor()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

Result<std::uint64_t> FileDescriptor::size() const
{
    struct stat status { };
    if (::fstat(m_descriptor, &status) != 0) {
        return systemFailure(errno);
    }
    return static_cast<std::uint64_t>(status.st_size);
}

// The position in the file changes, if not the handle.
// NOLINTNEXTLINE(readability-make-member-function-const)
Result<void> FileDescriptor::readInto(ByteBuffer& bytes, std::size_t count)
{
    const std::size_t before = bytes.size();
    try {
        bytes.resize(before + count);
    } catch (const std::exception&) { // bad_alloc, or more than a vector can ever hold
        return failure(Error::Kind::outOfMemory, "no memory for the file");
    }
    std::size_t done = before;
    while (done < bytes.size()) {
        const ssize_t step = ::read(
            m_descriptor, bytes.data() + done, std::min(bytes.size() - done, largestTransfer));
        if (step < 0 && errno == EINTR) {
            continue;
        }
        if (step < 0) {
            const int code = errno;
            bytes.resize(before);
            return systemFailure(code);
        }
        if (step == 0) {
            break;
        }
        done += static_cast<std::size_t>(step);
    }
    bytes.resize(done);
    return {};
}

// The file changes, if not the handle.
// NOLINTNEXTLINE(readability-make-member-function-const)
Result<void> FileDescriptor::write(ByteSpan bytes)
{
    while (!bytes.empty()) {
        const ssize_t step
            = ::write(m_descriptor, bytes.data(), std::min(bytes.size(), largestTransfer));
        if (step < 0 && errno == EINTR) {
            continue;
        }
        if (step < 0) {
            return systemFailure(errno);
        }
        bytes = bytes.subspan(static_cast<std::size_t>(step));
    }
    return {};
}

Result<void> FileDescriptor::syncAndClose()
{
    // EINVAL: a file system without anything to sync, as some in user space are.
    if (::fsync(m_descriptor) != 0 && errno != EINVAL) {
        return systemFailure(errno);
    }
    // Network file systems report a full disk here. After EINTR the descriptor is closed all the
    // same, and what was synced stays.
    if (::close(std::exchange(m_descriptor, -1)) != 0 && errno != EINTR) {
        return systemFailure(errno);
    }
    return {};
}

} // namespace vellumine::imaging
