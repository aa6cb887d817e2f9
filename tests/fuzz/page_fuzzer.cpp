#include "update/PageVersion.h"
#include "update/VersionText.h"

#include "DecoderFuzzer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray page(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto version = vellumine::versionOnPage(page);
    if (version) {
        // No version comes after itself.
        vellumine::fuzz::require(!vellumine::isNewer(*version, *version));
        (void)vellumine::isNewer(*version, vellumine::currentVersionText());
    }
    return 0;
}
