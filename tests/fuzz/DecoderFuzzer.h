#pragma once

#include "imaging/BitmapContext.h"
#include "imaging/codecs/Codec.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace vellumine::fuzz {

/// Limits under which one input takes milliseconds.
inline constexpr imaging::Limits fuzzLimits {
    .maximumPixels = 1U << 20U, .maximumSide = 4096, .maximumBytes = std::uint64_t { 8 } << 20U
};

/// Aborts, so that the fuzzer keeps the input, when a promise of the codec contract is broken.
inline void require(bool promise)
{
    if (!promise) {
        std::abort();
    }
}

/// Reads every sample, so that a sanitizer sees pixels that are not there.
inline void touchPixels(const imaging::Image& image)
{
    unsigned sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (const std::byte sample : image.row(y)) {
            sum += static_cast<unsigned>(sample);
        }
    }
    [[maybe_unused]] volatile unsigned sink = sum;
}

/// The file drawn while it is decoded, where it can be: its middle is the picture's.
inline void drawAsPlanned(
    const imaging::Codec& codec, imaging::ByteSpan file, const imaging::Image& rows)
{
    const imaging::Size half { (rows.width() + 1) / 2, (rows.height() + 1) / 2 };
    const imaging::Size middle { std::min(rows.width(), 24), std::min(rows.height(), 16) };
    const auto decoded = codec.decode(file,
        { .limits = fuzzLimits,
            .wish = { .use = imaging::ImageUse::toBeDrawn,
                .plan
                = imaging::DrawingPlan { .size = half, .turnedSize = half, .middle = middle } } });
    require(decoded.has_value() && decoded->image.size() == rows.size());
    if (!decoded->isDrawn) {
        return;
    }
    const imaging::Rect part = centredRect(rows.size(), middle);
    const auto kept = decoded->image.rows(part);
    require(kept.has_value());
    for (int y = 0; y < part.height; ++y) {
        require(std::ranges::equal(kept->row(y), rows.cropped(part).row(y)));
    }
    for (int tag = 1; tag <= 8; ++tag) {
        const auto drawn = decoded->image.deferred()->drawn({ half, imaging::ColorSpace::sRgb(),
            imaging::InterpolationQuality::high, *imaging::orientationFromTag(tag) });
        if (drawn) {
            touchPixels(*drawn);
        }
    }
}

/// The file decoded to be drawn: the same picture, which can be drawn small.
inline void drawPicture(
    const imaging::Codec& codec, imaging::ByteSpan file, const imaging::Image& rows)
{
    const auto decoded = codec.decode(
        file, { .limits = fuzzLimits, .wish = { .use = imaging::ImageUse::toBeDrawn } });
    require(decoded.has_value() && decoded->image.size() == rows.size());
    const auto laidOut = decoded->image.withRows();
    require(laidOut.has_value());
    // A picture that came in rows again was decoded in the same way; HEIC's library leaves what a
    // damaged file does not fill as it was in memory, differently each time.
    for (int y = 0; !decoded->image.hasRows() && y < rows.height(); ++y) {
        require(std::ranges::equal(laidOut->row(y), rows.row(y)));
    }
    auto context = imaging::BitmapContext::create(
        { (rows.width() + 1) / 2, (rows.height() + 1) / 2 }, 8, imaging::ColorSpace::sRgb());
    require(context.has_value());
    if (context->draw(decoded->image)) {
        touchPixels(std::move(*context).makeImage().value());
    }
    if (!decoded->image.hasRows()) {
        drawAsPlanned(codec, file, rows);
    }
}

/// The body of every decoder's fuzz target: the header, the whole picture and the middle of it.
/// Gives what LLVMFuzzerTestOneInput is to return.
inline int fuzzDecoder(const imaging::Codec& codec, const std::uint8_t* data, std::size_t size)
{
    const auto file = std::as_bytes(std::span(data, size));
    const auto header = codec.readHeader(file);
    const auto decoded = codec.decode(file, { .limits = fuzzLimits, .wish = {} });
    if (!decoded) {
        return 0;
    }
    require(header.has_value());
    require(decoded->storedSize == header->size && decoded->image.size() == header->size);
    require(!decoded->isRegion);
    touchPixels(decoded->image);
    drawPicture(codec, file, decoded->image);

    const imaging::Size stored = decoded->storedSize;
    const imaging::Rect middle
        = imaging::centredRect(stored, { (stored.width + 1) / 2, (stored.height + 1) / 2 });
    const auto part = codec.decode(file, { .limits = fuzzLimits, .wish = { .region = middle } });
    // The rest of the file need not be looked at for a part, the other way round it must be.
    require(part.has_value() && part->storedSize == stored);
    require(part->image.size() == (part->isRegion ? middle.size() : stored));
    touchPixels(part->image);
    return 0;
}

} // namespace vellumine::fuzz
