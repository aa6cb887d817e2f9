#include "platform/FolderBookmarks.h"

#include "platform/FilePath.h"
#include "platform/FolderListing.h"

namespace vellumine::platform {
namespace {

bool isExistingFolder(const QUrl& url)
{
    const std::filesystem::path path = toPath(url);
    return path.is_absolute() && isFolder(path);
}

} // namespace

std::optional<QByteArray> DesktopFolderBookmarks::create(const QUrl& folder)
{
    if (!isExistingFolder(folder)) {
        return std::nullopt;
    }
    return folder.toEncoded();
}

std::optional<FolderBookmarks::Resolution> DesktopFolderBookmarks::resolve(
    const QByteArray& bookmark)
{
    QUrl url = QUrl::fromEncoded(bookmark, QUrl::StrictMode);
    if (!isExistingFolder(url)) {
        return std::nullopt;
    }
    return Resolution { .url = std::move(url) };
}

} // namespace vellumine::platform
