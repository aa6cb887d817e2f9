#include "confined/decoder/Lockdown.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>

// By its system calls: the headers of the system may be older than its kernel.

namespace vellumine::confined {

namespace {

/// What a set of rules is about; later kernels know more of it.
struct RulesetAttributes {
    std::uint64_t fileSystem;
    std::uint64_t network;
    std::uint64_t scopes;
};

/// Everything that each version can forbid.
struct Version {
    RulesetAttributes forbidden;
    std::size_t size; ///< of the attributes that it knows
};

constexpr std::uint64_t bits(unsigned count)
{
    return (std::uint64_t { 1 } << count) - 1;
}

constexpr std::size_t fileSystemOnly = sizeof(std::uint64_t);
constexpr std::array versions {
    Version { { bits(13), 0, 0 }, fileSystemOnly },
    Version { { bits(14), 0, 0 }, fileSystemOnly }, // moving between folders
    Version { { bits(15), 0, 0 }, fileSystemOnly }, // cutting files short
    Version { { bits(15), bits(2), 0 }, 2 * fileSystemOnly }, // TCP
    Version { { bits(16), bits(2), 0 }, 2 * fileSystemOnly }, // controlling devices
    Version { { bits(16), bits(2), bits(2) }, 3 * fileSystemOnly }, // abstract sockets, signals
};

constexpr long createRuleset = 444;
constexpr long restrictSelf = 446;
constexpr unsigned askForVersion = 1;

} // namespace

int raiseLandlock()
{
    const long found = ::syscall(createRuleset, nullptr, 0, askForVersion);
    if (found < 1) {
        return 0;
    }
    const auto known
        = versions.at(static_cast<std::size_t>(std::min<long>(found, versions.size())) - 1);
    // A set without a single exception.
    const auto ruleset
        = static_cast<int>(::syscall(createRuleset, &known.forbidden, known.size, 0U));
    if (ruleset < 0) {
        return 0;
    }
    const bool isInForce = ::syscall(restrictSelf, ruleset, 0U) == 0;
    ::close(ruleset);
    return isInForce ? static_cast<int>(found) : 0;
}

} // namespace vellumine::confined
