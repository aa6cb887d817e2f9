#pragma once

#include <QList>
#include <QUrl>

#include <filesystem>
#include <span>
#include <string>

namespace vellumine {

/// The program's arguments as URLs: names of files and folders, in any encoding, relative to the
/// working folder; "file:" URLs as launchers pass them. Other URLs and empty arguments are left
/// out.
[[nodiscard]] QList<QUrl> fileArguments(
    std::span<const std::string> arguments, const std::filesystem::path& workingFolder);

} // namespace vellumine
