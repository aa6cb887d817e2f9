#include "imaging/PixelConversion.h"
#include "imaging/codecs/BitWriter.h"
#include "imaging/codecs/ColorTable.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "imaging/codecs/bmp/BmpHeader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace vellumine::imaging::bmp {

namespace {

constexpr std::uint32_t bitFields = 3;
constexpr std::uint32_t windowsColorSpace = 0x57696E20; // 'Win ': nothing is stated
constexpr std::uint32_t profileEmbedded = 0x4D424544; // 'MBED'
constexpr std::uint32_t intentImages = 4; // perceptual, what pictures commonly state
constexpr std::size_t paletteEntryBytes = 4;

/// How pixels are written.
struct Form {
    int bits; ///< 1, 4, 8, 24 or 32
    std::vector<ColorTable::Color> palette; ///< for 1 to 8 bits
    std::optional<ColorTable> table; ///< the numbers of the colours; without one grey is its own

    [[nodiscard]] std::size_t paletteBytes() const { return palette.size() * paletteEntryBytes; }
    /// Of a row, which is made of whole words of 32 bits.
    [[nodiscard]] std::size_t stride(int width) const
    {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    }
    [[nodiscard]] std::size_t bytes(Size size) const
    {
        return paletteBytes() + stride(size.width) * static_cast<std::size_t>(size.height);
    }
};

PixelLayout layoutFor(const Image& image)
{
    if (needsAlpha(image)) {
        return { ColorModel::rgb, 8, AlphaInfo::last };
    }
    return { isGrey(image) ? ColorModel::grey : ColorModel::rgb, 8, AlphaInfo::none };
}

/// With a palette of every grey, in order: readers know such a picture as a grey one.
Form greyForm()
{
    Form form { 8, {}, std::nullopt };
    for (unsigned grey = 0; grey < 256; ++grey) {
        const auto sample = static_cast<std::uint8_t>(grey);
        form.palette.push_back({ sample, sample, sample, 255 });
    }
    return form;
}

Form indexedForm(ColorTable table)
{
    const std::size_t colors = table.colors().size();
    Form form { colors <= 2 ? 1 : (colors <= 16 ? 4 : 8), table.colors(), std::move(table) };
    form.palette.resize(std::max<std::size_t>(colors, 2), { 0, 0, 0, 255 });
    return form;
}

/// The one that takes the fewest bytes, for a picture in its layout.
Form formFor(const Image& picture)
{
    if (picture.hasAlpha()) {
        return { 32, {}, std::nullopt };
    }
    Form best { 24, {}, std::nullopt };
    const auto consider = [&](Form form) {
        if (form.bytes(picture.size()) < best.bytes(picture.size())) {
            best = std::move(form);
        }
    };
    const bool isGrey = picture.layout().model == ColorModel::grey;
    if (isGrey) {
        consider(greyForm());
    }
    if (auto table = ColorTable::of(picture)) {
        Form indexed = indexedForm(std::move(*table));
        if (!isGrey || indexed.bits < 8) {
            consider(std::move(indexed));
        }
    }
    return best;
}

class Writer {
public:
    void add16(std::uint32_t value) { addLittleEndian<2>(value); }
    void add32(std::uint32_t value) { addLittleEndian<4>(value); }
    void add32(std::size_t value) { add32(static_cast<std::uint32_t>(value)); }
    void add32(int value) { add32(static_cast<std::uint32_t>(value)); }
    void addZeros(std::size_t count) { m_bytes.resize(m_bytes.size() + count); }
    void add(ByteSpan bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }

    void reserve(std::size_t size) { m_bytes.reserve(size); }
    ByteBuffer take() { return std::move(m_bytes); }

    /// Room for one row of pixels, zeroed.
    std::byte* addRow(std::size_t stride)
    {
        addZeros(stride);
        return m_bytes.data() + m_bytes.size() - stride;
    }

private:
    template <std::size_t count> void addLittleEndian(std::uint32_t value)
    {
        std::array<std::byte, count> bytes {};
        for (std::byte& byte : bytes) {
            byte = static_cast<std::byte>(value & 0xFFU);
            value >>= 8U;
        }
        add(bytes);
    }

    ByteBuffer m_bytes;
};

struct Plan {
    Form form;
    std::uint32_t infoBytes;
    std::size_t stride;
    std::size_t pixelBytes;
    std::size_t pixelOffset;
    ByteSpan profile;
    Resolution::WholeNumbers pixelsPerMetre; ///< 0 where nothing is stated

