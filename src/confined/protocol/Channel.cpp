#include "confined/protocol/Channel.h"

#include "confined/protocol/Messages.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <system_error>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::Result;

namespace {

tl::unexpected<Error> systemFailure(int code)
{
    return imaging::failure(Error::Kind::io, std::system_category().message(code));
}

/// Room for one descriptor on its way, aligned as the system wants it.
struct alignas(cmsghdr) DescriptorSpace {
    std::array<std::byte, CMSG_SPACE(sizeof(int))> bytes {};
};

/// The descriptors that came with a message, every one of them, so that none stays open unseen.
class ReceivedDescriptors {
public:
    explicit ReceivedDescriptors(msghdr& header)
    {
        for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr;
             part = CMSG_NXTHDR(&header, part)) {
            if (part->cmsg_level == SOL_SOCKET && part->cmsg_type == SCM_RIGHTS) {
                take(*part);
            }
        }
    }

    [[nodiscard]] std::size_t count() const { return m_count; }
    [[nodiscard]] std::optional<FileDescriptor> last() { return std::move(m_last); }

private:
    void take(const cmsghdr& part)
    {
        const std::size_t count = (part.cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (std::size_t i = 0; i < count; ++i) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(&part) + i * sizeof(int), sizeof(int));
            m_last = FileDescriptor::adopted(descriptor);
            ++m_count;
        }
    }

    std::optional<FileDescriptor> m_last;
    std::size_t m_count = 0;
};

int pollTimeout(Channel::Clock::time_point deadline)
{
    if (deadline == Channel::Clock::time_point::max()) {
        return -1;
    }
    const auto left
        = std::chrono::ceil<std::chrono::milliseconds>(deadline - Channel::Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
}

Result<void> waitUntilReadable(int socket, Channel::Clock::time_point deadline)
{
    while (true) {
        pollfd waiting { socket, POLLIN, 0 };
        const int ready = ::poll(&waiting, 1, pollTimeout(deadline));
        if (ready > 0) {
            return {};
        }
        if (ready < 0 && errno != EINTR) {
            return systemFailure(errno);
        }
        if (ready == 0 && Channel::Clock::now() >= deadline) {
            return systemFailure(ETIMEDOUT);
        }
    }
}

} // namespace

Result<std::pair<Channel, Channel>> Channel::createPair()
{
    std::array<int, 2> ends {};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return systemFailure(errno);
    }
    return std::pair(
        Channel(FileDescriptor::adopted(ends[0])), Channel(FileDescriptor::adopted(ends[1])));
}

Result<void> Channel::send(imaging::ByteSpan message, const FileDescriptor* descriptor) const
{
    iovec content { const_cast<std::byte*>(message.data()), message.size() };
    msghdr header {};
    header.msg_iov = &content;
    header.msg_iovlen = 1;
    DescriptorSpace space;
    if (descriptor != nullptr) {
        header.msg_control = space.bytes.data();
        header.msg_controllen = space.bytes.size();
        cmsghdr* const part = CMSG_FIRSTHDR(&header);
        part->cmsg_level = SOL_SOCKET;
        part->cmsg_type = SCM_RIGHTS;
        part->cmsg_len = CMSG_LEN(sizeof(int));
        const int number = descriptor->number();
        std::memcpy(CMSG_DATA(part), &number, sizeof(number));
    }
    // Never waits: there is one question at a time, and one answer to it.
    while (::sendmsg(m_socket.number(), &header, MSG_NOSIGNAL | MSG_DONTWAIT) < 0) {
        if (errno != EINTR) {
            return systemFailure(errno);
        }
    }
    return {};
}

Result<Channel::Message> Channel::receive(Clock::time_point deadline) const
{
    if (auto readable = waitUntilReadable(m_socket.number(), deadline); !readable) {
        return tl::unexpected(readable.error());
    }
    imaging::ByteBuffer bytes(largestMessage);
    iovec content { bytes.data(), bytes.size() };
    DescriptorSpace space;
    msghdr header {};
    header.msg_iov = &content;
    header.msg_iovlen = 1;
    header.msg_control = space.bytes.data();
    header.msg_controllen = space.bytes.size();
    ssize_t count = 0;
    do {
        count = ::recvmsg(m_socket.number(), &header, MSG_CMSG_CLOEXEC | MSG_DONTWAIT);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        return systemFailure(errno);
    }
    ReceivedDescriptors descriptors(header);
    if (count == 0) {
        return systemFailure(EPIPE);
    }
    if ((header.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) != 0 || descriptors.count() > 1) {
        return systemFailure(EMSGSIZE);
    }
    bytes.resize(static_cast<std::size_t>(count));
    return Message { std::move(bytes), descriptors.last() };
}

void Channel::interrupt() const
{
    ::shutdown(m_socket.number(), SHUT_RDWR);
}

} // namespace vellumine::confined
