#pragma once

#include <QByteArray>
#include <QUrl>

#include <filesystem>

namespace vellumine::platform {

// File names are bytes that need not be UTF-8. A file URL carries them all, percent-encoded, and
// everything here keeps them; only texts for people show such bytes as replacement characters.

/// The URL of a file here, without the host: some programs name this machine there. Empty for any
/// other URL.
[[nodiscard]] QUrl onThisMachine(const QUrl& url);

/// The path that a file URL names, in the file system's encoding; empty for any other URL.
[[nodiscard]] std::filesystem::path toPath(const QUrl& url);

/// The file URL of a local path. Slashes in front are taken as one: two would read as a host.
[[nodiscard]] QUrl fileUrl(const QString& path);

/// The same for a path in the file system's encoding.
[[nodiscard]] QUrl fileUrl(const std::filesystem::path& path);

/// The URL with its "." and ".." components resolved, as a text operation: no link is followed.
[[nodiscard]] QUrl standardized(const QUrl& url);

/// The path of the standardised URL, in the file system's encoding: what files are told apart by.
[[nodiscard]] QByteArray standardizedPath(const QUrl& url);

/// The folder that holds the file.
[[nodiscard]] QUrl parentFolder(const QUrl& url);

/// The last path component in the file system's encoding.
[[nodiscard]] QByteArray lastPathComponentBytes(const QUrl& url);

/// The same as a text.
[[nodiscard]] QString lastPathComponent(const QUrl& url);

} // namespace vellumine::platform
