#include "imaging/resample/Resampler.h"

#include "imaging/PixelMemory.h"

#include <zimg.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <iterator>
#include <memory>

namespace vellumine::imaging {

namespace {

using Graph = std::shared_ptr<const zimg_filter_graph>;

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

/// Brightness and colour in planes. The range is called limited, whatever the samples fill of it:
/// then the library only shifts them on their way from 8 to 16 bits, where the full range takes a
/// multiplication. A linear filter gives the same either way.
zimg_image_format yccFormat(Size size)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(size.width);
    format.height = static_cast<unsigned>(size.height);
    format.pixel_range = ZIMG_RANGE_LIMITED;
    format.color_family = ZIMG_COLOR_YUV;
    format.matrix_coefficients = ZIMG_MATRIX_ST170_M;
    return format;
}

zimg_image_format yccSourceFormat(const ycc::YccPlanes& planes)
{
    const Size size = planes.size();
    const auto [x, y] = planes.subsampling();
    // The library takes whole pairs of pixels that share a colour; the picture may end inside one.
    zimg_image_format format
        = yccFormat({ (size.width + x - 1) / x * x, (size.height + y - 1) / y * y });
    format.active_region.left = 0;
    format.active_region.top = 0;
    format.active_region.width = size.width;
    format.active_region.height = size.height;
    format.subsample_w = static_cast<unsigned>(x - 1);
    format.subsample_h = static_cast<unsigned>(y - 1);
    format.chroma_location = ZIMG_CHROMA_CENTER;
    format.pixel_type = ZIMG_PIXEL_BYTE;
    format.depth = 8;
    return format;
}

zimg_image_format yccTargetFormat(Size size)
{
    zimg_image_format format = yccFormat(size);
    format.pixel_type = ZIMG_PIXEL_WORD;
    format.depth = 16;
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
    parameters.resample_filter_uv = parameters.resample_filter;
    parameters.filter_param_a_uv = parameters.filter_param_a;
    parameters.filter_param_b_uv = parameters.filter_param_b;
    zimg_filter_graph* const graph = zimg_filter_graph_build(&source, &target, &parameters);
    return { graph, [](zimg_filter_graph* built) {
                if (built != nullptr) {
                    zimg_filter_graph_free(built);
                }
            } };
}

/// What a graph is built from. No two jobs of different kinds have all of these in common.
struct GraphKey {
    Size source;
    Size target;
    int planes = 0; ///< 0 for brightness and colour
    ycc::Subsampling subsampling;
    ResampleFilter filter = ResampleFilter::lanczos3;

    friend bool operator==(const GraphKey&, const GraphKey&) = default;
};

/// The graphs that a thread used last. Building one takes as long as resampling a photograph of ten
/// megapixels with it, and the photographs of a batch often have one size.
class RecentGraphs {
public:
    template <typename Build> Graph find(const GraphKey& key, const Build& buildGraph)
    {
        auto* entry = std::ranges::find(m_entries, key, &Entry::key);
        if (entry == m_entries.end()) {
            entry = std::prev(m_entries.end());
            *entry = { key, buildGraph() };
        }
        std::rotate(m_entries.begin(), entry, std::next(entry));
        return m_entries.front().graph;
    }

private:
    struct Entry {
        GraphKey key;
        Graph graph;
    };
    std::array<Entry, 2> m_entries; ///< landscape and portrait; the latest one first
};

thread_local RecentGraphs recentGraphs;

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

/// What the graph reads from: planes in memory, or a ring that a handler fills.
struct Input {
    zimg_image_buffer_const buffer;
    Side side { nullptr, nullptr };
};

Result<void> run(
    const zimg_filter_graph* graph, Input input, Size target, int planes, const RowHandler& write)
{
    unsigned lines = 0;
    std::size_t scratchBytes = 0;
    if (zimg_filter_graph_get_output_buffering(graph, &lines) != ZIMG_ERROR_SUCCESS
        || zimg_filter_graph_get_tmp_size(graph, &scratchBytes) != ZIMG_ERROR_SUCCESS) {
        return failure(Error::Kind::unsupported, "the sizes cannot be resampled");
    }
    const RowRing output(target, planes, lines);
    const PixelMemory scratch = allocateAligned(scratchBytes);
    if (!output.isValid() || !scratch) {
        return failure(Error::Kind::outOfMemory, "no memory to resample in");
    }
    const auto to = output.buffer<zimg_image_buffer>();
    Side written { &output, &write };
    if (zimg_filter_graph_process(graph, &input.buffer, &to, scratch.get(),
            input.side.handler != nullptr ? handOver : nullptr, &input.side, handOver, &written)
        != ZIMG_ERROR_SUCCESS) {
        return failure(Error::Kind::unsupported, "the picture cannot be resampled");
    }
    return {};
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
    unsigned lines = 0;
    if (!graph
        || zimg_filter_graph_get_input_buffering(graph.get(), &lines) != ZIMG_ERROR_SUCCESS) {
        return failure(Error::Kind::unsupported, "the sizes cannot be resampled");
    }
    const RowRing ring(job.source, job.planes, lines);
    if (!ring.isValid()) {
        return failure(Error::Kind::outOfMemory, "no memory to resample in");
    }
    return run(graph.get(), { ring.buffer<zimg_image_buffer_const>(), { &ring, &job.read } },
        job.target, job.planes, job.write);
}

Result<void> resample(
    const ycc::YccPlanes& source, Size target, ResampleFilter filter, const RowHandler& write)
{
    constexpr int planes = 3;
    const Graph graph
        = recentGraphs.find({ source.size(), target, 0, source.subsampling(), filter },
            [&] { return build(yccSourceFormat(source), yccTargetFormat(target), filter); });
    if (!graph) {
        return failure(Error::Kind::unsupported, "the sizes cannot be resampled");
    }
    Input input;
    input.buffer = {};
    input.buffer.version = ZIMG_API_VERSION;
    for (int i = 0; i < planes; ++i) {
        auto& plane = input.buffer.plane[i];
        plane.data = source.row(i, 0);
        plane.stride = static_cast<std::ptrdiff_t>(source.rowBytes(i));
        plane.mask = ZIMG_BUFFER_MAX;
    }
    return run(graph.get(), input, target, planes, write);
}

} // namespace vellumine::imaging
