#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QUrl>

#include <functional>

namespace vellumine::platform {

/// Shows a file, selected, in a file manager.
class FileRevealer {
public:
    FileRevealer() = default;
    virtual ~FileRevealer() = default;
    FileRevealer(const FileRevealer&) = delete;
    FileRevealer& operator=(const FileRevealer&) = delete;

    /// Returns at once. Nothing is reported: what happened is on the screen.
    virtual void reveal(const QUrl& file) = 0;
};

/// Asks the desktop's file manager. Where none answers, or it refuses, the file's folder is opened
/// instead. Belongs to a thread with an event loop.
class DesktopFileRevealer final : public FileRevealer {
public:
    /// Opens a folder with whatever the desktop opens folders with.
    using OpenFolder = std::function<void(const QUrl& folder)>;

    DesktopFileRevealer(QDBusConnection bus, OpenFolder openFolder);

    void reveal(const QUrl& file) override;

private:
    QDBusConnection m_bus;
    OpenFolder m_openFolder;
    QObject m_calls; ///< owns the calls in flight: none answers after this is gone
};

} // namespace vellumine::platform
