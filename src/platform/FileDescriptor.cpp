#include "platform/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vellumine::platform {

Result<FileDescriptor> FileDescriptor::createPrivateFile(const std::filesystem::path& path)
{
    FileDescriptor descriptor(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!descriptor.isOpen()) {
        return failure(errno);
    }
    return descriptor;
}

Result<void> FileDescriptor::writeAll(std::span<const std::byte> content) const
{
    while (!content.empty()) {
        const ssize_t written = ::write(m_descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return failure(errno);
        }
        content = content.subspan(static_cast<std::size_t>(written));
    }
    return {};
}

void FileDescriptor::reset()
{
    if (m_descriptor >= 0) {
        ::close(std::exchange(m_descriptor, -1));
    }
}

void fillStandardStreams()
{
    for (const int stream : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO }) {
        if (::fcntl(stream, F_GETFD) < 0) {
            // Takes the lowest number that is free. Writing into it fails, as it would without it.
            ::open("/dev/null", O_RDONLY);
        }
    }
}

} // namespace vellumine::platform
