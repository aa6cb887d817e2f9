#pragma once

#include <QCoreApplication>
#include <QTimer>

#include <chrono>

namespace vellumine::test {

/// Lets the event loop run until the predicate holds, waking up for events alone; false when that
/// takes longer than the limit, by default than any test should.
template <typename Predicate>
[[nodiscard]] bool runUntil(
    Predicate predicate, std::chrono::milliseconds limit = std::chrono::seconds(60))
{
    QTimer patience;
    patience.setSingleShot(true);
    patience.start(limit);
    while (!predicate()) {
        if (!patience.isActive()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

/// Wakes the main thread's event loop from any thread.
inline void wakeMainThread()
{
    QCoreApplication::postEvent(QCoreApplication::instance(), new QEvent(QEvent::None));
}

} // namespace vellumine::test
