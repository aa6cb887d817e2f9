#include "imaging/PixelMemory.h"

#include "confined/protocol/SharedMemory.h"

// In this program every picture is made in memory that can be handed over, so that no pixel is ever
// copied on its way to the program that asked for it.

namespace vellumine::imaging {

std::shared_ptr<std::byte[]> allocatePixels(std::size_t bytes)
{
    return confined::SharedMemory::allocate(bytes);
}

} // namespace vellumine::imaging
