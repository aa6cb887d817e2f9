#pragma once

#include <functional>

namespace vellumine::test {

/// Runs the function in a copy of this process where fsync() answers with the error, and gives what
/// it returns (0 to 254). 255 means that the system allows no such thing, -1 that the copy crashed.
[[nodiscard]] int whereSyncingFails(int error, const std::function<int()>& function);

/// Runs the function in a copy of this process and gives how often it called fsync(), up to 254.
/// 255 and -1 are as above.
[[nodiscard]] int syncsDuring(const std::function<void()>& function);

} // namespace vellumine::test
