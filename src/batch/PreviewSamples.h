#pragma once

#include "core/ProcessingResult.h"
#include "platform/FileLock.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace vellumine {

/// Keeps the temporary folder free of preview samples that nobody needs any more: this program's
/// when it ends, and those that an earlier one left behind when it crashed, with the work files of
/// its conversions.
///
/// A file's name does not say whose it is. So every program that makes samples shares a lock for
/// as long as it runs. Whoever can have the lock alone knows that no such program is running, and
/// that every sample and every work file of this user's is left over. Make it before the first
/// conversion. Samples that were given to somebody outside have names by which they are known, and
/// are never removed.
class PreviewSamples {
public:
    explicit PreviewSamples(std::filesystem::path temporaryFolder);
    /// Conversions must have ended.
    ~PreviewSamples();
    PreviewSamples(const PreviewSamples&) = delete;
    PreviewSamples& operator=(const PreviewSamples&) = delete;

    /// Takes care of the result's samples, if it has any.
    void add(const ProcessingResult& result);

    /// The result for somebody outside, who is to have its samples: they stay, under the names that
    /// it has for them. It has none where they cannot be kept.
    [[nodiscard]] ProcessingResult given(const ProcessingResult& result);

private:
    void takeLock();
    void removeLeftOver() const;

    std::filesystem::path m_folder;
    std::optional<platform::FileLock> m_lock;
    std::vector<std::filesystem::path> m_own;
};

} // namespace vellumine
