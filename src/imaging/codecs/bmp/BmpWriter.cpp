#include "imaging/PixelConversion.h"
#include "imaging/codecs/bmp/BmpCodec.h"
#include "imaging/codecs/bmp/BmpHeader.h"

#include <algorithm>
#include <limits>

namespace vellumine::imaging::bmp {

namespace {

constexpr std::uint32_t bitFields = 3;
constexpr std::uint32_t windowsColorSpace = 0x57696E20; // 'Win ': nothing is stated
constexpr std::uint32_t profileEmbedded = 0x4D424544; // 'MBED'
constexpr std::uint32_t intentImages = 4; // perceptual, what pictures commonly state
constexpr std::size_t greyPaletteBytes = std::size_t { 256 } * 4;

enum class Form { grey8, rgb24, rgba32 };

Form formFor(const Image& image)
{
    if (image.hasAlpha() || image.layout().alpha == AlphaInfo::only) {
        return Form::rgba32;
    }
    return image.layout().model == ColorModel::grey ? Form::grey8 : Form::rgb24;
}

PixelLayout layoutFor(Form form)
{
    switch (form) {
    case Form::grey8:
        return { ColorModel::grey, 8, AlphaInfo::none };
    case Form::rgb24:
        return { ColorModel::rgb, 8, AlphaInfo::none };
    case Form::rgba32:
        break;
    }
    return { ColorModel::rgb, 8, AlphaInfo::last };
}

std::size_t strideOf(Size size, Form form)
{
    const auto width = static_cast<std::size_t>(size.width);
    switch (form) {
    case Form::grey8:
        return (width + 3) / 4 * 4;
    case Form::rgb24:
        return (width * 3 + 3) / 4 * 4;
    case Form::rgba32:
        break;
    }
    return width * 4;
}

class Writer {
public:
    void add16(std::uint32_t value)
    {
        m_bytes.push_back(static_cast<std::byte>(value & 0xFFU));
        m_bytes.push_back(static_cast<std::byte>(value >> 8U & 0xFFU));
    }
    void add32(std::uint32_t value)
    {
        add16(value & 0xFFFFU);
        add16(value >> 16U);
    }
    void add32(std::size_t value) { add32(static_cast<std::uint32_t>(value)); }
    void add32(int value) { add32(static_cast<std::uint32_t>(value)); }
    void addZeros(std::size_t count) { m_bytes.resize(m_bytes.size() + count); }
    void add(ByteSpan bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }

    void reserve(std::size_t size) { m_bytes.reserve(size); }
    ByteBuffer take() { return std::move(m_bytes); }

    /// Room for one row of pixels, zeroed.
    std::uint8_t* addRow(std::size_t stride)
    {
        addZeros(stride);
        return reinterpret_cast<std::uint8_t*>(m_bytes.data() + m_bytes.size() - stride);
    }

private:
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

    [[nodiscard]] std::size_t fileBytes() const
    {
        return pixelOffset + pixelBytes + profile.size();
    }
};

Plan planFor(const Image& image, const EncodeOptions& options)
{
    Plan plan {};
    plan.form = formFor(image);
    // The numbers of a palette are RGB, which a grey profile cannot explain.
    if (options.profile == ProfilePolicy::embed && image.layout().model == ColorModel::rgb) {
        plan.profile = image.colorSpace().iccProfile();
    }
    if (options.resolution) {
        plan.pixelsPerMetre
            = options.resolution->rounded(Resolution::Unit::metre, Resolution::largest)
                  .value_or(Resolution::WholeNumbers {});
    }
    const bool needsVersion5 = plan.form == Form::rgba32 || !plan.profile.empty();
    plan.infoBytes = needsVersion5 ? v5Header : infoHeader;
    plan.stride = strideOf(image.size(), plan.form);
    plan.pixelBytes = plan.stride * static_cast<std::size_t>(image.height());
    plan.pixelOffset
        = fileHeaderBytes + plan.infoBytes + (plan.form == Form::grey8 ? greyPaletteBytes : 0);
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
    out.add16(plan.form == Form::grey8 ? 8 : (plan.form == Form::rgb24 ? 24 : 32));
    out.add32(plan.form == Form::rgba32 ? bitFields : 0U);
    out.add32(plan.pixelBytes);
    out.add32(plan.pixelsPerMetre.x);
    out.add32(plan.pixelsPerMetre.y);
    out.add32(plan.form == Form::grey8 ? 256U : 0U);
    out.add32(0U); // all colours are important
    if (plan.infoBytes == infoHeader) {
        return;
    }

    const bool hasMasks = plan.form == Form::rgba32;
    out.add32(hasMasks ? 0x00FF0000U : 0U);
    out.add32(hasMasks ? 0x0000FF00U : 0U);
    out.add32(hasMasks ? 0x000000FFU : 0U);
    out.add32(hasMasks ? 0xFF000000U : 0U);
    out.add32(plan.profile.empty() ? windowsColorSpace : profileEmbedded);
    out.addZeros(48); // endpoints and gamma, for calibrated colours only
    out.add32(intentImages);
    // The profile's place counts from the start of this header.
    out.add32(plan.profile.empty() ? 0 : plan.pixelOffset + plan.pixelBytes - fileHeaderBytes);
    out.add32(plan.profile.size());
    out.add32(0U);
}

void writeGreyPalette(Writer& out)
{
    for (std::uint32_t grey = 0; grey < 256; ++grey) {
        out.add32(grey * 0x010101U);
    }
}

void writeRow(const Image& image, int y, Form form, std::uint8_t* to)
{
    const std::uint8_t* from = image.row8(y);
    switch (form) {
    case Form::grey8:
        std::copy_n(from, image.width(), to);
        break;
    case Form::rgb24:
        for (int x = 0; x < image.width(); ++x, from += 3, to += 3) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
        break;
    case Form::rgba32:
        for (int x = 0; x < image.width(); ++x, from += 4, to += 4) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
            to[3] = from[3];
        }
        break;
    }
}

} // namespace

Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options)
{
    if (image.layout().model == ColorModel::cmyk) {
        return failure(Error::Kind::unsupported, "a bitmap holds no CMYK");
    }
    const Plan plan = planFor(image, options);
    if (plan.fileBytes() > std::numeric_limits<std::uint32_t>::max()) {
        return failure(Error::Kind::encodingFailed, "a bitmap's file is 4 GB at most");
    }
    const auto converted = relayout(image, layoutFor(plan.form));
    if (!converted) {
        return tl::unexpected(converted.error());
    }

    Writer out;
    out.reserve(plan.fileBytes());
    writeHeaders(out, image.size(), plan);
    if (plan.form == Form::grey8) {
        writeGreyPalette(out);
    }
    for (int y = image.height() - 1; y >= 0; --y) {
        writeRow(*converted, y, plan.form, out.addRow(plan.stride));
    }
    out.add(plan.profile);
    return out.take();
}

} // namespace vellumine::imaging::bmp
