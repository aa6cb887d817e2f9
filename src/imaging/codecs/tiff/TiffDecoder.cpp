#include "imaging/codecs/tiff/TiffDecoder.h"

#include "imaging/codecs/tiff/TiffLab.h"
#include "imaging/codecs/tiff/TiffPalette.h"
#include "imaging/codecs/tiff/ZeroedArray.h"

#include <algorithm>
#include <cassert>
#include <vector>

namespace vellumine::imaging::tiff {

namespace {

/// A strip or tile: where it lies in the picture and how much of it is picture.
struct Block {
    Rect area;
    int plane = 0;
};

class BlockDecoder {
public:
    BlockDecoder(const TiffReader& reader, const TiffDirectory& directory, Rect wanted)
        : m_reader(reader)
        , m_directory(directory)
        , m_wanted(wanted)
        , m_samplesInRow(directory.isPlanar ? 1 : directory.samplesPerPixel)
    {
    }

    Result<PixelBuffer> decode()
    {
        auto pixels = PixelBuffer::create(m_wanted.size(), m_directory.layout);
        if (!pixels) {
            return pixels;
        }
        if (auto ok = prepare(); !ok) {
            return tl::unexpected(ok.error());
        }
        const int planes = m_directory.isPlanar ? m_directory.samplesPerPixel : 1;
        for (int plane = 0; plane < planes; ++plane) {
            if (!isUsed(plane)) {
                continue;
            }
            if (auto ok = decodePlane(plane, *pixels); !ok) {
                return tl::unexpected(ok.error());
            }
        }
        if (m_reader.messages().dataMissing) {
            return tl::unexpected(m_reader.messages().failureOf("pixel data is missing"));
        }
        return pixels;
    }

private:
    [[nodiscard]] bool isPalette() const { return m_directory.colour == Colour::palette; }
    /// Stored samples that make up the colour.
    [[nodiscard]] int colourSamples() const
    {
        return isPalette() ? 1 : m_directory.layout.colorChannels();
    }
    [[nodiscard]] bool isUsed(int plane) const
    {
        return !m_directory.isPlanar || plane < colourSamples() || plane == m_directory.alphaSample;
    }

    Result<void> prepare()
    {
        TIFF* const tiff = m_reader.get();
        const auto width = static_cast<std::uint64_t>(m_directory.blockWidth);
        const auto bits = width * static_cast<std::uint64_t>(m_samplesInRow)
            * static_cast<std::uint64_t>(m_directory.sample.bits);
        m_rowBytes = static_cast<std::size_t>((bits + 7) / 8);
        m_blockBytes = m_rowBytes * static_cast<std::size_t>(m_directory.blockHeight);
        // What the library is about to write must be what is unpacked here.
        const auto libraryRowBytes
            = m_directory.isTiled ? TIFFTileRowSize64(tiff) : TIFFScanlineSize64(tiff);
        if (libraryRowBytes != m_rowBytes
            || (m_directory.isTiled && TIFFTileSize64(tiff) != m_blockBytes)) {
            return failure(Error::Kind::malformed, "rows of an unexpected length");
        }
        m_block = allocateZeroed<std::byte>(m_blockBytes);
        if (!m_block) {
            return failure(Error::Kind::outOfMemory, "no memory for a strip or tile");
        }
        m_samples.resize(static_cast<std::size_t>(width));
        if (isPalette()) {
            auto palette = Palette::read(tiff, m_directory);
            if (!palette) {
                return tl::unexpected(palette.error());
            }
            m_palette = *std::move(palette);
        }
        return {};
    }

    Result<void> decodePlane(int plane, PixelBuffer& pixels)
    {
        const Size size = m_directory.size();
        const auto blockWidth = static_cast<int>(m_directory.blockWidth);
        const auto blockHeight = static_cast<int>(m_directory.blockHeight);
        const int firstRow = m_wanted.y / blockHeight * blockHeight;
        const int firstColumn = m_wanted.x / blockWidth * blockWidth;
        for (int y = firstRow; y < m_wanted.y + m_wanted.height; y += blockHeight) {
            for (int x = firstColumn; x < m_wanted.x + m_wanted.width; x += blockWidth) {
                const Block block { { x, y, std::min(blockWidth, size.width - x),
                                        std::min(blockHeight, size.height - y) },
                    plane };
                if (auto ok = readBlock(block); !ok) {
                    return ok;
                }
                store(block, pixels);
            }
        }
        return {};
    }

    /// Fills m_block, or fails: a block that is only partly there is no picture.
    Result<void> readBlock(const Block& block)
    {
        TIFF* const tiff = m_reader.get();
        const auto x = static_cast<std::uint32_t>(block.area.x);
        const auto y = static_cast<std::uint32_t>(block.area.y);
        const auto plane = static_cast<std::uint16_t>(block.plane);
        const auto expected = static_cast<tmsize_t>(m_directory.isTiled
                ? m_blockBytes
                : m_rowBytes * static_cast<std::size_t>(block.area.height));
        const tmsize_t got = m_directory.isTiled
            ? TIFFReadEncodedTile(
                tiff, TIFFComputeTile(tiff, x, y, 0, plane), m_block.get(), expected)
            : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, plane), m_block.get(), expected);
        if (got != expected) {
            return tl::unexpected(m_reader.messages().failureOf("a strip or tile is incomplete"));
        }
        return {};
    }

