#include "DecoderFuzzer.h"
#include "imaging/codecs/CodecTable.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vellumine;
    return fuzz::fuzzDecoder(imaging::codecForType(imaging::UniformType::bmp), data, size);
}
