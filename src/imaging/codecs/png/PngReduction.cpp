#include "imaging/codecs/png/PngReduction.h"

#include "imaging/PixelConversion.h"
#include "imaging/codecs/png/PngPalette.h"

#include <algorithm>
#include <array>

namespace vellumine::imaging::png {

namespace {

/// Up to here it is not clear beforehand that a palette pays: its own bytes count.
constexpr std::int64_t smallPicture = 65'536;

int samplesInPixel(ColorType type)
{
    switch (type) {
    case ColorType::grey:
    case ColorType::palette:
        return 1;
    case ColorType::greyAlpha:
        return 2;
    case ColorType::rgb:
        return 3;
    case ColorType::rgba:
        break;
    }
    return 4;
}

/// A picture with its numbers and no rows yet.
PackedPicture blank(Size size, ColorType type, int bitDepth)
{
    PackedPicture picture;
    picture.size = size;
    picture.colorType = type;
    picture.bitDepth = bitDepth;
    picture.rowBytes = (static_cast<std::size_t>(size.width)
                               * static_cast<std::size_t>(samplesInPixel(type) * bitDepth)
                           + 7)
        / 8;
    picture.rows.resize(picture.rowBytes * static_cast<std::size_t>(size.height));
    return picture;
}

std::byte* rowOf(PackedPicture& picture, int y)
{
    return picture.rows.data() + static_cast<std::size_t>(y) * picture.rowBytes;
}

/// Puts numbers of `bitDepth` bits next to each other, the first one into the highest bits.
class BitWriter {
public:
    BitWriter(std::byte* bytes, int bitDepth)
        : m_bytes(bytes)
        , m_bitDepth(bitDepth)
    {
    }

