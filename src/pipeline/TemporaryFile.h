#pragma once

#include <filesystem>
#include <string_view>

namespace vellumine {

/// A path in the temporary folder with a name of its own: `prefix`, a UUID in capitals, a dot and
/// the extension.
[[nodiscard]] std::filesystem::path uniquePath(
    const std::filesystem::path& folder, std::string_view prefix, std::string_view extension);

/// Removes the file, if there is one, at the end of its life.
class TemporaryFile {
public:
    explicit TemporaryFile(std::filesystem::path path);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace vellumine
