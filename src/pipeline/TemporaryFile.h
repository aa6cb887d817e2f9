#pragma once

#include <filesystem>
#include <string_view>

namespace vellumine {

// What the names of files in the temporary folder begin and end with; a unique part is between
// (platform/UniqueName.h).
inline constexpr std::string_view workFilePrefix = "vellumine-";
inline constexpr std::string_view encoderInputSuffix = ".pam";
inline constexpr std::string_view encoderOutputSuffix = ".webp";
inline constexpr std::string_view samplePrefix = "vellumine-preview-";
inline constexpr std::string_view sampleSuffix = ".png";

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
