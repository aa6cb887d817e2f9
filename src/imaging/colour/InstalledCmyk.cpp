#include "imaging/colour/InstalledCmyk.h"

#include "imaging/colour/Profile.h"

#include <array>
#include <fstream>
#include <iterator>

namespace vellumine::imaging::colour {

namespace {

/// Best first: coated-paper press profiles, then Ghostscript's default.
constexpr std::array<const char*, 6> candidates {
    "/usr/share/color/icc/colord/FOGRA39L_coated.icc",
    "/usr/share/color/icc/colord/SWOP2006_Coated3v2.icc",
    "/usr/share/color/icc/ISOcoated_v2_300_eci.icc",
    "/usr/share/color/icc/OpenICC/ISOcoated_v2_300_basICC.icc",
    "/usr/share/color/icc/ghostscript/default_cmyk.icc",
    "/usr/share/color/icc/ghostscript/ps_cmyk.icc",
};

ByteBuffer read(const char* path)
{
    std::ifstream stream(path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(stream)), {});
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

} // namespace

ByteSpan installedCmykProfile()
{
    static const ByteBuffer profile = [] {
        const Context context = makeContext();
        for (const char* const path : candidates) {
            ByteBuffer bytes = read(path);
            const Profile opened = openProfile(context.get(), bytes);
            if (opened && modelOf(opened.get()) == ColorModel::cmyk) {
                return bytes;
            }
        }
        return ByteBuffer {};
    }();
    return profile;
}

} // namespace vellumine::imaging::colour
