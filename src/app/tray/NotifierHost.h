#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

namespace vellumine {

/// Whether the desktop shows StatusNotifier items. A watcher alone shows none: it has to say that a
/// host is registered with it.
class NotifierHost final : public QObject {
    Q_OBJECT

public:
    /// Asks at once; the answers come as signals.
    explicit NotifierHost(QDBusConnection bus, QObject* parent = nullptr);

    [[nodiscard]] bool isPresent() const { return m_isPresent; }

Q_SIGNALS:
    void isPresentChanged();

private:
    Q_SLOT void ask();
    void setPresent(bool isPresent);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    bool m_isPresent = false;
};

} // namespace vellumine
