#include "platform/DesktopMotion.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace vellumine::platform {
namespace {

constexpr QLatin1String appearance("org.freedesktop.appearance");
constexpr QLatin1String gnome("org.gnome.desktop.interface");
constexpr QLatin1String plasma("org.kde.kdeglobals.KDE");

constexpr QLatin1String portal("org.freedesktop.portal.Desktop");
constexpr QLatin1String path("/org/freedesktop/portal/desktop");
constexpr QLatin1String settings("org.freedesktop.portal.Settings");

} // namespace

std::optional<bool> asksForReducedMotion(
    const QString& group, const QString& name, const QVariant& value)
{
    if (group == appearance && name == QStringLiteral("reduced-motion")) {
        return value.toUInt() == 1;
    }
    if (group == gnome && name == QStringLiteral("enable-animations")) {
        return !value.toBool();
    }
    if (group == plasma && name == QStringLiteral("AnimationDurationFactor")) {
        bool isNumber = false;
        const double factor = value.toDouble(&isNumber);
        return isNumber && factor <= 0;
    }
    return std::nullopt;
}

DesktopMotion::DesktopMotion(QDBusConnection bus, QObject* parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    if (!m_bus.isConnected()) {
        return;
    }
    // A slot whose types are not known yet is not connected.
    qRegisterMetaType<QDBusVariant>();
    qDBusRegisterMetaType<DesktopSettings>();
    m_bus.connect(portal, path, settings, QStringLiteral("SettingChanged"), this,
        SLOT(take(QString, QString, QDBusVariant)));
    auto call = QDBusMessage::createMethodCall(portal, path, settings, QStringLiteral("ReadAll"));
    call.setArguments({ QStringList { QString(appearance), QString(gnome), QString(plasma) } });
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this](QDBusPendingCallWatcher* finished) {
            const QDBusPendingReply<DesktopSettings> reply = *finished;
            // A change is newer than the answer, even where it is delivered before it.
            if (!reply.isError() && !m_hasChanged) {
                takeAll(reply.value());
            }
            finished->deleteLater();
        });
}

void DesktopMotion::take(const QString& group, const QString& name, const QDBusVariant& value)
{
    if (const auto isReduced = asksForReducedMotion(group, name, value.variant())) {
        m_hasChanged = true;
        set(*isReduced);
    }
}

void DesktopMotion::takeAll(const DesktopSettings& all)
{
    // One that asks for it is enough: a desktop also carries what another one left behind.
    bool isReduced = false;
    for (auto group = all.cbegin(); group != all.cend(); ++group) {
        for (auto entry = group->cbegin(); entry != group->cend(); ++entry) {
            isReduced
                |= asksForReducedMotion(group.key(), entry.key(), entry.value()).value_or(false);
        }
    }
    set(isReduced);
}

void DesktopMotion::set(bool isReduced)
{
    if (isReduced != m_isReduced) {
        m_isReduced = isReduced;
        Q_EMIT changed();
    }
}

} // namespace vellumine::platform
