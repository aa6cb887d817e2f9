#pragma once

#include "imaging/PixelMemory.h"

#include <array>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace vellumine::imaging::jpeg {

/// Where the library keeps a picture's coefficients: a file with several scans is collected in
/// them, or written from them. At two bytes a sample they are the largest thing that it ever asks
/// for, and here they get memory that the thread has already.
class Coefficients {
public:
    Coefficients() = default;
    Coefficients(const Coefficients&) = delete;
    Coefficients& operator=(const Coefficients&) = delete;

    /// Puts this in the place of the library's own arrays, whose parts of the memory manager it
    /// takes over. It must outlive the object, whose error manager must be an Errors. To be called
    /// inside Errors::run, when the object has been made.
    void manage(j_common_ptr library);

    /// Memory in which the samples of a component that is read can replace its coefficients, call
    /// by call from the top down: rows of alignedUp(8 * blocks in a row) bytes. What one call of
    /// the library gives lies before all coefficients that it has not read by then, as those are
    /// longer and begin further back. Null where there are none, or a row of them is no longer.
    [[nodiscard]] PixelMemory memoryForSamples(int component) const;

private:
    /// One component's. The library knows it by its address only.
    struct Array {
        PixelMemory memory; ///< the samples' first rows, and then the coefficients
        JBLOCKARRAY rows = nullptr;
        JDIMENSION rowCount = 0;
        JDIMENSION blocksInRow = 0;
        JDIMENSION firstUndefined = 0; ///< rows from here on are to be zeroed before their use
        bool startsZeroed = false;
    };

    static jvirt_barray_ptr request(j_common_ptr library, int pool, boolean startsZeroed,
        JDIMENSION blocksInRow, JDIMENSION rows, JDIMENSION mostRowsAtOnce);
    static JBLOCKARRAY access(j_common_ptr library, jvirt_barray_ptr array, JDIMENSION first,
        JDIMENSION count, boolean isWritten);

    std::array<Array, MAX_COMPONENTS> m_arrays;
    std::size_t m_count = 0;
};

} // namespace vellumine::imaging::jpeg
