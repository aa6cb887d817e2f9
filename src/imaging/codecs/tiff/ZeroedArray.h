#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace vellumine::imaging::tiff {

struct Free {
    void operator()(void* memory) const { std::free(memory); } // NOLINT(*-no-malloc): from calloc
};

/// Memory that starts out zero and costs nothing until it is touched, so that a huge strip in a
/// tiny file does not.
template <typename Element> using ZeroedArray = std::unique_ptr<Element[], Free>;

/// Null when there is no memory.
template <typename Element> ZeroedArray<Element> allocateZeroed(std::size_t count)
{
    // NOLINTNEXTLINE(*-no-malloc): operator new has no zeroed pages of the system's
    return ZeroedArray<Element>(static_cast<Element*>(std::calloc(count, sizeof(Element))));
}

} // namespace vellumine::imaging::tiff
