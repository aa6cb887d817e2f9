#pragma once

#include "platform/FileError.h"

#include <QByteArray>

#include <chrono>
#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

namespace vellumine::platform {

/// How a child process ended.
struct ProcessExit {
    /// The exit status, or the signal's number when a signal ended it. 0 means a regular end.
    int status = 0;
    /// What it wrote to its standard error, the first 4 MiB of it.
    QByteArray standardError;
    /// Whether it was killed because its time was up.
    bool hasTimedOut = false;
};

struct ProcessOptions {
    /// What ends the child before its own time.
    std::stop_token interruption {};
    std::chrono::milliseconds time = std::chrono::milliseconds::max();
    /// "NAME=value": what the child finds in its environment besides this process's own, which
    /// holds where it has the name.
    std::vector<std::string> environmentDefaults {};
};

/// Runs a program, without a shell, and waits for its end. Its standard input and output are this
/// process's own, no other descriptor reaches it, and its standard error is read all the time, so
/// that it never waits for a reader. It leads a process group of its own, so that an interruption
/// typed at the terminal is not its business; the group is killed when a stop is requested or the
/// time is up, and what is left of it when the program has ended. It does not outlive this process.
/// Fails when the program cannot be started. Safe to call from several threads at once.
[[nodiscard]] Result<ProcessExit> runProcess(const std::filesystem::path& executable,
    const std::vector<std::string>& arguments, const ProcessOptions& options = {});

} // namespace vellumine::platform
