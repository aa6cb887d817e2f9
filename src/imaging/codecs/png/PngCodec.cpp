#include "imaging/codecs/png/PngCodec.h"
namespace vellumine::imaging::png {
bool sniff(ByteSpan /*file*/)
{
    return false;
}
Result<ImageHeader> readHeader(ByteSpan /*file*/)
{
    return failure(Error::Kind::Unsupported, "");
}
Result<DecodedImage> decode(ByteSpan /*file*/, const DecodeOptions& /*o*/)
{
    return failure(Error::Kind::Unsupported, "");
}
Result<ByteBuffer> encode(const Image& /*i*/, const EncodeOptions& /*o*/)
{
    return failure(Error::Kind::Unsupported, "");
}
} // namespace vellumine::imaging::png
