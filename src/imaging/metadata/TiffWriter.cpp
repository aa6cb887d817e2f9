#include "imaging/metadata/TiffWriter.h"

#include "imaging/metadata/TiffLayout.h"

#include <algorithm>
#include <array>

namespace vellumine::imaging::metadata {

namespace {

constexpr std::size_t headerBytes = 8;
constexpr std::size_t largestAddress = std::numeric_limits<std::uint32_t>::max();

// More than the tree takes when it is written, and the entries of a file's own directory with it.
std::size_t upperBound(const TiffTree& tree)
{
    std::size_t total = std::size_t { 1 } << 20U;
    for (const TiffDirectory* directory :
        { &tree.main, &tree.exif, &tree.interoperability, &tree.gps, &tree.thumbnail }) {
        for (const TiffEntry& entry : directory->entries) {
            total += TiffLayout::entryBytes + entry.value.size() + 1;
        }
    }
    return total + tree.thumbnailData.size();
}

// Entries and pointers of one directory in the order of their tags.
template <typename WriteEntry, typename WritePointer>
void mergeByTag(const std::vector<TiffEntry>& entries, const std::vector<TiffPointer>& pointers,
    WriteEntry&& writeEntry, WritePointer&& writePointer)
{
    auto pointer = pointers.begin();
    for (const TiffEntry& entry : entries) {
        for (; pointer != pointers.end() && pointer->tag < entry.tag; ++pointer) {
            writePointer(*pointer);
        }
        writeEntry(entry);
    }
    std::for_each(pointer, pointers.end(), writePointer);
}

// `pointers` ascend by tag.
void writeDirectory(TiffLayout& layout, std::size_t at, const TiffDirectory& directory,
    const std::vector<TiffPointer>& pointers, std::size_t next,
    std::optional<std::size_t> makerNoteAt = {})
{
    TiffDirectoryWriter writer(layout, at, directory.entries.size() + pointers.size(), next);
    mergeByTag(
        directory.entries, pointers,
        [&](const TiffEntry& entry) {
            if (makerNoteAt && entry.tag == tag::makerNote) {
                writer.add(entry, *makerNoteAt);
            } else {
                writer.add(entry);
            }
        },
        [&](TiffPointer pointer) { writer.add(pointer); });
}

// The directories below the first one: first their places are taken, then they are written. An
// offset of 0 stands for a directory that there is not.
class InnerDirectories {
public:
    explicit InnerDirectories(const TiffTree& tree)
        : m_tree(tree)
    {
    }

    [[nodiscard]] std::size_t count() const { return (hasExif() ? 1U : 0U) + (hasGps() ? 1U : 0U); }

    void place(TiffLayout& layout)
    {
        if (hasExif()) {
            m_exifAt = layout.placeDirectory(
                m_tree.exif.entries.size() + (hasInteroperability() ? 1 : 0));
        }
        if (hasInteroperability()) {
            m_interoperabilityAt = layout.placeDirectory(m_tree.interoperability.entries.size());
        }
        if (hasGps()) {
            m_gpsAt = layout.placeDirectory(m_tree.gps.entries.size());
        }
    }

    // The entries that point at them in the first directory.
    [[nodiscard]] std::vector<TiffPointer> pointers() const
    {
        std::vector<TiffPointer> result;
        if (hasExif()) {
            result.push_back({ tag::exifDirectory, m_exifAt });
        }
        if (hasGps()) {
            result.push_back({ tag::gpsDirectory, m_gpsAt });
        }
        return result;
    }

    void write(TiffLayout& layout, std::optional<std::size_t> makerNoteAt) const
    {
        std::vector<TiffPointer> exifPointers;
        if (hasInteroperability()) {
            exifPointers.push_back({ tag::interoperabilityDirectory, m_interoperabilityAt });
            writeDirectory(layout, m_interoperabilityAt, m_tree.interoperability, {}, 0);
        }
        if (hasExif()) {
            writeDirectory(layout, m_exifAt, m_tree.exif, exifPointers, 0, makerNoteAt);
        }
        if (hasGps()) {
            writeDirectory(layout, m_gpsAt, m_tree.gps, {}, 0);
        }
    }

private:
    [[nodiscard]] bool hasExif() const { return !m_tree.exif.empty() || hasInteroperability(); }
    [[nodiscard]] bool hasInteroperability() const { return !m_tree.interoperability.empty(); }
    [[nodiscard]] bool hasGps() const { return !m_tree.gps.empty(); }

