#include "batch/LeftoverOutputs.h"

#include "pipeline/ImageOptimizer.h"
#include "platform/PendingFile.h"

#include <filesystem>
#include <set>

namespace vellumine {

void removeLeftoverOutputs(const QList<QUrl>& sources, const OptimizerSettings& settings)
{
    std::set<std::filesystem::path> folders;
    for (const QUrl& source : sources) {
        if (const auto path = ImageOptimizer::outputPathWithoutExtension(source, settings)) {
            folders.insert(path->parent_path());
        }
    }
    for (const std::filesystem::path& folder : folders) {
        platform::PendingFile::removeLeftOver(folder);
    }
}

} // namespace vellumine
