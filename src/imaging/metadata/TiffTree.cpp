#include "imaging/metadata/TiffTree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vellumine::imaging::metadata {

namespace {

// What differs between classic TIFF and BigTIFF: the width of counts and offsets.
struct Shape {
    std::size_t entryCountBytes;
    std::size_t entryBytes;
    std::size_t inlineBytes; // a value up to this long stands in the entry itself
};

constexpr Shape classicShape { 2, 12, 4 };
constexpr Shape bigShape { 8, 20, 8 };

// Real directories have some dozens of entries. The limit keeps what is written from outgrowing the
// 16 bits of classic TIFF's count, and the time that a hostile block takes short.
constexpr std::uint64_t maximumEntries = 4096;

constexpr std::uint16_t bigTiffLong = 16;
constexpr std::uint16_t bigTiffDirectory = 18;

class Reader {
public:
    Reader(ByteSpan bytes, ByteOrder order, Shape shape)
        : m_bytes(bytes)
        , m_order(order)
        , m_shape(shape)
        , m_valueBytesLeft(bytes.size())
    {
    }

    struct Pointer {
        std::uint16_t tag;
        std::uint64_t target;
    };

    struct Read {
        TiffDirectory directory;
        std::vector<Pointer> pointers; // integer fields of one element: they may be offsets
        std::uint64_t next = 0;
        std::optional<std::size_t> makerNoteOffset;

        [[nodiscard]] std::optional<std::uint64_t> pointer(std::uint16_t tag) const
        {
            const auto found = std::ranges::find(pointers, tag, &Pointer::tag);
            return found == pointers.end() ? std::nullopt : std::optional(found->target);
        }
    };

    // None when the directory does not lie inside the bytes, or was read before: a directory that
    // is its own child says nothing new.
    std::optional<Read> read(std::uint64_t offset)
    {
        if (std::ranges::find(m_visited, offset) != m_visited.end()
            || !fits(offset, m_shape.entryCountBytes)) {
            return std::nullopt;
        }
        m_visited.push_back(offset);
        const std::uint64_t count = m_shape.entryCountBytes == 2
            ? read16(m_bytes, at(offset), m_order)
            : read64(m_bytes, at(offset), m_order);
        const std::uint64_t first = offset + m_shape.entryCountBytes;
        if (count > maximumEntries || count > (m_bytes.size() - first) / m_shape.entryBytes) {
            return std::nullopt;
        }
        Read result;
        for (std::uint64_t i = 0; i < count; ++i) {
            readEntry(at(first + i * m_shape.entryBytes), result);
        }
        // Of fields that are there twice, the first one counts.
        auto& entries = result.directory.entries;
        std::ranges::stable_sort(entries, {}, &TiffEntry::tag);
        const auto sameTag = [](const TiffEntry& a, const TiffEntry& b) { return a.tag == b.tag; };
        entries.erase(std::unique(entries.begin(), entries.end(), sameTag), entries.end());
        const std::uint64_t end = first + count * m_shape.entryBytes;
        if (fits(end, m_shape.inlineBytes)) { // missing after the last directory of some cameras
            result.next = readOffset(at(end));
        }
        return result;
    }

    [[nodiscard]] bool fits(std::uint64_t offset, std::uint64_t length) const
    {
        return offset <= m_bytes.size() && length <= m_bytes.size() - offset;
    }

private:
    static std::size_t at(std::uint64_t offset) { return static_cast<std::size_t>(offset); }

    [[nodiscard]] std::uint64_t readOffset(std::size_t position) const
    {
        return m_shape.inlineBytes == 4 ? read32(m_bytes, position, m_order)
                                        : read64(m_bytes, position, m_order);
    }

