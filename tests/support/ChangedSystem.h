#pragma once

#include <functional>

// Functions that are run in a copy of this process, where some calls of the system are answered
// otherwise. What they return (0 to 254) is given back. 255 means that the system allows no such
// thing, -1 that the copy crashed.

namespace vellumine::test {

/// As on a file system that can neither rename to free names only nor, without links, give a file a
/// second name.
[[nodiscard]] int onPlainFileSystem(bool hasLinks, const std::function<int()>& function);

/// Where fsync() answers with the error.
[[nodiscard]] int whereSyncingFails(int error, const std::function<int()>& function);

/// How often the function calls fsync(), up to 254.
[[nodiscard]] int syncsDuring(const std::function<void()>& function);

} // namespace vellumine::test
