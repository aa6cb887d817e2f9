#pragma once

#include "core/VellumineSettings.h"
#include "platform/FolderBookmarks.h"
#include "ui/settings/SettingsPresenter.h"

#include <QObject>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>
#include <qqmlregistration.h>

#include <memory>

namespace vellumine {

/// Preferences of their own for the views of a test, with a folder panel that answers as told.
class SettingsFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::SettingsPresenter* presenter READ presenter CONSTANT)
    /// What the user chooses in the next panels; empty to cancel them.
    Q_PROPERTY(QString chosenFolder MEMBER m_chosenFolder)
    Q_PROPERTY(int panelCount MEMBER m_panelCount NOTIFY panelCountChanged)

public:
    explicit SettingsFixture(QObject* parent = nullptr);

    [[nodiscard]] SettingsPresenter* presenter() { return &m_presenter; }

    /// Remembers the folder as if the user had chosen it.
    Q_INVOKABLE void storeFolder(const QString& path);
    /// Takes every folder away, or brings them back, while nobody looks.
    Q_INVOKABLE void setFoldersGone(bool areGone) { m_bookmarks.areGone = areGone; }

Q_SIGNALS:
    void panelCountChanged();

private:
    /// Any path is a folder, unless all are gone.
    class Bookmarks final : public platform::FolderBookmarks {
    public:
        std::optional<QByteArray> create(const QUrl& folder) override;
        std::optional<Resolution> resolve(const QByteArray& bookmark) override;

        bool areGone = false;
    };

    QTemporaryDir m_folder;
    VellumineSettings m_settings { std::make_unique<QSettings>(
        m_folder.filePath(QStringLiteral("preferences")), QSettings::IniFormat) };
    Bookmarks m_bookmarks;
    QString m_chosenFolder;
    int m_panelCount = 0;
    SettingsPresenter m_presenter;
};

} // namespace vellumine