    void readEntry(std::size_t position, Read& result)
    {
        const std::uint16_t tag = read16(m_bytes, position, m_order);
        const std::uint16_t type = read16(m_bytes, position + 2, m_order);
        const std::uint64_t count = readOffset(position + 4);
        const std::size_t valuePosition = position + 4 + m_shape.inlineBytes;
        if (count == 1 && (type == bigTiffLong || type == bigTiffDirectory)
            && m_shape.inlineBytes == 8) {
            result.pointers.push_back({ tag, read64(m_bytes, valuePosition, m_order) });
            return;
        }
        const std::size_t element = elementSize(type);
        if (element == 0 || count == 0 || count > m_valueBytesLeft / element) {
            return;
        }
        const auto length = static_cast<std::size_t>(count) * element;
        std::uint64_t offset = valuePosition;
        if (length > m_shape.inlineBytes) {
            offset = readOffset(valuePosition);
            if (!fits(offset, length)) {
                return;
            }
        }
        if (count == 1 && (type == fieldtype::longInteger || type == fieldtype::directory)) {
            result.pointers.push_back({ tag, read32(m_bytes, at(offset), m_order) });
        }
        if (tag == tag::makerNote && !result.makerNoteOffset) {
            result.makerNoteOffset = at(offset);
        }
        // Fields that share their bytes would let a small block unfold into a huge one.
        m_valueBytesLeft -= length;
        const ByteSpan value = m_bytes.subspan(at(offset), length);
        result.directory.entries.push_back(
            { tag, type, static_cast<std::uint32_t>(count), { value.begin(), value.end() } });
    }

    ByteSpan m_bytes;
    ByteOrder m_order;
    Shape m_shape;
    std::size_t m_valueBytesLeft;
    std::vector<std::uint64_t> m_visited;
};

struct Header {
    ByteOrder order;
    Shape shape;
    std::uint64_t firstDirectory;
};

std::optional<Header> readHeader(ByteSpan bytes)
{
    constexpr std::byte little { 'I' };
    constexpr std::byte big { 'M' };
    if (bytes.size() < 8 || bytes[0] != bytes[1] || (bytes[0] != little && bytes[0] != big)) {
        return std::nullopt;
    }
    const ByteOrder order = bytes[0] == little ? ByteOrder::little : ByteOrder::big;
    switch (read16(bytes, 2, order)) {
    case 42:
        return Header { order, classicShape, read32(bytes, 4, order) };
    case 43:
        if (bytes.size() < 16 || read16(bytes, 4, order) != 8) {
            return std::nullopt;
        }
        return Header { order, bigShape, read64(bytes, 8, order) };
    default:
        return std::nullopt;
    }
}

TiffDirectory inner(Reader& reader, const Reader::Read& outer, std::uint16_t tag)
{
    const auto offset = outer.pointer(tag);
    auto read = offset ? reader.read(*offset) : std::nullopt;
    return read ? std::move(read->directory) : TiffDirectory {};
}

// A thumbnail is JPEG data, or a picture in one strip. Anything else is left out.
void readThumbnail(Reader& reader, ByteSpan bytes, std::uint64_t offset, TiffTree& tree)
{
    auto read = reader.read(offset);
    if (!read) {
        return;
    }
    constexpr std::array<std::array<std::uint16_t, 2>, 2> locations { {
        { tag::jpegOffset, tag::jpegByteCount },
        { tag::stripOffsets, tag::stripByteCounts },
    } };
    for (const auto& [offsetTag, lengthTag] : locations) {
        const auto start = read->pointer(offsetTag);
        const auto length = tree.integer(read->directory.find(lengthTag));
        if (start && length && *length > 0 && reader.fits(*start, *length)) {
            const ByteSpan data = bytes.subspan(static_cast<std::size_t>(*start), *length);
            tree.thumbnailData.assign(data.begin(), data.end());
            tree.thumbnailTag = offsetTag;
            tree.thumbnail = std::move(read->directory);
            break;
        }
    }
    for (const auto& location : locations) {
        std::ranges::for_each(location, [&tree](std::uint16_t tag) { tree.thumbnail.erase(tag); });
    }
    std::erase_if(tree.thumbnail.entries,
        [](const TiffEntry& entry) { return entry.type == fieldtype::directory; });
}

} // namespace

std::size_t elementSize(std::uint16_t type)
{
    // BYTE, ASCII, SHORT, LONG, RATIONAL, SBYTE, UNDEFINED, SSHORT, SLONG, SRATIONAL, FLOAT,
    // DOUBLE, IFD; and the UTF-8 of Exif 3.0.
    constexpr std::array<std::uint8_t, 14> sizes { 0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4 };
    constexpr std::uint16_t utf8 = 129;
    if (type == utf8) {
        return 1;
    }
    return type < sizes.size() ? sizes.at(type) : 0;
}

