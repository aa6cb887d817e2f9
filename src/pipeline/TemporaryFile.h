#pragma once

#include <filesystem>

namespace vellumine {

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
