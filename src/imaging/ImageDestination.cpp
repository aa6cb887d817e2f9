#include "imaging/ImageDestination.h"

#include "imaging/BitmapContext.h"
#include "imaging/codecs/CodecTable.h"
#include "imaging/metadata/Metadata.h"

#include <utility>

namespace vellumine::imaging {

namespace {

/// Whether a file of the type can say what the picture's numbers mean. Where it cannot, they have
/// to become sRGB numbers.
bool storesColors(UniformType type, const Image& image)
{
    const ColorSpace& space = image.colorSpace();
    switch (space.model()) {
    case ColorModel::cmyk:
        return type == UniformType::jpeg || type == UniformType::tiff;
    case ColorModel::rgb:
        return type != UniformType::gif || space.isSRgbEquivalent();
    case ColorModel::grey: // palettes hold RGB, and so do their profiles
        return (type != UniformType::gif && type != UniformType::bmp) || space.iccProfile().empty();
    }
    return true;
}

Result<Image> convertedToSRgb(const Image& image)
{
    auto context = BitmapContext::create(image.size(), 8, ColorSpace::sRgb());
    if (!context) {
        return tl::unexpected(context.error());
    }
    if (auto drawn = context->draw(image); !drawn) {
        return tl::unexpected(drawn.error());
    }
    return std::move(*context).makeImage();
}

/// What becomes of a failure before the first byte is written: the disk has no part in it, and
/// whatever could not be read were the picture's pixels.
tl::unexpected<Error> beforeWriting(const Error& error)
{
    return error.kind == Error::Kind::io ? failure(Error::Kind::truncated, error.detail)
                                         : tl::unexpected(error);
}

Result<void> checkIsWritten(UniformType type)
{
    if (codecForType(type).encode == nullptr) {
        return failure(Error::Kind::unsupported, "the type is only read");
    }
    return {};
}

/// Whether it is EXIF's fields that say the resolution in a file of the type: they are TIFF's own.
/// HEIC has nothing else, and no block is made up for it.
bool saysResolutionInExif(UniformType type, const MetadataBlocks& blocks)
{
    const bool isHeic = type == UniformType::heic || type == UniformType::heif;
    return type == UniformType::tiff || (isHeic && !blocks.exif.empty());
}

} // namespace

ImageDestination::ImageDestination(FileDescriptor file, UniformType type)
    : m_file(std::move(file))
    , m_type(type)
{
}

std::vector<UniformType> ImageDestination::encodableTypes()
{
    std::vector<UniformType> types;
    for (const UniformType type : allUniformTypes) {
        if (codecForType(type).encode != nullptr) {
            types.push_back(type);
        }
    }
    return types;
}

bool ImageDestination::encodesInPieces(UniformType type)
{
    return codecForType(type).roundTrip != nullptr;
}

Result<ImageDestination> ImageDestination::create(
    const std::filesystem::path& path, UniformType type)
{
    return checkIsWritten(type)
        .and_then([&path] { return FileDescriptor::createForWriting(path); })
        .map([type](FileDescriptor&& file) { return ImageDestination(std::move(file), type); });
}

Result<ImageDestination> ImageDestination::create(FileDescriptor file, UniformType type)
{
    return checkIsWritten(type).map(
        [&file, type] { return ImageDestination(std::move(file), type); });
}

void ImageDestination::addImage(Image image, ImageProperties properties)
{
    m_image = std::move(image);
    m_properties = std::move(properties);
}

/// Of the upright picture.
std::optional<Resolution> ImageDestination::resolution() const
{
    const auto stored = m_properties.resolution();
    return stored && swapsSides(m_properties.storedOrientation()) ? stored->withSidesSwapped()
                                                                  : stored;
}

MetadataBlocks ImageDestination::travellingBlocks(const Image& image) const
{
    const metadata::Groups kept {
        .exif = m_properties.contains(PropertyKey::exif),
        .gps = m_properties.contains(PropertyKey::gps),
        .tiff = m_properties.contains(PropertyKey::tiff),
        .iptc = m_properties.contains(PropertyKey::iptc),
        .xmp = m_properties.contains(PropertyKey::xmp),
    };
    if (kept == metadata::Groups {}) {
        return {};
    }
    return metadata::travelling(m_properties.blocks(), kept,
        { .size = image.size(),
            .wasTurned = m_properties.storedOrientation() != Orientation::topLeft,
            .isSRgb = image.colorSpace().isSRgbEquivalent(),
            .hasSidesSwapped = swapsSides(m_properties.storedOrientation()) });
}

MetadataBlocks ImageDestination::metadataFor(const Image& image) const
{
    MetadataBlocks blocks = travellingBlocks(image);
    if (const auto stated = resolution(); stated && saysResolutionInExif(m_type, blocks)) {
        blocks.exif = metadata::withResolution(std::move(blocks.exif), *stated);
    }
    return blocks;
}

FileTexts ImageDestination::texts() const
{
    const auto dictionary = dictionaryOf(m_type);
    return dictionary ? m_properties.texts(*dictionary) : FileTexts {};
}

Result<void> ImageDestination::finalize()
{
    if (!m_image) {
        return failure(Error::Kind::encodingFailed, "no picture was added");
    }
    const Codec& codec = codecForType(m_type);
    // The rows of a picture that has yet to be turned would be columns.
    const bool staysDeferred
        = encodesInPieces(m_type) && m_image->orientation() == Orientation::topLeft;
    auto encodable = staysDeferred ? Result<Image>(*m_image) : m_image->withRows();
    m_image.reset();
    if (!encodable) {
        return beforeWriting(encodable.error());
    }
    Image image = std::move(*encodable);
    if (!storesColors(m_type, image)) {
        auto converted = convertedToSRgb(image);
        if (!converted) {
            return beforeWriting(converted.error());
        }
        image = std::move(*converted);
    }

    EncodeOptions options {
        .quality = m_properties.number(PropertyKey::lossyCompressionQuality).value_or(1.0),
        .profile = m_profile,
        .effort = m_effort,
        .metadata = metadataFor(image),
        .resolution = resolution(),
        .texts = texts(),
    };
    // A TIFF file gets its blocks when it is done: they are fields among its own.
    const MetadataBlocks appended
        = m_type == UniformType::tiff ? std::exchange(options.metadata, {}) : MetadataBlocks {};
    auto encoded = codec.encode(image, options);
    if (!encoded) {
        return beforeWriting(encoded.error());
    }
    if (!appended.empty()) {
        encoded = metadata::writeTiff(std::move(*encoded), appended);
    }
    if (auto written = m_file.write(*encoded); !written) {
        return written;
    }
    if (auto closed = m_file.syncAndClose(); !closed) {
        return closed;
    }
    if (m_part && codec.roundTrip != nullptr) {
        if (auto part = codec.roundTrip(image, options, *encoded, *m_part)) {
            m_writtenPart = std::move(*part);
        }
    }
    return {};
}

} // namespace vellumine::imaging
