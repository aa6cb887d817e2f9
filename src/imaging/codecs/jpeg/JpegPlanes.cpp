#include "imaging/codecs/jpeg/JpegPlanes.h"

#include "imaging/codecs/jpeg/JpegScans.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vellumine::imaging::jpeg {

namespace {

constexpr int roundedUp(JDIMENSION value, int to)
{
    return (static_cast<int>(value) + to - 1) / to * to;
}

/// Where the library finds the rows of one call, which begin at a row of the planes.
class RowsOfCall {
public:
    template <typename Library>
    RowsOfCall(const Library& library, ycc::YccPlanes& planes, int row)
        : m_count(library.max_v_samp_factor * DCTSIZE)
    {
        for (int plane = 0; plane < library.num_components; ++plane) {
            const auto at = static_cast<std::size_t>(plane);
            const int count = library.comp_info[plane].v_samp_factor * DCTSIZE;
            const int first = row / m_count * count;
            for (int i = 0; i < count; ++i) {
                m_rows.at(at).at(static_cast<std::size_t>(i)) = planes.row(plane, first + i);
            }
            m_arrays.at(at) = m_rows.at(at).data();
        }
    }

    [[nodiscard]] JSAMPIMAGE planes() { return m_arrays.data(); }
    [[nodiscard]] JDIMENSION count() const { return static_cast<JDIMENSION>(m_count); }

private:
    int m_count;
    std::array<std::array<JSAMPROW, std::size_t { DCTSIZE } * MAX_SAMP_FACTOR>, 3> m_rows {};
    std::array<JSAMPARRAY, 3> m_arrays {};
};

Size roomFor(const jpeg_decompress_struct& library, int rows)
{
    return { roundedUp(library.output_width, library.max_h_samp_factor * DCTSIZE),
        roundedUp(static_cast<JDIMENSION>(rows), rowsOfCall(library)) };
}

} // namespace

std::optional<ycc::Subsampling> subsampling(const jpeg_decompress_struct& library)
{
    if (library.jpeg_color_space != JCS_YCbCr || library.num_components != 3) {
        return std::nullopt;
    }
    const auto all = components(library);
    const jpeg_component_info& brightness = all[0];
    const jpeg_component_info& blueness = all[1];
    const jpeg_component_info& redness = all[2];
    const ycc::Subsampling result { brightness.h_samp_factor / blueness.h_samp_factor,
        brightness.v_samp_factor / blueness.v_samp_factor };
    const bool isAlike = blueness.h_samp_factor == redness.h_samp_factor
        && blueness.v_samp_factor == redness.v_samp_factor;
    const bool isWhole = result.x * blueness.h_samp_factor == library.max_h_samp_factor
        && result.y * blueness.v_samp_factor == library.max_v_samp_factor;
    // The library spreads colour without interpolation where a row has but two samples of it.
    const bool isWide = result.x == 1 || blueness.downsampled_width > 2;
    if (!isAlike || !isWhole || !isWide || result.x > 2 || result.y > 2) {
        return std::nullopt;
    }
    return result;
}

int rowsOfCall(const jpeg_decompress_struct& library)
{
    return library.max_v_samp_factor * DCTSIZE;
}

Result<ycc::YccPlanes> makePlanes(
    const jpeg_decompress_struct& library, ycc::Subsampling subsampling, int rows)
{
    return ycc::YccPlanes::create(
        { static_cast<int>(library.output_width), rows }, subsampling, roomFor(library, rows));
}

Result<ycc::YccPlanes> makePlanes(const jpeg_decompress_struct& library,
    ycc::Subsampling subsampling, const Coefficients& coefficients)
{
    const int rows = static_cast<int>(library.output_height);
    std::array<PixelMemory, 3> memory { coefficients.memoryForSamples(0),
        coefficients.memoryForSamples(1), coefficients.memoryForSamples(2) };
    if (std::ranges::find(memory, nullptr) != memory.end() || !isFullyRefined(library)) {
        return makePlanes(library, subsampling, rows);
    }
    return ycc::YccPlanes({ static_cast<int>(library.output_width), rows }, subsampling,
        roomFor(library, rows), std::move(memory));
}

void readPlaneRows(jpeg_decompress_struct& library, ycc::YccPlanes& planes, int row)
{
    RowsOfCall rows(library, planes, row);
    jpeg_read_raw_data(&library, rows.planes(), rows.count());
}

void writePlaneRows(jpeg_compress_struct& library, const ycc::YccPlanes& planes, int row)
{
    // The library only reads, its interface is from before const.
    RowsOfCall rows(library, const_cast<ycc::YccPlanes&>(planes), row);
    jpeg_write_raw_data(&library, rows.planes(), rows.count());
}

} // namespace vellumine::imaging::jpeg
