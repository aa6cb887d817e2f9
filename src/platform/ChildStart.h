#pragma once

#include "platform/FileError.h"

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vellumine::platform {

/// Starts a program, without a shell, as the leader of a process group of its own. It has this
/// process's standard input and output, the given environment ("NAME=value") and standard error, no
/// other descriptor, and signals as a program expects them. It is killed when the calling thread
/// ends, and so when this process does, however that comes about. Fails, with nothing started, when
/// the program cannot be executed.
[[nodiscard]] Result<pid_t> startChild(const std::filesystem::path& executable,
    const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
    int standardError);

} // namespace vellumine::platform
