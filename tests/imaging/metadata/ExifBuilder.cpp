#include "imaging/metadata/ExifBuilder.h"

#include <algorithm>
#include <string>

namespace vellumine::test {

using imaging::ByteBuffer;
using imaging::metadata::ByteOrder;

namespace {

template <typename Integer> void append(ByteBuffer& bytes, Integer value, ByteOrder order)
{
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
        const std::size_t shift = 8 * (order == ByteOrder::little ? i : sizeof(Integer) - 1 - i);
        bytes.push_back(static_cast<std::byte>(std::uint64_t { value } >> shift & 0xFFU));
    }
}

// The directory and its values, to stand at `at`.
ByteBuffer directoryBytes(
    std::vector<ExifField> fields, std::size_t at, std::uint32_t next, ByteOrder order)
{
    std::ranges::sort(fields, {}, &ExifField::tag);
    ByteBuffer bytes;
    ByteBuffer values;
    const std::size_t valuesAt = at + 2 + fields.size() * 12 + 4;
    append(bytes, static_cast<std::uint16_t>(fields.size()), order);
    for (const ExifField& field : fields) {
        append(bytes, field.tag, order);
        append(bytes, field.type, order);
        append(bytes, field.count, order);
        if (field.value.size() <= 4) {
            ByteBuffer padded = field.value;
            padded.resize(4);
            bytes.insert(bytes.end(), padded.begin(), padded.end());
        } else {
            append(bytes, static_cast<std::uint32_t>(valuesAt + values.size()), order);
            values.insert(values.end(), field.value.begin(), field.value.end());
            values.resize(values.size() + values.size() % 2);
        }
    }
    append(bytes, next, order);
    bytes.insert(bytes.end(), values.begin(), values.end());
    return bytes;
}

} // namespace

ExifField ExifBuilder::shorts(std::uint16_t tag, std::vector<std::uint16_t> values) const
{
    ExifField field { tag, 3, static_cast<std::uint32_t>(values.size()), {} };
    std::ranges::for_each(values, [&](auto value) { append(field.value, value, m_order); });
    return field;
}

ExifField ExifBuilder::longs(std::uint16_t tag, std::vector<std::uint32_t> values) const
{
    ExifField field { tag, 4, static_cast<std::uint32_t>(values.size()), {} };
    std::ranges::for_each(values, [&](auto value) { append(field.value, value, m_order); });
    return field;
}

ExifField ExifBuilder::rationals(std::uint16_t tag, std::vector<std::uint32_t> values) const
{
    ExifField field = longs(tag, std::move(values));
    field.type = 5;
    field.count /= 2;
    return field;
}

ExifField ExifBuilder::ascii(std::uint16_t tag, std::string_view text)
{
    ExifField field { tag, 2, static_cast<std::uint32_t>(text.size() + 1), bytesOf(text) };
    field.value.push_back(std::byte { 0 });
    return field;
}

ExifField ExifBuilder::undefined(std::uint16_t tag, ByteBuffer bytes)
{
    const auto count = static_cast<std::uint32_t>(bytes.size());
    return { tag, 7, count, std::move(bytes) };
}

ByteBuffer ExifBuilder::build() const
{
    Directory first = main;
    Directory second = exif;
    Directory last = thumbnail;
    // Once with offsets of zero for the lengths, then with the true ones.
    ByteBuffer bytes;
    std::uint32_t exifAt = 0;
    std::uint32_t interoperabilityAt = 0;
    std::uint32_t gpsAt = 0;
    std::uint32_t thumbnailAt = 0;
    std::uint32_t thumbnailDataAt = 0;
    for (int round = 0; round < 2; ++round) {
        first = main;
        second = exif;
        last = thumbnail;
        if (!exif.empty()) {
            first.push_back(longs(0x8769, { exifAt }));
        }
        if (!gps.empty()) {
            first.push_back(longs(0x8825, { gpsAt }));
        }
        if (!interoperability.empty()) {
            second.push_back(longs(0xA005, { interoperabilityAt }));
        }
        if (!thumbnail.empty()) {
            last.push_back(longs(0x0201, { thumbnailDataAt }));
            last.push_back(longs(0x0202, { static_cast<std::uint32_t>(thumbnailData.size()) }));
        }
        bytes = bytesOf(m_order == Order::little ? "II" : "MM");
        append(bytes, std::uint16_t { 42 }, m_order);
        append(bytes, std::uint32_t { 8 }, m_order);
        const auto add = [&](const Directory& directory, std::uint32_t next) {
            const auto at = static_cast<std::uint32_t>(bytes.size());
            const ByteBuffer part = directoryBytes(directory, at, next, m_order);
            bytes.insert(bytes.end(), part.begin(), part.end());
            return at;
        };
        add(first, thumbnail.empty() ? 0 : thumbnailAt);
        if (!exif.empty()) {
            exifAt = add(second, 0);
        }
        if (!interoperability.empty()) {
            interoperabilityAt = add(interoperability, 0);
        }
        if (!gps.empty()) {
            gpsAt = add(gps, 0);
        }
        if (!thumbnail.empty()) {
            thumbnailAt = add(last, 0);
            thumbnailDataAt = static_cast<std::uint32_t>(bytes.size());
            bytes.insert(bytes.end(), thumbnailData.begin(), thumbnailData.end());
        }
    }
    return bytes;
}

