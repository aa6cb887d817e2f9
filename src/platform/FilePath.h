#pragma once

#include <QUrl>

#include <filesystem>

namespace vellumine::platform {

/// The path that a file URL names, in the file system's encoding.
[[nodiscard]] std::filesystem::path toPath(const QUrl& url);

/// The file URL of a local path. Slashes in front are taken as one: two would read as a host.
[[nodiscard]] QUrl fileUrl(const QString& path);

/// The URL with its "." and ".." components resolved, as a text operation: no link is followed.
[[nodiscard]] QUrl standardized(const QUrl& url);

/// The folder that holds the file.
[[nodiscard]] QUrl parentFolder(const QUrl& url);

/// The last path component, as it is on disk.
[[nodiscard]] QString lastPathComponent(const QUrl& url);

} // namespace vellumine::platform