    const TiffTree& m_tree;
    std::size_t m_exifAt = 0;
    std::size_t m_interoperabilityAt = 0;
    std::size_t m_gpsAt = 0;
};

std::array<std::byte, headerBytes> header(ByteOrder order)
{
    std::array<std::byte, headerBytes> bytes {};
    bytes[0] = bytes[1]
        = std::byte { order == ByteOrder::little ? std::uint8_t { 'I' } : std::uint8_t { 'M' } };
    write16(bytes, 2, 42, order);
    return bytes;
}

// Where the maker note can go back to. A note from the middle of a large file cannot: a block that
// a JPEG can hold ends before 64 KB.
std::optional<std::size_t> makerNotePlace(const TiffTree& tree)
{
    constexpr std::size_t largestBlock = 65'527;
    const TiffEntry* const note = tree.exif.find(tag::makerNote);
    if (note == nullptr || note->value.size() <= TiffLayout::inlineBytes || !tree.makerNoteOffset
        || *tree.makerNoteOffset < headerBytes
        || *tree.makerNoteOffset + note->value.size() > largestBlock) {
        return std::nullopt;
    }
    return tree.makerNoteOffset;
}

void reverseElements(TiffEntry& entry)
{
    // Rationals are pairs of numbers.
    constexpr std::uint16_t signedRational = 10;
    const bool isPair = entry.type == fieldtype::rational || entry.type == signedRational;
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

using RawEntry = std::array<std::byte, TiffLayout::entryBytes>;

std::uint16_t tagOf(const RawEntry& entry, ByteOrder order)
{
    return read16(entry, 0, order);
}

struct RawDirectory {
    std::vector<RawEntry> entries;
    std::uint32_t next = 0;
};

// The first directory of a classic TIFF file that was read before.
std::optional<RawDirectory> readRawDirectory(ByteSpan file, ByteOrder order)
{
    const std::size_t at = read32(file, 4, order);
    const std::size_t count = read16(file, at, order);
    const std::size_t end = at + 2 + count * TiffLayout::entryBytes;
    if (end + 4 > file.size()) {
        return std::nullopt;
    }
    RawDirectory directory { std::vector<RawEntry>(count), read32(file, end, order) };
    for (std::size_t i = 0; i < count; ++i) {
        std::ranges::copy(file.subspan(at + 2 + i * TiffLayout::entryBytes, TiffLayout::entryBytes),
            directory.entries[i].begin());
    }
    return directory;
}

} // namespace

ByteBuffer writeExifBlock(const TiffTree& tree)
{
    if (tree.empty() || upperBound(tree) > largestAddress) {
        return {};
    }
    const auto start = header(tree.order);
    TiffLayout layout({ start.begin(), start.end() }, tree.order);
    const auto makerNoteAt = makerNotePlace(tree);
    if (makerNoteAt) {
        layout.reserve(*makerNoteAt, tree.exif.find(tag::makerNote)->value.size());
    }
    InnerDirectories inner(tree);
    const std::size_t mainAt = layout.placeDirectory(tree.main.entries.size() + inner.count());
    inner.place(layout);
    const std::size_t thumbnailAt
        = tree.thumbnailData.empty() ? 0 : layout.placeDirectory(tree.thumbnail.entries.size() + 2);

    layout.put32(4, mainAt);
    writeDirectory(layout, mainAt, tree.main, inner.pointers(), thumbnailAt);
    inner.write(layout, makerNoteAt);
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
    const auto fileTree = readTiffTree(file, TiffKind::pictureFile);
    if (!fileTree || read16(file, 2, fileTree->order) != 42
        || file.size() + upperBound(tree) > largestAddress) {
        return file;
    }
    const ByteOrder order = fileTree->order;
    const auto old = readRawDirectory(file, order);
    if (!old) {
        return file;
    }
    const auto isOld = [&](std::uint16_t tag) {
        return std::ranges::any_of(
            old->entries, [&](const RawEntry& entry) { return tagOf(entry, order) == tag; });
    };
    std::erase_if(tree.main.entries, [&](const TiffEntry& entry) { return isOld(entry.tag); });
    bringInto(order, tree);

    file.reserve(file.size() + upperBound(tree)); // else the buffer doubles as it grows
    TiffLayout layout(std::move(file), order);
    InnerDirectories inner(tree);
    inner.place(layout);
    std::vector<TiffPointer> pointers = inner.pointers();
    std::erase_if(pointers, [&](TiffPointer pointer) { return isOld(pointer.tag); });
    const std::size_t count = old->entries.size() + tree.main.entries.size() + pointers.size();
    const std::size_t mainAt = layout.placeDirectory(count);
    layout.put32(4, mainAt);

    TiffDirectoryWriter writer(layout, mainAt, count, old->next);
    auto nextOld = old->entries.begin();
    const auto writeOldBelow = [&](std::uint32_t tag) {
        for (; nextOld != old->entries.end() && tagOf(*nextOld, order) < tag; ++nextOld) {
            writer.addAsIs(*nextOld);
        }
    };
    mergeByTag(
        tree.main.entries, pointers,
        [&](const TiffEntry& entry) {
            writeOldBelow(entry.tag);
            writer.add(entry);
        },
        [&](TiffPointer pointer) {
            writeOldBelow(pointer.tag);
            writer.add(pointer);
        });
    writeOldBelow(0x1'0000);
    inner.write(layout, std::nullopt);
    return std::move(layout).take();
}

} // namespace vellumine::imaging::metadata
