#include "batch/FileInputResolver.h"

#include "platform/FilePath.h"
#include "platform/FolderListing.h"
#include "platform/SecurityScope.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace vellumine {
namespace {

using namespace std::string_view_literals;

constexpr std::array supportedExtensions { "jpg"sv, "jpeg"sv, "png"sv, "gif"sv, "tif"sv, "tiff"sv,
    "bmp"sv, "heic"sv, "heif"sv, "webp"sv };

// Folders that are one document or one program to the people who use them. Such folders come here
// on disks that are shared with other systems.
constexpr std::array packageExtensions { "app"sv, "appex"sv, "bundle"sv, "framework"sv, "kext"sv,
    "prefpane"sv, "qlgenerator"sv, "saver"sv, "xpc"sv, "pkg"sv, "mpkg"sv, "lproj"sv, "dsym"sv,
    "playground"sv, "xcodeproj"sv, "xcworkspace"sv, "photoslibrary"sv, "photolibrary"sv,
    "migratedphotolibrary"sv, "aplibrary"sv, "musiclibrary"sv, "tvlibrary"sv, "theater"sv,
    "imovielibrary"sv, "fcpbundle"sv, "lrdata"sv, "lrlibrary"sv, "logicx"sv, "rtfd"sv, "scptd"sv,
    "wdgt"sv };

/// The longest extension of the tables is shorter; what is longer can be in none of them.
constexpr std::size_t longestExtension = 24;

/// The extension of a name in lower case: what stands behind the last full stop, if something
/// stands in front of it.
std::string extensionOf(std::string_view name)
{
    const std::size_t stop = name.rfind('.');
    if (stop == std::string_view::npos || stop == 0 || name.size() - stop > longestExtension) {
        return {};
    }
    std::string extension(name.substr(stop + 1));
    std::ranges::transform(extension, extension.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension;
}

bool isSupported(std::string_view name)
{
    return std::ranges::find(supportedExtensions, extensionOf(name)) != supportedExtensions.end();
}

bool isPackage(std::string_view name)
{
    return std::ranges::find(packageExtensions, extensionOf(name)) != packageExtensions.end();
}

/// A folder that is still to be searched, by the path under which its files are listed and by the
/// standardised path under which they are told apart.
struct WaitingFolder {
    std::string listed;
    std::string standardized;
    platform::FinalLink link;
};

std::string joined(const std::string& folder, const std::string& name)
{
    return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

// The folders that wait are kept by path rather than open: no depth runs out of descriptors, and a
// path that is too long for the system to open is too long for everything after us as well.
void appendFolder(const QUrl& url, QList<QUrl>& list, FileInputResolver::SeenPaths& seen,
    const std::stop_token& stop)
{
    std::vector<WaitingFolder> waiting { { platform::toPath(url).string(),
        platform::standardizedPath(url).toStdString(), platform::FinalLink::follow } };
    while (!waiting.empty() && !stop.stop_requested()) {
        const WaitingFolder folder = std::move(waiting.back());
        waiting.pop_back();
        const std::size_t firstSubfolder = waiting.size();
        for (const platform::FolderEntry& entry :
            platform::folderEntries(folder.listed, folder.link)) {
            if (entry.name.starts_with('.')) {
                continue;
            }
            if (isSupported(entry.name)) {
                const QByteArray key
                    = QByteArray::fromStdString(joined(folder.standardized, entry.name));
                if (!seen.contains(key)) {
                    seen.insert(key);
                    list.append(platform::fileUrl(
                        std::filesystem::path(joined(folder.listed, entry.name))));
                }
            }
            if (entry.kind == platform::EntryKind::folder && !isPackage(entry.name)) {
                waiting.push_back({ joined(folder.listed, entry.name),
                    joined(folder.standardized, entry.name), platform::FinalLink::refuse });
            }
        }
        std::reverse(waiting.begin() + static_cast<std::ptrdiff_t>(firstSubfolder), waiting.end());
    }
}

} // namespace

QList<QUrl> FileInputResolver::imageURLs(
    const QList<QUrl>& urls, platform::SecurityScope& scope, const std::stop_token& stop)
{
    QList<QUrl> list;
    SeenPaths seen;
    for (const QUrl& url : urls) {
        if (stop.stop_requested()) {
            break;
        }
        appendImages(url, list, seen, scope, stop);
    }
    return list;
}

void FileInputResolver::appendImages(const QUrl& url, QList<QUrl>& list, SeenPaths& seen,
    platform::SecurityScope& scope, const std::stop_token& stop)
{
    if (!url.isLocalFile()) {
        return;
    }
    const platform::ScopedAccess access(scope, url);
    if (hasSupportedExtension(url)) {
        appendImage(url, list, seen);
    } else if (isDirectory(url)) {
        appendFolder(url, list, seen, stop);
    }
}

void FileInputResolver::appendImage(const QUrl& url, QList<QUrl>& list, SeenPaths& seen)
{
    const QByteArray key = platform::standardizedPath(url);
    if (!seen.contains(key)) {
        seen.insert(key);
        list.append(url);
    }
}

bool FileInputResolver::hasSupportedExtension(const QUrl& url)
{
    return url.isLocalFile() && isSupported(platform::lastPathComponentBytes(url).toStdString());
}

bool FileInputResolver::isDirectory(const QUrl& url)
{
    return url.isLocalFile() && platform::isFolder(platform::toPath(url));
}

} // namespace vellumine