    void write(unsigned value)
    {
        m_used += m_bitDepth;
        *m_bytes |= static_cast<std::byte>(value << static_cast<unsigned>(8 - m_used));
        if (m_used == 8) {
            ++m_bytes;
            m_used = 0;
        }
    }

private:
    std::byte* m_bytes;
    int m_bitDepth;
    int m_used = 0;
};

/// The layout without padding, without alpha where there is none to tell, and never premultiplied.
PixelLayout plainLayout(const Image& image)
{
    const PixelLayout layout = image.layout();
    const bool keepsAlpha
        = (image.hasAlpha() && !isOpaque(image)) || layout.alpha == AlphaInfo::only;
    return { layout.model, layout.bitsPerComponent,
        keepsAlpha ? AlphaInfo::last : AlphaInfo::none };
}

Result<Image> plain(const Image& image)
{
    if (image.layout().model == ColorModel::cmyk) {
        return failure(Error::Kind::unsupported, "PNG has no CMYK");
    }
    return relayout(image, plainLayout(image));
}

bool repeatsItsHighBytes(const Image& image)
{
    const auto samples = static_cast<std::ptrdiff_t>(image.width()) * image.layout().channels();
    for (int y = 0; y < image.height(); ++y) {
        const std::uint16_t* row = image.row16(y);
        if (!std::all_of(
                row, row + samples, [](std::uint16_t sample) { return sample % 257 == 0; })) {
            return false;
        }
    }
    return true;
}

ColorType directType(bool isGrey, bool hasAlpha)
{
    if (isGrey) {
        return hasAlpha ? ColorType::greyAlpha : ColorType::grey;
    }
    return hasAlpha ? ColorType::rgba : ColorType::rgb;
}

/// Copies the samples, those of `skipped` colours after the first one of each pixel left out.
template <typename Sample, typename Write>
void copySamples(const Sample* row, int width, int channels, int skipped, const Write& write)
{
    for (int x = 0; x < width; ++x) {
        const Sample* pixel = row + static_cast<std::ptrdiff_t>(x) * channels;
        write(pixel[0]);
        for (int c = 1 + skipped; c < channels; ++c) {
            write(pixel[c]);
        }
    }
}

enum class Colors { asTheyAre, grey };

PackedPicture packDirect(const Image& image, Colors colors)
{
    const PixelLayout layout = image.layout();
    const bool isGrey = colors == Colors::grey || layout.model == ColorModel::grey;
    const int skipped = isGrey ? layout.colorChannels() - 1 : 0;
    auto picture
        = blank(image.size(), directType(isGrey, image.hasAlpha()), layout.bitsPerComponent);
    for (int y = 0; y < image.height(); ++y) {
        std::byte* out = rowOf(picture, y);
        if (layout.bitsPerComponent == 16) {
            copySamples(image.row16(y), image.width(), layout.channels(), skipped,
                [&out](std::uint16_t sample) {
                    *out++ = static_cast<std::byte>(sample >> 8U);
                    *out++ = static_cast<std::byte>(sample & 0xFFU);
                });
        } else if (skipped == 0) {
            std::ranges::copy(image.row(y), out);
        } else {
            copySamples(image.row8(y), image.width(), layout.channels(), skipped,
                [&out](std::uint8_t sample) { *out++ = static_cast<std::byte>(sample); });
        }
    }
    return picture;
}

/// The least depth that holds every sample of an 8-bit grey picture exactly.
int leastGreyDepth(const PackedPicture& grey)
{
    std::array<bool, 256> occurs {};
    for (const std::byte sample : grey.rows) {
        occurs[std::to_integer<std::size_t>(sample)] = true;
    }
    for (const int depth : { 1, 2, 4 }) {
        const std::size_t step = 255U / ((1U << static_cast<unsigned>(depth)) - 1U);
        bool holds = true;
        for (std::size_t value = 0; value < occurs.size(); ++value) {
            holds = holds && (!occurs[value] || value % step == 0);
        }
        if (holds) {
            return depth;
        }
    }
    return 8;
}

PackedPicture withLeastDepth(PackedPicture grey)
{
    const int depth = leastGreyDepth(grey);
    if (depth == 8) {
        return grey;
    }
    auto picture = blank(grey.size, ColorType::grey, depth);
    for (int y = 0; y < grey.size.height; ++y) {
        BitWriter bits(rowOf(picture, y), depth);
        for (const std::byte sample : grey.row(y)) {
            bits.write(std::to_integer<unsigned>(sample) >> static_cast<unsigned>(8 - depth));
        }
    }
    return picture;
}

int paletteDepth(std::size_t colors)
{
    if (colors <= 2) {
        return 1;
    }
    if (colors <= 4) {
        return 2;
    }
    return colors <= 16 ? 4 : 8;
}

PackedPicture packIndexed(const Image& image, const Palette& palette)
{
    auto picture = blank(image.size(), ColorType::palette, paletteDepth(palette.colors().size()));
    for (const Palette::Color& color : palette.colors()) {
        for (const std::size_t c : { 0U, 1U, 2U }) {
            picture.palette.push_back(static_cast<std::byte>(color.at(c)));
        }
        if (color[3] != 255) {
            picture.transparency.push_back(static_cast<std::byte>(color[3]));
        }
    }
    const PixelLayout layout = image.layout();
    for (int y = 0; y < image.height(); ++y) {
        BitWriter bits(rowOf(picture, y), picture.bitDepth);
        const std::uint8_t* row = image.row8(y);
        for (int x = 0; x < image.width(); ++x) {
            bits.write(palette.number(colorAt(row, x, layout)));
        }
    }
    return picture;
}

Result<Image> inFewestBits(Image image)
{
    if (image.layout().bitsPerComponent != 16 || !repeatsItsHighBytes(image)) {
        return image;
    }
    PixelLayout layout = image.layout();
    layout.bitsPerComponent = 8;
    return relayout(image, layout);
}

std::vector<PackedPicture> formsOf(const Image& image, AllowedReductions allowed)
{
    const bool isSmall = static_cast<std::int64_t>(image.width()) * image.height() <= smallPicture;
    const bool toGrey = allowed.toGrey && isGrey(image);
    std::vector<PackedPicture> forms;
    std::optional<Palette> palette;
    if (allowed.toPalette && image.layout().bitsPerComponent == 8) {
        palette = Palette::of(image);
    }
    if (!palette || toGrey || image.layout().model == ColorModel::grey || isSmall) {
        auto direct = packDirect(image, toGrey ? Colors::grey : Colors::asTheyAre);
        if (direct.colorType == ColorType::grey && direct.bitDepth == 8) {
            direct = withLeastDepth(std::move(direct));
        }
        // Grey without alpha needs no palette to be one number a pixel.
        if (palette && direct.colorType == ColorType::grey
            && paletteDepth(palette->colors().size()) >= direct.bitDepth) {
            palette.reset();
        }
        forms.push_back(std::move(direct));
    }
    if (palette) {
        forms.insert(forms.begin(), packIndexed(image, *palette));
    }
    return forms;
}

} // namespace

std::size_t PackedPicture::filterDistance() const
{
    return std::max<std::size_t>(
        1, static_cast<std::size_t>(samplesInPixel(colorType) * bitDepth) / 8);
}

Result<PackedPicture> packed(const Image& image)
{
    const auto straight = plain(image);
    if (!straight) {
        return tl::unexpected(straight.error());
    }
    return packDirect(*straight, Colors::asTheyAre);
}

Result<std::vector<PackedPicture>> reduced(const Image& image, AllowedReductions allowed)
{
    const auto straight = plain(image).and_then(inFewestBits);
    if (!straight) {
        return tl::unexpected(straight.error());
    }
    return formsOf(*straight, allowed);
}

} // namespace vellumine::imaging::png
