#include "imaging/codecs/BigEndian.h"
#include "imaging/codecs/MetadataCarriers.h"
#include "imaging/codecs/png/PngCodec.h"
#include "imaging/codecs/png/PngCompression.h"
#include "imaging/codecs/png/PngMetadata.h"
#include "imaging/codecs/png/PngReduction.h"
#include "imaging/codecs/png/PngTexts.h"
#include "imaging/codecs/png/PngTrials.h"

#include <algorithm>
#include <new>

namespace vellumine::imaging::png {

namespace {

constexpr std::string_view profileChunkName = "ICC Profile";
/// A chunk's length is a number of 31 bits.
constexpr std::size_t maximumPictureChunk = std::size_t { 1 } << 30U;

void appendHeader(ByteBuffer& file, const PackedPicture& picture)
{
    ByteBuffer data;
    appendBigEndian32(data, static_cast<std::uint32_t>(picture.size.width));
    appendBigEndian32(data, static_cast<std::uint32_t>(picture.size.height));
    data.push_back(static_cast<std::byte>(picture.bitDepth));
    data.push_back(static_cast<std::byte>(picture.colorType));
    data.resize(data.size() + 3); // compression and filters of the only kind, not interlaced
    appendChunk(file, "IHDR", data);
}

void appendProfile(ByteBuffer& file, ByteSpan deflatedProfile)
{
    ByteBuffer data;
    append(data, profileChunkName);
    data.resize(data.size() + 2); // the end of the name, the compression method
    append(data, deflatedProfile);
    appendChunk(file, "iCCP", data);
}

ByteBuffer assembled(const PackedPicture& picture, ByteSpan stream, ByteSpan deflatedProfile,
    const EncodeOptions& options)
{
    ByteBuffer file;
    append(file, signature);
    appendHeader(file, picture);
    if (!deflatedProfile.empty()) {
        appendProfile(file, deflatedProfile);
    }
    if (!picture.palette.empty()) {
        appendChunk(file, "PLTE", picture.palette);
    }
    if (!picture.transparency.empty()) {
        appendChunk(file, "tRNS", picture.transparency);
    }
    if (options.resolution) {
        appendResolution(file, *options.resolution);
    }
    appendMetadata(file, options.metadata);
    appendTexts(file, options.texts, options.effort);
    while (!stream.empty()) {
        const ByteSpan piece = stream.first(std::min(stream.size(), maximumPictureChunk));
        appendChunk(file, "IDAT", piece);
        stream = stream.subspan(piece.size());
    }
    appendChunk(file, "IEND", {});
    return file;
}

Result<ByteBuffer> encodeFastest(const Image& image, ByteSpan profile, const EncodeOptions& options)
{
    return packed(image).map([&](const PackedPicture& picture) {
        return assembled(picture, fastest(picture),
            profile.empty() ? ByteBuffer() : quicklyDeflated(profile), options);
    });
}

Result<ByteBuffer> encodeSmallest(
    const Image& image, ByteSpan profile, const EncodeOptions& options)
{
    // A profile is for the colour type that it was made for.
    const AllowedReductions allowed { .toGrey = profile.empty(),
        .toPalette = profile.empty() || image.layout().model == ColorModel::rgb };
    return reduced(image, allowed).map([&](const std::vector<PackedPicture>& forms) {
        const Compressed best = smallest(forms);
        return assembled(forms[best.form], best.stream,
            profile.empty() ? ByteBuffer() : deflated(profile, CompressionLevel::optimal), options);
    });
}

} // namespace

Result<ByteBuffer> encode(const Image& image, const EncodeOptions& options)
{
    const ByteSpan profile
        = options.profile == ProfilePolicy::embed ? image.colorSpace().iccProfile() : ByteSpan {};
    try {
        return options.effort == Effort::fastest ? encodeFastest(image, profile, options)
                                                 : encodeSmallest(image, profile, options);
    } catch (const std::bad_alloc&) {
        return failure(Error::Kind::outOfMemory, "no memory for encoding");
    }
}

} // namespace vellumine::imaging::png
