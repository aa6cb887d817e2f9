#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/FileDescriptor.h"
#include "imaging/Geometry.h"
#include "imaging/Image.h"
#include "imaging/ImageProperties.h"
#include "imaging/Limits.h"
#include "imaging/Orientation.h"
#include "imaging/PictureWish.h"
#include "imaging/UniformType.h"
#include "imaging/codecs/Codec.h"

#include <memory>
#include <optional>

namespace vellumine::imaging {

/// A decoded picture and what its file says about it.
struct SourcePicture {
    Image image;
    /// True when `image` is the part that was asked for and not the whole picture.
    bool isRegion = false;
    Orientation orientation = Orientation::topLeft;
    ImageProperties properties;
};

/// An open picture file of known type whose header was found good: what an ImageSource stands on.
class SourceDecoder {
public:
    SourceDecoder() = default;
    virtual ~SourceDecoder() = default;
    SourceDecoder(const SourceDecoder&) = delete;
    SourceDecoder& operator=(const SourceDecoder&) = delete;

    [[nodiscard]] virtual UniformType type() const = 0;
    [[nodiscard]] virtual const ImageHeader& header() const = 0;

    /// The first picture: the whole of it, or the region alone, in rows, where that costs less.
    /// Once the whole picture was given, or failed, nothing is asked for any more.
    virtual Result<SourcePicture> decode(const PictureWish& wish) = 0;
};

/// Reads the file and decodes it in this process. Fails as ImageSource::create() does.
[[nodiscard]] Result<std::unique_ptr<SourceDecoder>> decodingHere(
    FileDescriptor file, const Limits& limits);
[[nodiscard]] Result<std::unique_ptr<SourceDecoder>> decodingHere(
    ByteBuffer file, const Limits& limits);

} // namespace vellumine::imaging
