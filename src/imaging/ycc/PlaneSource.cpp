#include "imaging/ycc/PlaneSource.h"

#include <cstring>
#include <utility>

namespace vellumine::imaging::ycc {

namespace {

class PlanesHere final : public PlaneSource {
public:
    explicit PlanesHere(YccPlanes&& planes)
        : m_planes(std::move(planes))
    {
    }

    [[nodiscard]] Size size() const override { return m_planes.size(); }
    [[nodiscard]] Subsampling subsampling() const override { return m_planes.subsampling(); }
    [[nodiscard]] Result<void> copy(
        int plane, Rect part, std::uint8_t* to, std::size_t rowBytes) const override
    {
        for (int y = part.y; y < part.y + part.height; ++y) {
            std::memcpy(to, m_planes.row(plane, y) + part.x, static_cast<std::size_t>(part.width));
            to += rowBytes;
        }
        return {};
    }
    [[nodiscard]] const YccPlanes* here() const override { return &m_planes; }

private:
    YccPlanes m_planes;
};

} // namespace

std::shared_ptr<const PlaneSource> planesHere(YccPlanes planes)
{
    return std::make_shared<PlanesHere>(std::move(planes));
}

} // namespace vellumine::imaging::ycc
