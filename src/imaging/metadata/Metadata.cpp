#include "imaging/metadata/Metadata.h"

#include "imaging/metadata/Exif.h"
#include "imaging/metadata/Iptc.h"
#include "imaging/metadata/TiffWriter.h"
#include "imaging/metadata/Xmp.h"

namespace vellumine::imaging::metadata {

std::optional<Orientation> orientation(const MetadataBlocks& blocks)
{
    const auto tree = readTiffTree(blocks.exif, TiffKind::exifBlock);
    const auto found = tree ? exifOrientation(*tree) : std::nullopt;
    return found ? found : xmpOrientation(blocks.xmp);
}

bool saysAdobeRgb(ByteSpan exif)
{
    // As if it were a file: what comes after the first directory, a thumbnail, is not asked for.
    const auto tree = readTiffTree(exif, TiffKind::pictureFile);
    return tree && exifSaysAdobeRgb(*tree);
}

std::optional<Resolution> resolution(const MetadataBlocks& blocks)
{
    const auto tree = readTiffTree(blocks.exif, TiffKind::exifBlock);
    return tree ? exifResolution(*tree) : std::nullopt;
}

ByteBuffer withResolution(ByteBuffer exif, const Resolution& resolution)
{
    auto tree = readTiffTree(exif, TiffKind::exifBlock).value_or(TiffTree {});
    if (exifResolution(tree)) {
        return exif;
    }
    setExifResolution(tree, resolution);
    return writeExifBlock(tree);
}

Groups groups(const MetadataBlocks& blocks)
{
    const auto tree = readTiffTree(blocks.exif, TiffKind::exifBlock);
    Groups groups = tree ? exifGroups(*tree) : Groups {};
    groups.iptc = !soundIptc(blocks.iptc).empty();
    groups.xmp = isSoundXmp(blocks.xmp);
    return groups;
}

MetadataBlocks travelling(
    const MetadataBlocks& blocks, const Groups& kept, const NewPicture& picture)
{
    MetadataBlocks result;
    if (auto tree = readTiffTree(blocks.exif, TiffKind::exifBlock)) {
        adjustToPicture(*tree, kept, picture);
        result.exif = writeExifBlock(*tree);
    }
    if (kept.xmp) {
        result.xmp = travellingXmp(blocks.xmp, picture);
    }
    if (kept.iptc) {
        const ByteSpan sound = soundIptc(blocks.iptc);
        result.iptc.assign(sound.begin(), sound.end());
    }
    return result;
}

} // namespace vellumine::imaging::metadata
