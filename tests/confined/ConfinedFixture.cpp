#include "confined/ConfinedFixture.h"

#include "imaging/ImageDestination.h"

#include <cstring>
#include <stdexcept>
#include <string>

namespace vellumine::confined {

using imaging::Image;

bool areEqual(const Image& a, const Image& b)
{
    if (a.size() != b.size() || a.layout() != b.layout() || !(a.colorSpace() == b.colorSpace())
        || a.colorSpace().isSRgbEquivalent() != b.colorSpace().isSRgbEquivalent()) {
        return false;
    }
    for (int y = 0; y < a.height(); ++y) {
        // Not an algorithm's loop: byte by byte under a sanitizer, the samples would take minutes.
        if (std::memcmp(a.row(y).data(), b.row(y).data(), a.row(y).size()) != 0) {
            return false;
        }
    }
    return true;
}

std::filesystem::path Confined::picture(imaging::UniformType type, imaging::Size size) const
{
    std::filesystem::path path
        = m_folder / (std::string("picture.") + std::string(preferredExtension(type)));
    std::filesystem::remove(path);
    auto destination = imaging::ImageDestination::create(path, type);
    destination->addImage(test::syntheticPhoto(size), {});
    if (!destination->finalize()) {
        throw std::runtime_error("cannot write " + path.string());
    }
    return path;
}

} // namespace vellumine::confined
