#include "imaging/codecs/bmp/BmpHeader.h"

#include "imaging/codecs/LittleEndian.h"

#include <algorithm>
#include <limits>

namespace vellumine::imaging::bmp {

namespace {

// Where the masks stand, measured from the start of the information header: inside it from version
// 2 on, right behind a version 1 header.
constexpr std::size_t masksAt = infoHeader;

// The numbers of the compression field.
enum CompressionCode : std::uint32_t {
    codeNone = 0,
    codeRunLength8 = 1,
    codeRunLength4 = 2,
    codeBitFields = 3, // Huffman coding in OS/2 headers
    codeJpeg = 4, // 24-bit run lengths in OS/2 headers
    codePng = 5,
    codeAlphaBitFields = 6,
};

bool startsWith(ByteSpan file, std::size_t at, char first, char second)
{
    return file.size() >= at + 2 && byteAt(file, at) == static_cast<std::uint8_t>(first)
        && byteAt(file, at + 1) == static_cast<std::uint8_t>(second);
}

// An OS/2 bitmap array puts a header of its own, as long as the file header, before each bitmap.
// Offsets of pixels count from the start of the file all the same.
std::size_t bitmapOffset(ByteSpan file)
{
    return startsWith(file, 0, 'B', 'A') ? fileHeaderBytes : 0;
}

bool isOs2Version2(std::uint32_t infoBytes)
{
    return infoBytes >= 16 && infoBytes <= os2Header && infoBytes != infoHeader
        && infoBytes != v2Header && infoBytes != v3Header;
}

bool isKnownHeader(std::uint32_t infoBytes)
{
    return infoBytes == coreHeader || infoBytes == infoHeader || infoBytes == v2Header
        || infoBytes == v3Header || infoBytes == v4Header || infoBytes == v5Header
        || isOs2Version2(infoBytes);
}

Result<Compression> compressionOf(std::uint32_t code, const Header& header)
{
    const bool isOs2 = isOs2Version2(header.infoBytes);
    const int bits = header.bitsPerPixel;
    switch (code) {
    case codeNone:
        return Compression::none;
    case codeRunLength8:
        if (bits == 8) {
            return Compression::runLength8;
        }
        break;
    case codeRunLength4:
        if (bits == 4) {
            return Compression::runLength4;
        }
        break;
    case codeBitFields:
    case codeAlphaBitFields:
        if (!isOs2 && (bits == 16 || bits == 32)) {
            return Compression::bitFields;
        }
        return failure(Error::Kind::unsupported, "Huffman coding, or bit fields of odd pixels");
    case codeJpeg:
        // OS/2 also writes headers of 40 bytes. A JPEG inside has no bits of its own: 0.
        if (bits == 24 && (isOs2 || header.infoBytes == infoHeader)) {
            return Compression::runLength24;
        }
        return failure(Error::Kind::unsupported, "an embedded JPEG");
    case codePng:
        return failure(Error::Kind::unsupported, "an embedded PNG");
    default:
        return failure(Error::Kind::unsupported, "an unknown compression");
    }
    return failure(Error::Kind::malformed, "run lengths of another depth than the pixels");
}

bool isKnownDepth(int bits)
{
    return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 || bits == 24
        || bits == 32;
}

std::size_t maskCount(std::uint32_t infoBytes, std::uint32_t compressionCode)
{
    return infoBytes >= v3Header || compressionCode == codeAlphaBitFields ? 4 : 3;
}

ChannelMasks readMasks(ByteSpan info, std::size_t count)
{
    return { littleEndian32(info, masksAt), littleEndian32(info, masksAt + 4),
        littleEndian32(info, masksAt + 8), count == 4 ? littleEndian32(info, masksAt + 12) : 0 };
}

std::size_t paletteEntryBytes(const Header& header)
{
    return header.infoBytes == coreHeader ? 3 : 4;
}

std::size_t paletteCapacity(const Header& header)
{
    return std::size_t { 1 } << static_cast<unsigned>(header.bitsPerPixel);
}

std::size_t expectedPaletteBytes(const Header& header)
{
    if (!header.isIndexed()) {
        return 0;
    }
    const std::size_t capacity = paletteCapacity(header);
    const std::size_t colors = header.declaredColors == 0
        ? capacity
        : std::min<std::size_t>(header.declaredColors, capacity);
    return colors * paletteEntryBytes(header);
}

Result<Size> readSize(ByteSpan info, Header& header)
{
    if (header.infoBytes == coreHeader) {
        return Size { littleEndian16(info, 4), littleEndian16(info, 6) };
    }
    const auto width = static_cast<std::int32_t>(littleEndian32(info, 4));
    const auto height = static_cast<std::int32_t>(littleEndian32(info, 8));
    if (width <= 0 || height == 0 || height == std::numeric_limits<std::int32_t>::min()) {
        return failure(Error::Kind::malformed, "the picture has no pixels");
    }
    header.rowOrder = height < 0 ? RowOrder::topDown : RowOrder::bottomUp;
    return Size { width, height < 0 ? -height : height };
}

} // namespace

bool hasSignature(ByteSpan file)
{
    const std::size_t start = bitmapOffset(file);
    return startsWith(file, start, 'B', 'M') && file.size() >= start + fileHeaderBytes + 4
        && isKnownHeader(littleEndian32(file, start + fileHeaderBytes));
}

Result<Header> parseHeader(ByteSpan file)
{
    const std::size_t start = bitmapOffset(file);
    if (file.size() < start + fileHeaderBytes + 4) {
        return failure(Error::Kind::truncated, "the file ends inside its header");
    }
    if (!startsWith(file, start, 'B', 'M')) {
        return failure(Error::Kind::malformed, "no bitmap");
    }
    Header header;
    header.infoOffset = start + fileHeaderBytes;
    const ByteSpan info = file.subspan(header.infoOffset);
    header.infoBytes = littleEndian32(info, 0);
    if (!isKnownHeader(header.infoBytes)) {
        return failure(Error::Kind::unsupported, "an unknown version of the header");
    }
    if (info.size() < header.infoBytes) {
        return failure(Error::Kind::truncated, "the file ends inside its header");
    }
    // OS/2 headers may be cut short; a field that is missing is 0.
    const auto field
        = [&](std::size_t at) { return at + 4 <= header.infoBytes ? littleEndian32(info, at) : 0; };

    const auto size = readSize(info, header);
    if (!size) {
        return tl::unexpected(size.error());
    }
    header.size = *size;
    header.bitsPerPixel = littleEndian16(info, header.infoBytes == coreHeader ? 10 : 14);
    const std::uint32_t code = field(16);
    const auto compression = compressionOf(code, header);
    if (!compression) {
        return tl::unexpected(compression.error());
    }
    header.compression = *compression;
    if (!isKnownDepth(header.bitsPerPixel)) {
        return failure(Error::Kind::malformed, "no such number of bits");
    }
    // Signed numbers, and above zero where they say anything.
    header.resolution = Resolution::create(static_cast<std::int32_t>(field(24)),
        static_cast<std::int32_t>(field(28)), Resolution::Unit::metre);
    header.declaredColors = field(32);

    std::size_t headerEnd = header.infoBytes;
    if (header.compression == Compression::bitFields) {
        const std::size_t count = maskCount(header.infoBytes, code);
        headerEnd = std::max(headerEnd, masksAt + count * 4);
        if (info.size() < headerEnd) {
            return failure(Error::Kind::truncated, "the file ends inside its colour masks");
        }
        header.masks = readMasks(info, count);
    } else if (header.bitsPerPixel == 16) {
        header.masks = { 0x7C00, 0x03E0, 0x001F, 0 };
    } else if (header.bitsPerPixel == 32) {
        // The fourth byte is padding whatever mask a longer header declares: masks only count with
        // bit fields, and most writers leave zeros there.
        header.masks = { 0x00FF0000, 0x0000FF00, 0x000000FF, 0 };
    }

    header.paletteOffset = header.infoOffset + headerEnd;
    header.pixelOffset = littleEndian32(file, start + 10);
    if (header.pixelOffset < header.paletteOffset) {
        // Some writers leave the field 0, and an offset into the header cannot be meant.
        header.pixelOffset = header.paletteOffset + expectedPaletteBytes(header);
    }
    return header;
}

Result<Palette> readPalette(ByteSpan file, const Header& header)
{
    const std::size_t entryBytes = paletteEntryBytes(header);
    const std::size_t inFile = (file.size() - header.paletteOffset) / entryBytes;
    if (header.declaredColors > inFile) {
        return failure(Error::Kind::malformed, "the palette is longer than the file");
    }
    // More colours than the pixels can name are skipped, and a palette whose writer thought it
    // longer than it is ends where the pixels start.
    const std::size_t room = (header.pixelOffset - header.paletteOffset) / entryBytes;
    const std::size_t count = std::min({ expectedPaletteBytes(header) / entryBytes, room, inFile });
    if (count == 0) {
        return failure(Error::Kind::malformed, "no palette");
    }
    Palette palette {};
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = header.paletteOffset + i * entryBytes;
        palette.at(i) = { byteAt(file, at + 2), byteAt(file, at + 1), byteAt(file, at) };
    }
    return palette;
}

} // namespace vellumine::imaging::bmp
