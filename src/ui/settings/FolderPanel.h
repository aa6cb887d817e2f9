#pragma once

#include <QString>
#include <QUrl>

#include <cstdint>
#include <functional>
#include <optional>

namespace vellumine {

/// A panel in which the user chooses one folder, and no file.
struct FolderPanel {
    enum class NewFolders : std::uint8_t { allowed, refused };
    enum class Window : std::uint8_t { main, preferences };

    QString message;
    QString prompt; ///< title of the confirming button; empty for the desktop's usual one
    std::optional<QUrl> folder; ///< where the panel opens
    NewFolders newFolders = NewFolders::allowed;
    Window window = Window::main; ///< where it is asked for, which waits for the answer
};

/// Takes the chosen folder, or none when the user did anything but confirm.
using FolderPanelAnswer = std::function<void(std::optional<QUrl>)>;

/// Shows a panel; answers now or later, once.
using ShowFolderPanel = std::function<void(const FolderPanel& panel, FolderPanelAnswer answer)>;

} // namespace vellumine
