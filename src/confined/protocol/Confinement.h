#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vellumine::confined {

/// What holds a helper back, as far as the system has it.
struct Confinement {
    bool systemCallFilter
        = false; ///< seccomp: it can ask the kernel for what decoding takes, no more
    std::int32_t landlockVersion
        = 0; ///< of the kernel's file system and network barrier; 0 is none
    bool noNewPrivileges = false;
    bool memoryLimit = false; ///< growing with the picture
    bool timeLimit = false; ///< of its processor time, growing with the picture

    friend bool operator==(const Confinement&, const Confinement&) = default;
};

/// One sentence for people about where pictures are decoded; without a value, in the program
/// itself.
[[nodiscard]] std::string confinementText(const std::optional<Confinement>& confinement);

} // namespace vellumine::confined
