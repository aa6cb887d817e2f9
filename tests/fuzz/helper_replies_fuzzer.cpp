#include "confined/protocol/Messages.h"
#include "confined/protocol/PictureAttachments.h"
#include "imaging/BitmapContext.h"
#include "imaging/metadata/Metadata.h"

#include "DecoderFuzzer.h"

#include <algorithm>

// The program's side of the protocol, as a helper in a picture's hands may use it: the input is the
// length of a message, the message, and the attachments of its picture. What is believed is used as
// the program uses it.

using namespace vellumine;
using fuzz::require;

namespace {

/// A few pixels of the layout, drawn from those colours.
void draw(const imaging::PixelLayout& layout, const imaging::ColorSpace& space)
{
    auto pixels = imaging::PixelBuffer::createZeroed({ 3, 2 }, layout);
    require(pixels.has_value());
    std::ranges::fill(pixels->bytes(), std::byte { 0xA5 });
    const imaging::Image image(std::move(*pixels), space);
    auto context = imaging::BitmapContext::create({ 3, 2 }, 8, imaging::ColorSpace::sRgb());
    if (context && context->draw(image)) {
        fuzz::touchPixels(std::move(*context).makeImage().value());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const imaging::ByteSpan input = std::as_bytes(std::span(data, size));
    if (input.empty()) {
        return 0;
    }
    const auto length = std::min(std::to_integer<std::size_t>(input.front()), input.size() - 1);
    const auto reply = confined::parseReply(input.subspan(1, length));
    if (!reply) {
        return 0;
    }
    require(confined::parseReply(confined::serialised(*reply)).has_value());
    if (const auto* const planes = std::get_if<confined::PlanesReply>(&*reply)) {
        for (int plane = 0; plane < 3; ++plane) {
            const auto samples = imaging::ycc::samplesOf(planes->size, planes->subsampling, plane);
            require(samples.width > 0 && samples.height > 0);
            require(planes->planes.at(static_cast<std::size_t>(plane)).rowBytes
                >= static_cast<std::uint64_t>(samples.width));
        }
    }
    const auto* const decoded = std::get_if<confined::DecodedReply>(&*reply);
    const auto attached = confined::parseAttachments(input.subspan(1 + length));
    if (decoded == nullptr || !attached || attached->colorSpace.model() != decoded->layout.model) {
        return 0;
    }
    require(confined::parseAttachments(confined::serialised(*attached)).has_value());
    draw(decoded->layout, attached->colorSpace);
    (void)imaging::metadata::travelling(attached->properties.blocks(),
        { .exif = true, .gps = true, .tiff = true, .iptc = true, .xmp = true },
        { .size = { 3, 2 }, .wasTurned = false, .isSRgb = true });
    return 0;
}
