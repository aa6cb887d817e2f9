#include "imaging/resample/Resampler.h"

#include "imaging/PixelMemory.h"

#include <zimg.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <memory>

namespace vellumine::imaging {

namespace {

constexpr std::size_t alignment = 64;

struct GraphDeleter {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
};
using Graph = std::unique_ptr<zimg_filter_graph, GraphDeleter>;

std::size_t roundedUp(std::size_t bytes)
{
    return (bytes + alignment - 1) / alignment * alignment;
}

/// At least one byte, aligned as the library wants it.
PixelMemory allocateAligned(std::size_t bytes)
{
    return allocatePixels(std::max(alignment, roundedUp(bytes)));
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
    format.alpha = planes % 2 == 0 ? ZIMG_ALPHA_PREMULTIPLIED : ZIMG_ALPHA_NONE;
    return format;
}

/// The library keeps the extra plane of grey and RGB pictures in the last of its four slots.
std::size_t slot(int plane, int planes)
{
    return planes % 2 == 0 && plane == planes - 1 ? 3 : static_cast<std::size_t>(plane);
}

zimg_filter_graph* build(const ResampleJob& job)
{
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    switch (job.filter) {
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
    const zimg_image_format source = planarFormat(job.source, job.planes);
    const zimg_image_format target = planarFormat(job.target, job.planes);
    return zimg_filter_graph_build(&source, &target, &parameters);
}

/// A ring of a few rows in planes, on one side of the graph.
class RowRing {
public:
    RowRing(int width, int planes, unsigned lines, unsigned height)
        : m_planes(planes)
        , m_mask(zimg_select_buffer_mask(lines))
        , m_rowBytes(roundedUp(static_cast<std::size_t>(width) * sizeof(std::uint16_t)))
    {
        const std::size_t rows = m_mask == ZIMG_BUFFER_MAX ? height : std::size_t { m_mask } + 1;
        m_planeBytes = m_rowBytes * rows;
        m_memory = allocateAligned(m_planeBytes * static_cast<std::size_t>(planes));
    }

    [[nodiscard]] bool isValid() const { return m_memory != nullptr; }
    [[nodiscard]] int planes() const { return m_planes; }
    [[nodiscard]] unsigned mask() const { return m_mask; }
    [[nodiscard]] std::ptrdiff_t rowBytes() const
    {
        return static_cast<std::ptrdiff_t>(m_rowBytes);
    }
    [[nodiscard]] std::byte* plane(int index) const
    {
        return m_memory.get() + m_planeBytes * static_cast<std::size_t>(index);
    }

    [[nodiscard]] PlanarRow row(unsigned y, unsigned left, unsigned right) const
    {
        PlanarRow row { static_cast<int>(y), static_cast<int>(left), static_cast<int>(right), {} };
        for (int i = 0; i < m_planes; ++i) {
            std::byte* const start = plane(i) + std::size_t { y & m_mask } * m_rowBytes;
            row.planes.at(static_cast<std::size_t>(i)) = reinterpret_cast<std::uint16_t*>(start);
        }
        return row;
    }

private:
    int m_planes;
    unsigned m_mask;
    std::size_t m_rowBytes;
    std::size_t m_planeBytes = 0;
    PixelMemory m_memory;
};

/// What the library's callbacks get to see.
struct Side {
    const RowRing* ring;
    const std::function<void(const PlanarRow&)>* handler;
    int width;
};

int handOver(void* user, unsigned y, unsigned left, unsigned right)
{
    const auto* const side = static_cast<const Side*>(user);
    (*side->handler)(side->ring->row(y, left, std::min(right, static_cast<unsigned>(side->width))));
    return 0;
}

} // namespace

Result<void> resample(const ResampleJob& job)
{
    assert(job.planes >= 1 && job.planes <= 4);
    const Graph graph(build(job));
    if (!graph) {
        return failure(Error::Kind::unsupported, "the sizes cannot be resampled");
    }
    unsigned inputLines = 0;
    unsigned outputLines = 0;
    std::size_t scratchBytes = 0;
    if (zimg_filter_graph_get_input_buffering(graph.get(), &inputLines) != ZIMG_ERROR_SUCCESS
        || zimg_filter_graph_get_output_buffering(graph.get(), &outputLines) != ZIMG_ERROR_SUCCESS
        || zimg_filter_graph_get_tmp_size(graph.get(), &scratchBytes) != ZIMG_ERROR_SUCCESS) {
        return failure(Error::Kind::unsupported, "the sizes cannot be resampled");
    }

    const RowRing input(
        job.source.width, job.planes, inputLines, static_cast<unsigned>(job.source.height));
    const RowRing output(
        job.target.width, job.planes, outputLines, static_cast<unsigned>(job.target.height));
    const PixelMemory scratch = allocateAligned(scratchBytes);
    if (!input.isValid() || !output.isValid() || !scratch) {
        return failure(Error::Kind::outOfMemory, "no memory to resample in");
    }

    zimg_image_buffer_const from {};
    zimg_image_buffer to {};
    from.version = ZIMG_API_VERSION;
    to.version = ZIMG_API_VERSION;
    for (int i = 0; i < job.planes; ++i) {
        const std::size_t at = slot(i, job.planes);
        from.plane[at].data = input.plane(i);
        from.plane[at].stride = input.rowBytes();
        from.plane[at].mask = input.mask();
        to.plane[at].data = output.plane(i);
        to.plane[at].stride = output.rowBytes();
        to.plane[at].mask = output.mask();
    }
    Side source { &input, &job.read, job.source.width };
    Side target { &output, &job.write, job.target.width };
    if (zimg_filter_graph_process(
            graph.get(), &from, &to, scratch.get(), handOver, &source, handOver, &target)
        != ZIMG_ERROR_SUCCESS) {
        return failure(Error::Kind::unsupported, "the picture cannot be resampled");
    }
    return {};
}

} // namespace vellumine::imaging
