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
using imaging::FileText;
using imaging::FileTexts;
using imaging::ImageProperties;
using imaging::InternationalKeyword;
using imaging::PropertyKey;
using imaging::PropertyValue;
using imaging::Resolution;

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

ByteBuffer readBuffer(ByteReader& reader)
{
    const ByteSpan bytes = reader.bytes();
    return { bytes.begin(), bytes.end() };
}

void write(ByteWriter& writer, const FileTexts& texts)
{
    writer.number(static_cast<std::uint32_t>(texts.list().size()));
    for (const FileText& text : texts.list()) {
        writer.text(text.keyword);
        writer.bytes(text.content);
        writer.number(static_cast<std::uint8_t>(text.international.has_value()));
        if (text.international) {
            writer.text(text.international->language);
            writer.text(text.international->keyword);
        }
    }
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
    } else if (const auto* const resolution = std::get_if<Resolution>(&value)) {
        writer.number(resolution->x());
        writer.number(resolution->y());
        writer.number(static_cast<std::uint8_t>(resolution->unit()));
    } else if (const auto* const texts = std::get_if<FileTexts>(&value)) {
        write(writer, *texts);
    }
}

std::optional<Resolution> readResolution(ByteReader& reader)
{
    const auto x = reader.number<double>();
    const auto y = reader.number<double>();
    const auto unit = reader.number<std::uint8_t>();
    return unit <= static_cast<std::uint8_t>(Resolution::Unit::metre)
        ? Resolution::create(x, y, static_cast<Resolution::Unit>(unit))
        : std::nullopt;
}

std::optional<FileTexts> readTexts(ByteReader& reader)
{
    FileTexts texts;
    const auto count = reader.number<std::uint32_t>();
    for (std::uint32_t i = 0; i < count; ++i) {
        FileText text { .keyword = reader.text(), .content = readBuffer(reader) };
        const auto isInternational = reader.number<std::uint8_t>();
        if (isInternational == 1) {
            InternationalKeyword keyword;
            keyword.language = reader.text();
            keyword.keyword = reader.text();
            text.international = std::move(keyword);
        }
        if (!reader.isWhole() || isInternational > 1 || !texts.add(std::move(text))) {
            return std::nullopt;
        }
    }
    return texts;
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
    case 4:
        return readResolution(reader);
    case 5:
        return readTexts(reader);
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
    imaging::MetadataBlocks blocks;
    blocks.exif = readBuffer(reader);
    blocks.xmp = readBuffer(reader);
    blocks.iptc = readBuffer(reader);
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
            || key > static_cast<std::uint8_t>(PropertyKey::resolution)) {
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
