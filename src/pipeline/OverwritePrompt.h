#pragma once

#include <QUrl>

#include <functional>
#include <memory>

namespace vellumine {

enum class OverwriteDecision { replace, skip };

/// Asks the user, on the thread that made it, whether a file may be replaced, for conversions that
/// wait on threads of their own. One question at a time, in the order of asking. A question that
/// can no longer be answered counts as "Skip".
class OverwritePrompt {
public:
    /// Takes the answer, once; dropped without a call it answers "Skip".
    using Answer = std::function<void(OverwriteDecision)>;
    /// Puts the question: now or later calls the answer. Runs on the thread that made the prompt.
    using Question = std::function<void(const QUrl& url, Answer answer)>;

    explicit OverwritePrompt(Question question);
    /// Like close(); on the thread that made it.
    ~OverwritePrompt();
    OverwritePrompt(const OverwritePrompt&) = delete;
    OverwritePrompt& operator=(const OverwritePrompt&) = delete;

    /// Blocks until the question about the file is answered. From any thread but the prompt's own,
    /// whose event loop has to run.
    [[nodiscard]] OverwriteDecision ask(const QUrl& url) const;

    /// Answers every open question and every later one with "Skip". To be called before a thread
    /// waits for conversions without running its event loop.
    void close();

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace vellumine
