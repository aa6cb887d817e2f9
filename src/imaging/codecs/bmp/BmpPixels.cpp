#include "imaging/codecs/bmp/BmpPixels.h"

#include "imaging/codecs/LittleEndian.h"
#include "imaging/codecs/bmp/ChannelMask.h"

namespace vellumine::imaging::bmp {

namespace {

std::uint64_t rowBits(const Header& header)
{
    return static_cast<std::uint64_t>(header.size.width)
        * static_cast<std::uint64_t>(header.bitsPerPixel);
}

// Rows are padded to 32 bits.
std::uint64_t rowStride(const Header& header)
{
    return (rowBits(header) + 31) / 32 * 4;
}

std::uint64_t rowBytes(const Header& header)
{
    return (rowBits(header) + 7) / 8;
}

template <typename ReadRow>
void forEachRow(const Header& header, ByteSpan pixels, PixelBuffer& target, ReadRow readRow)
{
    const std::size_t stride = rowStride(header);
    const std::size_t length = rowBytes(header);
    for (int fileRow = 0; fileRow < header.size.height; ++fileRow) {
        const ByteSpan row = pixels.subspan(static_cast<std::size_t>(fileRow) * stride, length);
        readRow(reinterpret_cast<const std::uint8_t*>(row.data()),
            target.row8(pictureRow(header, fileRow)));
    }
}

template <int bytesPerPixel> std::uint32_t pixelAt(const std::uint8_t* row, int x)
{
    const std::uint8_t* at = row + static_cast<std::ptrdiff_t>(x) * bytesPerPixel;
    std::uint32_t pixel = at[0] | static_cast<std::uint32_t>(at[1]) << 8U;
    if constexpr (bytesPerPixel == 4) {
        pixel
            |= static_cast<std::uint32_t>(at[2]) << 16U | static_cast<std::uint32_t>(at[3]) << 24U;
    }
    return pixel;
}

struct Channels {
    ChannelMask red;
    ChannelMask green;
    ChannelMask blue;
    ChannelMask alpha;
};

template <int bytesPerPixel>
void readOpaque(
    const Header& header, const Channels& channels, ByteSpan pixels, PixelBuffer& target)
{
    forEachRow(header, pixels, target, [&](const std::uint8_t* from, std::uint8_t* to) {
        for (int x = 0; x < header.size.width; ++x) {
            const std::uint32_t pixel = pixelAt<bytesPerPixel>(from, x);
            *to++ = channels.red(pixel);
            *to++ = channels.green(pixel);
            *to++ = channels.blue(pixel);
        }
    });
}

void makeOpaque(PixelBuffer& target)
{
    for (int y = 0; y < target.height(); ++y) {
        std::uint8_t* const row = target.row8(y);
        for (int x = 0; x < target.width(); ++x) {
            row[static_cast<std::ptrdiff_t>(x) * 4 + 3] = 0xFF;
        }
    }
}

template <int bytesPerPixel>
void readWithAlpha(
    const Header& header, const Channels& channels, ByteSpan pixels, PixelBuffer& target)
{
    std::uint8_t anyAlpha = 0;
    forEachRow(header, pixels, target, [&](const std::uint8_t* from, std::uint8_t* to) {
        for (int x = 0; x < header.size.width; ++x) {
            const std::uint32_t pixel = pixelAt<bytesPerPixel>(from, x);
            const std::uint8_t alpha = channels.alpha(pixel);
            anyAlpha |= alpha;
            *to++ = channels.red(pixel);
            *to++ = channels.green(pixel);
            *to++ = channels.blue(pixel);
            *to++ = alpha;
        }
    });
    // Writers that declare the mask by rote and leave the bits 0 are common, wholly invisible
    // pictures are not; and a picture that turned invisible would be lost.
    if (anyAlpha == 0) {
        makeOpaque(target);
    }
}

} // namespace

std::uint64_t plainBytes(const Header& header)
{
    return rowStride(header) * static_cast<std::uint64_t>(header.size.height - 1)
        + rowBytes(header);
}

void readIndexed(const Header& header, const Palette& palette, ByteSpan pixels, PixelBuffer& target)
{
    const auto bits = static_cast<unsigned>(header.bitsPerPixel);
    const unsigned perByte = 8U / bits;
    const unsigned mask = (1U << bits) - 1U;
    forEachRow(header, pixels, target, [&](const std::uint8_t* from, std::uint8_t* to) {
        for (unsigned x = 0; x < static_cast<unsigned>(header.size.width); ++x) {
            // The leftmost pixel is in the highest bits.
            const unsigned shift = 8U - bits * (x % perByte + 1U);
            const PaletteColor& color
                = palette[(static_cast<unsigned>(from[x / perByte]) >> shift) & mask];
            *to++ = color.red;
            *to++ = color.green;
            *to++ = color.blue;
        }
    });
}

void readRgb24(const Header& header, ByteSpan pixels, PixelBuffer& target)
{
    forEachRow(header, pixels, target, [&](const std::uint8_t* from, std::uint8_t* to) {
        for (int x = 0; x < header.size.width; ++x, from += 3, to += 3) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
    });
}

Result<void> readMasked(const Header& header, ByteSpan pixels, PixelBuffer& target)
{
    const ChannelMasks& masks = header.masks;
    const std::uint32_t together = masks.red | masks.green | masks.blue | masks.alpha;
    if ((masks.red | masks.green | masks.blue) == 0
        || (header.bitsPerPixel == 16 && together > 0xFFFF)) {
        return failure(Error::Kind::malformed, "colour masks without pixels");
    }
    const auto red = ChannelMask::create(masks.red);
    const auto green = ChannelMask::create(masks.green);
    const auto blue = ChannelMask::create(masks.blue);
    const auto alpha = ChannelMask::create(masks.alpha);
    if (!red || !green || !blue || !alpha) {
        return failure(Error::Kind::malformed, "a colour mask with holes");
    }
    const Channels channels { *red, *green, *blue, *alpha };
    if (header.bitsPerPixel == 16) {
        masks.alpha != 0 ? readWithAlpha<2>(header, channels, pixels, target)
                         : readOpaque<2>(header, channels, pixels, target);
    } else {
        masks.alpha != 0 ? readWithAlpha<4>(header, channels, pixels, target)
                         : readOpaque<4>(header, channels, pixels, target);
    }
    return {};
}

} // namespace vellumine::imaging::bmp
