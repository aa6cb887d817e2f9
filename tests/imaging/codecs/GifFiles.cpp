#include "imaging/codecs/GifFiles.h"

#include "imaging/codecs/BmpFiles.h"

#include <algorithm>
#include <bit>
#include <span>

namespace vellumine::test {

using imaging::ByteBuffer;

namespace {

// The low bits of a palette's size field: 2 to the power of one more.
std::uint32_t paletteBits(const GifColors& palette)
{
    return palette.empty() ? 0 : static_cast<std::uint32_t>(std::bit_width(palette.size())) - 2;
}

void addPalette(LittleEndianBytes& out, const GifColors& palette)
{
    for (const auto& [red, green, blue] : palette) {
        out.add(bytesOf({ red, green, blue }));
    }
}

void addRect(LittleEndianBytes& out, imaging::Rect rect)
{
    for (const int value : { rect.x, rect.y, rect.width, rect.height }) {
        out.add16(static_cast<std::uint32_t>(value));
    }
}

std::vector<int> fileOrder(const GifPicture& picture)
{
    std::vector<int> rows;
    const auto addPass = [&](int first, int step) {
        for (int y = first; y < picture.place.height; y += step) {
            rows.push_back(y);
        }
    };
    if (picture.isInterlaced) {
        addPass(0, 8);
        addPass(4, 8);
        addPass(2, 4);
        addPass(1, 2);
    } else {
        addPass(0, 1);
    }
    return rows;
}

std::vector<std::uint32_t> codesOf(const GifPicture& picture)
{
    std::vector<std::uint32_t> codes;
    const auto width = static_cast<std::size_t>(picture.place.width);
    std::size_t sinceClear = 0;
    for (const int y : fileOrder(picture)) {
        for (const std::uint8_t index :
            std::span(picture.indexes).subspan(static_cast<std::size_t>(y) * width, width)) {
            // A table that is cleared often never grows to codes of ten bits.
            if (sinceClear == 0) {
                codes.push_back(gifClear);
            }
            sinceClear = (sinceClear + 1) % 200;
            codes.push_back(index);
        }
    }
    codes.push_back(gifEnd);
    return codes;
}

void addPicture(LittleEndianBytes& out, const GifPicture& picture)
{
    if (picture.transparentIndex) {
        out.add(bytesOf({ 0x21, 0xF9, 4, 1, 0, 0, *picture.transparentIndex, 0 }));
    }
    out.add8(',');
    addRect(out, picture.place);
    out.add8((picture.palette.empty() ? 0U : 0x80U) | (picture.isInterlaced ? 0x40U : 0U)
        | paletteBits(picture.palette));
    addPalette(out, picture.palette);
    out.add(gifCodes(codesOf(picture)));
}

} // namespace

ByteBuffer gifCodes(const std::vector<std::uint32_t>& codes)
{
    LittleEndianBytes packed;
    std::uint32_t bits = 0;
    std::uint32_t count = 0;
    for (const std::uint32_t code : codes) {
        bits |= code << count;
        for (count += 9; count >= 8; count -= 8) {
            packed.add8(bits);
            bits >>= 8U;
        }
    }
    if (count > 0) {
        packed.add8(bits);
    }
    LittleEndianBytes blocks;
    blocks.add8(8);
    imaging::ByteSpan rest(packed.bytes());
    while (!rest.empty()) {
        const auto length = std::min<std::size_t>(rest.size(), 255);
        blocks.add8(static_cast<std::uint32_t>(length)).add(rest.first(length));
        rest = rest.subspan(length);
    }
    return blocks.add8(0).bytes();
}

ByteBuffer GifFile::bytes() const
{
    LittleEndianBytes out;
    out.add("GIF89a");
    out.add16(static_cast<std::uint32_t>(screen.width));
    out.add16(static_cast<std::uint32_t>(screen.height));
    out.add8((palette.empty() ? 0U : 0x80U) | paletteBits(palette)).add16(0);
    addPalette(out, palette);
    out.add(extension);
    for (const GifPicture& picture : pictures) {
        addPicture(out, picture);
    }
    return out.add(";").bytes();
}

} // namespace vellumine::test
