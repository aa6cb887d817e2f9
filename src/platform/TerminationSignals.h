#pragma once

#include "platform/FileDescriptor.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <vector>

namespace vellumine::platform {

/// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into calls from the event
/// loop. Those that were ignored when the program was started stay ignored, and programs that this
/// one starts have all of them as ever. One at a time.
class TerminationSignals {
public:
    /// Takes the signal's number.
    using OnSignal = std::function<void(int)>;

    TerminationSignals();
    /// From then on they do what they always do.
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Whom to tell from now on, while the event loop runs.
    void listen(OnSignal onSignal);

    /// Can be read from while a signal waits to be told of.
    [[nodiscard]] int descriptor() const { return m_caught.get(); }

private:
    void tell();

    FileDescriptor m_caught; ///< the numbers of those that came, a byte each
    FileDescriptor m_catching;
    std::vector<int> m_taken;
    OnSignal m_onSignal;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vellumine::platform
