#pragma once

#include "imaging/Bytes.h"
#include "imaging/Error.h"
#include "imaging/Image.h"
#include "imaging/ImageProperties.h"
#include "imaging/Limits.h"
#include "imaging/Orientation.h"
#include "imaging/PictureWish.h"
#include "imaging/UniformType.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vellumine::imaging {

class SourceDecoder;

/// A picture file that is open for reading. Opening reads the file and looks at its header; the
/// picture is decoded once, when it is first asked for, and given back from then on. Not for
/// several threads at once.
class ImageSource {
public:
    /// Opens a regular file. Fails with Io when it cannot be read (a pipe or a device is never
    /// waited for), with UnknownType when the content is of no known type, with LimitExceeded when
    /// the header asks for too much or the file alone is larger than `limits.maximumBytes`, and
    /// with what the codec says about the header.
    static Result<ImageSource> create(const std::filesystem::path& path, const Limits& limits);
    /// The same over bytes in memory.
    static Result<ImageSource> create(ByteBuffer file, const Limits& limits);

    /// The type of a file, from its first bytes alone; none when they are of no known type or
    /// cannot be read.
    static std::optional<UniformType> typeOf(const std::filesystem::path& path);

    /// Over a file that somebody else has opened, to be decoded wherever that is.
    static ImageSource create(std::unique_ptr<SourceDecoder> decoder);

    ImageSource(ImageSource&& other) noexcept;
    ImageSource& operator=(ImageSource&& other) noexcept;
    ~ImageSource();

    /// The type, from the content alone.
    [[nodiscard]] UniformType type() const;
    /// The size of the first picture as it is stored, from the header.
    [[nodiscard]] Size storedSize() const;
    /// Memory that the decoded picture takes, from the header, in bytes.
    [[nodiscard]] std::uint64_t decodedBytes() const;

    /// The first picture as it is stored. It is decoded for the use that is named first, and for
    /// the drawing that is planned then.
    Result<Image> image(
        ImageUse use = ImageUse::asRows, const std::optional<DrawingPlan>& plan = std::nullopt);
    /// Its properties; decodes the picture when that has not happened yet.
    Result<ImageProperties> properties();
    /// The first picture turned upright, scaled down to fit `maximumPixelSize` on its longer side
    /// where it is larger. With an orientation of 1 and enough room, the very picture of image().
    /// What had to be scaled has the layout of bitmaps, and is sRGB where it was not RGB.
    Result<Image> thumbnailWithTransform(int maximumPixelSize);
    /// The given part of the stored picture, decoded alone where the codec can. Fails with
    /// Malformed when the part does not lie inside the picture.
    Result<Image> imageRegion(Rect region);

    /// Gives the memory of the picture and of the file back. Pictures that were handed out stay,
    /// and so do the properties once they were asked for; everything else fails with Io from then
    /// on.
    void releaseImage();

private:
    struct State;
    explicit ImageSource(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

} // namespace vellumine::imaging
