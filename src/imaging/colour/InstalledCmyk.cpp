#include "imaging/colour/InstalledCmyk.h"

#include "imaging/FileDescriptor.h"
#include "imaging/colour/Profile.h"

#include <array>
#include <utility>
#include <vector>

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

/// Those that this machine has, open from the first call on.
std::vector<FileDescriptor>& installed()
{
    static std::vector<FileDescriptor> files = [] {
        std::vector<FileDescriptor> found;
        for (const char* const path : candidates) {
            if (auto file = FileDescriptor::openForReading(path)) {
                found.push_back(std::move(*file));
            }
        }
        return found;
    }();
    return files;
}

ByteBuffer contentOf(FileDescriptor& file)
{
    ByteBuffer bytes;
    const auto size = file.size();
    if (!size || !file.readInto(bytes, static_cast<std::size_t>(*size))) {
        return {};
    }
    return bytes;
}

} // namespace

ByteSpan installedCmykProfile()
{
    static const ByteBuffer profile = [] {
        std::vector<FileDescriptor> files = std::exchange(installed(), {});
        const Context context = makeContext();
        for (FileDescriptor& file : files) {
            ByteBuffer bytes = contentOf(file);
            const Profile opened = openProfile(context.get(), bytes);
            if (opened && modelOf(opened.get()) == ColorModel::cmyk) {
                return bytes;
            }
        }
        return ByteBuffer {};
    }();
    return profile;
}

void openInstalledCmykProfiles()
{
    (void)installed();
}

} // namespace vellumine::imaging::colour
