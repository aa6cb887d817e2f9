#pragma once

#include "imaging/Error.h"
#include "imaging/codecs/jpeg/JpegSource.h"

#include <cstdint>
#include <span>

namespace vellumine::imaging::jpeg {

[[nodiscard]] std::span<const jpeg_component_info> components(
    const jpeg_decompress_struct& library);

/// Blocks of coefficients that the component has.
[[nodiscard]] std::uint64_t blocksOf(const jpeg_component_info& component);

/// Whether every bit of every coefficient has come, in one scan or in many. Where some have not,
/// the library smooths what it makes of them, and looks at blocks of other rows for that. To be
/// called after jpeg_start_decompress.
[[nodiscard]] bool isFullyRefined(const jpeg_decompress_struct& library);

/// Follows the scans of a file while the library collects them: ends files that are made of scans
/// to keep a decoder busy, and tells in the end whether every scan was there that has to be.
class ScanWatch : public jpeg_progress_mgr {
public:
    ScanWatch();

    /// Fails with Truncated when scans are missing. For a file with a single scan, whose data the
    /// library reads later, there is nothing to say. To be called after jpeg_start_decompress.
    [[nodiscard]] Result<void> checkComplete(
        const jpeg_decompress_struct& library, const Source& source) const;

private:
    static void watch(j_common_ptr library);

    int m_scansSeen = 0;
    std::uint64_t m_blocksVisited = 0;
    unsigned m_componentsSeen = 0; ///< one bit each
};

} // namespace vellumine::imaging::jpeg
