#pragma once

#include "platform/FileDescriptor.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace vellumine::cli {

/// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into calls from the event
/// loop. Those that were ignored when the program was started stay ignored. To be made before any
/// other thread, so that none of them takes the signals; programs that this one starts are not to
/// inherit that.
class TerminationSignals {
public:
    /// Takes the signal's number.
    using OnSignal = std::function<void(int)>;

    TerminationSignals();

    /// Whom to tell from now on, while the event loop runs.
    void listen(OnSignal onSignal);

    /// Can be read from while a signal waits to be told of.
    [[nodiscard]] int descriptor() const { return m_signals.get(); }

private:
    void tell();

    platform::FileDescriptor m_signals;
    OnSignal m_onSignal;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vellumine::cli
