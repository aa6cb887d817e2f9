#include "imaging/codecs/gif/GifFrame.h"

#include "imaging/codecs/LittleEndian.h"

#include <algorithm>
#include <cstring>
#include <gif_lib.h>
#include <string_view>

namespace vellumine::imaging::gif {

/// Where the library reads from.
struct FrameReader::Input {
    ByteSpan file;
    std::size_t at = 0;
    bool ranOut = false;
};

FrameReader::FrameReader() = default;
FrameReader::FrameReader(FrameReader&& other) noexcept = default;
FrameReader& FrameReader::operator=(FrameReader&& other) noexcept = default;
FrameReader::~FrameReader() = default;

void FrameReader::CloseFile::operator()(GifFileType* file) const
{
    DGifCloseFile(file, nullptr);
}

int FrameReader::readInput(GifFileType* file, std::uint8_t* target, int count)
{
    Input& input = *static_cast<Input*>(file->UserData);
    const auto wanted = static_cast<std::size_t>(count);
    if (input.file.size() - input.at < wanted) {
        input.ranOut = true;
        return 0;
    }
    std::memcpy(target, input.file.data() + input.at, wanted);
    input.at += wanted;
    return count;
}

tl::unexpected<Error> FrameReader::inputFailure(const char* detail) const
{
    if (m_file && m_file->Error == D_GIF_ERR_NOT_ENOUGH_MEM) {
        return failure(Error::Kind::outOfMemory, detail);
    }
    return failure(m_input->ranOut ? Error::Kind::truncated : Error::Kind::malformed, detail);
}

Result<FrameReader> FrameReader::open(ByteSpan file)
{
    FrameReader reader;
    reader.m_input = std::make_unique<Input>();
    reader.m_input->file = file;
    int error = 0;
    reader.m_file.reset(DGifOpen(reader.m_input.get(), readInput, &error));
    if (!reader.m_file) {
        return reader.inputFailure("no screen descriptor");
    }
    if (const auto read = reader.readUntilPicture(); !read) {
        return tl::unexpected(read.error());
    }
    return reader;
}

Result<void> FrameReader::readUntilPicture()
{
    while (true) {
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(m_file.get(), &record) == GIF_ERROR) {
            return inputFailure("no picture");
        }
        switch (record) {
        case IMAGE_DESC_RECORD_TYPE:
            return readDescriptor();
        case EXTENSION_RECORD_TYPE:
            if (auto read = readExtension(); !read) {
                return read;
            }
            break;
        default:
            return failure(Error::Kind::malformed, "no picture");
        }
    }
}

Result<void> FrameReader::readExtension()
{
    constexpr std::string_view xmpApplication = "XMP DataXMP";

    int function = 0;
    GifByteType* block = nullptr; // its length, then its bytes; null at the end
    if (DGifGetExtension(m_file.get(), &function, &block) == GIF_ERROR) {
        return inputFailure("a damaged extension");
    }
    const auto bytesOf
        = [](const GifByteType* of) { return std::as_bytes(std::span(of + 1, *of)); };
    bool isXmp = false;
    if (block != nullptr && function == GRAPHICS_EXT_FUNC_CODE) {
        GraphicsControlBlock control {};
        // One of a wrong length says nothing.
        if (DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
            m_transparent.reset();
            if (control.TransparentColor != NO_TRANSPARENT_COLOR) {
                m_transparent = static_cast<std::uint8_t>(control.TransparentColor);
            }
        }
    } else if (block != nullptr && function == APPLICATION_EXT_FUNC_CODE) {
        isXmp = std::ranges::equal(bytesOf(block), std::as_bytes(std::span(xmpApplication)));
    }

    ByteBuffer packet;
    while (block != nullptr) {
        if (DGifGetExtensionNext(m_file.get(), &block) == GIF_ERROR) {
            return inputFailure("a damaged extension");
        }
        if (isXmp && block != nullptr) {
            // The packet is no chain of blocks: it stands there as it is, and what reads as a
            // block's length is one of its characters.
            packet.push_back(static_cast<std::byte>(block[0]));
            packet.insert(packet.end(), bytesOf(block).begin(), bytesOf(block).end());
        }
    }
    // Behind it come 0x01, 0xFF, 0xFE and so on down to 0, which lead any chain to its end. UTF-8
    // has no 0xFF.
    const auto trailer = std::ranges::find(packet, std::byte { 0xFF });
    if (trailer != packet.end() && trailer != packet.begin()) {
        m_xmp.assign(packet.begin(), trailer - 1);
    }
    return {};
}

