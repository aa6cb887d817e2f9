#include "platform/FolderListing.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace vellumine::platform {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using FolderHandle = std::unique_ptr<DIR, CloseFolder>;

FolderHandle open(const std::filesystem::path& path, FinalLink link)
{
    const int refuse = link == FinalLink::refuse ? O_NOFOLLOW : 0;
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | refuse);
    if (descriptor < 0) {
        return nullptr;
    }
    FolderHandle folder(::fdopendir(descriptor));
    if (!folder) {
        ::close(descriptor);
    }
    return folder;
}

EntryKind kindOf(DIR* folder, const dirent& entry)
{
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR ? EntryKind::folder : EntryKind::other;
    }
    // Some file systems keep no kinds in their folders.
    struct stat status { };
    const bool known = ::fstatat(::dirfd(folder), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    return known && S_ISDIR(status.st_mode) ? EntryKind::folder : EntryKind::other;
}

} // namespace

bool isFolder(const std::filesystem::path& path)
{
    struct stat status { };
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::vector<FolderEntry> folderEntries(const std::filesystem::path& folder, FinalLink link)
{
    std::vector<FolderEntry> entries;
    const FolderHandle handle = open(folder, link);
    if (!handle) {
        return entries;
    }
    while (const dirent* entry = ::readdir(handle.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back({ std::string(name), kindOf(handle.get(), *entry) });
        }
    }
    std::ranges::sort(entries, {}, &FolderEntry::name);
    return entries;
}

} // namespace vellumine::platform
