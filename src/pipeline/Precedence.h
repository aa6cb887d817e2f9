#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <queue>
#include <utility>
#include <vector>

namespace vellumine {

/// Tasks, numbered from 0, of which some wait for others. For one thread.
class Precedence {
public:
    explicit Precedence(std::size_t count)
        : m_followers(count)
        , m_awaited(count)
    {
    }

    /// Has a task wait for another one, which must not wait for it. To be called before start().
    void letWait(std::size_t task, std::size_t forOther)
    {
        m_followers.at(forOther).push_back(task);
        ++m_awaited.at(task);
    }

    void start()
    {
        for (std::size_t task = 0; task < m_awaited.size(); ++task) {
            if (m_awaited[task] == 0) {
                m_ready.push(task);
            }
        }
    }

    /// The first task that waits for nothing; none when all are taken or have to wait.
    [[nodiscard]] std::optional<std::size_t> takeNext()
    {
        if (m_ready.empty()) {
            return std::nullopt;
        }
        const std::size_t task = m_ready.top();
        m_ready.pop();
        return task;
    }

    /// Frees those that wait for the task.
    void finished(std::size_t task)
    {
        for (const std::size_t follower : std::exchange(m_followers.at(task), {})) {
            if (--m_awaited[follower] == 0) {
                m_ready.push(follower);
            }
        }
    }

private:
    std::vector<std::vector<std::size_t>> m_followers; ///< by task: who waits for it
    std::vector<std::size_t> m_awaited; ///< by task: how many it waits for
    std::priority_queue<std::size_t, std::vector<std::size_t>, std::greater<>> m_ready;
};

} // namespace vellumine
