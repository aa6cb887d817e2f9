#pragma once

#include "imaging/metadata/TiffTree.h"

#include <array>
#include <limits>

namespace vellumine::imaging::metadata {

/// The bytes of a classic TIFF structure that is being written out of order: places are given out
/// first, and filled later.
class TiffLayout {
public:
    static constexpr std::size_t entryBytes = 12;
    /// A value up to this long stands in its entry.
    static constexpr std::size_t inlineBytes = 4;

    /// Continues behind the given bytes.
    TiffLayout(ByteBuffer bytes, ByteOrder order);

    /// Keeps a range for what must stand there. Everything else goes below it while it fits, and
    /// above it otherwise.
    void reserve(std::size_t offset, std::size_t length);
    /// A place for so many bytes, on a word boundary as TIFF wants it. They are zero.
    std::size_t place(std::size_t length);
    std::size_t placeDirectory(std::size_t entries);

    void put(std::size_t at, ByteSpan value);
    void put16(std::size_t at, std::uint16_t value);
    void put32(std::size_t at, std::size_t value);

    ByteBuffer take() && { return std::move(m_bytes); }

private:
    void grow(std::size_t size);

    ByteBuffer m_bytes;
    ByteOrder m_order;
    std::size_t m_low;
    std::size_t m_lowEnd = std::numeric_limits<std::size_t>::max();
    std::size_t m_high = 0;
};

/// An entry that says where something stands, or how long it is.
struct TiffPointer {
    std::uint16_t tag = 0;
    std::size_t value = 0;
};

/// Fills a directory whose place is known, entry by entry. The caller keeps to the order of tags.
class TiffDirectoryWriter {
public:
    TiffDirectoryWriter(TiffLayout& layout, std::size_t at, std::size_t entries, std::size_t next);

    /// The value goes into the entry, or to a new place.
    void add(const TiffEntry& entry);
    /// The same with a place of the caller's for a value that is too long for the entry.
    void add(const TiffEntry& entry, std::size_t valueAt);
    void add(TiffPointer pointer);
    /// An entry of the same structure, whose offset still holds.
    void addAsIs(std::span<const std::byte, TiffLayout::entryBytes> entry);

private:
    void addHead(std::uint16_t tag, std::uint16_t type, std::uint32_t count);

    TiffLayout& m_layout;
    std::size_t m_position;
};

} // namespace vellumine::imaging::metadata
