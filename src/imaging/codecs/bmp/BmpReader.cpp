#include "imaging/codecs/bmp/BmpCodec.h"
#include "imaging/codecs/bmp/BmpColorSpace.h"
#include "imaging/codecs/bmp/BmpHeader.h"
#include "imaging/codecs/bmp/BmpPixels.h"
#include "imaging/codecs/bmp/BmpRunLength.h"

namespace vellumine::imaging::bmp {

namespace {

PixelLayout layoutOf(const Header& header)
{
    return { ColorModel::rgb, 8, header.masks.alpha != 0 ? AlphaInfo::last : AlphaInfo::none };
}

Result<void> readPixels(
    const Header& header, const Palette& palette, ByteSpan pixels, PixelBuffer& target)
{
    if (header.isRunLength()) {
        return readRunLength(header, palette, pixels, target);
    }
    if (header.isIndexed()) {
        readIndexed(header, palette, pixels, target);
        return {};
    }
    if (header.bitsPerPixel == 24) {
        readRgb24(header, pixels, target);
        return {};
    }
    return readMasked(header, pixels, target);
}

} // namespace

bool sniff(ByteSpan file)
{
    return hasSignature(file);
}

Result<ImageHeader> readHeader(ByteSpan file)
{
    const auto header = parseHeader(file);
    if (!header) {
        return tl::unexpected(header.error());
    }
    return ImageHeader { header->size, layoutOf(*header) };
}

Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options)
{
    const auto header = parseHeader(file);
    if (!header) {
        return tl::unexpected(header.error());
    }
    const PixelLayout layout = layoutOf(*header);
    if (const auto checked
        = options.limits.check(header->size.width, header->size.height, layout.bytesPerPixel());
        !checked) {
        return tl::unexpected(checked.error());
    }
    if (header->pixelOffset > file.size()) {
        return failure(Error::Kind::truncated, "the file ends before its pixels");
    }
    Palette palette {};
    if (header->isIndexed()) {
        const auto read = readPalette(file, *header);
        if (!read) {
            return tl::unexpected(read.error());
        }
        palette = *read;
    }
    const ByteSpan pixels = file.subspan(header->pixelOffset);
    if (!header->isRunLength() && pixels.size() < plainBytes(*header)) {
        return failure(Error::Kind::truncated, "the file ends inside its pixels");
    }
    auto target = PixelBuffer::create(header->size, layout);
    if (!target) {
        return tl::unexpected(target.error());
    }
    if (const auto read = readPixels(*header, palette, pixels, *target); !read) {
        return tl::unexpected(read.error());
    }
    DecodedImage decoded { .image = Image(std::move(*target), colorSpaceOf(file, *header)),
        .storedSize = header->size,
        .isRegion = false,
        .metadata = {},
        .orientation = {} };
    decoded.resolution = header->resolution;
    return decoded;
}

} // namespace vellumine::imaging::bmp
