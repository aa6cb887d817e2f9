#include "imaging/codecs/TiffFiles.h"

#include "support/TestImages.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace vellumine::test {

namespace {

void require(bool ok)
{
    if (!ok) {
        throw std::runtime_error("the TIFF library refused to write a test file");
    }
}

/// Samples of whole bytes in the machine's order, others as bits, the first one highest.
class RowPacker {
public:
    explicit RowPacker(unsigned bits)
        : m_bits(bits)
    {
    }

    void append(std::uint64_t sample)
    {
        if (m_bits % 8 == 0) {
            for (unsigned shift = 0; shift < m_bits; shift += 8) {
                m_bytes.push_back(static_cast<std::byte>(sample >> shift & 0xFFU));
            }
            return;
        }
        for (unsigned bit = m_bits; bit-- > 0;) {
            if (m_used % 8 == 0) {
                m_bytes.push_back(std::byte { 0 });
            }
            if ((sample >> bit & 1U) != 0) {
                m_bytes.back() |= std::byte { 0x80 } >> (m_used % 8);
            }
            ++m_used;
        }
    }

    void endRow() { m_used = 0; }
    [[nodiscard]] imaging::ByteBuffer& bytes() { return m_bytes; }

private:
    unsigned m_bits;
    unsigned m_used = 0;
    imaging::ByteBuffer m_bytes;
};

void setTags(TIFF* tiff, const TiffRecipe& recipe)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, recipe.size.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, recipe.size.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, recipe.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, recipe.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, recipe.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, recipe.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, recipe.compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, recipe.planar);
    if (recipe.predictor != PREDICTOR_NONE) {
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, recipe.predictor);
    }
    if (recipe.tile != 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, recipe.tile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, recipe.tile);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, recipe.rowsPerStrip);
    }
    if (!recipe.extraSamples.empty()) {
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(recipe.extraSamples.size()),
            recipe.extraSamples.data());
    }
    if (recipe.orientation) {
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, *recipe.orientation);
    }
    if (!recipe.colourMap.empty()) {
        const std::size_t count = recipe.colourMap.size() / 3;
        const std::uint16_t* const map = recipe.colourMap.data();
        TIFFSetField(tiff, TIFFTAG_COLORMAP, map, map + count, map + 2 * count);
    }
    if (!recipe.profile.empty()) {
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(recipe.profile.size()),
            recipe.profile.data());
    }
    if (recipe.customise) {
        recipe.customise(tiff);
    }
}

/// The part of the picture at `x`, `y`; beyond the right and the lower edge, zeros.
imaging::ByteBuffer packBlock(
    const TiffRecipe& recipe, imaging::Rect area, int plane, const RawSample& sample)
{
    RowPacker packer(recipe.bits);
    const bool isPlanar = recipe.planar == PLANARCONFIG_SEPARATE;
    for (int y = area.y; y < area.y + area.height; ++y) {
        for (int x = area.x; x < area.x + area.width; ++x) {
            const bool inside = x < recipe.size.width && y < recipe.size.height;
            for (int s = isPlanar ? plane : 0; s < (isPlanar ? plane + 1 : recipe.samples); ++s) {
                packer.append(inside ? sample(x, y, s) : 0);
            }
        }
        packer.endRow();
    }
    return packer.bytes();
}

void writePage(TIFF* tiff, const TiffRecipe& recipe, const RawSample& sample)
{
    setTags(tiff, recipe);
    const int planes = recipe.planar == PLANARCONFIG_SEPARATE ? recipe.samples : 1;
    const bool tiled = recipe.tile != 0;
    const int blockWidth = tiled ? static_cast<int>(recipe.tile) : recipe.size.width;
    const int blockHeight = static_cast<int>(tiled ? recipe.tile : recipe.rowsPerStrip);
    std::uint32_t index = 0;
    for (int plane = 0; plane < planes; ++plane) {
        for (int y = 0; y < recipe.size.height; y += blockHeight) {
            for (int x = 0; x < recipe.size.width; x += blockWidth, ++index) {
                const int height
                    = tiled ? blockHeight : std::min(blockHeight, recipe.size.height - y);
                auto block = packBlock(recipe, { x, y, blockWidth, height }, plane, sample);
                const auto size = static_cast<tmsize_t>(block.size());
                require((tiled ? TIFFWriteEncodedTile(tiff, index, block.data(), size)
                               : TIFFWriteEncodedStrip(tiff, index, block.data(), size))
                    >= 0);
            }
        }
    }
    require(TIFFWriteDirectory(tiff) == 1);
}

} // namespace

imaging::ByteBuffer tiffPages(const std::vector<TiffRecipe>& pages, const RawSample& sample)
{
    const TemporaryFolder folder;
    const auto path = folder / "picture.tiff";
    {
        const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(
            TIFFOpen(path.c_str(), pages.front().mode), &TIFFClose);
        require(tiff != nullptr);
        for (const TiffRecipe& page : pages) {
            writePage(tiff.get(), page, sample);
        }
    }
    return readFile(path);
}

imaging::ByteBuffer tiffFile(const TiffRecipe& recipe, const RawSample& sample)
{
    return tiffPages(std::vector { recipe }, sample);
}

} // namespace vellumine::test
