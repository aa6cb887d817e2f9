#include "imaging/ImageSource.h"

#include "imaging/BitmapContext.h"
#include "imaging/FileDescriptor.h"
#include "imaging/codecs/Codec.h"
#include "imaging/codecs/CodecTable.h"
#include "imaging/metadata/Metadata.h"

#include <algorithm>
#include <cmath>

namespace vellumine::imaging {

namespace {

// Every format is told by its first bytes; a long film under a picture's name is refused without
// being read to its end.
constexpr std::size_t sniffedBytes = 4096;

std::string_view nameOf(ColorModel model)
{
    switch (model) {
    case ColorModel::grey:
        return "Gray";
    case ColorModel::rgb:
        return "RGB";
    case ColorModel::cmyk:
        return "CMYK";
    }
    return {};
}

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
    const Codec* codec = nullptr;
    ImageHeader header;
    Limits limits;
    ByteBuffer file; // until the picture is decoded
    std::optional<Result<Image>> decoded; // a failure is remembered like a picture
    std::optional<ImageProperties> properties;
    Orientation orientation = Orientation::topLeft;

    const Result<Image>& picture(ImageUse use = ImageUse::asRows);
    void adopt(DecodedImage picture);
};

// The whole picture, which is decoded unless that was tried before.
const Result<Image>& ImageSource::State::picture(ImageUse use)
{
    if (decoded) {
        return *decoded;
    }
    auto result = codec->decode(file, { .limits = limits, .region = std::nullopt, .use = use });
    if (result) {
        adopt(std::move(*result));
    } else {
        decoded = tl::unexpected(std::move(result.error()));
        file = {};
    }
    return *decoded;
}

// Keeps a whole picture and what its file says about it. The file's bytes have served then, and
// their memory is given back before the next steps ask for theirs.
void ImageSource::State::adopt(DecodedImage picture)
{
    MetadataBlocks blocks
        = codec->type == UniformType::tiff ? metadata::readTiff(file) : std::move(picture.metadata);
    file = {};
    const auto known = picture.orientation ? picture.orientation : metadata::orientation(blocks);
    orientation = known.value_or(Orientation::topLeft);

    ImageProperties found;
    found.setBlocks(std::move(blocks), orientation);
    found.set(PropertyKey::pixelWidth, std::int64_t { picture.storedSize.width });
    found.set(PropertyKey::pixelHeight, std::int64_t { picture.storedSize.height });
    if (known) {
        found.set(PropertyKey::orientation, static_cast<std::int64_t>(*known));
    }
    found.set(PropertyKey::colorModel, std::string(nameOf(picture.image.layout().model)));
    if (std::string name = picture.image.colorSpace().profileName(); !name.empty()) {
        found.set(PropertyKey::profileName, std::move(name));
    }
    switch (codec->type) {
    case UniformType::png:
        found.set(PropertyKey::png, DictionaryPresent {});
        break;
    case UniformType::jpeg:
        found.set(PropertyKey::jfif, DictionaryPresent {});
        break;
    case UniformType::gif:
        found.set(PropertyKey::gif, DictionaryPresent {});
        break;
    default:
        break;
    }
    properties = std::move(found);
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
    auto descriptor = FileDescriptor::openForReading(path);
    if (!descriptor) {
        return tl::unexpected(descriptor.error());
    }
    const auto size = descriptor->size();
    if (!size) {
        return tl::unexpected(size.error());
    }
    ByteBuffer file;
    const auto read = [&](std::uint64_t upTo) {
        return descriptor->readInto(file, static_cast<std::size_t>(upTo) - file.size());
    };
    if (const auto done = read(std::min<std::uint64_t>(*size, sniffedBytes)); !done) {
        return tl::unexpected(done.error());
    }
    if (codecForContent(file) == nullptr) {
        return failure(Error::Kind::unknownType, "the content is of no known type");
    }
    if (*size > limits.maximumBytes) {
        return failure(Error::Kind::limitExceeded, "the file is too large");
    }
    // Read, not mapped: a mapped file that somebody cuts short meanwhile ends the program.
    if (const auto done = read(*size); !done) {
        return tl::unexpected(done.error());
    }
    return create(std::move(file), limits);
}

Result<ImageSource> ImageSource::create(ByteBuffer file, const Limits& limits)
{
    const Codec* const codec = codecForContent(file);
    if (codec == nullptr) {
        return failure(Error::Kind::unknownType, "the content is of no known type");
    }
    const auto header = codec->readHeader(file);
    if (!header) {
        return tl::unexpected(header.error());
    }
    if (const auto allowed
        = limits.check(header->size.width, header->size.height, header->layout.bytesPerPixel());
        !allowed) {
        return tl::unexpected(allowed.error());
    }
    auto state = std::make_unique<State>();
    state->codec = codec;
    state->header = *header;
    state->limits = limits;
    state->file = std::move(file);
    return ImageSource(std::move(state));
}

UniformType ImageSource::type() const
{
    return m_state->codec->type;
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

Result<Image> ImageSource::image(ImageUse use)
{
    const Result<Image>& picture = m_state->picture(use);
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
        auto part = m_state->codec->decode(m_state->file,
            { .limits = m_state->limits, .region = region, .use = ImageUse::asRows });
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
    m_state->file = {};
    m_state->decoded = released();
}

} // namespace vellumine::imaging
