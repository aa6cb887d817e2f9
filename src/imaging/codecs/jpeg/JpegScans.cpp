#include "imaging/codecs/jpeg/JpegScans.h"

#include "imaging/codecs/jpeg/JpegErrors.h"

#include <algorithm>

namespace vellumine::imaging::jpeg {

namespace {

/// Encoders write about ten; one for each bit of each coefficient of three components is possible
/// and was never seen.
constexpr int maximumScans = 500;

/// A scan can say in a few bytes that nothing changes in any block, and still every block is
/// looked at. This is ten scans of each of three full components for the largest picture that
/// there can be, and half a minute of work.
constexpr std::uint64_t maximumBlocksVisited = std::uint64_t { 1 } << 27U;

std::uint64_t blocksOfScan(const jpeg_decompress_struct& library)
{
    std::uint64_t blocks = 0;
    for (int i = 0; i < library.comps_in_scan; ++i) {
        blocks += blocksOf(*library.cur_comp_info[i]);
    }
    return blocks;
}

/// Whether every coefficient of a component was sent to its last bit. The library counts the bits
/// that are missing, -1 for a coefficient of which nothing is known.
bool isFullyRefined(const int (&precision)[DCTSIZE2])
{
    return std::ranges::all_of(precision, [](int missingBits) { return missingBits == 0; });
}

} // namespace

std::span<const jpeg_component_info> components(const jpeg_decompress_struct& library)
{
    return { library.comp_info, static_cast<std::size_t>(library.num_components) };
}

std::uint64_t blocksOf(const jpeg_component_info& component)
{
    return static_cast<std::uint64_t>(component.width_in_blocks) * component.height_in_blocks;
}

bool isFullyRefined(const jpeg_decompress_struct& library)
{
    const auto count
        = static_cast<std::size_t>(library.progressive_mode != FALSE ? library.num_components : 0);
    return std::ranges::all_of(std::span(library.coef_bits, count),
        [](const auto& precision) { return isFullyRefined(precision); });
}

ScanWatch::ScanWatch()
    : jpeg_progress_mgr {}
{
    progress_monitor = watch;
}

void ScanWatch::watch(j_common_ptr library)
{
    const auto& decompressor = *reinterpret_cast<j_decompress_ptr>(library);
    auto& scans = *static_cast<ScanWatch*>(library->progress);
    if (decompressor.input_scan_number == scans.m_scansSeen) {
        return;
    }
    scans.m_scansSeen = decompressor.input_scan_number;
    scans.m_blocksVisited += blocksOfScan(decompressor);
    for (int i = 0; i < decompressor.comps_in_scan; ++i) {
        scans.m_componentsSeen |= 1U
            << static_cast<unsigned>(decompressor.cur_comp_info[i]->component_index);
    }
    if (scans.m_scansSeen > maximumScans || scans.m_blocksVisited > maximumBlocksVisited) {
        errorsOf(library).fail(Error::Kind::malformed, "too many scans");
    }
}

Result<void> ScanWatch::checkComplete(
    const jpeg_decompress_struct& library, const Source& source) const
{
    if (jpeg_has_multiple_scans(const_cast<j_decompress_ptr>(&library)) == FALSE) {
        return {};
    }
    if (m_componentsSeen != (1U << static_cast<unsigned>(library.num_components)) - 1U) {
        return failure(Error::Kind::truncated, "a colour component is missing");
    }
    if (!library.progressive_mode) {
        return {};
    }
    for (int i = 0; i < library.num_components; ++i) {
        const auto& precision = library.coef_bits[i];
        // Where the end marker is there, the file's maker left out the finest bits on purpose.
        if (precision[0] < 0 || (source.ranOut() && !isFullyRefined(precision))) {
            return failure(Error::Kind::truncated, "scans are missing");
        }
    }
    return {};
}

} // namespace vellumine::imaging::jpeg
