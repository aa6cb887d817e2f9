#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/FileDescriptor.h"

#include <chrono>
#include <optional>
#include <utility>

namespace vellumine::confined {

/// One end of the connection between the program and a helper: datagrams of at most largestMessage
/// bytes, each with a descriptor or without one. Every failure is of kind Io, and final.
class Channel {
public:
    using Clock = std::chrono::steady_clock;

    struct Message {
        imaging::ByteBuffer bytes;
        std::optional<imaging::FileDescriptor> descriptor;
    };

    /// Two ends that are connected.
    [[nodiscard]] static imaging::Result<std::pair<Channel, Channel>> createPair();

    explicit Channel(imaging::FileDescriptor socket)
        : m_socket(std::move(socket))
    {
    }

    [[nodiscard]] const imaging::FileDescriptor& socket() const { return m_socket; }

    [[nodiscard]] imaging::Result<void> send(
        imaging::ByteSpan message, const imaging::FileDescriptor* descriptor) const;

    /// Waits for the next message, at most until the deadline. Fails when the other end is gone,
    /// and for a message that is too long or has more than one descriptor.
    [[nodiscard]] imaging::Result<Message> receive(
        Clock::time_point deadline = Clock::time_point::max()) const;

    /// Makes whoever waits for this end, on either side, wait no longer. From any thread.
    void interrupt() const;

private:
    imaging::FileDescriptor m_socket;
};

} // namespace vellumine::confined
