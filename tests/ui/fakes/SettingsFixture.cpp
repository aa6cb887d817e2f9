#include "SettingsFixture.h"

#include "platform/FilePath.h"

namespace vellumine {

SettingsFixture::SettingsFixture(QObject* parent)
    : QObject(parent)
    , m_presenter(
          m_settings, m_bookmarks, [this](const FolderPanel&, const FolderPanelAnswer& answer) {
              ++m_panelCount;
              Q_EMIT panelCountChanged();
              answer(m_chosenFolder.isEmpty() ? std::nullopt
                                              : std::optional(platform::fileUrl(m_chosenFolder)));
          })
{
}

void SettingsFixture::storeFolder(const QString& path)
{
    m_settings.setDestinationFolderBookmark(path.toUtf8());
}

std::optional<QByteArray> SettingsFixture::Bookmarks::create(const QUrl& folder)
{
    return folder.toLocalFile().toUtf8();
}

std::optional<platform::FolderBookmarks::Resolution> SettingsFixture::Bookmarks::resolve(
    const QByteArray& bookmark)
{
    if (areGone) {
        return std::nullopt;
    }
    return Resolution { platform::fileUrl(QString::fromUtf8(bookmark)), false };
}

} // namespace vellumine
