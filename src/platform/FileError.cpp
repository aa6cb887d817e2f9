#include "platform/FileError.h"

#include <system_error>

namespace vellumine::platform {

FileError FileError::fromErrno(int code)
{
    return { QString::fromLocal8Bit(std::generic_category().message(code).c_str()) };
}

} // namespace vellumine::platform
