#include "imaging/codecs/jpeg/JpegCoefficients.h"

#include "imaging/codecs/jpeg/JpegErrors.h"

#include <cstring>

namespace vellumine::imaging::jpeg {

namespace {

constexpr std::size_t sampleRowBytes(JDIMENSION blocksInRow)
{
    return alignedUp(std::size_t { blocksInRow } * DCTSIZE);
}

/// The samples of a component that one call of the library gives. None are made of coefficients
/// that are written.
std::size_t samplesOfCall(j_common_ptr library, std::size_t component, JDIMENSION blocksInRow)
{
    if (library->is_decompressor == FALSE) {
        return 0;
    }
    const auto& info = reinterpret_cast<j_decompress_ptr>(library)->comp_info[component];
    return static_cast<std::size_t>(info.v_samp_factor) * DCTSIZE * sampleRowBytes(blocksInRow);
}

} // namespace

void Coefficients::manage(j_common_ptr library)
{
    library->client_data = this;
    library->mem->request_virt_barray = request;
    library->mem->access_virt_barray = access;
}

jvirt_barray_ptr Coefficients::request(j_common_ptr library, int pool, boolean startsZeroed,
    JDIMENSION blocksInRow, JDIMENSION rows, JDIMENSION /*mostRowsAtOnce*/)
{
    auto& self = *static_cast<Coefficients*>(library->client_data);
    if (self.m_count == self.m_arrays.size()) {
        errorsOf(library).fail(Error::Kind::unsupported, "too many components");
    }
    const std::size_t samples = samplesOfCall(library, self.m_count, blocksInRow);
    Array& array = self.m_arrays.at(self.m_count++);
    const std::size_t blocks = std::size_t { blocksInRow } * rows;
    array.memory = allocatePixels(samples + blocks * sizeof(JBLOCK));
    if (!array.memory) {
        errorsOf(library).fail(Error::Kind::outOfMemory, "no memory for the coefficients");
    }
    array.rowCount = rows;
    array.blocksInRow = blocksInRow;
    array.startsZeroed = startsZeroed != FALSE;
    array.rows = static_cast<JBLOCKARRAY>(
        library->mem->alloc_small(library, pool, rows * sizeof(JBLOCKROW)));
    auto* block = reinterpret_cast<JBLOCKROW>(array.memory.get() + samples);
    for (JDIMENSION row = 0; row < rows; ++row, block += blocksInRow) {
        array.rows[row] = block;
    }
    return reinterpret_cast<jvirt_barray_ptr>(&array);
}

JBLOCKARRAY Coefficients::access(j_common_ptr library, jvirt_barray_ptr array, JDIMENSION first,
    JDIMENSION count, boolean /*isWritten*/)
{
    auto& self = *reinterpret_cast<Array*>(array);
    if (count > self.rowCount || first > self.rowCount - count) {
        errorsOf(library).fail(Error::Kind::malformed, "coefficients outside of the picture");
    }
    if (self.startsZeroed && first + count > self.firstUndefined) {
        // Just before their first use, which finds them in the cache.
        const std::size_t rows = first + count - self.firstUndefined;
        std::memset(static_cast<void*>(self.rows[self.firstUndefined]), 0,
            rows * self.blocksInRow * sizeof(JBLOCK));
        self.firstUndefined = first + count;
    }
    return self.rows + first;
}

PixelMemory Coefficients::memoryForSamples(int component) const
{
    const auto at = static_cast<std::size_t>(component);
    if (at >= m_count) {
        return nullptr;
    }
    const Array& array = m_arrays.at(at);
    const std::size_t sampleRow = array.blocksInRow * sizeof(JBLOCK) / DCTSIZE;
    return sampleRowBytes(array.blocksInRow) <= sampleRow ? array.memory : nullptr;
}

} // namespace vellumine::imaging::jpeg
