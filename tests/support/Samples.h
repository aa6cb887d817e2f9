#pragma once

#include <filesystem>
#include <optional>

namespace vellumine::test {

/// The folder of sample pictures that VELLUMINE_SAMPLES names, else the shared one beside the
/// source tree; nothing where it has no manifest.
[[nodiscard]] std::optional<std::filesystem::path> samplesFolder();

} // namespace vellumine::test
