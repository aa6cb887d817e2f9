#pragma once

#include "platform/SecurityScope.h"

#include <QList>
#include <QSet>

#include <algorithm>
#include <mutex>

namespace vellumine::test {

/// A scope that refuses what the test tells it to and knows what is open.
class RecordingScope final : public platform::SecurityScope {
public:
    bool startAccessing(const QUrl& url) override
    {
        const std::scoped_lock lock(m_mutex);
        if (m_refuseAll || m_refused.contains(url)) {
            return false;
        }
        m_open.append(url);
        m_opened.append(url);
        return true;
    }

    void stopAccessing(const QUrl& url) override
    {
        const std::scoped_lock lock(m_mutex);
        m_open.removeOne(url);
        ++m_stops;
    }

    void refuse(const QUrl& url) { m_refused.insert(url); }
    void refuseAll() { m_refuseAll = true; }

    /// Accesses that are open now, in the order in which they started.
    [[nodiscard]] QList<QUrl> open() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_open;
    }

    /// Every access that ever started.
    [[nodiscard]] QList<QUrl> opened() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_opened;
    }

    [[nodiscard]] bool isBalanced() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_open.isEmpty() && m_stops == m_opened.size();
    }

private:
    mutable std::mutex m_mutex;
    QSet<QUrl> m_refused;
    bool m_refuseAll = false;
    QList<QUrl> m_open;
    QList<QUrl> m_opened;
    qsizetype m_stops = 0;
};

} // namespace vellumine::test
