#pragma once

#include "imaging/metadata/ExifBuilder.h"
#include "imaging/metadata/Metadata.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace vellumine::test {

inline constexpr imaging::metadata::Groups everything { true, true, true, true, true };

inline imaging::MetadataBlocks exifOnly(imaging::ByteBuffer exif)
{
    return { .exif = std::move(exif), .xmp = {}, .iptc = {} };
}

inline imaging::MetadataBlocks xmpOnly(imaging::ByteBuffer xmp)
{
    return { .exif = {}, .xmp = std::move(xmp), .iptc = {} };
}

inline imaging::ByteBuffer exifWithOrientation(std::uint16_t value)
{
    ExifBuilder builder;
    builder.main = { builder.shorts(0x0112, { value }) };
    return builder.build();
}

/// A block that says a resolution, and who made the camera.
inline imaging::MetadataBlocks blocksWith(
    const ExifBuilder& builder, ExifBuilder::Directory resolution, std::vector<std::uint16_t> unit)
{
    ExifBuilder block = builder;
    block.main = { ExifBuilder::ascii(0x010F, "Kestrova") };
    block.main.insert(block.main.end(), resolution.begin(), resolution.end());
    if (!unit.empty()) {
        block.main.push_back(block.shorts(0x0128, std::move(unit)));
    }
    return exifOnly(block.build());
}

} // namespace vellumine::test
