#include "imaging/codecs/tiff/TiffLibraryDecoder.h"

#include "imaging/codecs/tiff/ZeroedArray.h"

#include <array>

namespace vellumine::imaging::tiff {

namespace {

/// The library's state of one conversion to RGBA.
class RgbaConversion {
public:
    explicit RgbaConversion(TIFF* tiff)
        : m_isOpen(TIFFRGBAImageBegin(&m_image, tiff, stopOnError, m_message.data()) == 1)
    {
        // Asking for the orientation that the file has keeps the library from flipping.
        m_image.req_orientation = m_image.orientation;
    }
    ~RgbaConversion()
    {
        if (m_isOpen) {
            TIFFRGBAImageEnd(&m_image);
        }
    }
    RgbaConversion(const RgbaConversion&) = delete;
    RgbaConversion& operator=(const RgbaConversion&) = delete;

    [[nodiscard]] bool isOpen() const { return m_isOpen; }
    [[nodiscard]] const char* message() const { return m_message.data(); }
    [[nodiscard]] bool convert(std::uint32_t* raster)
    {
        return TIFFRGBAImageGet(&m_image, raster, m_image.width, m_image.height) == 1;
    }

private:
    static constexpr int stopOnError = 1;
    std::array<char, 1024> m_message {}; ///< the length that the library's interface states
    TIFFRGBAImage m_image {};
    bool m_isOpen;
};

} // namespace

Result<PixelBuffer> decodeThroughLibrary(const TiffReader& reader, const TiffDirectory& directory)
{
    RgbaConversion conversion(reader.get());
    if (!conversion.isOpen()) {
        return failure(Error::Kind::unsupported, conversion.message());
    }
    const Size size = directory.size();
    const auto width = static_cast<std::size_t>(size.width);
    const auto raster
        = allocateZeroed<std::uint32_t>(width * static_cast<std::size_t>(size.height));
    auto pixels = PixelBuffer::create(size, directory.layout);
    if (!raster || !pixels) {
        return failure(Error::Kind::outOfMemory, "no memory for the picture");
    }
    if (!conversion.convert(raster.get()) || reader.messages().dataMissing) {
        return tl::unexpected(reader.messages().failureOf("the picture cannot be converted"));
    }
    const bool hasAlpha = directory.layout.alpha != AlphaInfo::none;
    for (int y = 0; y < size.height; ++y) {
        const std::uint32_t* const from = raster.get() + width * static_cast<std::size_t>(y);
        std::uint8_t* to = pixels->row8(y);
        for (std::size_t x = 0; x < width; ++x) {
            *to++ = static_cast<std::uint8_t>(TIFFGetR(from[x]));
            *to++ = static_cast<std::uint8_t>(TIFFGetG(from[x]));
            *to++ = static_cast<std::uint8_t>(TIFFGetB(from[x]));
            if (hasAlpha) {
                *to++ = static_cast<std::uint8_t>(TIFFGetA(from[x]));
            }
        }
    }
    return pixels;
}

} // namespace vellumine::imaging::tiff
