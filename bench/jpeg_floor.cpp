// Decodes the JPEG files on its command line to RGB and throws the pixels away: the least that any
// program spends on reading them with this library. A file that cannot be read ends it.

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

#include <jpeglib.h>

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

void decode(std::FILE* file)
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
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW row = pixels.data();
        jpeg_read_scanlines(&decoder, &row, 1);
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
}

} // namespace

int main(int argc, char** argv)
{
    const std::span arguments(argv, static_cast<std::size_t>(argc));
    for (const char* path : arguments.subspan(1)) {
        const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path, "rb"));
        if (!file) {
            std::perror(path);
            return EXIT_FAILURE;
        }
        decode(file.get());
    }
    return EXIT_SUCCESS;
}
