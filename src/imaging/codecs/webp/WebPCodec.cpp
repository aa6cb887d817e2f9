#include "imaging/codecs/webp/WebPCodec.h"

#include "imaging/codecs/webp/WebPContainer.h"

#include <algorithm>
#include <string_view>
#include <webp/decode.h>

namespace vellumine::imaging::webp {

namespace {

// A lossy picture's colour has half its resolution and is interpolated between neighbours; inside
// this margin around a part the library lacks those that lie outside of it.
constexpr int interpolationMargin = 2;

tl::unexpected<Error> decoderFailure(VP8StatusCode status)
{
    switch (status) {
    case VP8_STATUS_NOT_ENOUGH_DATA:
    case VP8_STATUS_SUSPENDED:
        return failure(Error::Kind::truncated, "the picture's data ends too soon");
    case VP8_STATUS_OUT_OF_MEMORY:
        return failure(Error::Kind::outOfMemory, "no memory to decode the picture");
    case VP8_STATUS_UNSUPPORTED_FEATURE:
        return failure(Error::Kind::unsupported, "a feature that the library lacks");
    default:
        return failure(Error::Kind::malformed, "damaged picture data");
    }
}

/// The part of a picture to decode so that `region` comes out exactly: with its margin, and from
/// even coordinates, to which the library would move it.
Rect withMargin(Rect region, Size picture)
{
    const int left = std::max(0, region.x - interpolationMargin) & ~1;
    const int top = std::max(0, region.y - interpolationMargin) & ~1;
    const int right = std::min(picture.width, region.x + region.width + interpolationMargin);
    const int bottom = std::min(picture.height, region.y + region.height + interpolationMargin);
    return { left, top, right - left, bottom - top };
}

/// Decodes `part` of a bitstream to the corner of `place` in the target.
Result<void> decodeInto(ByteSpan bitstream, Rect part, Rect place, PixelBuffer& target)
{
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0) {
        return failure(Error::Kind::unsupported, "another version of the library");
    }
    config.options.use_cropping = 1;
    config.options.crop_left = part.x;
    config.options.crop_top = part.y;
    config.options.crop_width = part.width;
    config.options.crop_height = part.height;

    const auto bytesPerPixel = static_cast<std::size_t>(target.layout().bytesPerPixel());
    const std::size_t offset = static_cast<std::size_t>(place.y) * target.rowBytes()
        + static_cast<std::size_t>(place.x) * bytesPerPixel;
    const auto bytes = target.bytes().subspan(offset);
    config.output.colorspace = target.layout().alpha == AlphaInfo::none ? MODE_RGB : MODE_RGBA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA.rgba = reinterpret_cast<std::uint8_t*>(bytes.data());
    config.output.u.RGBA.stride = static_cast<int>(target.rowBytes());
    config.output.u.RGBA.size = bytes.size();

    const VP8StatusCode status = WebPDecode(
        reinterpret_cast<const std::uint8_t*>(bitstream.data()), bitstream.size(), &config);
    if (status != VP8_STATUS_OK) {
        return decoderFailure(status);
    }
    return {};
}

} // namespace

bool sniff(ByteSpan file)
{
    constexpr std::string_view riff = "RIFF";
    constexpr std::string_view webp = "WEBP";
    const auto standsAt = [file](std::size_t at, std::string_view text) {
        return file.size() >= at + text.size()
            && std::ranges::equal(file.subspan(at, text.size()), std::as_bytes(std::span(text)));
    };
    return standsAt(0, riff) && standsAt(8, webp);
}

Result<ImageHeader> readHeader(ByteSpan file)
{
    WebPBitstreamFeatures features;
    const VP8StatusCode status = WebPGetFeatures(
        reinterpret_cast<const std::uint8_t*>(file.data()), file.size(), &features);
    if (status != VP8_STATUS_OK) {
        return decoderFailure(status);
    }
    if (features.has_animation == 0) {
        return ImageHeader { { features.width, features.height },
            { ColorModel::rgb, 8, features.has_alpha != 0 ? AlphaInfo::last : AlphaInfo::none } };
    }
    const auto container = Container::open(file);
    if (!container) {
        return tl::unexpected(container.error());
    }
    return ImageHeader { container->canvas(), container->animationLayout() };
}

Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options)
{
    const auto header = readHeader(file);
    if (!header) {
        return tl::unexpected(header.error());
    }
    const auto container = Container::open(file);
    if (!container) {
        return tl::unexpected(container.error());
    }
    const Size canvas = container->canvas();
    const PixelLayout layout = header->layout;
    if (const auto checked
        = options.limits.check(canvas.width, canvas.height, layout.bytesPerPixel());
        !checked) {
        return tl::unexpected(checked.error());
    }
    const Frame& frame = container->firstFrame();
    const bool isPart = options.wish.region && !container->isAnimation()
        && contains(canvas, *options.wish.region);
    const Rect whole { 0, 0, frame.place.width, frame.place.height };
    const Rect part = isPart ? withMargin(*options.wish.region, canvas) : whole;
    const bool coversTarget = isPart || frame.place.size() == canvas;
    const Size targetSize = isPart ? part.size() : canvas;
    auto target = coversTarget ? PixelBuffer::create(targetSize, layout)
                               : PixelBuffer::createZeroed(targetSize, layout);
    if (!target) {
        return tl::unexpected(target.error());
    }
    if (const auto decoded = decodeInto(frame.bitstream, part, frame.place, *target); !decoded) {
        return tl::unexpected(decoded.error());
    }
    Image image(std::move(*target), container->colorSpace());
    if (isPart) {
        const Rect wanted = *options.wish.region;
        image
            = image.cropped({ wanted.x - part.x, wanted.y - part.y, wanted.width, wanted.height });
    }
    return DecodedImage { .image = std::move(image),
        .storedSize = canvas,
        .isRegion = isPart,
        .metadata = container->metadata(),
        .orientation = {} };
}

} // namespace vellumine::imaging::webp
