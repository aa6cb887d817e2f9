#include "support/Samples.h"

#include <cstdlib>

namespace vellumine::test {

std::optional<std::filesystem::path> samplesFolder()
{
    const char* named = std::getenv("VELLUMINE_SAMPLES");
    const std::filesystem::path folder = named != nullptr
        ? std::filesystem::path(named)
        : std::filesystem::path(VELLUMINE_SOURCE_FOLDER) / "../shared/samples";
    if (!std::filesystem::exists(folder / "MANIFEST.tsv")) {
        return std::nullopt;
    }
    return std::filesystem::canonical(folder);
}

} // namespace vellumine::test
