#include "imaging/ImageSource.h"

#include "imaging/BitmapContext.h"
#include "imaging/FileDescriptor.h"
#include "imaging/SourceDecoder.h"
#include "imaging/codecs/CodecTable.h"

#include <algorithm>
#include <cmath>

namespace vellumine::imaging {

namespace {

Size fitted(Size size, int maximumSide)
{
    const double scale = static_cast<double>(maximumSide) / std::max(size.width, size.height);
    const auto scaled
        = [scale](int side) { return std::max(1, static_cast<int>(std::lround(side * scale))); };
    return { scaled(size.width), scaled(size.height) };
}

Result<Image> scaledTo(const Image& image, Size size)
{
    const ColorSpace colorSpace
        = image.colorSpace().model() == ColorModel::rgb ? image.colorSpace() : ColorSpace::sRgb();
    auto context = BitmapContext::create(size, 8, colorSpace);
    if (!context) {
        return tl::unexpected(context.error());
    }
    if (auto drawn = context->draw(image); !drawn) {
        return tl::unexpected(drawn.error());
    }
    return std::move(*context).makeImage();
}

tl::unexpected<Error> released()
{
    return failure(Error::Kind::io, "the picture was given back");
}

} // namespace

struct ImageSource::State {
    UniformType type;
    ImageHeader header;
    std::unique_ptr<SourceDecoder> decoder; // until the picture is decoded
    std::optional<Result<Image>> decoded; // a failure is remembered like a picture
    std::optional<ImageProperties> properties;
    Orientation orientation = Orientation::topLeft;

    const Result<Image>& picture(const PictureWish& wish = {});
    void adopt(SourcePicture picture);
};

// The whole picture, which is decoded unless that was tried before.
const Result<Image>& ImageSource::State::picture(const PictureWish& wish)
{
    if (decoded) {
        return *decoded;
    }
    auto result = decoder->decode(wish);
    if (result) {
        adopt(std::move(*result));
    } else {
        decoded = tl::unexpected(std::move(result.error()));
        decoder.reset();
    }
    return *decoded;
}

// Keeps a whole picture and what its file says about it. The file has served then, and its memory
// is given back before the next steps ask for theirs; a picture that needs it longer has it.
void ImageSource::State::adopt(SourcePicture picture)
{
    decoder.reset();
    orientation = picture.orientation;
    properties = std::move(picture.properties);
    decoded = std::move(picture.image);
}

ImageSource::ImageSource(std::unique_ptr<State> state)
    : m_state(std::move(state))
{
}
ImageSource::ImageSource(ImageSource&&) noexcept = default;
ImageSource& ImageSource::operator=(ImageSource&&) noexcept = default;
ImageSource::~ImageSource() = default;

Result<ImageSource> ImageSource::create(const std::filesystem::path& path, const Limits& limits)
{
    return FileDescriptor::openForReading(path)
        .and_then(
            [&limits](FileDescriptor&& file) { return decodingHere(std::move(file), limits); })
        .map([](std::unique_ptr<SourceDecoder>&& decoder) { return create(std::move(decoder)); });
}

Result<ImageSource> ImageSource::create(ByteBuffer file, const Limits& limits)
{
    return decodingHere(std::move(file), limits).map([](std::unique_ptr<SourceDecoder>&& decoder) {
        return create(std::move(decoder));
    });
}

std::optional<UniformType> ImageSource::typeOf(const std::filesystem::path& path)
{
    constexpr std::size_t enough = 4096; // no type looks further
    auto file = FileDescriptor::openForReading(path);
    ByteBuffer beginning;
    if (!file || !file->readInto(beginning, enough)) {
        return std::nullopt;
    }
    const Codec* const codec = codecForContent(beginning);
    return codec != nullptr ? std::optional(codec->type) : std::nullopt;
}

ImageSource ImageSource::create(std::unique_ptr<SourceDecoder> decoder)
{
    auto state = std::make_unique<State>();
    state->type = decoder->type();
    state->header = decoder->header();
    state->decoder = std::move(decoder);
    return ImageSource(std::move(state));
}

UniformType ImageSource::type() const
{
    return m_state->type;
}

Size ImageSource::storedSize() const
{
    return m_state->header.size;
}

std::uint64_t ImageSource::decodedBytes() const
{
    const ImageHeader& header = m_state->header;
    return static_cast<std::uint64_t>(header.size.width)
        * static_cast<std::uint64_t>(header.size.height)
        * static_cast<std::uint64_t>(header.layout.bytesPerPixel());
}

Result<Image> ImageSource::image(ImageUse use, const std::optional<DrawingPlan>& plan)
{
    const Result<Image>& picture
        = m_state->picture({ .region = std::nullopt, .use = use, .plan = plan });
    return picture && use == ImageUse::asRows ? picture->withRows() : picture;
}

Result<ImageProperties> ImageSource::properties()
{
    const Result<Image>& picture = m_state->picture();
    if (!m_state->properties) {
        return tl::unexpected(picture.error());
    }
    return *m_state->properties;
}

Result<Image> ImageSource::thumbnailWithTransform(int maximumPixelSize)
{
    const Result<Image>& stored = m_state->picture();
    if (!stored) {
        return stored;
    }
    const int maximumSide = std::max(1, maximumPixelSize);
    if (std::max(stored->width(), stored->height()) <= maximumSide) {
        return upright(*stored, m_state->orientation);
    }
    // The smaller picture is the cheaper one to turn.
    return scaledTo(*stored, fitted(stored->size(), maximumSide))
        .and_then([this](const Image& scaled) { return upright(scaled, m_state->orientation); });
}

Result<Image> ImageSource::imageRegion(Rect region)
{
    if (!contains(m_state->header.size, region)) {
        return failure(Error::Kind::malformed, "the part lies outside of the picture");
    }
    if (!m_state->decoded) {
        auto part = m_state->decoder->decode(
            { .region = region, .use = ImageUse::asRows, .plan = std::nullopt });
        if (part && part->isRegion) {
            return std::move(part->image);
        }
        if (!part) {
            return tl::unexpected(part.error());
        }
        m_state->adopt(std::move(*part));
    }
    const Result<Image>& whole = m_state->picture();
    return whole ? whole->rows(region) : whole;
}

void ImageSource::releaseImage()
{
    m_state->decoder.reset();
    m_state->decoded = released();
}

} // namespace vellumine::imaging
