#include "pipeline/NeededFiles.h"

#include "platform/FilePath.h"

#include <algorithm>
#include <iterator>

namespace vellumine {

NeededFiles::NeededFiles(const std::vector<QUrl>& urls)
{
    for (const QUrl& url : urls) {
        const std::filesystem::path source = platform::toPath(url);
        for (const auto& path : platform::pathsToFile(source)) {
            if (const auto identity = platform::identityAt(path)) {
                m_positions[*identity].push_back(m_sources.size());
            }
        }
        m_sources.push_back({ .file = { source, platform::fileVersion(source) }, .output = {} });
    }
}

bool NeededFiles::isAt(const std::filesystem::path& path) const
{
    const auto identity = platform::identityAt(path);
    if (!identity) {
        return false;
    }
    const auto version = platform::fileVersion(path);
    const std::scoped_lock lock(m_mutex);
    const auto isNeeded = [&](std::size_t index) {
        const Source& source = m_sources[index];
        return !source.isRead || (version == source.file.version && !isStillThere(source.output));
    };
    if (std::ranges::any_of(sourcesAt(*identity), isNeeded)) {
        return true;
    }
    const auto found = m_outputs.find(*identity);
    if (found == m_outputs.end()) {
        return false;
    }
    const Source& source = m_sources[found->second];
    return version == source.output.version && !source.isInTrash && !isStillThere(source.file);
}

std::vector<std::size_t> NeededFiles::unreadAt(const std::filesystem::path& path) const
{
    std::vector<std::size_t> unread;
    if (const auto identity = platform::identityAt(path)) {
        const std::scoped_lock lock(m_mutex);
        std::ranges::copy_if(sourcesAt(*identity), std::back_inserter(unread),
            [this](std::size_t index) { return !m_sources[index].isRead; });
    }
    return unread;
}

void NeededFiles::setRead(std::size_t index, const std::optional<QUrl>& output, WhenGone whenGone)
{
    const auto path = output ? platform::toPath(*output) : std::filesystem::path();
    const auto identity = platform::identityAt(path);
    const auto version = platform::fileVersion(path);
    const std::scoped_lock lock(m_mutex);
    Source& source = m_sources.at(index);
    source.isRead = true;
    source.isInTrash = whenGone == WhenGone::inTrash && !isStillThere(source.file);
    if (identity && version) {
        source.output = { path, version };
        m_outputs.insert_or_assign(*identity, index);
    }
}

std::span<const std::size_t> NeededFiles::sourcesAt(const platform::FileIdentity& identity) const
{
    const auto found = m_positions.find(identity);
    return found != m_positions.end() ? std::span<const std::size_t>(found->second)
                                      : std::span<const std::size_t>();
}

bool NeededFiles::isStillThere(const Standing& file)
{
    return file.version && platform::fileVersion(file.path) == file.version;
}

} // namespace vellumine
