#include "imaging/codecs/webp/WebPCodec.h"
namespace vellumine::imaging::webp {
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

} // namespace vellumine::imaging::webp
