#include "platform/FolderBookmarks.h"

#include <QFileInfo>

namespace vellumine::platform {
namespace {

bool isExistingFolder(const QUrl& url)
{
    const QFileInfo item(url.toLocalFile());
    return url.isLocalFile() && item.isAbsolute() && item.isDir();
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
