#include "imaging/metadata/TiffWriter.h"

#include <algorithm>
#include <array>
#include <limits>

namespace vellumine::imaging::metadata {

namespace {

constexpr std::size_t headerBytes = 8;
constexpr std::size_t entryBytes = 12;
constexpr std::size_t inlineBytes = 4;
constexpr std::size_t largestAddress = std::numeric_limits<std::uint32_t>::max();

std::size_t directoryBytes(std::size_t entries)
{
    return 2 + entries * entryBytes + inlineBytes;
}

// Bytes that are filled out of order: places are given out first, values written into them later.
class Layout {
public:
    Layout(ByteBuffer bytes, ByteOrder order)
        : m_bytes(std::move(bytes))
        , m_order(order)
        , m_low(m_bytes.size())
    {
    }

    // Keeps a range for what must stand there; everything else goes below it while it fits, and
    // above it from then on.
    void reserve(std::size_t offset, std::size_t length)
    {
        m_lowEnd = offset;
        m_high = offset + length;
        grow(m_high);
    }

    std::size_t place(std::size_t length)
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

    void put(std::size_t at, ByteSpan value)
    {
        std::ranges::copy(value, m_bytes.begin() + static_cast<std::ptrdiff_t>(at));
    }
    void put16(std::size_t at, std::uint16_t value) { write16(m_bytes, at, value, m_order); }
    void put32(std::size_t at, std::size_t value)
    {
        write32(m_bytes, at, static_cast<std::uint32_t>(value), m_order);
    }

    ByteBuffer take() && { return std::move(m_bytes); }

private:
    // TIFF wants values and directories to begin on a word boundary.
    static std::size_t even(std::size_t offset) { return offset + offset % 2; }

    void grow(std::size_t size)
    {
        if (size > m_bytes.size()) {
            m_bytes.resize(size);
        }
    }

    ByteBuffer m_bytes;
    ByteOrder m_order;
    std::size_t m_low;
    std::size_t m_lowEnd = std::numeric_limits<std::size_t>::max();
    std::size_t m_high = 0;
};

struct Pointer {
    std::uint16_t tag;
    std::size_t target;
};

// A directory whose place is known and whose entries are being written, ascending by tag.
class DirectoryWriter {
public:
    DirectoryWriter(Layout& layout, std::size_t at, std::size_t entries, std::size_t next)
        : m_layout(layout)
        , m_position(at + 2)
    {
        layout.put16(at, static_cast<std::uint16_t>(entries));
        layout.put32(at + 2 + entries * entryBytes, next);
    }

    void add(const TiffEntry& entry)
    {
        const bool isInline = entry.value.size() <= inlineBytes;
        add(entry, isInline ? m_position + 8 : m_layout.place(entry.value.size()));
    }

    // An entry whose value goes to a place that the caller chose.
    void add(const TiffEntry& entry, std::size_t valueAt)
    {
        head(entry.tag, entry.type, entry.count);
        if (entry.value.size() > inlineBytes) {
            m_layout.put32(m_position + 8, valueAt);
        }
        m_layout.put(valueAt, entry.value);
        m_position += entryBytes;
    }

    void add(Pointer pointer)
    {
        head(pointer.tag, fieldtype::longInteger, 1);
        m_layout.put32(m_position + 8, pointer.target);
        m_position += entryBytes;
    }

    // An entry of the same file, whose offset still holds.
    void addAsIs(ByteSpan entry)
    {
        m_layout.put(m_position, entry);
        m_position += entryBytes;
    }

private:
    void head(std::uint16_t tag, std::uint16_t type, std::uint32_t count)
    {
        m_layout.put16(m_position, tag);
        m_layout.put16(m_position + 2, type);
        m_layout.put32(m_position + 4, count);
    }

    Layout& m_layout;
    std::size_t m_position;
};

// Entries and pointers of one directory in the order of their tags.
template <typename WriteEntry, typename WritePointer>
void mergeByTag(const std::vector<TiffEntry>& entries, std::vector<Pointer> pointers,
    WriteEntry&& writeEntry, WritePointer&& writePointer)
{
    std::ranges::sort(pointers, {}, &Pointer::tag);
    auto pointer = pointers.begin();
    for (const TiffEntry& entry : entries) {
        for (; pointer != pointers.end() && pointer->tag < entry.tag; ++pointer) {
            writePointer(*pointer);
        }
        writeEntry(entry);
    }
    std::for_each(pointer, pointers.end(), writePointer);
}

void writeDirectory(Layout& layout, std::size_t at, const TiffDirectory& directory,
    const std::vector<Pointer>& pointers, std::size_t next,
    std::optional<std::size_t> makerNoteAt = {})
{
    DirectoryWriter writer(layout, at, directory.entries.size() + pointers.size(), next);
    mergeByTag(
        directory.entries, pointers,
        [&](const TiffEntry& entry) {
            if (makerNoteAt && entry.tag == tag::makerNote) {
                writer.add(entry, *makerNoteAt);
            } else {
                writer.add(entry);
            }
        },
        [&](Pointer pointer) { writer.add(pointer); });
}

// The places of the directories below the first one; 0 for those that there are not.
struct InnerPlaces {
    std::size_t exif = 0;
    std::size_t interoperability = 0;
    std::size_t gps = 0;