Result<void> FrameReader::readDescriptor()
{
    if (DGifGetImageDesc(m_file.get()) == GIF_ERROR) {
        return inputFailure("a damaged picture descriptor");
    }
    const GifImageDesc& image = m_file->Image;
    m_frame = { image.Left, image.Top, image.Width, image.Height };
    if (m_frame.width < 1 || m_frame.height < 1) {
        return failure(Error::Kind::malformed, "the picture has no pixels");
    }
    if (image.ColorMap == nullptr && m_file->SColorMap == nullptr) {
        return failure(Error::Kind::malformed, "no palette");
    }
    int codeSize = 0;
    GifByteType* block = nullptr;
    if (DGifGetCode(m_file.get(), &codeSize, &block) == GIF_ERROR) {
        return inputFailure("no pixels");
    }
    if (codeSize < 1 || codeSize > 8) {
        return failure(Error::Kind::malformed, "no such size of codes");
    }
    m_decoder = std::make_unique<LzwDecoder>(static_cast<unsigned>(codeSize));
    if (block != nullptr) {
        m_compressed = { block + 1, block[0] };
    }
    m_screen = { std::max(m_file->SWidth, m_frame.x + m_frame.width),
        std::max(m_file->SHeight, m_frame.y + m_frame.height) };
    return {};
}

PixelLayout FrameReader::layout() const
{
    const bool coversScreen = m_frame.size() == m_screen;
    return { ColorModel::rgb, 8,
        coversScreen && !m_transparent ? AlphaInfo::none : AlphaInfo::last };
}

bool FrameReader::isInterlaced() const
{
    return m_file->Image.Interlace;
}

FrameReader::Color FrameReader::color(std::uint8_t index) const
{
    const ColorMapObject& map
        = m_file->Image.ColorMap != nullptr ? *m_file->Image.ColorMap : *m_file->SColorMap;
    if (index >= map.ColorCount) {
        return {};
    }
    const GifColorType& color = map.Colors[index];
    return { color.Red, color.Green, color.Blue };
}

Result<void> FrameReader::readRow(std::span<std::uint8_t> row)
{
    while (!row.empty()) {
        if (m_pixels.empty()) {
            if (auto decoded = decodeMore(); !decoded) {
                return decoded;
            }
        }
        const std::size_t count = std::min(row.size(), m_pixels.size());
        std::copy_n(m_pixels.begin(), count, row.begin());
        m_pixels = m_pixels.subspan(count);
        row = row.subspan(count);
    }
    return {};
}

Result<void> FrameReader::decodeMore()
{
    while (true) {
        switch (m_decoder->decode(m_compressed)) {
        case LzwDecoder::Status::pixels:
            m_pixels = m_decoder->pixels();
            return {};
        case LzwDecoder::Status::damaged:
            return failure(Error::Kind::malformed, "damaged pixels");
        case LzwDecoder::Status::end:
            return failure(Error::Kind::truncated, "the pixels end before the picture");
        case LzwDecoder::Status::needsBytes:
            break;
        }
        GifByteType* block = nullptr;
        if (DGifGetCodeNext(m_file.get(), &block) == GIF_ERROR) {
            return inputFailure("missing pixels");
        }
        if (block == nullptr) {
            return failure(Error::Kind::truncated, "the pixels end before the picture");
        }
        m_compressed = { block + 1, block[0] };
    }
}

} // namespace vellumine::imaging::gif
