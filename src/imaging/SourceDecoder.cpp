#include "imaging/SourceDecoder.h"

#include "imaging/BitmapContext.h"
#include "imaging/DeferredPixels.h"
#include "imaging/codecs/CodecTable.h"
#include "imaging/metadata/Metadata.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

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

/// What a codec has drawn as it was planned. Where something else is asked for after all, the file
/// is decoded once more, the whole of it.
class DrawnByCodec final : public DeferredPixels {
public:
    DrawnByCodec(std::shared_ptr<const DeferredPixels> drawn, const Codec& codec,
        const Limits& limits, std::shared_ptr<const ByteBuffer> file)
        : m_drawn(std::move(drawn))
        , m_codec(codec)
        , m_limits(limits)
        , m_file(std::move(file))
    {
    }

    [[nodiscard]] Result<Image> rows(Rect part) const override
    {
        return orElse(m_drawn->rows(part), [part](const Image& whole) { return whole.rows(part); });
    }
    [[nodiscard]] Result<Image> drawn(const Drawing& drawing) const override
    {
        return orElse(m_drawn->drawn(drawing),
            [&drawing](const Image& whole) { return drawnUpright(whole, drawing); });
    }

private:
    template <typename Make> Result<Image> orElse(Result<Image> made, const Make& make) const
    {
        if (made || made.error().kind != Error::Kind::unsupported) {
            return made;
        }
        const std::scoped_lock lock(m_mutex);
        if (!m_whole) {
            m_whole = m_codec.decode(*m_file, { .limits = m_limits, .wish = {} })
                          .map([](DecodedImage&& picture) { return std::move(picture.image); });
        }
        return m_whole->and_then(make);
    }

    const std::shared_ptr<const DeferredPixels> m_drawn;
    const Codec& m_codec;
    const Limits m_limits;
    const std::shared_ptr<const ByteBuffer> m_file;
    mutable std::mutex m_mutex;
    mutable std::optional<Result<Image>> m_whole;
};

class CodecDecoder final : public SourceDecoder {
public:
    CodecDecoder(
        const Codec& codec, const ImageHeader& header, const Limits& limits, ByteBuffer file)
        : m_codec(codec)
        , m_header(header)
        , m_limits(limits)
        , m_file(std::make_shared<const ByteBuffer>(std::move(file)))
    {
    }

    [[nodiscard]] UniformType type() const override { return m_codec.type; }
    [[nodiscard]] const ImageHeader& header() const override { return m_header; }

    Result<SourcePicture> decode(const PictureWish& wish) override
    {
        auto decoded = m_codec.decode(*m_file, { .limits = m_limits, .wish = wish });
        if (!decoded) {
            return tl::unexpected(std::move(decoded.error()));
        }
        if (decoded->isRegion) {
            return SourcePicture { std::move(decoded->image), true, Orientation::topLeft, {} };
        }
        if (decoded->isDrawn) {
            const Image& image = decoded->image;
            decoded->image = Image(image.size(), image.layout(), image.colorSpace(),
                std::make_shared<DrawnByCodec>(image.deferred(), m_codec, m_limits, m_file),
                Orientation::topLeft);
        }
        return described(std::move(*decoded));
    }

private:
    [[nodiscard]] SourcePicture described(DecodedImage picture) const
    {
        MetadataBlocks blocks = m_codec.type == UniformType::tiff ? metadata::readTiff(*m_file)
                                                                  : std::move(picture.metadata);
        const auto known
            = picture.orientation ? picture.orientation : metadata::orientation(blocks);
        const Orientation orientation = known.value_or(Orientation::topLeft);
        const auto resolution
            = picture.resolution ? picture.resolution : metadata::resolution(blocks);

        ImageProperties found;
        found.setBlocks(std::move(blocks),
            picture.turnedFrom == Orientation::topLeft ? orientation : picture.turnedFrom);
        found.set(PropertyKey::pixelWidth, std::int64_t { picture.storedSize.width });
        found.set(PropertyKey::pixelHeight, std::int64_t { picture.storedSize.height });
        if (known) {
            found.set(PropertyKey::orientation, static_cast<std::int64_t>(*known));
        }
        if (resolution) {
            found.set(PropertyKey::resolution, *resolution);
        }
        found.set(PropertyKey::colorModel, std::string(nameOf(picture.image.layout().model)));
        if (std::string name = picture.image.colorSpace().profileName(); !name.empty()) {
            found.set(PropertyKey::profileName, std::move(name));
        }
        if (const auto dictionary = dictionaryOf(m_codec.type)) {
            found.set(*dictionary,
                picture.texts.empty() ? PropertyValue(DictionaryPresent {})
                                      : PropertyValue(std::move(picture.texts)));
        }
        return { std::move(picture.image), false, orientation, std::move(found) };
    }

    const Codec& m_codec;
    ImageHeader m_header;
    Limits m_limits;
    std::shared_ptr<const ByteBuffer> m_file;
};

} // namespace

Result<std::unique_ptr<SourceDecoder>> decodingHere(FileDescriptor file, const Limits& limits)
{
    const auto size = file.size();
    if (!size) {
        return tl::unexpected(size.error());
    }
    ByteBuffer bytes;
    const auto read = [&](std::uint64_t upTo) {
        return file.readInto(bytes, static_cast<std::size_t>(upTo) - bytes.size());
    };
    if (const auto done = read(std::min<std::uint64_t>(*size, sniffedBytes)); !done) {
        return tl::unexpected(done.error());
    }
    if (codecForContent(bytes) == nullptr) {
        return failure(Error::Kind::unknownType, "the content is of no known type");
    }
    if (*size > limits.maximumBytes) {
        return failure(Error::Kind::limitExceeded, "the file is too large");
    }
    // Read, not mapped: a mapped file that somebody cuts short meanwhile ends the program.
    if (const auto done = read(*size); !done) {
        return tl::unexpected(done.error());
    }
    return decodingHere(std::move(bytes), limits);
}

Result<std::unique_ptr<SourceDecoder>> decodingHere(ByteBuffer file, const Limits& limits)
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
    return std::make_unique<CodecDecoder>(*codec, *header, limits, std::move(file));
}

} // namespace vellumine::imaging
