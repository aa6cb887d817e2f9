#include "imaging/codecs/CodecTable.h"

#include "imaging/codecs/bmp/BmpCodec.h"
#include "imaging/codecs/gif/GifCodec.h"
#include "imaging/codecs/heic/HeicCodec.h"
#include "imaging/codecs/jpeg/JpegCodec.h"
#include "imaging/codecs/png/PngCodec.h"
#include "imaging/codecs/tiff/TiffCodec.h"
#include "imaging/codecs/webp/WebPCodec.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace vellumine::imaging {

namespace {

constexpr std::array table {
    Codec { UniformType::jpeg, jpeg::sniff, jpeg::readHeader, jpeg::decode, jpeg::encode,
        jpeg::roundTrip },
    Codec { UniformType::png, png::sniff, png::readHeader, png::decode, png::encode },
    Codec { UniformType::webp, webp::sniff, webp::readHeader, webp::decode, nullptr },
    Codec { UniformType::heic, heic::sniffHeic, heic::readHeader, heic::decode, heic::encodeHeic },
    Codec { UniformType::heif, heic::sniffHeif, heic::readHeader, heic::decode, heic::encodeHeif },
    Codec { UniformType::gif, gif::sniff, gif::readHeader, gif::decode, gif::encode },
    Codec { UniformType::tiff, tiff::sniff, tiff::readHeader, tiff::decode, tiff::encode },
    Codec { UniformType::bmp, bmp::sniff, bmp::readHeader, bmp::decode, bmp::encode },
};

static_assert(table.size() == allUniformTypes.size());

} // namespace

std::span<const Codec> codecTable()
{
    return table;
}

const Codec* codecForContent(ByteSpan file)
{
    const auto* const found
        = std::ranges::find_if(table, [file](const Codec& codec) { return codec.sniff(file); });
    return found == table.end() ? nullptr : found;
}

const Codec& codecForType(UniformType type)
{
    const auto* const found = std::ranges::find(table, type, &Codec::type);
    assert(found != table.end());
    return *found;
}

} // namespace vellumine::imaging
