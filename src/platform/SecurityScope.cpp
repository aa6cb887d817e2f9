#include "platform/SecurityScope.h"

#include "platform/FilePath.h"

#include <unistd.h>

namespace vellumine::platform {

DesktopSecurityScope::Sandbox DesktopSecurityScope::currentSandbox()
{
    return ::access("/.flatpak-info", F_OK) == 0 ? Sandbox::flatpak : Sandbox::none;
}

bool DesktopSecurityScope::startAccessing(const QUrl& url)
{
    switch (m_sandbox) {
    case Sandbox::none:
        return true;
    case Sandbox::flatpak:
        return ::access(toPath(url).c_str(), W_OK) == 0;
    }
    Q_UNREACHABLE();
}

void DesktopSecurityScope::stopAccessing(const QUrl& /*url*/)
{
    // The kernel keeps no record of accesses here: there is nothing to give back.
}

ScopedAccess::ScopedAccess(SecurityScope& scope, QUrl url)
    : m_scope(scope)
    , m_url(std::move(url))
    , m_granted(scope.startAccessing(m_url))
{
}

ScopedAccess::~ScopedAccess()
{
    if (m_granted) {
        m_scope.stopAccessing(m_url);
    }
}

} // namespace vellumine::platform
