#include "imaging/codecs/png/PngCodec.h"
namespace vellumine::imaging::png {
Result<ByteBuffer> encode(const Image& /*i*/, const EncodeOptions& /*o*/)
{
    return failure(Error::Kind::Unsupported, "");
}
} // namespace vellumine::imaging::png
