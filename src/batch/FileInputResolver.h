#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QUrl>

#include <stop_token>

namespace vellumine {

namespace platform {
class SecurityScope;
}

/// Turns dropped files and folders into the list of pictures to convert. Only a name's extension
/// decides whether a file is taken. Nothing here fails: what cannot be read is left out. Safe to
/// call from any thread.
class FileInputResolver {
public:
    FileInputResolver() = delete;

    /// Standardised paths of the files that were listed already.
    using SeenPaths = QSet<QByteArray>;

    /// The pictures, each once, at the place where it was first reached. Folders are searched at
    /// any depth but for hidden ones and packages; links to files are taken, links to folders are
    /// followed only where they were dropped themselves. The entries of a folder come in the byte
    /// order of their names, its subfolders after its files, so that the same drop gives the same
    /// list. Once a stop is requested the list ends where it is.
    [[nodiscard]] static QList<QUrl> imageURLs(
        const QList<QUrl>& urls, platform::SecurityScope& scope, const std::stop_token& stop = {});

    /// Resolves one dropped item. The extension counts before anything else: a folder with the name
    /// of a picture is taken as a file.
    static void appendImages(const QUrl& url, QList<QUrl>& list, SeenPaths& seen,
        platform::SecurityScope& scope, const std::stop_token& stop = {});

    /// Lists the URL as it is, unless its standardised path was listed.
    static void appendImage(const QUrl& url, QList<QUrl>& list, SeenPaths& seen);

    /// Whether the name says that it is a picture.
    [[nodiscard]] static bool hasSupportedExtension(const QUrl& url);

    /// Whether a folder stands there; false where that cannot be told.
    [[nodiscard]] static bool isDirectory(const QUrl& url);
};

} // namespace vellumine
