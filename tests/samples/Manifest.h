#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellumine::test {

/// What a conversion of a sample must end with. Either: whatever it likes but a crash.
enum class Expected { converted, refused, either };

/// One line of the samples' manifest.
struct Sample {
    std::filesystem::path path; ///< relative to the samples folder
    std::string kind; ///< "jpeg" or "hostile" for example
    std::int64_t width = 0; ///< upright; as the file says, so possibly absurd
    std::int64_t height = 0;
    Expected expected = Expected::either;
};

/// Every picture that MANIFEST.tsv lists. Throws std::runtime_error on a line that it cannot read.
[[nodiscard]] std::vector<Sample> readManifest(const std::filesystem::path& folder);

/// A path of the manifest with its escapes resolved: backslash, \n, \t and \xNN.
[[nodiscard]] std::string unescaped(std::string_view text);

} // namespace vellumine::test
