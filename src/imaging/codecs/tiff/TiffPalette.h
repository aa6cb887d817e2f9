#pragma once

#include "imaging/Error.h"
#include "imaging/codecs/tiff/TiffDirectory.h"

#include <array>
#include <cstdint>
#include <vector>

namespace vellumine::imaging::tiff {

/// The colour map of a palette picture, at the depth that the picture decodes to.
class Palette {
public:
    /// Without any colours.
    Palette() = default;
    /// Fails with Malformed when the file has no colour map.
    static Result<Palette> read(TIFF* tiff, const TiffDirectory& directory);

    /// Red, green or blue (0 to 2) of an index below 2 to the power of the stored depth.
    [[nodiscard]] std::uint16_t value(int channel, std::uint16_t index) const
    {
        return m_channels[static_cast<std::size_t>(channel)][index];
    }

private:
    std::array<std::vector<std::uint16_t>, 3> m_channels;
};

} // namespace vellumine::imaging::tiff
