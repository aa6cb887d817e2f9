#include "imaging/codecs/heic/HeicCodec.h"

#include "imaging/codecs/heic/HeicBrands.h"
#include "imaging/codecs/heic/HeicDecoder.h"
#include "imaging/codecs/heic/HeicEncoder.h"

#include <exception>
#include <libheif/heif.h>
#include <new>

namespace vellumine::imaging::heic {

namespace {

/// Runs what calls the library; none of its exceptions leaves.
template <typename Operation>
auto guarded(Error::Kind otherwise, const Operation& operation) -> decltype(operation())
{
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return failure(Error::Kind::outOfMemory, "no memory for the picture");
    } catch (const std::exception& exception) {
        return failure(otherwise, exception.what());
    }
}

} // namespace

bool sniffHeic(ByteSpan file)
{
    return containerOf(file) == Container::heic;
}

bool sniffHeif(ByteSpan file)
{
    return containerOf(file) == Container::heif;
}

Result<ImageHeader> readHeader(ByteSpan file)
{
    return guarded(Error::Kind::malformed, [file]() -> Result<ImageHeader> {
        const auto picture = HeicPicture::open(file, Limits {}.maximumSide);
        return picture ? picture->header() : tl::unexpected(picture.error());
    });
}

Result<DecodedImage> decode(ByteSpan file, const DecodeOptions& options)
{
    return guarded(Error::Kind::malformed, [file, &options]() -> Result<DecodedImage> {
        const auto picture = HeicPicture::open(file, options.limits.maximumSide);
        return picture ? picture->decode(options.limits) : tl::unexpected(picture.error());
    });
}

Result<ByteBuffer> encodeHeic(const Image& image, const EncodeOptions& options)
{
    return guarded(
        Error::Kind::encodingFailed, [&image, &options] { return encodePicture(image, options); });
}

Result<ByteBuffer> encodeHeif(const Image& image, const EncodeOptions& options)
{
    auto file = encodeHeic(image, options);
    if (file) {
        makeHeif(*file);
    }
    return file;
}

void loadCodecs()
{
    // They stay for the life of the process. Without any, each picture says what is missing.
    [[maybe_unused]] const heif_error error = heif_init(nullptr);
}

} // namespace vellumine::imaging::heic
