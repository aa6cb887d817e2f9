#pragma once

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace vellumine::imaging::colour {

/// A few things that were dear to make, for whoever needs the same again. Any thread may ask.
template <typename Thing> class RecentlyUsed {
public:
    explicit RecentlyUsed(std::size_t capacity)
        : m_capacity(capacity)
    {
    }

    /// Hands over the thing that the predicate tells, if it is there: it belongs to the caller.
    template <typename Predicate> [[nodiscard]] std::optional<Thing> take(Predicate isWanted)
    {
        const std::scoped_lock lock(m_mutex);
        const auto found = std::ranges::find_if(m_things, isWanted);
        if (found == m_things.end()) {
            return std::nullopt;
        }
        std::optional<Thing> taken(std::move(*found));
        m_things.erase(found);
        return taken;
    }

    /// Where there is no room, what was kept longest goes.
    void keep(Thing thing)
    {
        std::optional<Thing> dropped; // goes after the lock
        const std::scoped_lock lock(m_mutex);
        if (m_things.size() == m_capacity) {
            dropped = std::move(m_things.front());
            m_things.erase(m_things.begin());
        }
        m_things.push_back(std::move(thing));
    }

private:
    const std::size_t m_capacity;
    std::mutex m_mutex;
    std::vector<Thing> m_things; ///< the latest last
};

} // namespace vellumine::imaging::colour
