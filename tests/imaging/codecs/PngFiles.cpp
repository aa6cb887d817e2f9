#include "imaging/codecs/PngFiles.h"

#include <algorithm>
#include <array>

#include <libdeflate.h>
#include <png.h>

namespace vellumine::test {

namespace {

constexpr std::size_t signatureLength = 8;

int channelsOf(int colorType)
{
    switch (colorType) {
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return 2;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 1;
    }
}

std::string bigEndian(std::uint32_t value)
{
    std::string bytes;
    for (const unsigned shift : { 24U, 16U, 8U, 0U }) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

/// The samples of a row next to each other, as the file has them.
std::vector<png_byte> packedRow(const PngRecipe& recipe, int y)
{
    const int channels = channelsOf(recipe.colorType);
    const auto bits = static_cast<std::size_t>(recipe.size.width)
        * static_cast<std::size_t>(channels * recipe.bitDepth);
    std::vector<png_byte> row((bits + 7) / 8);
    std::size_t at = 0;
    for (int x = 0; x < recipe.size.width; ++x) {
        for (int c = 0; c < channels; ++c) {
            const unsigned value = recipe.sample(x, y, c);
            for (int bit = recipe.bitDepth - 1; bit >= 0; --bit, ++at) {
                const unsigned isSet = (value >> static_cast<unsigned>(bit)) & 1U;
                row[at / 8] = static_cast<png_byte>(row[at / 8] | (isSet << (7 - at % 8)));
            }
        }
    }
    return row;
}

std::uint32_t lengthAt(imaging::ByteSpan file, std::size_t offset)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = (value << 8U) | std::to_integer<std::uint32_t>(file[offset + i]);
    }
    return value;
}

std::string_view textAt(imaging::ByteSpan file, std::size_t offset, std::size_t length)
{
    return { reinterpret_cast<const char*>(file.data()) + offset, length };
}

void insert(imaging::ByteBuffer& file, std::size_t offset, std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(offset), bytes.begin(), bytes.end());
}

} // namespace

imaging::ByteBuffer pngFile(const PngRecipe& recipe)
{
    imaging::ByteBuffer file;
    png_structp library = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(library);
    png_set_write_fn(
        library, &file,
        [](png_structp writer, png_bytep data, std::size_t length) {
            auto& bytes = *static_cast<imaging::ByteBuffer*>(png_get_io_ptr(writer));
            const auto more = std::as_bytes(std::span(data, length));
            bytes.insert(bytes.end(), more.begin(), more.end());
        },
        nullptr);
    png_set_IHDR(library, info, static_cast<png_uint_32>(recipe.size.width),
        static_cast<png_uint_32>(recipe.size.height), recipe.bitDepth, recipe.colorType,
        recipe.interlacing == PngRecipe::Interlacing::adam7 ? PNG_INTERLACE_ADAM7
                                                            : PNG_INTERLACE_NONE,
        PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!recipe.palette.empty()) {
        std::vector<png_color> colors;
        for (std::size_t i = 0; i + 2 < recipe.palette.size(); i += 3) {
            colors.push_back({ recipe.palette[i], recipe.palette[i + 1], recipe.palette[i + 2] });
        }
        png_set_PLTE(library, info, colors.data(), static_cast<int>(colors.size()));
    }
    png_write_info(library, info);
    const int passes = png_set_interlace_handling(library);
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < recipe.size.height; ++y) {
            png_write_row(library, packedRow(recipe, y).data());
        }
    }
    png_write_end(library, info);
    png_destroy_write_struct(&library, &info);
    insert(file, findChunk(file, "IEND"), recipe.chunksBehind);
    insert(file, findChunk(file, "IDAT"), recipe.chunks);
    return file;
}

std::string chunk(std::string_view type, std::string_view data)
{
    const std::string checked = std::string(type).append(data);
    return bigEndian(static_cast<std::uint32_t>(data.size()))
        .append(checked)
        .append(bigEndian(libdeflate_crc32(0, checked.data(), checked.size())));
}

std::size_t findChunk(imaging::ByteSpan file, std::string_view type)
{
    std::size_t at = signatureLength;
    while (at + 12 <= file.size() && textAt(file, at + 4, 4) != type) {
        at += 12 + lengthAt(file, at);
    }
    return std::min(at, file.size());
}

std::string chunkContent(imaging::ByteSpan file, std::string_view type)
{
    const std::size_t at = findChunk(file, type);
    if (at + 12 > file.size()) {
        return {};
    }
    return std::string(textAt(file, at + 8, lengthAt(file, at)));
}

std::string zlibStream(std::string_view text)
{
    libdeflate_compressor* const compressor = libdeflate_alloc_compressor(9);
    std::string stream(libdeflate_zlib_compress_bound(compressor, text.size()), '\0');
    stream.resize(libdeflate_zlib_compress(
        compressor, text.data(), text.size(), stream.data(), stream.size()));
    libdeflate_free_compressor(compressor);
    return stream;
}

} // namespace vellumine::test
