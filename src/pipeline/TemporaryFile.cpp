#include "pipeline/TemporaryFile.h"

#include <system_error>
#include <utility>

namespace vellumine {

TemporaryFile::TemporaryFile(std::filesystem::path path)
    : m_path(std::move(path))
{
}

TemporaryFile::~TemporaryFile()
{
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

} // namespace vellumine
