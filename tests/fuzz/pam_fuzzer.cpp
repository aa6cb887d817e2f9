#include "pipeline/ImageOptimizer.h"
#include "platform/FilePath.h"

#include "DecoderFuzzer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>

// Whatever a picture is like, its file for the WebP encoder is one that can be read: the header as
// it is promised, and four bytes for each pixel.

using namespace vellumine;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t headBytes = 5;
    if (size < headBytes) {
        return 0;
    }
    const imaging::PixelLayout layout { static_cast<imaging::ColorModel>(data[0] % 3),
        data[1] % 2 == 0 ? 8 : 16, static_cast<imaging::AlphaInfo>(data[2] % 8) };
    // Enough for every step and rest of the loops over pixels; more costs executions.
    const imaging::Size dimensions { data[3] % 40 + 1, data[4] % 40 + 1 };
    auto pixels = imaging::PixelBuffer::createZeroed(dimensions, layout);
    require(pixels.has_value());
    const auto samples = std::as_bytes(std::span(data + headBytes, size - headBytes));
    std::ranges::copy(
        samples.first(std::min(samples.size(), pixels->bytes().size())), pixels->bytes().begin());
    const auto space = layout.model == imaging::ColorModel::grey ? imaging::ColorSpace::grey()
        : layout.model == imaging::ColorModel::rgb               ? imaging::ColorSpace::sRgb()
                                                   : imaging::ColorSpace::deviceCmyk();

    const std::string path = "/tmp/vellumine-fuzz-" + std::to_string(::getpid()) + ".pam";
    ::unlink(path.c_str());
    const auto written = ImageOptimizer::writePAM(
        imaging::Image(std::move(*pixels), space), platform::fileUrl(std::filesystem::path(path)));
    if (written) {
        const std::string head = "P7\nWIDTH " + std::to_string(dimensions.width) + "\nHEIGHT "
            + std::to_string(dimensions.height)
            + "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
        struct stat status { };
        require(::stat(path.c_str(), &status) == 0);
        require(static_cast<std::size_t>(status.st_size)
            == head.size()
                + std::size_t { 4 } * static_cast<std::size_t>(dimensions.width)
                    * static_cast<std::size_t>(dimensions.height));
        std::array<char, 128> found {};
        const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        require(::read(file, found.data(), head.size()) == static_cast<ssize_t>(head.size()));
        ::close(file);
        require(std::string_view(found.data(), head.size()) == head);
    }
    ::unlink(path.c_str());
    return 0;
}
