#include "batch/LeftoverOutputs.h"

#include "platform/FilePath.h"
#include "platform/PendingFile.h"

#include <filesystem>
#include <set>

namespace vellumine {

void removeLeftoverOutputs(const QList<QUrl>& sources, const OptimizerSettings& settings)
{
    std::set<std::filesystem::path> folders;
    if (settings.destinationMode == DestinationMode::selectedFolder) {
        if (settings.destinationFolderURL) {
            folders.insert(platform::toPath(*settings.destinationFolderURL));
        }
    } else {
        for (const QUrl& source : sources) {
            folders.insert(platform::toPath(source).parent_path());
        }
    }
    for (const std::filesystem::path& folder : folders) {
        platform::PendingFile::removeLeftOver(folder);
    }
}

} // namespace vellumine
