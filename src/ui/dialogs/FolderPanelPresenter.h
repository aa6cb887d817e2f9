#pragma once

#include "batch/FolderAccessGrants.h"
#include "ui/settings/FolderPanel.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <deque>

namespace vellumine {

/// What asks for access to the folder of an output: no new folders there.
[[nodiscard]] FolderPanel folderPanel(const SaveAccessPanel& panel);

/// The panels in which the user chooses a folder, one after the other in the order of asking.
class FolderPanelPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one presenter of its panels.")
    Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(QString prompt READ prompt NOTIFY changed)
    Q_PROPERTY(QUrl folder READ folder NOTIFY changed)
    Q_PROPERTY(bool allowsNewFolders READ allowsNewFolders NOTIFY changed)
    /// The same as a folder dialog takes it.
    Q_PROPERTY(int dialogOptions READ dialogOptions NOTIFY changed)

public:
    explicit FolderPanelPresenter(QObject* parent = nullptr);
    /// Panels that are not answered yet count as cancelled.
    ~FolderPanelPresenter() override;
    FolderPanelPresenter(const FolderPanelPresenter&) = delete;
    FolderPanelPresenter& operator=(const FolderPanelPresenter&) = delete;

    /// Shows a panel once those before it are answered; answers later, once.
    void show(const FolderPanel& panel, FolderPanelAnswer answer);

    [[nodiscard]] bool isShown() const { return !m_panels.empty(); }
    [[nodiscard]] QString message() const { return current().message; }
    [[nodiscard]] QString prompt() const { return current().prompt; }
    [[nodiscard]] QUrl folder() const { return current().folder.value_or(QUrl()); }
    [[nodiscard]] bool allowsNewFolders() const
    {
        return current().newFolders == FolderPanel::NewFolders::allowed;
    }
    [[nodiscard]] int dialogOptions() const;

    /// Answer the shown panel; without one they do nothing.
    Q_INVOKABLE void choose(const QUrl& folder);
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();
    /// A panel is shown.
    void asked();

private:
    struct Entry {
        FolderPanel panel;
        FolderPanelAnswer answer;
    };

    [[nodiscard]] FolderPanel current() const;
    void answer(const std::optional<QUrl>& folder);

    std::deque<Entry> m_panels; ///< the shown one in front
};

} // namespace vellumine
