#pragma once

#include "imaging/metadata/ByteOrder.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vellumine::imaging::metadata {

/// The field types of TIFF 6.0 that are asked for by name.
namespace fieldtype {
inline constexpr std::uint16_t byte = 1;
inline constexpr std::uint16_t ascii = 2;
inline constexpr std::uint16_t shortInteger = 3;
inline constexpr std::uint16_t longInteger = 4;
inline constexpr std::uint16_t rational = 5;
inline constexpr std::uint16_t undefined = 7;
inline constexpr std::uint16_t directory = 13;
} // namespace fieldtype

/// The tags that make a tree of directories out of a file.
namespace tag {
inline constexpr std::uint16_t exifDirectory = 0x8769;
inline constexpr std::uint16_t gpsDirectory = 0x8825;
inline constexpr std::uint16_t interoperabilityDirectory = 0xA005;
inline constexpr std::uint16_t makerNote = 0x927C;
inline constexpr std::uint16_t stripOffsets = 0x0111;
inline constexpr std::uint16_t stripByteCounts = 0x0117;
inline constexpr std::uint16_t jpegOffset = 0x0201;
inline constexpr std::uint16_t jpegByteCount = 0x0202;
} // namespace tag

/// Bytes of one element of a field type, 0 for a type that classic TIFF does not know.
[[nodiscard]] std::size_t elementSize(std::uint16_t type);

/// One field. The value is `count` elements in the tree's byte order, exactly as they were read.
struct TiffEntry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint32_t count = 0;
    ByteBuffer value;
};

/// The fields of one directory, ascending by tag, no tag twice.
struct TiffDirectory {
    std::vector<TiffEntry> entries;

    [[nodiscard]] bool empty() const { return entries.empty(); }
    [[nodiscard]] const TiffEntry* find(std::uint16_t tag) const;
    void erase(std::uint16_t tag);
    /// Adds the field, or puts it in the place of those with its tag.
    void set(TiffEntry entry);
};

/// The directories of an EXIF block, or those that describe the first picture of a TIFF file. The
/// fields that only point (at directories, at the thumbnail's data) are not among the entries:
/// they are what the tree itself says.
struct TiffTree {
    ByteOrder order = ByteOrder::little;
    TiffDirectory main;
    TiffDirectory exif;
    TiffDirectory interoperability;
    TiffDirectory gps;
    TiffDirectory thumbnail; ///< besides where its data is; may be empty
    ByteBuffer thumbnailData; ///< empty when there is no thumbnail
    /// The tag that points at the thumbnail's data: jpegOffset or stripOffsets.
    std::uint16_t thumbnailTag = tag::jpegOffset;
    /// Where the maker note stood. Many of them hold offsets that count from the block's start, so
    /// that they stay readable only in their place.
    std::optional<std::size_t> makerNoteOffset;

    [[nodiscard]] bool empty() const;
    /// The first element of an integer field (BYTE, SHORT or LONG).
    [[nodiscard]] std::optional<std::uint32_t> integer(const TiffEntry* entry) const;
    /// The same of a RATIONAL field as well; none where its denominator is 0.
    [[nodiscard]] std::optional<double> number(const TiffEntry* entry) const;
    /// A field of one RATIONAL: a number of 0 to 2^32 - 1, to the fourth decimal where there is
    /// room for it.
    [[nodiscard]] TiffEntry rationalEntry(std::uint16_t tag, double value) const;
    /// A field of one SHORT, or of one LONG where the value asks for it.
    [[nodiscard]] TiffEntry integerEntry(std::uint16_t tag, std::uint32_t value) const;
};

/// What a structure is: in an EXIF block the second directory is the thumbnail's, in a file of
/// pictures it is the second picture's and not read.
enum class TiffKind { exifBlock, pictureFile };

/// Reads the directories; classic TIFF, and BigTIFF for files. Fields that do not lie inside the
/// bytes, or are of an unknown type, are left out, and so are inner directories that do not.
/// None when the header or the first directory is damaged (one of more than 4,096 fields is). The
/// copied values together are never larger than `bytes`, whatever the fields claim.
[[nodiscard]] std::optional<TiffTree> readTiffTree(ByteSpan bytes, TiffKind kind);

} // namespace vellumine::imaging::metadata
