#include "pipeline/UnreadSources.h"

#include "platform/FilePath.h"

#include <algorithm>
#include <iterator>

namespace vellumine {

UnreadSources::UnreadSources(const std::vector<QUrl>& urls)
    : m_isRead(urls.size())
{
    for (std::size_t index = 0; index < urls.size(); ++index) {
        for (const auto& path : platform::pathsToFile(platform::toPath(urls[index]))) {
            if (const auto identity = platform::identityAt(path)) {
                m_positions[*identity].push_back(index);
            }
        }
    }
}

std::vector<std::size_t> UnreadSources::standingAt(const std::filesystem::path& path) const
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

void UnreadSources::setRead(std::size_t index)
{
    const std::scoped_lock lock(m_mutex);
    m_isRead.at(index) = true;
}

} // namespace vellumine
