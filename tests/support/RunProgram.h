#pragma once

#include <string>
#include <vector>

namespace vellumine::test {

/// Runs a program of the PATH and waits for its end. Throws std::runtime_error with what it said
/// when it cannot be started or fails.
void runProgram(const std::vector<std::string>& command);

} // namespace vellumine::test
