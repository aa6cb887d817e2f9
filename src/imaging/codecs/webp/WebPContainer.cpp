#include "imaging/codecs/webp/WebPContainer.h"

#include "imaging/codecs/UntaggedColor.h"

#include <algorithm>
#include <array>
#include <span>
#include <webp/demux.h>

namespace vellumine::imaging::webp {

namespace {

ByteSpan spanOf(const WebPData& data)
{
    return std::as_bytes(std::span(data.bytes, data.size));
}

template <std::size_t count>
bool startsWith(ByteSpan bytes, const std::array<char, count>& characters)
{
    return bytes.size() >= count
        && std::ranges::equal(bytes.first(count), std::as_bytes(std::span(characters)));
}

} // namespace

void Container::Delete::operator()(WebPDemuxer* demuxer) const
{
    WebPDemuxDelete(demuxer);
}

Result<Container> Container::open(ByteSpan file)
{
    const WebPData data { reinterpret_cast<const std::uint8_t*>(file.data()), file.size() };
    WebPDemuxState state = WEBP_DEMUX_PARSE_ERROR;
    Container container;
    container.m_demuxer.reset(WebPDemuxPartial(&data, &state));
    if (state == WEBP_DEMUX_PARSE_ERROR) {
        return failure(Error::Kind::malformed, "damaged chunks");
    }
    if (state != WEBP_DEMUX_DONE || !container.m_demuxer) {
        return failure(Error::Kind::truncated, "the file is shorter than it says");
    }
    const WebPDemuxer* const demuxer = container.m_demuxer.get();
    const std::uint32_t flags = WebPDemuxGetI(demuxer, WEBP_FF_FORMAT_FLAGS);
    container.m_isAnimation = (flags & ANIMATION_FLAG) != 0;
    container.m_declaresAlpha = (flags & ALPHA_FLAG) != 0;
    container.m_canvas = { static_cast<int>(WebPDemuxGetI(demuxer, WEBP_FF_CANVAS_WIDTH)),
        static_cast<int>(WebPDemuxGetI(demuxer, WEBP_FF_CANVAS_HEIGHT)) };

    WebPIterator iterator {};
    if (WebPDemuxGetFrame(demuxer, 1, &iterator) == 0) {
        return failure(Error::Kind::malformed, "no frame");
    }
    container.m_frame = { spanOf(iterator.fragment),
        { iterator.x_offset, iterator.y_offset, iterator.width, iterator.height },
        iterator.has_alpha != 0 };
    const bool isComplete = iterator.complete != 0;
    WebPDemuxReleaseIterator(&iterator);
    if (!isComplete) {
        return failure(Error::Kind::truncated, "the first frame is not whole");
    }
    if (!contains(container.m_canvas, container.m_frame.place)) {
        return failure(Error::Kind::malformed, "a frame outside the canvas");
    }
    if (!container.m_isAnimation && container.m_frame.place.size() != container.m_canvas) {
        return failure(Error::Kind::malformed, "a picture of another size than its canvas");
    }
    return container;
}

PixelLayout Container::animationLayout() const
{
    const bool hasAlpha = m_frame.hasAlpha || m_declaresAlpha || m_frame.place.size() != m_canvas;
    return { ColorModel::rgb, 8, hasAlpha ? AlphaInfo::last : AlphaInfo::none };
}

ByteSpan Container::chunk(const char (&fourCharacters)[5]) const
{
    WebPChunkIterator iterator {};
    if (WebPDemuxGetChunk(m_demuxer.get(), fourCharacters, 1, &iterator) == 0) {
        return {};
    }
    // The data lives in the file, not in the iterator.
    const ByteSpan content = spanOf(iterator.chunk);
    WebPDemuxReleaseChunkIterator(&iterator);
    return content;
}

ColorSpace Container::colorSpace() const
{
    if (const ByteSpan profile = chunk("ICCP"); !profile.empty()) {
        if (auto space = ColorSpace::fromIcc(profile, ColorModel::rgb)) {
            return *std::move(space);
        }
    }
    return untaggedColorSpace(ColorModel::rgb, exif());
}

ByteSpan Container::exif() const
{
    constexpr std::array exifPrefix { 'E', 'x', 'i', 'f', '\0', '\0' };
    constexpr std::array littleEndianTiff { 'I', 'I', '*', '\0' };
    constexpr std::array bigEndianTiff { 'M', 'M', '\0', '*' };

    // The prefix belongs into JPEG, but some writers bring it along.
    ByteSpan block = chunk("EXIF");
    if (startsWith(block, exifPrefix)) {
        block = block.subspan(exifPrefix.size());
    }
    const bool isTiff = startsWith(block, littleEndianTiff) || startsWith(block, bigEndianTiff);
    return isTiff ? block : ByteSpan {};
}

MetadataBlocks Container::metadata() const
{
    const ByteSpan block = exif();
    const ByteSpan xmp = chunk("XMP ");
    MetadataBlocks blocks;
    blocks.exif.assign(block.begin(), block.end());
    blocks.xmp.assign(xmp.begin(), xmp.end());
    return blocks;
}

} // namespace vellumine::imaging::webp
