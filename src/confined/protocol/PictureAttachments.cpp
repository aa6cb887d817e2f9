#include "confined/protocol/PictureAttachments.h"

#include "confined/protocol/ByteStream.h"
#include "imaging/colour/ColorSpaceData.h"

#include <optional>

namespace vellumine::confined {

using imaging::ByteBuffer;
using imaging::ByteSpan;
using imaging::ColorModel;
using imaging::ColorSpace;
using imaging::Error;
using imaging::ImageProperties;
using imaging::PropertyKey;
using imaging::PropertyValue;

namespace {

using Kind = ColorSpace::Data::Kind;

void write(ByteWriter& writer, const ColorSpace& space)
{
    const ColorSpace::Data& data = space.data();
    writer.number(static_cast<std::uint8_t>(data.kind));
    writer.number(static_cast<std::uint8_t>(data.model));
    writer.number(static_cast<std::uint8_t>(data.isSRgbEquivalent));
    writer.bytes(data.kind == Kind::icc ? ByteSpan(data.icc) : ByteSpan());
    writer.text(data.name);
}

std::optional<ColorSpace> readColorSpace(ByteReader& reader)
{
    const auto kind = reader.number<std::uint8_t>();
    const auto model = reader.number<std::uint8_t>();
    ColorSpace::Data data;
    data.isSRgbEquivalent = reader.number<std::uint8_t>() != 0;
    const ByteSpan icc = reader.bytes();
    data.icc.assign(icc.begin(), icc.end());
    data.name = reader.text();
    if (!reader.isWhole() || kind > static_cast<std::uint8_t>(Kind::icc)
        || model > static_cast<std::uint8_t>(ColorModel::cmyk)) {
        return std::nullopt;
    }
    data.kind = static_cast<Kind>(kind);
    data.model = static_cast<ColorModel>(model);
    // Only numbers of red, green and blue can be read as such without being converted.
    if (data.model != ColorModel::rgb) {
        data.isSRgbEquivalent = false;
    }
    return ColorSpace::fromData(std::move(data));
}

void write(ByteWriter& writer, const PropertyValue& value)
{
    writer.number(static_cast<std::uint8_t>(value.index()));
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        writer.number(*integer);
    } else if (const auto* const number = std::get_if<double>(&value)) {
        writer.number(*number);
    } else if (const auto* const text = std::get_if<std::string>(&value)) {
        writer.text(*text);
    }
}

std::optional<PropertyValue> readValue(ByteReader& reader)
{
    switch (reader.number<std::uint8_t>()) {
    case 0:
        return imaging::DictionaryPresent {};
    case 1:
        return reader.number<std::int64_t>();
    case 2:
        return reader.number<double>();
    case 3:
        return reader.text();
    default:
        return std::nullopt;
    }
}

void write(ByteWriter& writer, const ImageProperties& properties)
{
    const imaging::MetadataBlocks& blocks = properties.blocks();
    writer.bytes(blocks.exif);
    writer.bytes(blocks.xmp);
    writer.bytes(blocks.iptc);
    writer.number(static_cast<std::uint8_t>(properties.storedOrientation()));
    writer.number(static_cast<std::uint32_t>(properties.values().size()));
    for (const auto& [key, value] : properties.values()) {
        writer.number(static_cast<std::uint8_t>(key));
        write(writer, value);
    }
}

std::optional<ImageProperties> readProperties(ByteReader& reader)
{
    const auto block = [&reader] {
        const ByteSpan bytes = reader.bytes();
        return ByteBuffer(bytes.begin(), bytes.end());
    };
    imaging::MetadataBlocks blocks;
    blocks.exif = block();
    blocks.xmp = block();
    blocks.iptc = block();
    const auto stored = imaging::orientationFromTag(reader.number<std::uint8_t>());
    const auto count = reader.number<std::uint32_t>();
    if (!reader.isWhole() || !stored) {
        return std::nullopt;
    }
    ImageProperties properties;
    properties.setKnownBlocks(std::move(blocks), *stored);
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto key = reader.number<std::uint8_t>();
        auto value = readValue(reader);
        if (!reader.isWhole() || !value
            || key > static_cast<std::uint8_t>(PropertyKey::pixelHeight)) {
            return std::nullopt;
        }
        properties.set(static_cast<PropertyKey>(key), std::move(*value));
    }
    return properties;
}

} // namespace

ByteBuffer serialised(const PictureAttachments& attachments)
{
    ByteWriter writer;
    write(writer, attachments.colorSpace);
    writer.number(static_cast<std::uint8_t>(attachments.orientation));
    write(writer, attachments.properties);
    return std::move(writer).take();
}

imaging::Result<PictureAttachments> parseAttachments(ByteSpan bytes)
{
    ByteReader reader(bytes);
    auto space = readColorSpace(reader);
    const auto orientation = imaging::orientationFromTag(reader.number<std::uint8_t>());
    auto properties = readProperties(reader);
    if (!space || !orientation || !properties || !reader.isAtTheEnd()) {
        return imaging::failure(Error::Kind::malformed, "the attachments make no sense");
    }
    return PictureAttachments { std::move(*space), *orientation, std::move(*properties) };
}

} // namespace vellumine::confined
