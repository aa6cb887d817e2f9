// Decodes the JPEG files on its command line to RGB and throws the pixels away: the least that any
// program spends on reading them with this library. With "--encode QUALITY" in front it hands every
// row to the encoder, with the options that the product writes with, and throws the file away. A
// file that cannot be read ends it.

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include <jpeglib.h>

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

/// Writes a file of the decoded size into memory, row by row.
class Encoder {
public:
    Encoder(const jpeg_decompress_struct& decoder, int quality)
    {
        m_library.err = jpeg_std_error(&m_errors); // prints and exits on an error
        jpeg_create_compress(&m_library);
        jpeg_mem_dest(&m_library, &m_bytes, &m_size);
        m_library.image_width = decoder.output_width;
        m_library.image_height = decoder.output_height;
        m_library.input_components = decoder.output_components;
        m_library.in_color_space = decoder.out_color_space;
        jpeg_set_defaults(&m_library);
        jpeg_set_quality(&m_library, quality, TRUE);
        m_library.optimize_coding = TRUE;
        jpeg_simple_progression(&m_library);
        jpeg_start_compress(&m_library, TRUE);
    }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;
    ~Encoder()
    {
        jpeg_finish_compress(&m_library);
        jpeg_destroy_compress(&m_library);
        std::free(m_bytes);
    }

    void write(JSAMPROW row) { jpeg_write_scanlines(&m_library, &row, 1); }

private:
    jpeg_error_mgr m_errors {};
    jpeg_compress_struct m_library {};
    unsigned char* m_bytes = nullptr;
    unsigned long m_size = 0;
};

/// Encodes as well where a quality is given; 0 is none.
void decode(std::FILE* file, int quality)
{
    jpeg_error_mgr errors {};
    jpeg_decompress_struct decoder {};
    decoder.err = jpeg_std_error(&errors); // prints and exits on an error
    jpeg_create_decompress(&decoder);
    jpeg_stdio_src(&decoder, file);
    jpeg_read_header(&decoder, TRUE);
    jpeg_start_decompress(&decoder);
    std::vector<JSAMPLE> pixels(
        std::size_t { decoder.output_width } * static_cast<std::size_t>(decoder.output_components));
    const auto encoder = quality > 0 ? std::make_unique<Encoder>(decoder, quality) : nullptr;
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW row = pixels.data();
        jpeg_read_scanlines(&decoder, &row, 1);
        if (encoder) {
            encoder->write(row);
        }
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
}

} // namespace

int main(int argc, char** argv)
{
    std::span arguments(argv + 1, static_cast<std::size_t>(argc - 1));
    int quality = 0;
    if (arguments.size() >= 2 && std::strcmp(arguments[0], "--encode") == 0) {
        quality = std::atoi(arguments[1]);
        arguments = arguments.subspan(2);
    }
    for (const char* path : arguments) {
        const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path, "rb"));
        if (!file) {
            std::perror(path);
            return EXIT_FAILURE;
        }
        decode(file.get(), quality);
    }
    return EXIT_SUCCESS;
}
