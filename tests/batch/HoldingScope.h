#pragma once

#include "platform/SecurityScope.h"

#include <condition_variable>
#include <mutex>

namespace vellumine::test {

/// Grants everything, and while it holds, late: so long does a scan last.
class HoldingScope final : public platform::SecurityScope {
public:
    [[nodiscard]] bool startAccessing(const QUrl& /*url*/) override
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_isHolding; });
        return true;
    }
    void stopAccessing(const QUrl& /*url*/) override { }

    void hold()
    {
        const std::scoped_lock lock(m_mutex);
        m_isHolding = true;
    }
    void letGo()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_isHolding = false;
        }
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isHolding = false;
};

} // namespace vellumine::test
