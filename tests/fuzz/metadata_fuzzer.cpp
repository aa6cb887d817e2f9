#include "imaging/metadata/Metadata.h"

#include "DecoderFuzzer.h"

using vellumine::fuzz::require;
using vellumine::imaging::ByteBuffer;
using vellumine::imaging::MetadataBlocks;
namespace metadata = vellumine::imaging::metadata;

// The first byte says which block the rest is: EXIF, XMP, IPTC or a TIFF file.
// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const auto bytes = std::as_bytes(std::span(data, size)).subspan(1);
    ByteBuffer content(bytes.begin(), bytes.end());
    MetadataBlocks blocks;
    switch (data[0] % 4) {
    case 0:
        blocks.exif = std::move(content);
        break;
    case 1:
        blocks.xmp = std::move(content);
        break;
    case 2:
        blocks.iptc = std::move(content);
        break;
    default:
        blocks = metadata::readTiff(content);
        static_cast<void>(metadata::writeTiff(std::move(content), blocks));
        break;
    }
    static_cast<void>(metadata::orientation(blocks));
    const metadata::Groups found = metadata::groups(blocks);
    for (const bool wasTurned : { false, true }) {
        const metadata::NewPicture picture { { 300, 200 }, wasTurned, true };
        const MetadataBlocks result = metadata::travelling(blocks, found, picture);
        require(!metadata::orientation(result));
        require(result.exif.size() <= 3 * blocks.exif.size() + 100);
        // What was written is sound, and has nothing left to take away.
        require(metadata::travelling(result, found, picture).exif == result.exif);
    }
    return 0;
}
