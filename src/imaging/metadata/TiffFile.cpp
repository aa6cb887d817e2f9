#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/metadata/Exif.h"
#include "imaging/metadata/Iptc.h"
#include "imaging/metadata/Metadata.h"
#include "imaging/metadata/TiffWriter.h"

namespace vellumine::imaging::metadata {

namespace {

constexpr std::uint16_t xmpTag = 0x02BC;
constexpr std::uint16_t iptcTag = 0x83BB;
constexpr std::uint16_t photoshopTag = 0x8649;

ByteBuffer valueOf(const TiffTree& tree, std::uint16_t tag)
{
    const TiffEntry* const entry = tree.main.find(tag);
    return entry == nullptr ? ByteBuffer {} : entry->value;
}

// Some writers declare the bytes of the datasets as LONGs, and then write those in the file's byte
// order.
ByteBuffer iptcOf(const TiffTree& tree)
{
    ByteBuffer bytes = valueOf(tree, iptcTag);
    if (!bytes.empty() && soundIptc(bytes).empty()
        && tree.main.find(iptcTag)->type == fieldtype::longInteger) {
        for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
            std::swap(bytes[at], bytes[at + 3]);
            std::swap(bytes[at + 1], bytes[at + 2]);
        }
    }
    if (bytes.empty()) {
        const ByteBuffer resources = valueOf(tree, photoshopTag);
        const ByteSpan block = iptcBlock(resources);
        bytes.assign(block.begin(), block.end());
    }
    bytes.resize(soundIptc(bytes).size());
    return bytes;
}

TiffEntry bytesEntry(std::uint16_t tag, std::uint16_t type, const ByteBuffer& bytes)
{
    return { tag, type, static_cast<std::uint32_t>(bytes.size()), bytes };
}

} // namespace

MetadataBlocks readTiff(ByteSpan file)
{
    auto tree = readTiffTree(file, TiffKind::pictureFile);
    if (!tree) {
        return {};
    }
    MetadataBlocks blocks;
    blocks.xmp = valueOf(*tree, xmpTag);
    blocks.iptc = iptcOf(*tree);
    dropStructure(*tree);
    blocks.exif = writeExifBlock(*tree);
    return blocks;
}

ByteBuffer writeTiff(ByteBuffer file, const MetadataBlocks& blocks)
{
    auto tree = readTiffTree(blocks.exif, TiffKind::exifBlock).value_or(TiffTree {});
    if (!blocks.xmp.empty()) {
        tree.main.set(bytesEntry(xmpTag, fieldtype::byte, blocks.xmp));
    }
    if (!blocks.iptc.empty()) {
        tree.main.set(bytesEntry(iptcTag, fieldtype::undefined, blocks.iptc));
    }
    tree.thumbnailData = {}; // a second directory would be a second picture
    if (tree.empty()) {
        return file;
    }
    return appendToTiffFile(std::move(file), std::move(tree));
}

} // namespace vellumine::imaging::metadata
