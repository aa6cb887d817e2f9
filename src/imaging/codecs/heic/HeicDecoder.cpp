#include "imaging/codecs/heic/HeicDecoder.h"

#include "imaging/codecs/heic/HeicColor.h"
#include "imaging/codecs/heic/HeicContainer.h"
#include "imaging/codecs/heic/HeicMetadata.h"
#include "imaging/codecs/heic/HeicTurning.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace vellumine::imaging::heic {

namespace {

/// `number` of `bits` bits, 9 to 16, repeated downwards until it fills 16 bits.
constexpr std::uint16_t stretched(std::uint16_t number, int bits)
{
    const auto wide = static_cast<unsigned>(number) << static_cast<unsigned>(16 - bits);
    return static_cast<std::uint16_t>(wide | wide >> static_cast<unsigned>(bits));
}

constexpr std::uint16_t fromLittleEndian(std::uint16_t word)
{
    if constexpr (std::endian::native == std::endian::big) {
        return static_cast<std::uint16_t>(word << 8U | word >> 8U);
    }
    return word;
}

heif_chroma interleavingFor(PixelLayout layout)
{
    const bool alpha = hasAlpha(layout.alpha);
    if (layout.bitsPerComponent == 8) {
        return alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
    }
    return alpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
}

Result<PixelBuffer> copyPixels(const heif_image* decoded, const ImageHeader& header)
{
    constexpr heif_channel channel = heif_channel_interleaved;
    int stride = 0;
    const std::uint8_t* const plane = heif_image_get_plane_readonly(decoded, channel, &stride);
    const Size size { heif_image_get_width(decoded, channel),
        heif_image_get_height(decoded, channel) };
    const PixelLayout layout = header.layout;
    if (plane == nullptr || size != header.size
        || stride / layout.bytesPerPixel() < header.size.width) {
        return failure(Error::Kind::malformed, "the coded picture is not of the stated size");
    }
    const int bits = heif_image_get_bits_per_pixel_range(decoded, channel);
    if (layout.bitsPerComponent == 8 ? bits != 8 : (bits < 9 || bits > 16)) {
        return failure(Error::Kind::malformed, "the coded picture is not of the stated depth");
    }
    auto pixels = PixelBuffer::create(size, layout);
    if (!pixels) {
        return pixels;
    }
    const std::size_t samples
        = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(layout.channels());
    for (int y = 0; y < size.height; ++y) {
        const std::uint8_t* const from = plane + static_cast<std::ptrdiff_t>(y) * stride;
        if (layout.bitsPerComponent == 8) {
            std::copy_n(from, samples, pixels->row8(y));
            continue;
        }
        std::uint16_t* const row = pixels->row16(y);
        std::memcpy(row, from, samples * sizeof(std::uint16_t));
        const auto largest = static_cast<std::uint16_t>((1U << static_cast<unsigned>(bits)) - 1U);
        std::transform(row, row + samples, row, [bits, largest](std::uint16_t word) {
            return stretched(std::min(fromLittleEndian(word), largest), bits);
        });
    }
    return pixels;
}

} // namespace

Result<HeicPicture> HeicPicture::open(ByteSpan file, std::uint32_t maximumSide)
{
    if (auto ok = checkContainer(file); !ok) {
        return tl::unexpected(ok.error());
    }
    HeicPicture picture(file);
    picture.m_context.reset(heif_context_alloc());
    if (!picture.m_context) {
        return failure(Error::Kind::outOfMemory, "no memory for the HEIF reader");
    }
    heif_context* const context = picture.m_context.get();
    constexpr std::uint32_t largest = std::numeric_limits<int>::max();
    heif_context_set_maximum_image_size_limit(
        context, static_cast<int>(std::min(maximumSide, largest)));
    // Whoever converts many files at once has a thread for each already.
    heif_context_set_max_decoding_threads(context, 0);
    heif_error error
        = heif_context_read_from_memory_without_copy(context, file.data(), file.size(), nullptr);
    if (!isOk(error)) {
        return readFailure(error);
    }
    error = heif_context_get_primary_image_ID(context, &picture.m_item);
    if (!isOk(error)) {
        return readFailure(error);
    }
    heif_image_handle* handle = nullptr;
    error = heif_context_get_image_handle(context, picture.m_item, &handle);
    picture.m_handle.reset(handle);
    if (!isOk(error)) {
        return readFailure(error);
    }
    return picture;
}

Result<ImageHeader> HeicPicture::header() const
{
    const heif_image_handle* const handle = m_handle.get();
    const Size size { heif_image_handle_get_width(handle), heif_image_handle_get_height(handle) };
    if (size.width < 1 || size.height < 1) {
        return failure(Error::Kind::malformed, "the picture has no pixels");
    }
    const int bits = std::max(heif_image_handle_get_luma_bits_per_pixel(handle),
        heif_image_handle_get_chroma_bits_per_pixel(handle));
    PixelLayout layout { ColorModel::rgb, bits > 8 ? 16 : 8, AlphaInfo::none };
    if (heif_image_handle_has_alpha_channel(handle) != 0) {
        layout.alpha = heif_image_handle_is_premultiplied_alpha(handle) != 0
            ? AlphaInfo::premultipliedLast
            : AlphaInfo::last;
    }
    return ImageHeader { size, layout };
}

Result<DecodedImage> HeicPicture::decode(const Limits& limits) const
{
    const auto stated = header();
    if (!stated) {
        return tl::unexpected(stated.error());
    }
    // The library holds the YCbCr planes and the interleaved picture beside ours.
    const int bytesPerPixel = stated->layout.bytesPerPixel();
    if (auto ok = limits.check(stated->size.width, stated->size.height, bytesPerPixel); !ok) {
        return tl::unexpected(ok.error());
    }
    const HeifPointer<heif_decoding_options> options(heif_decoding_options_alloc());
    if (!options) {
        return failure(Error::Kind::outOfMemory, "no memory for the HEIF reader");
    }
    options->strict_decoding = 1;
    heif_image* decoded = nullptr;
    const heif_error error = heif_decode_image(m_handle.get(), &decoded, heif_colorspace_RGB,
        interleavingFor(stated->layout), options.get());
    HeifPointer<heif_image> image(decoded);
    if (!isOk(error)) {
        return readFailure(error);
    }
    auto pixels = copyPixels(image.get(), *stated);
    if (!pixels) {
        return tl::unexpected(pixels.error());
    }
    image.reset();
    MetadataBlocks metadata = readMetadata(m_handle.get());
    Image upright(*std::move(pixels), colorSpaceOf(m_handle.get(), metadata.exif));
    return DecodedImage { std::move(upright), stated->size, false, std::move(metadata),
        Orientation::topLeft, false, storedOrientation(m_file, m_item) };
}

} // namespace vellumine::imaging::heic
