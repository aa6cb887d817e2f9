#pragma once

#include <QJsonObject>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace vellumine::test {

/// What one run of vellumine-batch did.
struct BatchRun {
    std::map<std::filesystem::path, QJsonObject> results; ///< by source
    std::vector<std::string> faults; ///< a crash, a hang, a sanitizer's report, unreadable output
};

/// The path of a file URL in a result; empty for anything else.
[[nodiscard]] std::filesystem::path pathOf(const QJsonValue& url);

/// Runs the program with --json and the given settings ("key=value") on the paths, with its home
/// and its temporary folder inside `scratch`, and ends it when it takes too long.
[[nodiscard]] BatchRun runBatch(const std::vector<std::string>& settings,
    const std::vector<std::filesystem::path>& paths, const std::filesystem::path& scratch);

/// Every entry of `scratch`'s temporary folder that a run may not leave: all but previews.
[[nodiscard]] std::vector<std::filesystem::path> temporaryLeftovers(
    const std::filesystem::path& scratch);

} // namespace vellumine::test
