#pragma once

#include "support/TestImages.h"

#include <cstddef>
#include <filesystem>
#include <memory>

namespace vellumine::test {

/// A file system of its own with little room, unmounted at the end.
class SmallDisk {
public:
    /// Null where this user may mount nothing: tests without one are to be skipped.
    [[nodiscard]] static std::unique_ptr<SmallDisk> create(std::size_t bytes);

    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_folder.path(); }
    /// Leaves no room at all.
    void fill() const;

private:
    SmallDisk() = default;

    TemporaryFolder m_folder;
};

} // namespace vellumine::test
