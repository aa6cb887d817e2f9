#include "imaging/codecs/png/PngColor.h"

#include "imaging/codecs/BigEndian.h"
#include "imaging/codecs/UntaggedColor.h"
#include "imaging/codecs/png/PngChunks.h"
#include "imaging/codecs/png/PngCompression.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vellumine::imaging::png {

namespace {

/// The largest profiles of printing are 4 MB.
constexpr std::size_t maximumProfile = std::size_t { 16 } << 20U;
constexpr std::size_t maximumKeyword = 79;

/// In 100,000ths, as files hold them: 1/2.2, which stands for sRGB wherever it is written.
constexpr std::int64_t gammaOfSRgb = 45455;
constexpr std::int64_t gammaTolerance = 100;
constexpr double chromaticityTolerance = 0.002;

constexpr Primaries rec709 { { 0.3127, 0.3290 }, { 0.64, 0.33 }, { 0.30, 0.60 }, { 0.15, 0.06 } };

/// The chunks that speak of colour; they stand before the picture data.
struct ColorChunks {
    std::optional<ByteSpan> profile;
    std::optional<std::int64_t> gamma;
    std::optional<Primaries> primaries;
    bool saysSRgb = false;
};

Primaries parsePrimaries(ByteSpan data)
{
    const auto at = [data](std::size_t index) {
        return Chromaticity { bigEndian32(data, 8 * index) / 100'000.0,
            bigEndian32(data, 8 * index + 4) / 100'000.0 };
    };
    return { at(0), at(1), at(2), at(3) };
}

ColorChunks findColorChunks(ByteSpan file)
{
    ColorChunks found;
    ChunkWalk walk(file);
    while (const auto chunk = walk.next()) {
        if (chunk->type == chunkType("IDAT")) {
            break;
        }
        const std::size_t length = chunk->data.size();
        if (chunk->type == chunkType("iCCP") && !found.profile && chunk->isIntact()) {
            found.profile = chunk->data;
        } else if (chunk->type == chunkType("sRGB") && length == 1 && chunk->isIntact()) {
            found.saysSRgb = true;
        } else if (chunk->type == chunkType("gAMA") && length == 4 && chunk->isIntact()) {
            found.gamma = bigEndian32(chunk->data, 0);
        } else if (chunk->type == chunkType("cHRM") && length == 32 && chunk->isIntact()) {
            found.primaries = parsePrimaries(chunk->data);
        }
    }
    return found;
}

/// Name, a zero, the compression method 0, a zlib stream.
std::optional<ColorSpace> spaceOfProfile(ByteSpan data, ColorModel model)
{
    const auto name = data.first(std::min(data.size(), maximumKeyword + 1));
    const auto end = std::ranges::find(name, std::byte { 0 });
    const auto nameLength = static_cast<std::size_t>(end - name.begin());
    if (end == name.end() || data.size() < nameLength + 2
        || data[nameLength + 1] != std::byte { 0 }) {
        return std::nullopt;
    }
    const auto profile = inflated(data.subspan(nameLength + 2), maximumProfile);
    if (!profile) {
        return std::nullopt;
    }
    auto space = ColorSpace::fromIcc(*profile, model);
    return space ? std::optional(std::move(*space)) : std::nullopt;
}

bool isNear(Chromaticity a, Chromaticity b)
{
    return std::abs(a.x - b.x) < chromaticityTolerance
        && std::abs(a.y - b.y) < chromaticityTolerance;
}

bool isRec709(const Primaries& primaries)
{
    return isNear(primaries.white, rec709.white) && isNear(primaries.red, rec709.red)
        && isNear(primaries.green, rec709.green) && isNear(primaries.blue, rec709.blue);
}

std::optional<ColorSpace> spaceOfNumbers(const ColorChunks& chunks, ColorModel model)
{
    if (!chunks.gamma && !chunks.primaries) {
        return std::nullopt;
    }
    const bool saysCurve = chunks.gamma && *chunks.gamma > 0;
    const bool isCurveOfSRgb
        = !saysCurve || std::abs(*chunks.gamma - gammaOfSRgb) <= gammaTolerance;
    const bool hasOtherPrimaries
        = model == ColorModel::rgb && chunks.primaries && !isRec709(*chunks.primaries);
    if (isCurveOfSRgb && !hasOtherPrimaries) {
        return std::nullopt;
    }
    // The file's number is the exponent of encoding.
    const TransferCurve curve = saysCurve ? TransferCurve { TransferCurve::Kind::gamma,
        100'000.0 / static_cast<double>(*chunks.gamma) }
                                          : TransferCurve { TransferCurve::Kind::sRgb, 1.0 };
    for (const Primaries& primaries : { chunks.primaries.value_or(rec709), rec709 }) {
        if (auto space = ColorSpace::fromPrimaries(primaries, curve, model)) {
            return std::move(*space);
        }
    }
    return std::nullopt;
}

} // namespace

ColorSpace colorSpaceOf(ByteSpan file, ColorModel model, ByteSpan exif)
{
    const ColorChunks chunks = findColorChunks(file);
    std::optional<ColorSpace> space;
    if (chunks.profile) {
        space = spaceOfProfile(*chunks.profile, model);
    }
    if (!space && !chunks.saysSRgb) {
        space = spaceOfNumbers(chunks, model);
    }
    if (space) {
        return *space;
    }
    const bool isDescribed = chunks.saysSRgb || chunks.gamma || chunks.primaries;
    return untaggedColorSpace(model, isDescribed ? ByteSpan {} : exif);
}

} // namespace vellumine::imaging::png
