#include "imaging/codecs/png/PngChunks.h"

#include "imaging/codecs/BigEndian.h"
#include "imaging/codecs/MetadataCarriers.h"

#include <algorithm>
#include <limits>

#include <libdeflate.h>

namespace vellumine::imaging::png {

namespace {

/// Length, type and checksum.
constexpr std::size_t chunkOverhead = 12;
constexpr std::size_t headerLength = 13;

std::uint32_t checksumOf(ByteSpan bytes)
{
    return libdeflate_crc32(0, bytes.data(), bytes.size());
}

bool isDepthOf(int depth, unsigned colorType)
{
    switch (colorType) {
    case 0:
        return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16;
    case 3:
        return depth == 1 || depth == 2 || depth == 4 || depth == 8;
    case 2:
    case 4:
    case 6:
        return depth == 8 || depth == 16;
    default:
        return false;
    }
}

Result<Header> parseHeaderChunk(ByteSpan data)
{
    const std::uint32_t width = bigEndian32(data, 0);
    const std::uint32_t height = bigEndian32(data, 4);
    constexpr std::uint32_t maximum = std::numeric_limits<std::int32_t>::max();
    if (width < 1 || height < 1 || width > maximum || height > maximum) {
        return failure(Error::Kind::malformed, "a side of the picture is out of range");
    }
    const int bitDepth = std::to_integer<int>(data[8]);
    const auto colorType = std::to_integer<unsigned>(data[9]);
    const auto interlace = std::to_integer<unsigned>(data[12]);
    if (!isDepthOf(bitDepth, colorType)) {
        return failure(Error::Kind::malformed, "no such colour type and depth");
    }
    if (data[10] != std::byte { 0 } || data[11] != std::byte { 0 } || interlace > 1) {
        return failure(Error::Kind::malformed, "no such compression, filter or interlacing");
    }
    return Header { { static_cast<int>(width), static_cast<int>(height) }, bitDepth,
        static_cast<ColorType>(colorType), interlace == 1, false };
}

/// Whether a tRNS chunk has the length that the colour type asks for.
bool isTransparencyOf(const Header& header, std::size_t length, std::size_t paletteSize)
{
    switch (header.colorType) {
    case ColorType::grey:
        return length == 2;
    case ColorType::rgb:
        return length == 6;
    case ColorType::palette:
        return length > 0 && length <= paletteSize;
    case ColorType::greyAlpha:
    case ColorType::rgba:
        break;
    }
    return false;
}

bool hasTransparentColors(const Header& header, ChunkWalk walk)
{
    std::size_t paletteSize = 0;
    while (const auto chunk = walk.next()) {
        if (chunk->type == chunkType("PLTE")) {
            const std::size_t room = header.colorType == ColorType::palette
                ? std::size_t { 1 } << static_cast<unsigned>(header.bitDepth)
                : 256;
            paletteSize = std::min(chunk->data.size() / 3, room);
        } else if (chunk->type == chunkType("tRNS")) {
            if (isTransparencyOf(header, chunk->data.size(), paletteSize)) {
                return true;
            }
        } else if (chunk->type == chunkType("IDAT")) {
            break;
        }
    }
    return false;
}

} // namespace

bool Chunk::isIntact() const
{
    return checksumOf(checked) == checksum;
}

std::optional<Chunk> ChunkWalk::next()
{
    if (m_rest.size() < chunkOverhead) {
        return std::nullopt;
    }
    const std::size_t length = bigEndian32(m_rest, 0);
    if (length > m_rest.size() - chunkOverhead) {
        return std::nullopt;
    }
    const Chunk chunk { bigEndian32(m_rest, 4), m_rest.subspan(8, length),
        m_rest.subspan(4, 4 + length), bigEndian32(m_rest, 8 + length) };
    m_rest = m_rest.subspan(chunkOverhead + length);
    return chunk;
}

PixelLayout Header::layout() const
{
    const bool isGrey = colorType == ColorType::grey || colorType == ColorType::greyAlpha;
    const bool hasAlpha
        = colorType == ColorType::greyAlpha || colorType == ColorType::rgba || hasTransparentColors;
    return { isGrey ? ColorModel::grey : ColorModel::rgb, bitDepth == 16 ? 16 : 8,
        hasAlpha ? AlphaInfo::last : AlphaInfo::none };
}

Result<Header> parseHeader(ByteSpan file)
{
    const std::size_t known = std::min(file.size(), signature.size());
    if (!startsWith(file, signature.substr(0, known))) {
        return failure(Error::Kind::malformed, "no PNG signature");
    }
    if (file.size() < signature.size() + chunkOverhead + headerLength) {
        return failure(Error::Kind::truncated, "the file ends inside its header");
    }
    ChunkWalk walk(file);
    const auto first = walk.next();
    if (!first || first->type != chunkType("IHDR") || first->data.size() != headerLength
        || !first->isIntact()) {
        return failure(Error::Kind::malformed, "no header chunk");
    }
    auto header = parseHeaderChunk(first->data);
    if (header) {
        header->hasTransparentColors = hasTransparentColors(*header, walk);
    }
    return header;
}

bool pictureChunksAreIntact(ByteSpan file)
{
    ChunkWalk walk(file);
    bool inPictureData = false;
    while (const auto chunk = walk.next()) {
        const bool isPictureData = chunk->type == chunkType("IDAT");
        if (inPictureData && !isPictureData) {
            break;
        }
        const bool isOfThePicture = chunk->isCritical() || chunk->type == chunkType("tRNS");
        if (isOfThePicture && !chunk->isIntact()) {
            return false;
        }
        inPictureData = isPictureData;
    }
    return true;
}

void appendChunk(ByteBuffer& file, std::string_view type, ByteSpan data)
{
    appendBigEndian32(file, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = file.size();
    append(file, type);
    append(file, data);
    appendBigEndian32(file, checksumOf(ByteSpan(file).subspan(start)));
}

} // namespace vellumine::imaging::png
