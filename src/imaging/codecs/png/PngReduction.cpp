#include "imaging/codecs/png/PngReduction.h"

#include "imaging/PixelConversion.h"
#include "imaging/codecs/BitWriter.h"
#include "imaging/codecs/ColorTable.h"

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

/// The layout without padding, without alpha where there is none to tell, and never premultiplied.
PixelLayout plainLayout(const Image& image)
{
    const PixelLayout layout = image.layout();
    return { layout.model, layout.bitsPerComponent,
        needsAlpha(image) ? AlphaInfo::last : AlphaInfo::none };
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

PackedPicture packDirect(const Image& image)
{
    const PixelLayout layout = image.layout();
    auto picture = blank(image.size(),
        directType(layout.model == ColorModel::grey, image.hasAlpha()), layout.bitsPerComponent);
    const auto samples = static_cast<std::ptrdiff_t>(image.width()) * layout.channels();
    for (int y = 0; y < image.height(); ++y) {
        std::byte* out = rowOf(picture, y);
        if (layout.bitsPerComponent == 16) {
            const std::uint16_t* row = image.row16(y);
            std::for_each(row, row + samples, [&out](std::uint16_t sample) {
                *out++ = static_cast<std::byte>(sample >> 8U);
                *out++ = static_cast<std::byte>(sample & 0xFFU);
            });
        } else {
            std::ranges::copy(image.row(y), out);
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

PackedPicture packIndexed(const Image& image, const ColorTable& table)
{
    auto picture = blank(image.size(), ColorType::palette, paletteDepth(table.colors().size()));
    for (const ColorTable::Color& color : table.colors()) {
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
            bits.write(table.number(colorAt(row, x, layout)));
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

/// With one sample in place of three equal ones.
Result<Image> withoutColor(const Image& image)
{
    PixelLayout layout = image.layout();
    if (isGrey(image)) {
        layout.model = ColorModel::grey;
    }
    return relayout(image, layout);
}

std::vector<PackedPicture> formsOf(const Image& image, AllowedReductions allowed)
{
    const bool isSmall = static_cast<std::int64_t>(image.width()) * image.height() <= smallPicture;
    std::vector<PackedPicture> forms;
    std::optional<ColorTable> table;
    if (allowed.toPalette && image.layout().bitsPerComponent == 8) {
        table = ColorTable::of(image);
    }
    if (!table || image.layout().model == ColorModel::grey || isSmall) {
        auto direct = packDirect(image);
        if (direct.colorType == ColorType::grey && direct.bitDepth == 8) {
            direct = withLeastDepth(std::move(direct));
        }
        // Grey without alpha needs no palette to be one number a pixel.
        if (table && direct.colorType == ColorType::grey
            && paletteDepth(table->colors().size()) >= direct.bitDepth) {
            table.reset();
        }
        forms.push_back(std::move(direct));
    }
    if (table) {
        forms.insert(forms.begin(), packIndexed(image, *table));
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
    return packDirect(*straight);
}

Result<std::vector<PackedPicture>> reduced(const Image& image, AllowedReductions allowed)
{
    auto straight = plain(image).and_then(inFewestBits);
    if (straight && allowed.toGrey) {
        straight = std::move(straight).and_then(withoutColor);
    }
    return std::move(straight).map(
        [allowed](const Image& least) { return formsOf(least, allowed); });
}

} // namespace vellumine::imaging::png