ByteBuffer cameraThumbnail()
{
    ByteBuffer data = bytesOf("\xFF\xD8 a small picture \xFF\xD9");
    data.resize(400, std::byte { 0x55 });
    return data;
}

ByteBuffer cameraMakerNote()
{
    ByteBuffer note = bytesOf("Nobody's note");
    note.resize(301, std::byte { 0xA7 });
    return note;
}

ByteBuffer cameraExif(ByteOrder order)
{
    ExifBuilder builder(order);
    builder.main = {
        ExifBuilder::ascii(0x010F, "Kestrova"),
        ExifBuilder::ascii(0x0110, "K1"),
        builder.shorts(0x0112, { 6 }),
        builder.rationals(0x011A, { 72, 1 }),
        builder.rationals(0x011B, { 72, 1 }),
        builder.shorts(0x0128, { 2 }),
        ExifBuilder::ascii(0x0132, "2024:05:06 07:08:09"),
        builder.shorts(0x0213, { 1 }),
    };
    builder.exif = {
        builder.rationals(0x829A, { 1, 125 }),
        ExifBuilder::ascii(0x9003, "2024:05:06 07:08:09"),
        builder.rationals(0x9102, { 4, 1 }),
        builder.shorts(0x9214, { 100, 200, 30, 40 }),
        ExifBuilder::undefined(0x927C, cameraMakerNote()),
        builder.shorts(0xA001, { 1 }),
        builder.longs(0xA002, { 4000 }),
        builder.longs(0xA003, { 3000 }),
        ExifBuilder::ascii(0xA434, "A lens"),
    };
    builder.interoperability = { ExifBuilder::ascii(0x0001, "R98") };
    builder.gps = {
        ExifBuilder::ascii(0x0001, "N"),
        builder.rationals(0x0002, { 48, 1, 12, 1, 3456, 100 }),
        ExifBuilder::ascii(0x0003, "E"),
        builder.rationals(0x0004, { 11, 1, 34, 1, 5678, 100 }),
    };
    builder.thumbnail = { builder.shorts(0x0103, { 6 }), builder.shorts(0x0112, { 6 }) };
    builder.thumbnailData = cameraThumbnail();
    return builder.build();
}

ByteBuffer captionIptc(std::string_view caption)
{
    ByteBuffer bytes { std::byte { 0x1C }, std::byte { 2 }, std::byte { 120 } };
    append(bytes, static_cast<std::uint16_t>(caption.size()), ByteOrder::big);
    const ByteBuffer text = bytesOf(caption);
    bytes.insert(bytes.end(), text.begin(), text.end());
    return bytes;
}

ByteBuffer xmpPacket(std::string_view attributes, std::string_view elements)
{
    std::string text = R"(<?xpacket begin="" id="W5M0MpCehiHzreSzNTczkc9d"?>
<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF
 xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description rdf:about=""
 xmlns:tiff="http://ns.adobe.com/tiff/1.0/" xmlns:exif="http://ns.adobe.com/exif/1.0/"
 xmlns:xmp="http://ns.adobe.com/xap/1.0/" xmlns:dc="http://purl.org/dc/elements/1.1/"
 xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/" )";
    text += attributes;
    text += '>';
    text += elements;
    text += "</rdf:Description></rdf:RDF></x:xmpmeta>\n" + std::string(500, ' ')
        + "\n<?xpacket end=\"w\"?>";
    return bytesOf(text);
}

ByteBuffer bytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

std::string_view textOf(imaging::ByteSpan bytes)
{
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

} // namespace vellumine::test
