#include "platform/PendingFile.h"

#include "platform/FileDescriptor.h"

#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

namespace vellumine::platform {

namespace {

/// Renames where the target's name is still free. File systems that cannot do that in one step
/// get a second name for the file instead, which is just as exclusive.
int renameToFreeName(const char* from, const char* to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    if (::link(from, to) == 0) {
        ::unlink(from);
        return 0;
    }
    return errno;
}

/// A rename is on disk only when its folder is. Not every file system can sync one: then there is
/// nothing more to be done.
void syncFolder(const std::filesystem::path& folder)
{
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen()) {
        ::fsync(descriptor.get());
    }
}

} // namespace

Result<PendingFile> PendingFile::beside(const std::filesystem::path& target)
{
    struct stat status { };
    if (::lstat(target.c_str(), &status) != 0 && errno != ENOENT) {
        return failure(errno);
    }
    const std::filesystem::path folder = target.parent_path();
    if (::lstat(folder.c_str(), &status) != 0) {
        return failure(errno);
    }
    const std::string uuid
        = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
    return PendingFile(folder / (std::string(prefix) + uuid + std::string(suffix)), target);
}

PendingFile::PendingFile(std::filesystem::path path, std::filesystem::path target)
    : m_path(std::move(path))
    , m_target(std::move(target))
{
}

PendingFile::PendingFile(PendingFile&& other) noexcept
    : m_path(std::move(other.m_path))
    , m_target(std::move(other.m_target))
{
    other.m_path.clear();
}

PendingFile::~PendingFile()
{
    if (!m_path.empty()) {
        ::unlink(m_path.c_str());
    }
}

Result<void> PendingFile::publish(ExistingItem existing) &&
{
    int error = 0;
    if (existing == ExistingItem::keep) {
        error = renameToFreeName(m_path.c_str(), m_target.c_str());
    } else if (::rename(m_path.c_str(), m_target.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(m_path.c_str());
        m_path.clear();
        return failure(error);
    }
    m_path.clear();
    syncFolder(m_target.parent_path());
    return {};
}

} // namespace vellumine::platform
