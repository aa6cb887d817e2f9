#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vellumine::test {

/// Writes a shell script that can be run: `body` comes after the line that names the shell.
void writeProgram(const std::filesystem::path& path, std::string_view body);

/// Names of everything in the folder, hidden items too, sorted and joined with a space.
[[nodiscard]] std::string listing(const std::filesystem::path& folder);

} // namespace vellumine::test
