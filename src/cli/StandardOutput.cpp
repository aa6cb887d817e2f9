#include "cli/StandardOutput.h"

#include "platform/FileError.h"

#include <cerrno>
#include <cstdio>

namespace vellumine::cli {

bool StandardOutput::print(const QByteArray& text)
{
    if (!m_isWhole) {
        return false;
    }
    const auto size = static_cast<std::size_t>(text.size());
    if (std::fwrite(text.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0) {
        m_isWhole = false;
        std::fprintf(stderr, "vellumine-batch: could not write to standard output: %s\n",
            platform::FileError::fromErrno(errno).text.toUtf8().constData());
    }
    return m_isWhole;
}

} // namespace vellumine::cli
