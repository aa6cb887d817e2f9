#pragma once

#include "platform/DesktopMotion.h"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QStringList>

#include <utility>

namespace vellumine::test {

/// A desktop's portal with the settings that it is given.
class FakePortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakePortal(platform::DesktopSettings settings)
        : m_settings(std::move(settings))
    {
        qDBusRegisterMetaType<platform::DesktopSettings>();
    }

    static QString name() { return QStringLiteral("org.freedesktop.portal.Desktop"); }
    static QString path() { return QStringLiteral("/org/freedesktop/portal/desktop"); }

    /// The settings of a desktop whose user has switched animations on or off.
    [[nodiscard]] static platform::DesktopSettings animations(bool areOn)
    {
        return { { animationsGroup(), { { animationsName(), areOn } } } };
    }

    /// The user switches them now.
    void switchAnimations(bool areOn)
    {
        m_settings = animations(areOn);
        Q_EMIT SettingChanged(animationsGroup(), animationsName(), QDBusVariant(areOn));
    }

    // NOLINTNEXTLINE(readability-identifier-naming): the bus's own name
    Q_SLOT [[nodiscard]] vellumine::platform::DesktopSettings ReadAll(const QStringList& groups)
    {
        m_wasRead = true;
        platform::DesktopSettings asked;
        for (const QString& group : groups) {
            if (m_settings.contains(group)) {
                asked.insert(group, m_settings.value(group));
            }
        }
        return asked;
    }

    /// Whether somebody has asked: by then the bus knows of what they listen to, too.
    [[nodiscard]] bool wasRead() const { return m_wasRead; }

Q_SIGNALS:
    // NOLINTNEXTLINE(readability-identifier-naming): the bus's own name
    void SettingChanged(const QString& group, const QString& name, const QDBusVariant& value);

private:
    static QString animationsGroup() { return QStringLiteral("org.gnome.desktop.interface"); }
    static QString animationsName() { return QStringLiteral("enable-animations"); }

    platform::DesktopSettings m_settings;
    bool m_wasRead = false;
};

} // namespace vellumine::test
