#include "platform/FileRevealer.h"

#include "platform/FilePath.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QStringList>

#include <utility>

namespace vellumine::platform {

DesktopFileRevealer::DesktopFileRevealer(QDBusConnection bus, OpenFolder openFolder)
    : m_bus(std::move(bus))
    , m_openFolder(std::move(openFolder))
{
}

void DesktopFileRevealer::reveal(const QUrl& file)
{
    if (!m_bus.isConnected()) { // a call would never come back
        m_openFolder(parentFolder(file));
        return;
    }
    QDBusMessage call
        = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
            QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    // The bytes of the name as they are: toString() would decode some of them. The second argument
    // is a startup notification id, which may be empty.
    call.setArguments(
        { QStringList { QString::fromLatin1(file.toEncoded(QUrl::FullyEncoded)) }, QString() });
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), &m_calls);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &m_calls,
        [this, file](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            if (finished->isError()) {
                m_openFolder(parentFolder(file));
            }
        });
}

} // namespace vellumine::platform
