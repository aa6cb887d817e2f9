#include "platform/FileDescriptor.h"

#include <unistd.h>

namespace vellumine::platform {

void FileDescriptor::reset()
{
    if (m_descriptor >= 0) {
        ::close(std::exchange(m_descriptor, -1));
    }
}

} // namespace vellumine::platform
