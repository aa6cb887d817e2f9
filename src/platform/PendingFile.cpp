#include "platform/PendingFile.h"

#include "platform/FolderListing.h"
#include "platform/UniqueName.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

namespace vellumine::platform {

namespace {

/// The name is claimed by an empty file, which the other then replaces.
int renameToClaimedName(const char* from, const char* to)
{
    const FileDescriptor claim(::open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!claim.isOpen()) {
        return errno;
    }
    if (::rename(from, to) == 0) {
        return 0;
    }
    const int error = errno;
    ::unlink(to);
    return error;
}

/// Renames where the target's name is still free. File systems that cannot do that in one step
/// get a second name for the file instead, which is just as exclusive; those without second names
/// (folders shared with a virtual machine, some of FUSE's) one that was claimed.
int renameToFreeName(const char* from, const char* to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) {
        return errno;
    }
    if (::link(from, to) == 0) {
        ::unlink(from);
        return 0;
    }
    return errno == EEXIST ? EEXIST : renameToClaimedName(from, to);
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

bool isStillAt(const std::filesystem::path& path, const FileDescriptor& file)
{
    struct stat held { };
    struct stat found { };
    return ::fstat(file.get(), &held) == 0 && ::lstat(path.c_str(), &found) == 0
        && held.st_dev == found.st_dev && held.st_ino == found.st_ino;
}

/// Creates the file and locks it for as long as it is open. Without a lock nobody takes it for left
/// over, so one that cannot be had on this disk is not missed.
Result<FileDescriptor> createdAndLocked(const std::filesystem::path& path)
{
    // The umask takes away what the user wants new files to lack.
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        return failure(errno);
    }
    // Somebody who clears up can come between the two: whoever then has the lock has removed it.
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        return failure(EAGAIN);
    }
    if (!isStillAt(path, file)) {
        return failure(EAGAIN);
    }
    return file;
}

/// Removes a file of this user's whose lock nobody holds. The lock is kept until it is gone, so
/// that an owner that was about to take it learns of that.
void removeIfAbandoned(const std::filesystem::path& path)
{
    const FileDescriptor file(
        ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status { };
    if (file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode)
        && status.st_uid == ::geteuid() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0
        && isStillAt(path, file)) {
        ::unlink(path.c_str());
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
    while (true) {
        std::filesystem::path path = folder / uniqueName(prefix, suffix);
        auto file = createdAndLocked(path);
        if (file) {
            return PendingFile(std::move(path), target, std::move(*file));
        }
        if (file.error() != FileError::fromErrno(EAGAIN)) {
            return tl::unexpected(file.error());
        }
    }
}

void PendingFile::removeLeftOver(const std::filesystem::path& folder)
{
    for (const FolderEntry& entry : folderEntries(folder, FinalLink::follow)) {
        if (entry.kind == EntryKind::other && isUniqueName(entry.name, prefix, suffix)) {
            removeIfAbandoned(folder / entry.name);
        }
    }
}

PendingFile::PendingFile(
    std::filesystem::path path, std::filesystem::path target, FileDescriptor file)
    : m_path(std::move(path))
    , m_target(std::move(target))
    , m_file(std::move(file))
{
}

PendingFile::PendingFile(PendingFile&& other) noexcept
    : m_path(std::move(other.m_path))
    , m_target(std::move(other.m_target))
    , m_file(std::move(other.m_file))
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
