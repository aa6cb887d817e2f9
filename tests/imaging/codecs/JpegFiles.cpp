#include "imaging/codecs/JpegFiles.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace vellumine::test {

namespace {

/// The components one after the other instead of interleaved.
constexpr std::array separateScans { jpeg_scan_info { 1, { 0 }, 0, 63, 0, 0 },
    jpeg_scan_info { 1, { 1 }, 0, 63, 0, 0 }, jpeg_scan_info { 1, { 2 }, 0, 63, 0, 0 } };

J_COLOR_SPACE inputSpace(imaging::ColorModel model)
{
    switch (model) {
    case imaging::ColorModel::grey:
        return JCS_GRAYSCALE;
    case imaging::ColorModel::rgb:
        return JCS_RGB;
    case imaging::ColorModel::cmyk:
        break;
    }
    return JCS_CMYK;
}

void setCoding(jpeg_compress_struct& library, JpegRecipe::Coding coding)
{
    switch (coding) {
    case JpegRecipe::Coding::baseline:
        break;
    case JpegRecipe::Coding::progressive:
        jpeg_simple_progression(&library);
        break;
    case JpegRecipe::Coding::arithmetic:
        library.arith_code = TRUE;
        break;
    case JpegRecipe::Coding::separateScans:
        library.scan_info = separateScans.data();
        library.num_scans = static_cast<int>(separateScans.size());
        break;
    }
}

} // namespace

imaging::ByteBuffer jpegFile(const imaging::Image& image, const JpegRecipe& recipe)
{
    jpeg_error_mgr errors {};
    jpeg_compress_struct library {};
    library.err = jpeg_std_error(&errors);
    jpeg_create_compress(&library);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&library, &bytes, &size);

    library.image_width = static_cast<JDIMENSION>(image.width());
    library.image_height = static_cast<JDIMENSION>(image.height());
    library.input_components = image.layout().channels();
    library.in_color_space = inputSpace(image.layout().model);
    jpeg_set_defaults(&library);
    jpeg_set_colorspace(&library, recipe.fileSpace);
    jpeg_set_quality(&library, recipe.quality, TRUE);
    for (int i = 0; i < library.num_components; ++i) {
        library.comp_info[i].h_samp_factor = i == 0 ? recipe.horizontalSampling : 1;
        library.comp_info[i].v_samp_factor
            = i == 0 ? recipe.verticalSampling : recipe.verticalSamplingOfOthers;
    }
    library.restart_interval = recipe.restartInterval;
    if (recipe.adobe == JpegRecipe::Adobe::without) {
        library.write_Adobe_marker = FALSE;
    }
    setCoding(library, recipe.coding);

    jpeg_start_compress(&library, TRUE);
    for (const auto& [marker, content] : recipe.markers) {
        jpeg_write_marker(&library, marker, reinterpret_cast<const JOCTET*>(content.data()),
            static_cast<unsigned>(content.size()));
    }
    while (library.next_scanline < library.image_height) {
        auto* row = const_cast<JSAMPROW>(image.row8(static_cast<int>(library.next_scanline)));
        jpeg_write_scanlines(&library, &row, 1);
    }
    jpeg_finish_compress(&library);
    const auto* const first = reinterpret_cast<const std::byte*>(bytes);
    imaging::ByteBuffer file(first, first + size);
    jpeg_destroy_compress(&library);
    std::free(bytes); // NOLINT(cppcoreguidelines-no-malloc): the library's own allocation
    return file;
}

std::size_t pictureDataStart(imaging::ByteSpan file)
{
    std::size_t at = 2;
    while (at + 4 <= file.size()) {
        const auto marker = std::to_integer<unsigned>(file[at + 1]);
        const std::size_t length = std::to_integer<std::size_t>(file[at + 2]) * 256
            + std::to_integer<std::size_t>(file[at + 3]);
        at += 2 + length;
        if (marker == 0xDA) {
            return at;
        }
    }
    throw std::runtime_error("no scan");
}

std::size_t scanHeader(imaging::ByteSpan file, int n)
{
    for (std::size_t at = 2; at + 1 < file.size(); ++at) {
        if (file[at] == std::byte { 0xFF } && file[at + 1] == std::byte { 0xDA } && n-- == 0) {
            return at;
        }
    }
    return file.size();
}

imaging::ByteBuffer endedEarlyOnPurpose(imaging::ByteBuffer progressive)
{
    progressive.resize(scanHeader(progressive, 8));
    progressive.push_back(std::byte { 0xFF });
    progressive.push_back(std::byte { 0xD9 });
    return progressive;
}

} // namespace vellumine::test
