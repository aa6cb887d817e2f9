#include "imaging/resample/Resampler.h"

#include "imaging/PixelMemory.h"

#include <zimg.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <memory>

namespace vellumine::imaging {

namespace {

using Graph = std::unique_ptr<zimg_filter_graph, decltype(&zimg_filter_graph_free)>;

/// At least one byte, aligned as the library wants it.
PixelMemory allocateAligned(std::size_t bytes)
{
    return allocatePixels(std::max(pixelAlignment, alignedUp(bytes)));
}

/// The extra plane of grey and RGB pictures comes last.
constexpr bool hasExtraPlane(int planes)
{
    return planes % 2 == 0;
}

zimg_image_format planarFormat(Size size, int planes)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(size.width);
    format.height = static_cast<unsigned>(size.height);
    format.pixel_type = ZIMG_PIXEL_WORD;
    format.depth = 16;
    format.pixel_range = ZIMG_RANGE_FULL;
    format.color_family = planes >= 3 ? ZIMG_COLOR_RGB : ZIMG_COLOR_GREY;
    format.matrix_coefficients = planes >= 3 ? ZIMG_MATRIX_RGB : ZIMG_MATRIX_UNSPECIFIED;
    // "Premultiplied" on both sides makes the extra plane one more plane to resample, no more.
    format.alpha = hasExtraPlane(planes) ? ZIMG_ALPHA_PREMULTIPLIED : ZIMG_ALPHA_NONE;
    return format;
}

Graph build(const zimg_image_format& source, const zimg_image_format& target, ResampleFilter filter)
{
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    switch (filter) {
    case ResampleFilter::point:
        parameters.resample_filter = ZIMG_RESIZE_POINT;
        break;
    case ResampleFilter::bilinear:
        parameters.resample_filter = ZIMG_RESIZE_BILINEAR;
        break;
    case ResampleFilter::bicubic:
        parameters.resample_filter = ZIMG_RESIZE_BICUBIC;
        parameters.filter_param_a = 1.0 / 3.0;
        parameters.filter_param_b = 1.0 / 3.0;
        break;
    case ResampleFilter::lanczos3:
        parameters.resample_filter = ZIMG_RESIZE_LANCZOS;
        parameters.filter_param_a = 3.0;
        break;
    }
    return { zimg_filter_graph_build(&source, &target, &parameters), zimg_filter_graph_free };
}

/// A ring of a few rows in planes, on one side of the graph.
class RowRing {
public:
    RowRing(Size picture, int planes, unsigned lines)
        : m_width(static_cast<unsigned>(picture.width))
        , m_planes(planes)
        , m_mask(zimg_select_buffer_mask(lines))
        , m_rowBytes(alignedUp(static_cast<std::size_t>(picture.width) * sizeof(std::uint16_t)))
    {
        const std::size_t rows = m_mask == ZIMG_BUFFER_MAX
            ? static_cast<std::size_t>(picture.height)
            : std::size_t { m_mask } + 1;
        m_planeBytes = m_rowBytes * rows;
        m_memory = allocateAligned(m_planeBytes * static_cast<std::size_t>(planes));
    }

    [[nodiscard]] bool isValid() const { return m_memory != nullptr; }

    /// Names the planes to the library, which keeps the extra plane in the last of its four slots.
    template <typename Buffer> [[nodiscard]] Buffer buffer() const
    {
        Buffer buffer {};
        buffer.version = ZIMG_API_VERSION;
        for (int i = 0; i < m_planes; ++i) {
            auto& slot = buffer.plane[hasExtraPlane(m_planes) && i == m_planes - 1 ? 3 : i];
            slot.data = plane(i);
            slot.stride = static_cast<std::ptrdiff_t>(m_rowBytes);
            slot.mask = m_mask;
        }
        return buffer;
    }

    [[nodiscard]] PlanarRow row(unsigned y, unsigned left, unsigned right) const
    {
        PlanarRow row { static_cast<int>(y), static_cast<int>(left),
            static_cast<int>(std::min(right, m_width)), {} };
        for (int i = 0; i < m_planes; ++i) {
            std::byte* const start = plane(i) + std::size_t { y & m_mask } * m_rowBytes;
            row.planes.at(static_cast<std::size_t>(i)) = reinterpret_cast<std::uint16_t*>(start);
        }
        return row;
    }

private:
    [[nodiscard]] std::byte* plane(int index) const
    {
        return m_memory.get() + m_planeBytes * static_cast<std::size_t>(index);
    }

    unsigned m_width;
    int m_planes;
    unsigned m_mask;
    std::size_t m_rowBytes;
    std::size_t m_planeBytes = 0;
    PixelMemory m_memory;
};

/// What the library's callbacks get to see.
struct Side {
    const RowRing* ring;
    const RowHandler* handler;
};

int handOver(void* user, unsigned y, unsigned left, unsigned right)
{
    const auto* const side = static_cast<const Side*>(user);
    (*side->handler)(side->ring->row(y, left, right));
    return 0;
}

} // namespace

ResampleFilter filterFor(InterpolationQuality quality)
{
    switch (quality) {
    case InterpolationQuality::none:
        return ResampleFilter::point;
    case InterpolationQuality::low:
        return ResampleFilter::bilinear;
    case InterpolationQuality::medium:
        return ResampleFilter::bicubic;
    case InterpolationQuality::high:
        return ResampleFilter::lanczos3;
    }
    return ResampleFilter::lanczos3;
}

Result<void> resample(const ResampleJob& job)
{
    assert(job.planes >= 1 && job.planes <= 4);
    const Graph graph = build(
        planarFormat(job.source, job.planes), planarFormat(job.target, job.planes), job.filter);
    unsigned inputRows = 0;
    unsigned outputRows = 0;
    std::size_t scratchBytes = 0;
    if (!graph
        || zimg_filter_graph_get_input_buffering(graph.get(), &inputRows) != ZIMG_ERROR_SUCCESS
        || zimg_filter_graph_get_output_buffering(graph.get(), &outputRows) != ZIMG_ERROR_SUCCESS
        || zimg_filter_graph_get_tmp_size(graph.get(), &scratchBytes) != ZIMG_ERROR_SUCCESS) {
        return failure(Error::Kind::unsupported, "the sizes cannot be resampled");
    }
    const RowRing input(job.source, job.planes, inputRows);
    const RowRing output(job.target, job.planes, outputRows);
    const PixelMemory scratch = allocateAligned(scratchBytes);
    if (!input.isValid() || !output.isValid() || !scratch) {
        return failure(Error::Kind::outOfMemory, "no memory to resample in");
    }
    const auto from = input.buffer<zimg_image_buffer_const>();
    const auto to = output.buffer<zimg_image_buffer>();
    Side read { &input, &job.read };
    Side written { &output, &job.write };
    if (zimg_filter_graph_process(
            graph.get(), &from, &to, scratch.get(), handOver, &read, handOver, &written)
        != ZIMG_ERROR_SUCCESS) {
        return failure(Error::Kind::unsupported, "the picture cannot be resampled");
    }
    return {};
}

} // namespace vellumine::imaging