    [[nodiscard]] bool hasMasks() const { return form.bits == 32; }
    [[nodiscard]] std::size_t fileBytes() const
    {
        return pixelOffset + pixelBytes + profile.size();
    }
};

Plan planFor(const Image& image, Form form, ByteSpan profile, std::optional<Resolution> resolution)
{
    Plan plan { std::move(form), infoHeader, 0, 0, 0, profile, {} };
    if (plan.hasMasks() || !profile.empty()) {
        plan.infoBytes = v5Header;
    }
    if (resolution) {
        plan.pixelsPerMetre = resolution->rounded(Resolution::Unit::metre, Resolution::largest)
                                  .value_or(Resolution::WholeNumbers {});
    }
    plan.stride = plan.form.stride(image.width());
    plan.pixelBytes = plan.stride * static_cast<std::size_t>(image.height());
    plan.pixelOffset = fileHeaderBytes + plan.infoBytes + plan.form.paletteBytes();
    return plan;
}

void writeHeaders(Writer& out, Size size, const Plan& plan)
{
    out.add16('B' | static_cast<std::uint32_t>('M') << 8U);
    out.add32(plan.fileBytes());
    out.add32(0U);
    out.add32(plan.pixelOffset);

    out.add32(plan.infoBytes);
    out.add32(size.width);
    out.add32(size.height);
    out.add16(1); // planes
    out.add16(static_cast<std::uint32_t>(plan.form.bits));
    out.add32(plan.hasMasks() ? bitFields : 0U);
    out.add32(plan.pixelBytes);
    out.add32(plan.pixelsPerMetre.x);
    out.add32(plan.pixelsPerMetre.y);
    out.add32(plan.form.palette.size());
    out.add32(0U); // all colours are important
    if (plan.infoBytes == infoHeader) {
        return;
    }

    out.add32(plan.hasMasks() ? 0x00FF0000U : 0U);
    out.add32(plan.hasMasks() ? 0x0000FF00U : 0U);
    out.add32(plan.hasMasks() ? 0x000000FFU : 0U);
    out.add32(plan.hasMasks() ? 0xFF000000U : 0U);
    out.add32(plan.profile.empty() ? windowsColorSpace : profileEmbedded);
    out.addZeros(48); // endpoints and gamma, for calibrated colours only
    out.add32(intentImages);
    // The profile's place counts from the start of this header.
    out.add32(plan.profile.empty() ? 0 : plan.pixelOffset + plan.pixelBytes - fileHeaderBytes);
    out.add32(plan.profile.size());
    out.add32(0U);
}

void writePalette(Writer& out, const Form& form)
{
    for (const ColorTable::Color& color : form.palette) {
        out.add32(static_cast<std::uint32_t>(color[0]) << 16U
            | static_cast<std::uint32_t>(color[1]) << 8U | color[2]);
    }
}

void writeNumbers(const Image& picture, int y, const Form& form, std::byte* to)
{
    const std::uint8_t* from = picture.row8(y);
    BitWriter numbers(to, form.bits);
    for (int x = 0; x < picture.width(); ++x) {
        numbers.write(form.table->number(colorAt(from, x, picture.layout())));
    }
}

void writeSamples(const Image& picture, int y, std::byte* to)
{
    const auto row = picture.row(y);
    if (picture.layout().model == ColorModel::grey) {
        std::ranges::copy(row, to);
        return;
    }
    const bool hasAlpha = picture.hasAlpha();
    const std::byte* from = row.data();
    for (int x = 0; x < picture.width(); ++x, from += 3) {
        *to++ = from[2];
        *to++ = from[1];
        *to++ = from[0];
        if (hasAlpha) {
            *to++ = from[3];
            ++from;
        }
    }
}

} // namespace

Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options)
{
    if (image.layout().model == ColorModel::cmyk) {
        return failure(Error::Kind::unsupported, "a bitmap holds no CMYK");
    }
    const auto picture = relayout(image, layoutFor(image));
    if (!picture) {
        return tl::unexpected(picture.error());
    }
    // The numbers of a palette are RGB, which a grey profile cannot explain.
    const bool keepsProfile
        = options.profile == ProfilePolicy::embed && image.layout().model == ColorModel::rgb;
    const Plan plan = planFor(*picture, formFor(*picture),
        keepsProfile ? image.colorSpace().iccProfile() : ByteSpan {}, options.resolution);
    if (plan.fileBytes() > std::numeric_limits<std::uint32_t>::max()) {
        return failure(Error::Kind::encodingFailed, "a bitmap's file is 4 GB at most");
    }

    Writer out;
    out.reserve(plan.fileBytes());
    writeHeaders(out, image.size(), plan);
    writePalette(out, plan.form);
    for (int y = image.height() - 1; y >= 0; --y) {
        std::byte* to = out.addRow(plan.stride);
        if (plan.form.table) {
            writeNumbers(*picture, y, plan.form, to);
        } else {
            writeSamples(*picture, y, to);
        }
    }
    out.add(plan.profile);
    return out.take();
}

} // namespace vellumine::imaging::bmp
