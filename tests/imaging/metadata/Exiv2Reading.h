#pragma once

#include "imaging/Bytes.h"

#include <map>
#include <optional>
#include <string>

namespace vellumine::test {

/// Every EXIF field that Exiv2 reads, maker notes included, by its key. An independent reader for
/// what the service writes.
[[nodiscard]] std::map<std::string, std::string> exifFields(imaging::ByteSpan block);

/// The same for the metadata of a whole file of any type: EXIF, IPTC and XMP.
[[nodiscard]] std::map<std::string, std::string> fileFields(imaging::ByteSpan file);

/// Every XMP property by its key; none when Exiv2 cannot read the packet.
[[nodiscard]] std::optional<std::map<std::string, std::string>> xmpFields(imaging::ByteSpan packet);

} // namespace vellumine::test
