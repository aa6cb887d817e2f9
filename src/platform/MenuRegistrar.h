#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace vellumine::platform {

/// Whether the desktop shows the menus of windows in a bar of its own: such a desktop has a
/// registrar on the session bus, with which windows register their menus.
class MenuRegistrar final : public QObject {
    Q_OBJECT

public:
    /// Asks at once; the answer comes with changed(), and only if there is one. Never starts it.
    explicit MenuRegistrar(QDBusConnection bus, QObject* parent = nullptr);

    /// Whether one has answered. It stays so when that one ends: some do when they are idle, come
    /// back when they are needed, and would be brought back by being told to forget.
    [[nodiscard]] bool isPresent() const { return m_isPresent; }

Q_SIGNALS:
    /// When another one comes the one before it goes first: it takes its knowledge along.
    void changed();

private:
    static constexpr std::chrono::milliseconds firstPatience { 50 };

    void ask();
    void take(const QDBusError& error);
    void setPresent(bool isPresent);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QTimer m_again; ///< asks one that is starting
    std::chrono::milliseconds m_patience = firstPatience; ///< before that
    bool m_isPresent = false;
};

} // namespace vellumine::platform
