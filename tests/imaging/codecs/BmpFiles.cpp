#include "imaging/codecs/BmpFiles.h"

#include <algorithm>

namespace vellumine::test {

using imaging::ByteBuffer;
using imaging::ByteSpan;

LittleEndianBytes& LittleEndianBytes::add8(std::uint32_t value)
{
    m_bytes.push_back(static_cast<std::byte>(value & 0xFFU));
    return *this;
}

LittleEndianBytes& LittleEndianBytes::add16(std::uint32_t value)
{
    return add8(value).add8(value >> 8U);
}

LittleEndianBytes& LittleEndianBytes::add32(std::uint32_t value)
{
    return add16(value).add16(value >> 16U);
}

LittleEndianBytes& LittleEndianBytes::add(ByteSpan bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

LittleEndianBytes& LittleEndianBytes::add(std::string_view text)
{
    return add(std::as_bytes(std::span(text)));
}

LittleEndianBytes& LittleEndianBytes::addZeros(std::size_t count)
{
    m_bytes.resize(m_bytes.size() + count);
    return *this;
}

ByteBuffer bytesOf(std::initializer_list<int> values)
{
    ByteBuffer bytes;
    std::ranges::transform(
        values, std::back_inserter(bytes), [](int value) { return static_cast<std::byte>(value); });
    return bytes;
}

ByteBuffer BmpFile::bytes() const
{
    const bool isCore = infoBytes == 12;
    LittleEndianBytes info;
    info.add32(infoBytes);
    if (isCore) {
        info.add16(static_cast<std::uint32_t>(width)).add16(static_cast<std::uint32_t>(height));
        info.add16(1).add16(static_cast<std::uint32_t>(bits));
    } else {
        const auto colors = declaredColors.value_or(static_cast<std::uint32_t>(palette.size()));
        const std::size_t profileOffset
            = infoBytes + palette.size() * 4 + pixels.size(); // from the header's start
        info.add32(static_cast<std::uint32_t>(width)).add32(static_cast<std::uint32_t>(height));
        info.add16(1).add16(static_cast<std::uint32_t>(bits)).add32(compression);
        info.add32(static_cast<std::uint32_t>(pixels.size()));
        info.add32(pixelsPerMetreX).add32(pixelsPerMetreY);
        info.add32(colors).add32(0);
        for (const std::uint32_t mask : masks) {
            info.add32(mask);
        }
        if (infoBytes >= 108) {
            info.addZeros(56 - info.bytes().size()).add32(colorSpaceKind).add(colorSpaceFields);
        }
        if (infoBytes >= 124) {
            info.addZeros(108 - info.bytes().size()).add32(4);
            info.add32(profile.empty() ? 0 : static_cast<std::uint32_t>(profileOffset));
            info.add32(static_cast<std::uint32_t>(profile.size()));
        }
    }
    ByteBuffer header = info.bytes();
    // Masks behind a version 1 header are no part of its size.
    header.resize(infoBytes == 40 ? header.size() : infoBytes);

    LittleEndianBytes file;
    file.add("BM");
    const std::size_t paletteBytes = palette.size() * (isCore ? 3 : 4);
    const std::size_t offset = 14 + header.size() + paletteBytes;
    file.add32(static_cast<std::uint32_t>(offset + pixels.size() + profile.size())).add32(0);
    file.add32(pixelOffset.value_or(static_cast<std::uint32_t>(offset)));
    file.add(header);
    for (const auto& [red, green, blue] : palette) {
        file.add(bytesOf({ blue, green, red }));
        file.addZeros(isCore ? 0 : 1);
    }
    return file.add(pixels).add(profile).bytes();
}

ByteBuffer packRows(int bits, const std::vector<std::vector<std::uint32_t>>& rowsInFileOrder)
{
    ByteBuffer packed;
    for (const auto& row : rowsInFileOrder) {
        LittleEndianBytes bytes;
        if (bits >= 16) {
            for (const std::uint32_t pixel : row) {
                for (int bit = 0; bit < bits; bit += 8) {
                    bytes.add8(pixel >> static_cast<unsigned>(bit));
                }
            }
        } else {
            unsigned collected = 0;
            int count = 0;
            for (const std::uint32_t pixel : row) {
                collected = collected << static_cast<unsigned>(bits) | pixel;
                count += bits;
                if (count == 8) {
                    bytes.add8(collected);
                    collected = 0;
                    count = 0;
                }
            }
            if (count > 0) {
                bytes.add8(collected << static_cast<unsigned>(8 - count));
            }
        }
        bytes.addZeros((4 - bytes.bytes().size() % 4) % 4);
        packed.insert(packed.end(), bytes.bytes().begin(), bytes.bytes().end());
    }
    return packed;
}

} // namespace vellumine::test
