#include "confined/client/DecoderProcess.h"

#include "confined/protocol/HelperDescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <span>
#include <system_error>
#include <vector>

namespace vellumine::confined {

using imaging::Error;
using imaging::FileDescriptor;
using imaging::Result;

namespace {

/// For its first word: loading the codecs' libraries takes some tens of milliseconds, on a machine
/// that is not busy with everything else.
constexpr std::chrono::seconds patienceAtStart { 60 };

tl::unexpected<Error> broken(std::string detail)
{
    return imaging::failure(Error::Kind::io, std::move(detail));
}

/// What a helper starts with: its end of the channel, nothing to read, nowhere to write to.
class HelperSetup {
public:
    explicit HelperSetup(int channel)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, channel, helperDescriptor);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
#ifndef VELLUMINE_SANITIZED // a sanitizer's report is to be seen
        posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
#endif
        posix_spawn_file_actions_addclosefrom_np(&m_actions, helperDescriptor + 1);

        posix_spawnattr_init(&m_attributes);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
        // A group of its own: an interruption typed at the terminal is the program's business.
        posix_spawnattr_setflags(
            &m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&m_attributes, 0);
    }
    ~HelperSetup()
    {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    HelperSetup(const HelperSetup&) = delete;
    HelperSetup& operator=(const HelperSetup&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* actions() const
    {
        return &m_actions;
    }
    [[nodiscard]] const posix_spawnattr_t* attributes() const
    {
        return &m_attributes;
    }

private:
    posix_spawn_file_actions_t m_actions {};
    posix_spawnattr_t m_attributes {};
};

/// In one call; the system takes no more at once.
constexpr std::size_t largestTransfer = std::size_t { 1 } << 30U;

/// An address of the helper's, for the system alone.
void* remote(std::uint64_t address)
{
    // It means nothing to this process: there is no pointer that it could be made from.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(address));
}

Result<void> readMemory(
    pid_t process, std::span<const iovec> there, std::span<const iovec> here, std::size_t bytes)
{
    const ssize_t done
        = ::process_vm_readv(process, here.data(), here.size(), there.data(), there.size(), 0);
    if (done < 0) {
        return imaging::failure(
            errno == EPERM || errno == ENOSYS ? Error::Kind::unsupported : Error::Kind::io,
            std::system_category().message(errno));
    }
    if (static_cast<std::size_t>(done) != bytes) {
        return broken("the picture is not where it was said to be");
    }
    return {};
}

Result<void> readBytes(pid_t process, std::uint64_t address, std::byte* to, std::size_t bytes)
{
    Result<void> read;
    for (std::size_t at = 0; at < bytes && read; at += largestTransfer) {
        const std::size_t length = std::min(bytes - at, largestTransfer);
        const iovec there { remote(address + at), length };
        const iovec here { to + at, length };
        read = readMemory(process, { &there, 1 }, { &here, 1 }, length);
    }
    return read;
}

/// Sets the limit that counts, below the one that no process can raise for itself.
bool limit(pid_t process, decltype(RLIMIT_AS) resource, rlim_t value)
{
    rlimit both {};
    if (::prlimit(process, resource, nullptr, &both) != 0) {
        return false;
    }
    both.rlim_cur = std::min(value, both.rlim_max);
    return ::prlimit(process, resource, &both, nullptr) == 0;
}

bool limitMemory(pid_t process, std::uint64_t bytes)
{
#ifdef VELLUMINE_SANITIZED // a sanitizer reserves more addresses than any limit allows
    (void)process;
    (void)bytes;
    return false;
#else
    // What is shared is no mapping of its own once it is unmapped: its size is limited, too.
    return limit(process, RLIMIT_AS, bytes) && limit(process, RLIMIT_FSIZE, bytes);
#endif
}

/// The limit counts all that a process has ever used.
bool limitProcessorTime(pid_t process, std::chrono::seconds more)
{
    clockid_t clock {};
    timespec used {};
    return ::clock_getcpuclockid(process, &clock) == 0 && ::clock_gettime(clock, &used) == 0
        && limit(process, RLIMIT_CPU, static_cast<rlim_t>(used.tv_sec + 1 + more.count()));
}

} // namespace

Result<std::unique_ptr<DecoderProcess>> DecoderProcess::start(
    const std::filesystem::path& executable)
{
    auto ends = Channel::createPair();
    if (!ends) {
        return tl::unexpected(ends.error());
    }
    const HelperSetup setup(ends->second.socket().number());
    std::array<char*, 2> arguments { const_cast<char*>(executable.c_str()), nullptr };
    std::array<char*, 1> nothing { nullptr };
#ifdef VELLUMINE_SANITIZED
    char** const environment = environ; // the sanitizers' options
    (void)nothing;
#else
    char** const environment = nothing.data();
#endif
    pid_t number = 0;
    const int error = ::posix_spawn(&number, executable.c_str(), setup.actions(),
        setup.attributes(), arguments.data(), environment);
    if (error != 0) {
        return broken(std::system_category().message(error));
    }
    std::unique_ptr<DecoderProcess> process(new DecoderProcess(number, std::move(ends->first)));
    ends->second = Channel(FileDescriptor::adopted(-1)); // or its end would never be seen
    if (auto welcomed = process->welcome(); !welcomed) {
        return tl::unexpected(welcomed.error());
    }
    return process;
}

Result<void> DecoderProcess::welcome()
{
    const auto message = m_channel.receive(Channel::Clock::now() + patienceAtStart);
    if (!message) {
        return tl::unexpected(message.error());
    }
    const auto reply = parseReply(message->bytes);
    const auto* const ready = reply ? std::get_if<ReadyReply>(&*reply) : nullptr;
    if (ready == nullptr) {
        return broken("the helper is of another build");
    }
    m_confinement = ready->confinement;
    const Allowance usual = Patience().toOpen(0);
    m_confinement.memoryLimit = limitMemory(m_number, usual.memoryBytes);
    m_confinement.timeLimit = limitProcessorTime(m_number, usual.processorTime);
    return {};
}

DecoderProcess::~DecoderProcess()
{
    ::kill(m_number, SIGKILL);
    while (::waitpid(m_number, nullptr, 0) < 0 && errno == EINTR) { }
}

bool DecoderProcess::isAlive() const
{
    // Nothing was asked: whatever there is to read is no answer.
    pollfd state { m_channel.socket().number(), POLLIN, 0 };
    return ::poll(&state, 1, 0) == 0;
}

void DecoderProcess::tell(const Request& request) const
{
    // One that does not hear it any more is found out by the next question.
    (void)m_channel.send(serialised(request), nullptr);
}

Result<void> DecoderProcess::fetch(const Rows& rows, std::byte* to, std::size_t rowBytes) const
{
    const auto count = static_cast<std::size_t>(rows.count);
    if (rows.rowBytes == rows.length && rowBytes == rows.length) {
        return readBytes(m_number, rows.address, to, rows.length * count);
    }
    std::vector<iovec> there;
    std::vector<iovec> here;
    for (std::size_t row = 0; row < count; ++row) {
        there.push_back({ remote(rows.address + row * rows.rowBytes), rows.length });
        here.push_back({ to + row * rowBytes, rows.length });
        if (there.size() == IOV_MAX || row + 1 == count) {
            if (auto read = readMemory(m_number, there, here, rows.length * there.size()); !read) {
                return read;
            }
            there.clear();
            here.clear();
        }
    }
    return {};
}

Result<DecoderProcess::Answer> DecoderProcess::ask(const Request& request,
    const FileDescriptor* descriptor, const Allowance& allowance,
    const std::stop_token& interruption) const
{
    limitMemory(m_number, allowance.memoryBytes);
    limitProcessorTime(m_number, allowance.processorTime);
    if (auto sent = m_channel.send(serialised(request), descriptor); !sent) {
        return tl::unexpected(sent.error());
    }
    const std::stop_callback stop(interruption, [this] { m_channel.interrupt(); });
    auto message = m_channel.receive(Channel::Clock::now() + allowance.time);
    if (!message) {
        return tl::unexpected(message.error());
    }
    auto reply = parseReply(message->bytes);
    if (!reply) {
        return broken(reply.error().detail);
    }
    return Answer { std::move(*reply), std::move(message->descriptor) };
}

} // namespace vellumine::confined
