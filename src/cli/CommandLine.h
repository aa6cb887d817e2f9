#pragma once

#include "core/OptimizerSettings.h"

#include <QString>
#include <tl/expected.hpp>

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace vellumine::cli {

enum class Action { convert, showHelp, showVersion };
enum class OutputStyle { text, json };

/// What the program is asked to do.
struct CommandLine {
    Action action = Action::convert;
    OutputStyle style = OutputStyle::text;
    OptimizerSettings settings;
    std::vector<std::filesystem::path> paths;
};

/// What is wrong with the arguments, for the user.
struct UsageError {
    QString text;
};

/// Reads the arguments, without the program's own name. They are bytes, not text: a path need not
/// be valid UTF-8.
[[nodiscard]] tl::expected<CommandLine, UsageError> parseCommandLine(
    std::span<const std::string> arguments);

[[nodiscard]] QString usageText();
/// The first line of it.
[[nodiscard]] QString usageLine();

} // namespace vellumine::cli
