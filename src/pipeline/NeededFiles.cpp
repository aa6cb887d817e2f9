#include "pipeline/NeededFiles.h"

#include "platform/FilePath.h"

#include <algorithm>
#include <iterator>

namespace vellumine {

NeededFiles::NeededFiles(const std::vector<QUrl>& urls)
    : m_isRead(urls.size())
{
    for (std::size_t index = 0; index < urls.size(); ++index) {
        m_paths.push_back(platform::toPath(urls[index]));
        m_versions.push_back(platform::fileVersion(m_paths.back()));
        for (const auto& path : platform::pathsToFile(m_paths.back())) {
            if (const auto identity = platform::identityAt(path)) {
                m_positions[*identity].push_back(index);
            }
        }
    }
}

bool NeededFiles::isAt(const std::filesystem::path& path) const
{
    if (!unreadAt(path).empty()) {
        return true;
    }
    const auto identity = platform::identityAt(path);
    if (!identity) {
        return false;
    }
    const std::scoped_lock lock(m_mutex);
    const auto output = m_outputs.find(*identity);
    return output != m_outputs.end() && platform::fileVersion(path) == output->second.version
        && !isSourceThere(output->second.source);
}

std::vector<std::size_t> NeededFiles::unreadAt(const std::filesystem::path& path) const
{
    std::vector<std::size_t> unread;
    const auto identity = platform::identityAt(path);
    const auto found = identity ? m_positions.find(*identity) : m_positions.end();
    if (found != m_positions.end()) {
        const std::scoped_lock lock(m_mutex);
        std::ranges::copy_if(found->second, std::back_inserter(unread),
            [this](std::size_t index) { return !m_isRead[index]; });
    }
    return unread;
}

void NeededFiles::setRead(std::size_t index, const std::optional<QUrl>& output)
{
    const auto path = output ? platform::toPath(*output) : std::filesystem::path();
    const auto identity = platform::identityAt(path);
    const auto version = platform::fileVersion(path);
    const std::scoped_lock lock(m_mutex);
    m_isRead.at(index) = true;
    if (identity && version) {
        m_outputs.insert_or_assign(*identity, Output { *version, index });
    }
}

bool NeededFiles::isSourceThere(std::size_t index) const
{
    return m_versions[index] && platform::fileVersion(m_paths[index]) == m_versions[index];
}

} // namespace vellumine
