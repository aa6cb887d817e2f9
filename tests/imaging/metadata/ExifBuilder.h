#pragma once

#include "imaging/Bytes.h"
#include "imaging/metadata/ByteOrder.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace vellumine::test {

/// One field of a directory, the value in the byte order of the block that it is for.
struct ExifField {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint32_t count;
    imaging::ByteBuffer value;
};

/// Builds EXIF blocks field by field, in the plainest layout: each directory with its values behind
/// it. Knows nothing of the code under test but the names of the byte orders.
class ExifBuilder {
public:
    using Order = imaging::metadata::ByteOrder;
    using Directory = std::vector<ExifField>;

    explicit ExifBuilder(Order order = Order::little)
        : m_order(order)
    {
    }

    [[nodiscard]] ExifField shorts(std::uint16_t tag, std::vector<std::uint16_t> values) const;
    [[nodiscard]] ExifField longs(std::uint16_t tag, std::vector<std::uint32_t> values) const;
    [[nodiscard]] ExifField rationals(std::uint16_t tag, std::vector<std::uint32_t> values) const;
    /// With the zero at the end.
    [[nodiscard]] static ExifField ascii(std::uint16_t tag, std::string_view text);
    [[nodiscard]] static ExifField undefined(std::uint16_t tag, imaging::ByteBuffer bytes);

    Directory main;
    Directory exif;
    Directory interoperability;
    Directory gps;
    Directory thumbnail; ///< without the two fields that say where its data is
    imaging::ByteBuffer thumbnailData;

    [[nodiscard]] imaging::ByteBuffer build() const;

private:
    Order m_order;
};

/// A block as a camera writes it: all five directories, a maker note, a thumbnail, orientation 6.
[[nodiscard]] imaging::ByteBuffer cameraExif(
    imaging::metadata::ByteOrder order = imaging::metadata::ByteOrder::little);

/// What cameraExif() has as its thumbnail and as its maker note.
[[nodiscard]] imaging::ByteBuffer cameraThumbnail();
[[nodiscard]] imaging::ByteBuffer cameraMakerNote();

/// An IPTC block of one dataset, 2:120 (caption).
[[nodiscard]] imaging::ByteBuffer captionIptc(std::string_view caption);

/// A packet of the given properties: attributes of one rdf:Description with the usual namespaces.
[[nodiscard]] imaging::ByteBuffer xmpPacket(
    std::string_view attributes, std::string_view elements = {});

[[nodiscard]] imaging::ByteBuffer bytesOf(std::string_view text);
[[nodiscard]] std::string_view textOf(imaging::ByteSpan bytes);

} // namespace vellumine::test
