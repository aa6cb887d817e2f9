#include "core/PropertyList.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto list = vellumine::decodePropertyList(
        { reinterpret_cast<const char*>(data), static_cast<qsizetype>(size) });
    // What was read can be written, by the library, and read again.
    if (list && list->size() < 1000) {
        const auto written = vellumine::encodePropertyList(*list);
        if (!written || vellumine::decodePropertyList(*written) != list) {
            std::abort();
        }
    }
    return 0;
}
