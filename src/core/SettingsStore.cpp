#include "core/SettingsStore.h"

#include "core/PropertyList.h"
#include "platform/FilePath.h"

namespace vellumine {

SettingsStore::SettingsStore(
    std::unique_ptr<QSettings> preferences, platform::FolderBookmarks& bookmarks)
    : m_bookmarks(bookmarks)
    , m_settings(std::move(preferences))
{
}

OptimizerSettings SettingsStore::snapshot()
{
    return {
        .resizeMode = m_settings.resizeMode(),
        .maximumPixels = m_settings.maximumPixels(),
        .outputFormat = m_settings.outputFormat(),
        .quality = m_settings.quality(),
        .optimizeColorForSharing = m_settings.optimizeColorForSharing(),
        .removeColorManagement = m_settings.removeColorManagement(),
        .removeMetadata = m_settings.removeMetadata(),
        .destinationMode = m_settings.destinationMode(),
        .destinationFolderURL = destinationFolderURL(),
        .filenamePrefix = m_settings.filenamePrefix(),
        .filenameSuffix = m_settings.filenameSuffix(),
        .moveOriginalToTrash = m_settings.moveOriginalToTrash(),
        .preserveModificationTime = m_settings.preserveModificationTime(),
        .warnBeforeOverwrite = m_settings.warnBeforeOverwrite(),
    };
}

std::optional<QUrl> SettingsStore::destinationFolderURL()
{
    const QByteArray bookmark = m_settings.destinationFolderBookmark();
    if (bookmark.isEmpty()) {
        return std::nullopt;
    }
    const auto resolution = m_bookmarks.resolve(bookmark);
    if (!resolution) {
        m_settings.setDestinationFolderBookmark({});
        return std::nullopt;
    }
    if (resolution->isStale) {
        if (const auto fresh = m_bookmarks.create(resolution->url)) {
            m_settings.setDestinationFolderBookmark(*fresh);
        }
    }
    return resolution->url;
}

std::optional<QUrl> SettingsStore::rememberedOriginalLocationFolder(const QUrl& folder)
{
    const QByteArray key = platform::standardizedPath(folder);
    std::optional<QUrl> answer;
    QList<QByteArray> kept;
    for (QByteArray bookmark : storedBookmarks()) {
        const auto resolution = m_bookmarks.resolve(bookmark);
        if (!resolution) {
            continue;
        }
        if (resolution->isStale) {
            const auto fresh = m_bookmarks.create(resolution->url);
            if (!fresh) {
                continue;
            }
            bookmark = *fresh;
        }
        if (platform::standardizedPath(resolution->url) == key) {
            answer = resolution->url; // the last one wins
        }
        kept.append(bookmark);
    }
    storeBookmarks(kept);
    return answer;
}

void SettingsStore::rememberOriginalLocationFolder(const QUrl& folder)
{
    const auto created = m_bookmarks.create(folder);
    if (!created) {
        return;
    }
    const QByteArray key = platform::standardizedPath(folder);
    QList<QByteArray> bookmarks = storedBookmarks();
    bookmarks.removeIf([&](const QByteArray& bookmark) {
        // What leads nowhere stays: its disk may be back before it is looked up.
        const auto resolution = m_bookmarks.resolve(bookmark);
        return resolution && platform::standardizedPath(resolution->url) == key;
    });
    bookmarks.append(*created);
    storeBookmarks(bookmarks);
}

QList<QByteArray> SettingsStore::storedBookmarks() const
{
    return decodePropertyList(m_settings.originalLocationFolderBookmarks())
        .value_or(QList<QByteArray>());
}

void SettingsStore::storeBookmarks(const QList<QByteArray>& bookmarks)
{
    if (const auto propertyList = encodePropertyList(bookmarks)) {
        m_settings.setOriginalLocationFolderBookmarks(*propertyList);
    }
}

} // namespace vellumine
