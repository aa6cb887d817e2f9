#include "imaging/codecs/gif/GifCodec.h"
#include "imaging/codecs/gif/GifComments.h"
#include "imaging/codecs/gif/GifFrame.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace vellumine::imaging::gif {

namespace {

struct Pass {
    int firstRow;
    int step;
};

constexpr std::array<Pass, 1> sequential { { { 0, 1 } } };
constexpr std::array<Pass, 4> interlaced { { { 0, 8 }, { 4, 8 }, { 2, 4 }, { 1, 2 } } };

/// An index as it is stored in the picture, for every index.
using PixelTable = std::array<std::array<std::uint8_t, 4>, 256>;

PixelTable pixelTable(const FrameReader& reader)
{
    PixelTable table {};
    for (std::size_t index = 0; index < table.size(); ++index) {
        const auto color = reader.color(static_cast<std::uint8_t>(index));
        table.at(index) = { color.red, color.green, color.blue, 0xFF };
    }
    if (reader.transparentIndex()) {
        table.at(*reader.transparentIndex()) = {};
    }
    return table;
}

Result<void> readFrame(FrameReader& reader, PixelBuffer& target)
{
    const PixelTable table = pixelTable(reader);
    const Rect frame = reader.frame();
    const auto channels = static_cast<std::ptrdiff_t>(target.layout().channels());
    std::vector<std::uint8_t> indexes(static_cast<std::size_t>(frame.width));
    const auto passes = reader.isInterlaced() ? std::span<const Pass>(interlaced)
                                              : std::span<const Pass>(sequential);
    for (const Pass& pass : passes) {
        for (int y = pass.firstRow; y < frame.height; y += pass.step) {
            if (auto read = reader.readRow(indexes); !read) {
                return read;
            }
            std::uint8_t* to = target.row8(frame.y + y) + frame.x * channels;
            for (const std::uint8_t index : indexes) {
                to = std::copy_n(table[index].data(), channels, to);
            }
        }
    }
    return {};
}

} // namespace

bool sniff(ByteSpan file)
{
    constexpr std::string_view version87 = "GIF87a";
    constexpr std::string_view version89 = "GIF89a";
    const auto startsWith = [file](std::string_view text) {
        return file.size() >= text.size()
            && std::ranges::equal(file.first(text.size()), std::as_bytes(std::span(text)));
    };
    return startsWith(version87) || startsWith(version89);
}

Result<ImageHeader> readHeader(ByteSpan file)
{
    const auto reader = FrameReader::open(file);
    if (!reader) {
        return tl::unexpected(reader.error());
    }
    return ImageHeader { reader->screen(), reader->layout() };
}

Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options)
{
    auto reader = FrameReader::open(file);
    if (!reader) {
        return tl::unexpected(reader.error());
    }
    const Size screen = reader->screen();
    const PixelLayout layout = reader->layout();
    if (const auto checked
        = options.limits.check(screen.width, screen.height, layout.bytesPerPixel());
        !checked) {
        return tl::unexpected(checked.error());
    }
    auto target = reader->frame().size() == screen ? PixelBuffer::create(screen, layout)
                                                   : PixelBuffer::createZeroed(screen, layout);
    if (!target) {
        return tl::unexpected(target.error());
    }
    if (const auto read = readFrame(*reader, *target); !read) {
        return tl::unexpected(read.error());
    }
    DecodedImage decoded { .image = Image(std::move(*target), ColorSpace::sRgb()),
        .storedSize = screen,
        .isRegion = false,
        .metadata = {},
        .orientation = {} };
    decoded.metadata.xmp = reader->xmp();
    decoded.texts = commentsOf(file);
    return decoded;
}

} // namespace vellumine::imaging::gif
