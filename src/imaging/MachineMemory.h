#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace vellumine::imaging {

/// Bytes of memory that this process can have in use: the machine's, or fewer where its control
/// groups or its own limit of addresses say so. Nothing when none of them is known.
[[nodiscard]] std::optional<std::uint64_t> memoryForThisProcess();

/// The smallest limit among the control groups that the list (/proc/self/cgroup) names and those
/// around them, of either version; nothing when none has one. `root` is where they are mounted.
[[nodiscard]] std::optional<std::uint64_t> controlGroupMemory(
    const std::filesystem::path& list, const std::filesystem::path& root);

} // namespace vellumine::imaging
