#include "imaging/codecs/png/PngColor.h"

#include "imaging/codecs/BigEndian.h"
#include "imaging/codecs/UntaggedColor.h"
#include "imaging/codecs/png/PngChunks.h"
#include "imaging/codecs/png/PngCompression.h"
#include "imaging/colour/CodePoints.h"

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

/// The chunks that speak of colour; they stand before the picture data.
struct ColorChunks {
    std::optional<ByteSpan> codePoints;
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
        if (chunk->type == chunkType("cICP") && length == 4 && chunk->isIntact()) {
            found.codePoints = chunk->data;
        } else if (chunk->type == chunkType("iCCP") && !found.profile && chunk->isIntact()) {
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

/// Primaries, curve, matrix and range by ITU-T H.273. Colours that are not known, or stored in no
/// way in which PNG stores them (RGB, full range), say nothing.
std::optional<ColorSpace> spaceOfCodePoints(ByteSpan data, ColorModel model)
{
    constexpr std::byte noMatrix { 0 };
    constexpr std::byte fullRange { 1 };
    const auto primaries = colour::primariesOfCode(std::to_integer<int>(data[0]));
    const auto curve = colour::curveOfCode(std::to_integer<int>(data[1]));
    if (!primaries || !curve || data[2] != noMatrix || data[3] != fullRange) {
        return std::nullopt;
    }
    auto space = ColorSpace::fromPrimaries(*primaries, *curve, model);
    return space ? std::optional(std::move(*space)) : std::nullopt;
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

bool isBt709(const Primaries& primaries)
{
    return isNear(primaries.white, colour::bt709Primaries.white)
        && isNear(primaries.red, colour::bt709Primaries.red)
        && isNear(primaries.green, colour::bt709Primaries.green)
        && isNear(primaries.blue, colour::bt709Primaries.blue);
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
        = model == ColorModel::rgb && chunks.primaries && !isBt709(*chunks.primaries);
    if (isCurveOfSRgb && !hasOtherPrimaries) {
        return std::nullopt;
    }
    // The file's number is the exponent of encoding.
    const TransferCurve curve = saysCurve ? TransferCurve { TransferCurve::Kind::gamma,
        100'000.0 / static_cast<double>(*chunks.gamma) }
                                          : TransferCurve { TransferCurve::Kind::sRgb, 1.0 };
    for (const Primaries& primaries :
        { chunks.primaries.value_or(colour::bt709Primaries), colour::bt709Primaries }) {
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
    if (chunks.codePoints) {
        space = spaceOfCodePoints(*chunks.codePoints, model);
    }
    if (!space && chunks.profile) {
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
