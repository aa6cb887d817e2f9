#pragma once

#include <QUrl>

namespace vellumine::platform {

/// Access to files that a sandbox guards. Every access that started is ended by its owner. Safe to
/// use from several threads at once.
class SecurityScope {
public:
    SecurityScope() = default;
    virtual ~SecurityScope() = default;
    SecurityScope(const SecurityScope&) = delete;
    SecurityScope& operator=(const SecurityScope&) = delete;

    /// Whether access started. Only then it has to be stopped.
    [[nodiscard]] virtual bool startAccessing(const QUrl& url) = 0;
    virtual void stopAccessing(const QUrl& url) = 0;
};

/// What this desktop grants: everything outside a sandbox, inside one what can be written to.
class DesktopSecurityScope final : public SecurityScope {
public:
    enum class Sandbox { none, flatpak };

    /// The sandbox that this process runs in.
    [[nodiscard]] static Sandbox currentSandbox();

    explicit DesktopSecurityScope(Sandbox sandbox = currentSandbox())
        : m_sandbox(sandbox)
    {
    }

    [[nodiscard]] bool startAccessing(const QUrl& url) override;
    void stopAccessing(const QUrl& url) override;

private:
    Sandbox m_sandbox;
};

/// Holds an access for as long as it lives, where it was granted.
class ScopedAccess {
public:
    ScopedAccess(SecurityScope& scope, QUrl url);
    ~ScopedAccess();
    ScopedAccess(const ScopedAccess&) = delete;
    ScopedAccess& operator=(const ScopedAccess&) = delete;

    [[nodiscard]] bool isGranted() const { return m_granted; }

private:
    SecurityScope& m_scope;
    QUrl m_url;
    bool m_granted;
};

} // namespace vellumine::platform