const TiffEntry* TiffDirectory::find(std::uint16_t tag) const
{
    const auto found = std::ranges::lower_bound(entries, tag, {}, &TiffEntry::tag);
    return found != entries.end() && found->tag == tag ? &*found : nullptr;
}

void TiffDirectory::erase(std::uint16_t tag)
{
    std::erase_if(entries, [tag](const TiffEntry& entry) { return entry.tag == tag; });
}

void TiffDirectory::set(TiffEntry entry)
{
    erase(entry.tag);
    entries.insert(
        std::ranges::lower_bound(entries, entry.tag, {}, &TiffEntry::tag), std::move(entry));
}

bool TiffTree::empty() const
{
    return main.empty() && exif.empty() && interoperability.empty() && gps.empty()
        && thumbnailData.empty();
}

std::optional<std::uint32_t> TiffTree::integer(const TiffEntry* entry) const
{
    if (entry == nullptr || entry->count == 0) {
        return std::nullopt;
    }
    switch (entry->type) {
    case fieldtype::byte:
        return std::to_integer<std::uint32_t>(entry->value.front());
    case fieldtype::shortInteger:
        return read16(entry->value, 0, order);
    case fieldtype::longInteger:
        return read32(entry->value, 0, order);
    default:
        return std::nullopt;
    }
}

std::optional<double> TiffTree::number(const TiffEntry* entry) const
{
    if (entry == nullptr || entry->count == 0 || entry->type != fieldtype::rational) {
        return integer(entry);
    }
    const double numerator = read32(entry->value, 0, order);
    const double denominator = read32(entry->value, 4, order);
    return denominator == 0 ? std::nullopt : std::optional(numerator / denominator);
}

TiffEntry TiffTree::rationalEntry(std::uint16_t tag, double value) const
{
    constexpr double largest = std::numeric_limits<std::uint32_t>::max();
    // The first that is exact, else the finest that there is room for.
    std::uint32_t denominator = 1;
    for (const std::uint32_t finer : { 100U, 10'000U }) {
        if (std::round(value * denominator) != value * denominator && value * finer <= largest) {
            denominator = finer;
        }
    }
    TiffEntry entry { tag, fieldtype::rational, 1, ByteBuffer(8) };
    write32(entry.value, 0, static_cast<std::uint32_t>(std::round(value * denominator)), order);
    write32(entry.value, 4, denominator, order);
    return entry;
}

TiffEntry TiffTree::integerEntry(std::uint16_t tag, std::uint32_t value) const
{
    TiffEntry entry { tag, fieldtype::shortInteger, 1, ByteBuffer(2) };
    if (value <= 0xFFFFU) {
        write16(entry.value, 0, static_cast<std::uint16_t>(value), order);
    } else {
        entry.type = fieldtype::longInteger;
        entry.value.resize(4);
        write32(entry.value, 0, value, order);
    }
    return entry;
}

std::optional<TiffTree> readTiffTree(ByteSpan bytes, TiffKind kind)
{
    const auto header = readHeader(bytes);
    if (!header) {
        return std::nullopt;
    }
    Reader reader(bytes, header->order, header->shape);
    auto main = reader.read(header->firstDirectory);
    if (!main) {
        return std::nullopt;
    }
    TiffTree tree;
    tree.order = header->order;
    if (const auto offset = main->pointer(tag::exifDirectory)) {
        if (auto exif = reader.read(*offset)) {
            tree.interoperability = inner(reader, *exif, tag::interoperabilityDirectory);
            tree.makerNoteOffset = exif->makerNoteOffset;
            tree.exif = std::move(exif->directory);
        }
    }
    tree.gps = inner(reader, *main, tag::gpsDirectory);
    if (kind == TiffKind::exifBlock && main->next != 0) {
        readThumbnail(reader, bytes, main->next, tree);
    }
    tree.main = std::move(main->directory);
    for (TiffDirectory* directory : { &tree.main, &tree.exif, &tree.thumbnail }) {
        directory->erase(tag::exifDirectory);
        directory->erase(tag::gpsDirectory);
        directory->erase(tag::interoperabilityDirectory);
    }
    return tree;
}

} // namespace vellumine::imaging::metadata
