#include "imaging/codecs/heic/HeicCodec.h"
namespace vellumine::imaging::heic {
bool sniffHeic(ByteSpan /*file*/)
{
    return false;
}
bool sniffHeif(ByteSpan /*file*/)
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
Result<ByteBuffer> encodeHeic(const Image& /*i*/, const EncodeOptions& /*o*/)
{
    return failure(Error::Kind::Unsupported, "");
}
Result<ByteBuffer> encodeHeif(const Image& /*i*/, const EncodeOptions& /*o*/)
{
    return failure(Error::Kind::Unsupported, "");
}
} // namespace vellumine::imaging::heic
