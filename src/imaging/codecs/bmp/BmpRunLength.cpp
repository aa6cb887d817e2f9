#include "imaging/codecs/bmp/BmpRunLength.h"

#include "imaging/codecs/LittleEndian.h"
#include "imaging/codecs/bmp/BmpPixels.h"

#include <algorithm>

namespace vellumine::imaging::bmp {

namespace {

// The codes that follow a count of 0; anything above is a number of literal pixels.
enum Escape : std::uint8_t { endOfLine = 0, endOfBitmap = 1, delta = 2 };

class Decoder {
public:
    Decoder(const Header& header, const Palette& palette, ByteSpan code, PixelBuffer& target)
        : m_header(header)
        , m_palette(palette)
        , m_code(code)
        , m_target(target)
    {
    }

    Result<void> run()
    {
        // A code that walks below the last row has nothing left to say.
        while (m_y < m_header.size.height) {
            if (!has(2)) {
                return outOfCode();
            }
            const std::uint8_t count = next();
            if (count > 0) {
                if (!has(runBytes())) {
                    return outOfCode();
                }
                putRun(count);
                continue;
            }
            const std::uint8_t escape = next();
            switch (escape) {
            case endOfLine:
                m_x = 0;
                ++m_y;
                break;
            case endOfBitmap:
                return {};
            case delta: {
                if (!has(2)) {
                    return outOfCode();
                }
                m_x += next();
                m_y += next();
                if (m_x > m_header.size.width || m_y > m_header.size.height) {
                    return failure(Error::Kind::malformed, "a jump out of the picture");
                }
                break;
            }
            default:
                if (!has(literalBytes(escape))) {
                    return outOfCode();
                }
                putLiterals(escape);
            }
        }
        return {};
    }

private:
    [[nodiscard]] bool has(std::size_t count) const { return m_code.size() - m_at >= count; }
    std::uint8_t next() { return byteAt(m_code, m_at++); }

    // The end marker may be missing, but not a pixel.
    [[nodiscard]] Result<void> outOfCode() const
    {
        if (m_y == m_header.size.height - 1 && m_x >= m_header.size.width) {
            return {};
        }
        return failure(Error::Kind::truncated, "the run lengths end before the picture");
    }

    [[nodiscard]] std::size_t runBytes() const
    {
        return m_header.compression == Compression::runLength24 ? 3 : 1;
    }

    [[nodiscard]] std::size_t literalBytes(std::size_t count) const
    {
        switch (m_header.compression) {
        case Compression::runLength4:
            return (count + 1) / 2;
        case Compression::runLength24:
            return count * 3;
        default:
            return count;
        }
    }

    // What stands beyond the right edge is dropped: some writers round rows up to whole bytes.
    void put(PaletteColor color)
    {
        if (m_x < m_header.size.width) {
            std::uint8_t* const to
                = m_target.row8(pictureRow(m_header, m_y)) + static_cast<std::ptrdiff_t>(m_x) * 3;
            to[0] = color.red;
            to[1] = color.green;
            to[2] = color.blue;
            ++m_x;
        }
    }

    PaletteColor nextTrueColor()
    {
        PaletteColor color;
        color.blue = next();
        color.green = next();
        color.red = next();
        return color;
    }

    void putRun(int count)
    {
        PaletteColor even;
        PaletteColor odd;
        switch (m_header.compression) {
        case Compression::runLength4: {
            // The two halves of the byte take turns.
            const std::uint8_t pair = next();
            even = m_palette[pair >> 4U];
            odd = m_palette[pair & 0x0FU];
            break;
        }
        case Compression::runLength24:
            even = odd = nextTrueColor();
            break;
        default:
            even = odd = m_palette[next()];
        }
        for (int i = 0; i < count; ++i) {
            put(i % 2 == 0 ? even : odd);
        }
    }

    void putLiterals(int count)
    {
        const std::size_t start = m_at;
        switch (m_header.compression) {
        case Compression::runLength4:
            for (int i = 0; i < count; i += 2) {
                const std::uint8_t pair = next();
                put(m_palette[pair >> 4U]);
                if (i + 1 < count) {
                    put(m_palette[pair & 0x0FU]);
                }
            }
            break;
        case Compression::runLength24:
            for (int i = 0; i < count; ++i) {
                put(nextTrueColor());
            }
            break;
        default:
            for (int i = 0; i < count; ++i) {
                put(m_palette[next()]);
            }
        }
        // Literals fill whole 16-bit words; the file may end without the last filler.
        m_at = std::min(m_at + (m_at - start) % 2, m_code.size());
    }

    const Header& m_header;
    const Palette& m_palette;
    ByteSpan m_code;
    PixelBuffer& m_target;
    std::size_t m_at = 0;
    int m_x = 0;
    int m_y = 0; ///< in the file's order of rows
};

// The format leaves open what a skipped pixel looks like. Browsers show nothing there; the format's
// own system, and most desktop programs with it, show the first colour of the palette, the content
// of a fresh bitmap. The format also has no transparency to speak of elsewhere, so a picture's
// layout would depend on its pixels. The first colour it is.
void fill(PixelBuffer& target, PaletteColor color)
{
    for (int y = 0; y < target.height(); ++y) {
        std::uint8_t* to = target.row8(y);
        for (int x = 0; x < target.width(); ++x) {
            *to++ = color.red;
            *to++ = color.green;
            *to++ = color.blue;
        }
    }
}

} // namespace

Result<void> readRunLength(
    const Header& header, const Palette& palette, ByteSpan pixels, PixelBuffer& target)
{
    fill(target, palette[0]);
    return Decoder(header, palette, pixels, target).run();
}

} // namespace vellumine::imaging::bmp
