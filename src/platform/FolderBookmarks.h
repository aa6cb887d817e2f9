#pragma once

#include <QByteArray>
#include <QUrl>

#include <optional>

namespace vellumine::platform {

/// Remembers folders, with the right to write to them, as opaque byte strings.
class FolderBookmarks {
public:
    struct Resolution {
        QUrl url;
        bool isStale = false; ///< a fresh bookmark should take the place of this one
    };

    FolderBookmarks() = default;
    virtual ~FolderBookmarks() = default;
    FolderBookmarks(const FolderBookmarks&) = delete;
    FolderBookmarks& operator=(const FolderBookmarks&) = delete;

    /// None where the folder cannot be remembered. Never empty bytes.
    [[nodiscard]] virtual std::optional<QByteArray> create(const QUrl& folder) = 0;

    /// None for bytes that are no bookmark, and for a folder that is gone.
    [[nodiscard]] virtual std::optional<Resolution> resolve(const QByteArray& bookmark) = 0;
};

/// Bookmarks of this desktop: the folder's file URL. They are never stale.
class DesktopFolderBookmarks final : public FolderBookmarks {
public:
    [[nodiscard]] std::optional<QByteArray> create(const QUrl& folder) override;
    [[nodiscard]] std::optional<Resolution> resolve(const QByteArray& bookmark) override;
};

} // namespace vellumine::platform