    void store(const Block& block, PixelBuffer& pixels)
    {
        const int top = std::max(block.area.y, m_wanted.y);
        const int bottom = std::min(block.area.y + block.area.height, m_wanted.y + m_wanted.height);
        for (int y = top; y < bottom; ++y) {
            const ByteSpan packed(
                m_block.get() + m_rowBytes * static_cast<std::size_t>(y - block.area.y),
                m_rowBytes);
            if (isStoredAsDecoded()) {
                copyRow(block, packed, pixels, y);
            } else if (m_directory.layout.bitsPerComponent == 8) {
                storeRow(block, packed, pixels.row8(y - m_wanted.y));
            } else {
                storeRow(block, packed, pixels.row16(y - m_wanted.y));
            }
        }
    }

    /// Whether a stored row is the decoded row, byte for byte.
    [[nodiscard]] bool isStoredAsDecoded() const
    {
        const int channels = m_directory.layout.channels();
        return m_directory.colour == Colour::direct
            && m_directory.sample.kind == SampleType::Kind::unsignedInteger
            && m_directory.sample.bits == m_directory.layout.bitsPerComponent
            && m_samplesInRow == channels
            && (!m_directory.alphaSample || m_directory.alphaSample == channels - 1);
    }

    /// The picture's columns that the block and the wanted part share.
    struct Columns {
        int first;
        int end;
    };
    [[nodiscard]] Columns sharedColumns(const Block& block) const
    {
        return { std::max(block.area.x, m_wanted.x),
            std::min(block.area.x + block.area.width, m_wanted.x + m_wanted.width) };
    }

    void copyRow(const Block& block, ByteSpan packed, PixelBuffer& pixels, int y) const
    {
        const auto pixelBytes = static_cast<std::size_t>(m_directory.layout.bytesPerPixel());
        const Columns columns = sharedColumns(block);
        const auto offset
            = [pixelBytes](int column) { return static_cast<std::size_t>(column) * pixelBytes; };
        const ByteSpan from = packed.subspan(
            offset(columns.first - block.area.x), offset(columns.end - columns.first));
        std::ranges::copy(
            from, pixels.row(y - m_wanted.y).subspan(offset(columns.first - m_wanted.x)).begin());
    }

    template <typename Sample> void storeRow(const Block& block, ByteSpan packed, Sample* row)
    {
        const int channels = m_directory.layout.channels();
        const int colours = colourSamples();
        if (m_directory.alphaSample && isIn(block, *m_directory.alphaSample)) {
            const int alpha = *m_directory.alphaSample;
            unpackSamples(packed, m_directory.sample, interleaving(alpha), m_samples);
            route(block, row + channels - 1,
                [](std::uint16_t value) { return static_cast<Sample>(value); });
        }
        if (isPalette()) {
            if (isIn(block, 0)) {
                unpackIndices(packed, m_directory.sample, interleaving(0), m_samples);
                for (int channel = 0; channel < 3; ++channel) {
                    route(block, row + channel, [this, channel](std::uint16_t index) {
                        return static_cast<Sample>(m_palette.value(channel, index));
                    });
                }
            }
            return;
        }
        constexpr auto largest = static_cast<Sample>(-1);
        const Sample flip = m_directory.colour == Colour::invertedGrey ? largest : Sample { 0 };
        for (int sample = 0; sample < colours; ++sample) {
            if (isIn(block, sample)) {
                unpackSamples(packed, m_directory.sample, interleaving(sample), m_samples);
                route(block, row + sample,
                    [flip](std::uint16_t value) { return static_cast<Sample>(value ^ flip); });
            }
        }
    }

    /// Whether the block's pixels have that one of the picture's samples.
    [[nodiscard]] bool isIn(const Block& block, int sample) const
    {
        return !m_directory.isPlanar || sample == block.plane;
    }

    /// Where that sample stands in a row. A pixel may have thousands that are of no use.
    [[nodiscard]] Interleaving interleaving(int sample) const
    {
        return { static_cast<std::size_t>(m_directory.isPlanar ? 0 : sample),
            static_cast<std::size_t>(m_samplesInRow) };
    }

    /// Writes the unpacked sample of every pixel that is wanted into its channel. `channel` is the
    /// channel in the row's first pixel.
    template <typename Sample, typename Convert>
    void route(const Block& block, Sample* channel, const Convert& convert) const
    {
        const std::ptrdiff_t channels = m_directory.layout.channels();
        const Columns columns = sharedColumns(block);
        const std::uint16_t* from = m_samples.data() + (columns.first - block.area.x);
        Sample* to = channel + (columns.first - m_wanted.x) * channels;
        for (int x = columns.first; x < columns.end; ++x, ++from, to += channels) {
            *to = convert(*from);
        }
    }

    const TiffReader& m_reader;
    const TiffDirectory& m_directory;
    Rect m_wanted;
    int m_samplesInRow;
    std::size_t m_rowBytes = 0;
    std::size_t m_blockBytes = 0;
    ZeroedArray<std::byte> m_block;
    std::vector<std::uint16_t> m_samples; ///< one of every pixel in a row of a block
    Palette m_palette;
};

} // namespace

Result<PixelBuffer> decodeBlocks(
    const TiffReader& reader, const TiffDirectory& directory, Rect wanted)
{
    assert(directory.colour != Colour::library && contains(directory.size(), wanted));
    auto pixels = BlockDecoder(reader, directory, wanted).decode();
    const bool isLab = directory.colour == Colour::cieLab || directory.colour == Colour::iccLab
        || directory.colour == Colour::ituLab;
    if (pixels && isLab) {
        if (auto ok = convertLabToSRgb(*pixels, directory.colour); !ok) {
            return tl::unexpected(ok.error());
        }
    }
    return pixels;
}

} // namespace vellumine::imaging::tiff
