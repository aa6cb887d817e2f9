#pragma once

#include "core/OptimizerSettings.h"
#include "core/VellumineSettings.h"
#include "platform/FolderBookmarks.h"

#include <QSettings>
#include <QUrl>

#include <memory>
#include <optional>

namespace vellumine {

/// Owns the preferences and adds what needs logic: the snapshot that a batch runs with, and the
/// folders that are remembered as bookmarks. Nothing here reports an error: what cannot be found
/// again is forgotten. Main thread only.
class SettingsStore {
public:
    /// The bookmarks have to outlive the store.
    SettingsStore(std::unique_ptr<QSettings> preferences, platform::FolderBookmarks& bookmarks);

    [[nodiscard]] VellumineSettings& settings() { return m_settings; }
    [[nodiscard]] const VellumineSettings& settings() const { return m_settings; }

    /// All that a conversion needs, as it is now. Looks the destination folder up, whatever the
    /// destination mode, and may thereby refresh or erase its bookmark.
    [[nodiscard]] OptimizerSettings snapshot();

    /// The folder that the user chose for outputs. Its bookmark is refreshed when it is stale and
    /// erased when it leads nowhere any more.
    [[nodiscard]] std::optional<QUrl> destinationFolderURL();

    /// The grant that is remembered for a folder of sources. Bookmarks on the way are refreshed
    /// when they are stale and dropped when they lead nowhere any more.
    [[nodiscard]] std::optional<QUrl> rememberedOriginalLocationFolder(const QUrl& folder);

    /// Puts the folder at the end of the remembered ones, in place of what was remembered for it.
    void rememberOriginalLocationFolder(const QUrl& folder);

private:
    [[nodiscard]] QList<QByteArray> storedBookmarks() const;
    void storeBookmarks(const QList<QByteArray>& bookmarks);

    platform::FolderBookmarks& m_bookmarks;
    VellumineSettings m_settings;
};

} // namespace vellumine
