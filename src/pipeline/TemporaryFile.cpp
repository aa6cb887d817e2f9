#include "pipeline/TemporaryFile.h"

#include <QUuid>

#include <string>
#include <system_error>

namespace vellumine {

std::filesystem::path uniquePath(
    const std::filesystem::path& folder, std::string_view prefix, std::string_view extension)
{
    const QString uuid = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    return folder / (std::string(prefix) + uuid.toStdString() + '.' + std::string(extension));
}

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
