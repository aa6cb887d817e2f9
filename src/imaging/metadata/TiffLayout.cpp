#include "imaging/metadata/TiffLayout.h"

#include <algorithm>

namespace vellumine::imaging::metadata {

namespace {

std::size_t even(std::size_t offset)
{
    return offset + offset % 2;
}

} // namespace

TiffLayout::TiffLayout(ByteBuffer bytes, ByteOrder order)
    : m_bytes(std::move(bytes))
    , m_order(order)
    , m_low(m_bytes.size())
{
}

void TiffLayout::reserve(std::size_t offset, std::size_t length)
{
    m_lowEnd = offset;
    m_high = offset + length;
    grow(m_high);
}

std::size_t TiffLayout::place(std::size_t length)
{
    const std::size_t low = even(m_low);
    if (low <= m_lowEnd && length <= m_lowEnd - low) {
        m_low = low + length;
        grow(m_low);
        return low;
    }
    const std::size_t high = even(m_high);
    m_high = high + length;
    grow(m_high);
    return high;
}

std::size_t TiffLayout::placeDirectory(std::size_t entries)
{
    return place(2 + entries * entryBytes + 4);
}

void TiffLayout::put(std::size_t at, ByteSpan value)
{
    std::ranges::copy(value, m_bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

void TiffLayout::put16(std::size_t at, std::uint16_t value)
{
    write16(m_bytes, at, value, m_order);
}

void TiffLayout::put32(std::size_t at, std::size_t value)
{
    write32(m_bytes, at, static_cast<std::uint32_t>(value), m_order);
}

void TiffLayout::grow(std::size_t size)
{
    if (size > m_bytes.size()) {
        m_bytes.resize(size);
    }
}

TiffDirectoryWriter::TiffDirectoryWriter(
    TiffLayout& layout, std::size_t at, std::size_t entries, std::size_t next)
    : m_layout(layout)
    , m_position(at + 2)
{
    layout.put16(at, static_cast<std::uint16_t>(entries));
    layout.put32(at + 2 + entries * TiffLayout::entryBytes, next);
}

void TiffDirectoryWriter::add(const TiffEntry& entry)
{
    const bool isInline = entry.value.size() <= TiffLayout::inlineBytes;
    add(entry, isInline ? 0 : m_layout.place(entry.value.size()));
}

void TiffDirectoryWriter::add(const TiffEntry& entry, std::size_t valueAt)
{
    addHead(entry.tag, entry.type, entry.count);
    if (entry.value.size() > TiffLayout::inlineBytes) {
        m_layout.put32(m_position + 8, valueAt);
        m_layout.put(valueAt, entry.value);
    } else {
        m_layout.put(m_position + 8, entry.value);
    }
    m_position += TiffLayout::entryBytes;
}

void TiffDirectoryWriter::add(TiffPointer pointer)
{
    addHead(pointer.tag, fieldtype::longInteger, 1);
    m_layout.put32(m_position + 8, pointer.value);
    m_position += TiffLayout::entryBytes;
}

void TiffDirectoryWriter::addAsIs(std::span<const std::byte, TiffLayout::entryBytes> entry)
{
    m_layout.put(m_position, entry);
    m_position += TiffLayout::entryBytes;
}

void TiffDirectoryWriter::addHead(std::uint16_t tag, std::uint16_t type, std::uint32_t count)
{
    m_layout.put16(m_position, tag);
    m_layout.put16(m_position + 2, type);
    m_layout.put32(m_position + 4, count);
}

} // namespace vellumine::imaging::metadata
