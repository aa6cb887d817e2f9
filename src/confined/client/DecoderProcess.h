#pragma once

#include "confined/client/Allowance.h"
#include "confined/protocol/Channel.h"
#include "confined/protocol/Confinement.h"
#include "confined/protocol/Messages.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <sys/types.h>

namespace vellumine::confined {

/// A running helper. It ends with this object, and with this process. For one thread at a time.
class DecoderProcess {
public:
    struct Answer {
        Reply reply;
        std::optional<imaging::FileDescriptor> descriptor;
    };

    /// Starts the program and waits for its first word. Fails with Io.
    [[nodiscard]] static imaging::Result<std::unique_ptr<DecoderProcess>> start(
        const std::filesystem::path& executable);

    ~DecoderProcess();
    DecoderProcess(const DecoderProcess&) = delete;
    DecoderProcess& operator=(const DecoderProcess&) = delete;

    [[nodiscard]] const Confinement& confinement() const { return m_confinement; }

    /// Whether it still runs, as far as that can be told without a question.
    [[nodiscard]] bool isAlive() const;

    /// Asks, and waits for the answer within what is allowed. Fails with Io when the helper dies,
    /// is overdue or answers nonsense, and when a stop is requested: it is of no use any more then.
    [[nodiscard]] imaging::Result<Answer> ask(const Request& request,
        const imaging::FileDescriptor* descriptor, const Allowance& allowance,
        const std::stop_token& interruption) const;

    /// Tells it what has no answer.
    void tell(const Request& request) const;

    /// Rows in the helper's memory, of equal length and so many bytes from each other.
    struct Rows {
        std::uint64_t address = 0;
        std::uint64_t rowBytes = 0;
        std::size_t length = 0; ///< of each, in bytes
        int count = 1;
    };

    /// Copies them to rows that lie so many bytes from each other as well. Fails with Unsupported
    /// where this process may not read there, and with Io when there is no such memory.
    [[nodiscard]] imaging::Result<void> fetch(
        const Rows& rows, std::byte* to, std::size_t rowBytes) const;

private:
    DecoderProcess(pid_t number, Channel channel)
        : m_number(number)
        , m_channel(std::move(channel))
    {
    }
    imaging::Result<void> welcome();

    pid_t m_number;
    Channel m_channel;
    Confinement m_confinement;
};

} // namespace vellumine::confined
