#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vellumine::platform {

Result<FileLock> FileLock::open(const std::filesystem::path& path)
{
    constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
    FileDescriptor file(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, ownerOnly));
    if (!file.isOpen()) {
        return failure(errno);
    }
    struct stat status { };
    if (::fstat(file.get(), &status) != 0) {
        return failure(errno);
    }
    if (status.st_uid != ::geteuid() || !S_ISREG(status.st_mode)) {
        return failure(EPERM);
    }
    return FileLock(path, std::move(file));
}

bool FileLock::tryExclusive() const
{
    return ::flock(m_file.get(), LOCK_EX | LOCK_NB) == 0;
}

Result<void> FileLock::share() const
{
    while (::flock(m_file.get(), LOCK_SH) != 0) {
        if (errno != EINTR) {
            return failure(errno);
        }
    }
    return {};
}

bool FileLock::isAtItsPath() const
{
    struct stat held { };
    struct stat found { };
    return ::fstat(m_file.get(), &held) == 0 && ::lstat(m_path.c_str(), &found) == 0
        && held.st_dev == found.st_dev && held.st_ino == found.st_ino;
}

void FileLock::removeFile() const
{
    ::unlink(m_path.c_str());
}

} // namespace vellumine::platform
