#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace vellumine::platform {

/// A desktop's settings by group and name, as its portal tells them.
using DesktopSettings = QMap<QString, QVariantMap>;

/// Whether one of the settings by which desktops ask for little motion does so; none where it is
/// another setting.
[[nodiscard]] std::optional<bool> asksForReducedMotion(
    const QString& group, const QString& name, const QVariant& value);

/// Whether the user wants little motion on the screen. The desktop's portal says so and tells
/// changes; where there is none nobody asked for it.
class DesktopMotion final : public QObject {
    Q_OBJECT

public:
    /// Asks at once; the answer comes with changed(), and only if it is different.
    explicit DesktopMotion(QDBusConnection bus, QObject* parent = nullptr);

    [[nodiscard]] bool isReduced() const { return m_isReduced; }

Q_SIGNALS:
    void changed();

private:
    Q_SLOT void take(const QString& group, const QString& name, const QDBusVariant& value);
    void takeAll(const DesktopSettings& all);
    void set(bool isReduced);

    QDBusConnection m_bus;
    bool m_isReduced = false;
    bool m_hasChanged = false; ///< since this began to listen
};

} // namespace vellumine::platform
