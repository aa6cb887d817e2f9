#pragma once

#include <QUrl>

#include <filesystem>
#include <span>
#include <vector>

namespace vellumine::cli {

/// A file to convert.
struct InputFile {
    enum class Name {
        Text,
        NotText, ///< not valid UTF-8: the URL is for show and must not be opened
    };

    QUrl url;
    Name name = Name::Text;
};

/// The files of the given paths, folders walked at any depth in alphabetical order, each file once.
/// A path with a picture's extension is taken as it is; in folders hidden items are left out, and
/// links to folders are not followed. Paths that exist but have no picture's extension give
/// nothing; paths that do not exist are taken, so that their failure is reported.
[[nodiscard]] std::vector<InputFile> inputFiles(std::span<const std::filesystem::path> paths);

} // namespace vellumine::cli
