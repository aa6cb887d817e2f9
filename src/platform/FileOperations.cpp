#include "platform/FileOperations.h"

#include "platform/FilePath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <span>
#include <system_error>
#include <vector>

namespace vellumine::platform {

namespace {

std::optional<struct stat> followed(const std::filesystem::path& path)
{
    struct stat status { };
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return status;
}

Result<FileDescriptor> openedForReading(const std::filesystem::path& path)
{
    FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor.isOpen()) {
        return failure(errno);
    }
    return descriptor;
}

} // namespace

ItemKind itemAt(const std::filesystem::path& path)
{
    struct stat status { };
    if (::lstat(path.c_str(), &status) != 0) {
        return ItemKind::none;
    }
    return S_ISDIR(status.st_mode) ? ItemKind::folder : ItemKind::other;
}

qint64 fileSize(const std::filesystem::path& path)
{
    const auto status = followed(path);
    return status && S_ISREG(status->st_mode) ? status->st_size : 0;
}

std::optional<FileVersion> fileVersion(const std::filesystem::path& path)
{
    const auto status = followed(path);
    if (!status) {
        return std::nullopt;
    }
    return FileVersion { status->st_dev, status->st_ino, status->st_size, status->st_mtim.tv_sec,
        status->st_mtim.tv_nsec };
}

std::optional<FileIdentity> identityAt(const std::filesystem::path& path)
{
    struct stat status { };
    if (::lstat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FileIdentity { status.st_dev, status.st_ino };
}

std::vector<std::filesystem::path> pathsToFile(const std::filesystem::path& path)
{
    constexpr std::size_t mostLinks = 40; // as many as the system follows
    std::vector<std::filesystem::path> paths { path };
    std::error_code error;
    while (paths.size() <= mostLinks && std::filesystem::is_symlink(paths.back(), error)) {
        const auto target = std::filesystem::read_symlink(paths.back(), error);
        if (error) {
            break;
        }
        paths.push_back(paths.back().parent_path() / target);
    }
    return paths;
}

std::filesystem::path absoluteByText(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(path, error);
    const bool goesBack = std::ranges::find(absolute, "..") != absolute.end();
    if (!goesBack || isSameFile(toPath(standardized(fileUrl(absolute))), absolute)) {
        return absolute;
    }
    // The name itself may be a link, and stays.
    const bool hasName = absolute.has_filename() && absolute.filename() != "..";
    const auto real
        = std::filesystem::canonical(hasName ? absolute.parent_path() : absolute, error);
    if (error) {
        return absolute;
    }
    return hasName ? real / absolute.filename() : real;
}

bool isSameFile(const std::filesystem::path& first, const std::filesystem::path& second)
{
    const auto a = followed(first);
    const auto b = followed(second);
    return a && b && a->st_dev == b->st_dev && a->st_ino == b->st_ino;
}

std::filesystem::path temporaryFolder()
{
    std::error_code error;
    std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (!error) {
        folder = std::filesystem::absolute(folder, error);
    }
    return error ? "/tmp" : folder;
}

bool isExecutableFile(const std::filesystem::path& path)
{
    const auto status = followed(path);
    return status && S_ISREG(status->st_mode) && ::access(path.c_str(), X_OK) == 0;
}

Result<void> checkWritableFolder(const std::filesystem::path& folder)
{
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        return failure(errno);
    }
    return {};
}

Result<void> copyModificationTime(
    const std::filesystem::path& from, const std::filesystem::path& to)
{
    const auto status = followed(from);
    if (!status) {
        return failure(errno);
    }
    const struct timespec times[2] { { 0, UTIME_OMIT }, status->st_mtim };
    if (::utimensat(AT_FDCWD, to.c_str(), times, 0) != 0) {
        return failure(errno);
    }
    return {};
}

Result<void> copyInto(const std::filesystem::path& from, const FileDescriptor& to)
{
    constexpr std::size_t chunk = std::size_t { 1 } << 20U;
    const auto source = openedForReading(from);
    if (!source) {
        return tl::unexpected(source.error());
    }
    std::vector<std::byte> buffer(chunk);
    while (true) {
        const ssize_t count = ::read(source->get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return failure(errno);
        }
        if (count == 0) {
            break;
        }
        auto written = to.writeAll(std::span(buffer).first(static_cast<std::size_t>(count)));
        if (!written) {
            return written;
        }
    }
    if (::fsync(to.get()) != 0 && errno != EINVAL) {
        return failure(errno);
    }
    return {};
}

} // namespace vellumine::platform