    InnerPlaces(Layout& layout, const TiffTree& tree)
    {
        if (!tree.exif.empty() || !tree.interoperability.empty()) {
            const std::size_t pointers = tree.interoperability.empty() ? 0 : 1;
            exif = layout.place(directoryBytes(tree.exif.entries.size() + pointers));
        }
        if (!tree.interoperability.empty()) {
            interoperability = layout.place(directoryBytes(tree.interoperability.entries.size()));
        }
        if (!tree.gps.empty()) {
            gps = layout.place(directoryBytes(tree.gps.entries.size()));
        }
    }

    [[nodiscard]] std::vector<Pointer> pointers() const
    {
        std::vector<Pointer> result;
        if (exif != 0) {
            result.push_back({ tag::exifDirectory, exif });
        }
        if (gps != 0) {
            result.push_back({ tag::gpsDirectory, gps });
        }
        return result;
    }

    void write(
        Layout& layout, const TiffTree& tree, std::optional<std::size_t> makerNoteAt = {}) const
    {
        if (exif != 0) {
            std::vector<Pointer> pointers;
            if (interoperability != 0) {
                pointers.push_back({ tag::interoperabilityDirectory, interoperability });
            }
            writeDirectory(layout, exif, tree.exif, pointers, 0, makerNoteAt);
        }
        if (interoperability != 0) {
            writeDirectory(layout, interoperability, tree.interoperability, {}, 0);
        }
        if (gps != 0) {
            writeDirectory(layout, gps, tree.gps, {}, 0);
        }
    }
};

// More than the tree takes when it is written, and the entries of a file's own directory with it.
std::size_t upperBound(const TiffTree& tree)
{
    std::size_t total = std::size_t { 1 } << 20U;
    for (const TiffDirectory* directory :
        { &tree.main, &tree.exif, &tree.interoperability, &tree.gps, &tree.thumbnail }) {
        for (const TiffEntry& entry : directory->entries) {
            total += entryBytes + entry.value.size() + 1;
        }
    }
    return total + tree.thumbnailData.size();
}

std::array<std::byte, headerBytes> header(ByteOrder order)
{
    std::array<std::byte, headerBytes> bytes {};
    bytes[0] = bytes[1]
        = std::byte { order == ByteOrder::Little ? std::uint8_t { 'I' } : std::uint8_t { 'M' } };
    write16(bytes, 2, 42, order);
    return bytes;
}

// Where the maker note can go back to. It is not moved for the sake of a note in the middle of a
// large file: a block that a JPEG can hold ends before 64 KB.
std::optional<std::size_t> makerNotePlace(const TiffTree& tree)
{
    constexpr std::size_t largestBlock = 65'527;
    const TiffEntry* const note = tree.exif.find(tag::makerNote);
    if (note == nullptr || note->value.size() <= inlineBytes || !tree.makerNoteOffset
        || *tree.makerNoteOffset < headerBytes
        || *tree.makerNoteOffset + note->value.size() > largestBlock) {
        return std::nullopt;
    }
    return tree.makerNoteOffset;
}

void reverseElements(TiffEntry& entry)
{
    // Rationals are pairs of numbers.
    constexpr std::uint16_t rational = 5;
    constexpr std::uint16_t signedRational = 10;
    const bool isPair = entry.type == rational || entry.type == signedRational;
    const std::size_t width = elementSize(entry.type) / (isPair ? 2 : 1);
    for (std::size_t at = 0; at + width <= entry.value.size(); at += width) {
        const auto first = entry.value.begin() + static_cast<std::ptrdiff_t>(at);
        std::reverse(first, first + static_cast<std::ptrdiff_t>(width));
    }
}

void bringInto(ByteOrder order, TiffTree& tree)
{
    if (tree.order == order) {
        return;
    }
    for (TiffDirectory* directory :
        { &tree.main, &tree.exif, &tree.interoperability, &tree.gps, &tree.thumbnail }) {
        std::ranges::for_each(directory->entries, reverseElements);
    }
    tree.order = order;
}

} // namespace

ByteBuffer writeExifBlock(const TiffTree& tree)
{
    if (tree.empty() || upperBound(tree) > largestAddress) {
        return {};
    }
    const auto start = header(tree.order);
    Layout layout({ start.begin(), start.end() }, tree.order);
    const auto makerNoteAt = makerNotePlace(tree);
    if (makerNoteAt) {
        layout.reserve(*makerNoteAt, tree.exif.find(tag::makerNote)->value.size());
    }
    const bool hasExif = !tree.exif.empty() || !tree.interoperability.empty();
    const std::size_t mainPointers = (hasExif ? 1U : 0U) + (tree.gps.empty() ? 0U : 1U);
    const std::size_t mainAt
        = layout.place(directoryBytes(tree.main.entries.size() + mainPointers));
    const InnerPlaces inner(layout, tree);
    const std::size_t thumbnailAt = tree.thumbnail.empty()
        ? 0
        : layout.place(directoryBytes(tree.thumbnail.entries.size() + 2));

    layout.put32(4, mainAt);
    writeDirectory(layout, mainAt, tree.main, inner.pointers(), thumbnailAt);
    inner.write(layout, tree, makerNoteAt);
    if (thumbnailAt != 0) {
        const std::uint16_t lengthTag
            = tree.thumbnailTag == tag::jpegOffset ? tag::jpegByteCount : tag::stripByteCounts;
        const std::size_t dataAt = layout.place(tree.thumbnailData.size());
        layout.put(dataAt, tree.thumbnailData);
        writeDirectory(layout, thumbnailAt, tree.thumbnail,
            { { tree.thumbnailTag, dataAt }, { lengthTag, tree.thumbnailData.size() } }, 0);
    }
    return std::move(layout).take();
}

ByteBuffer appendToTiffFile(ByteBuffer file, TiffTree tree)
{
    const auto fileTree = readTiffTree(file, TiffKind::PictureFile);
    if (!fileTree || read16(file, 2, fileTree->order) != 42
        || file.size() + upperBound(tree) > largestAddress) {
        return file;
    }
    const ByteOrder order = fileTree->order;
    const std::size_t oldAt = read32(file, 4, order);
    const std::size_t oldCount = read16(file, oldAt, order);
    const std::size_t oldEnd = oldAt + 2 + oldCount * entryBytes;
    if (oldEnd + inlineBytes > file.size()) {
        return file;
    }
    const std::size_t next = read32(file, oldEnd, order);

    // The file's own entries are taken over as they stand: their offsets stay true.
    struct OldEntry {
        std::uint16_t tag;
        std::array<std::byte, entryBytes> bytes;
    };
    std::vector<OldEntry> oldEntries;
    for (std::size_t i = 0; i < oldCount; ++i) {
        const std::size_t at = oldAt + 2 + i * entryBytes;
        OldEntry entry { read16(file, at, order), {} };
        std::ranges::copy(ByteSpan(file).subspan(at, entryBytes), entry.bytes.begin());
        oldEntries.push_back(entry);
        tree.main.erase(entry.tag);
    }
    bringInto(order, tree);

    Layout layout(std::move(file), order);
    const InnerPlaces inner(layout, tree);
    std::vector<Pointer> pointers = inner.pointers();
    std::erase_if(pointers, [&](Pointer pointer) {
        return std::ranges::find(oldEntries, pointer.tag, &OldEntry::tag) != oldEntries.end();
    });
    const std::size_t count = oldEntries.size() + tree.main.entries.size() + pointers.size();
    const std::size_t mainAt = layout.place(directoryBytes(count));
    layout.put32(4, mainAt);
    DirectoryWriter writer(layout, mainAt, count, next);
    auto old = oldEntries.begin();
    const auto oldUpTo = [&](std::uint32_t tag) {
        for (; old != oldEntries.end() && old->tag < tag; ++old) {
            writer.addAsIs(old->bytes);
        }
    };
    mergeByTag(
        tree.main.entries, pointers,
        [&](const TiffEntry& entry) {
            oldUpTo(entry.tag);
            writer.add(entry);
        },
        [&](Pointer pointer) {
            oldUpTo(pointer.tag);
            writer.add(pointer);
        });
    oldUpTo(0x10000);
    inner.write(layout, tree);
    return std::move(layout).take();
}

} // namespace vellumine::imaging::metadata
