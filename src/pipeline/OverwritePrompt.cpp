#include "pipeline/OverwritePrompt.h"

#include <QMetaObject>
#include <QObject>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

namespace vellumine {

/// Shared by the prompt, the waiting threads and the answers on their way, so that whichever comes
/// last finds it.
struct OverwritePrompt::State {
    struct Request {
        QUrl url;
        std::optional<OverwriteDecision> decision;
    };

    std::mutex mutex;
    std::condition_variable answered;
    std::deque<std::shared_ptr<Request>> waiting;
    bool isAsking = false;
    bool isClosed = false;
    std::unique_ptr<QObject> context; ///< lives on the prompt's thread; null once closed
    Question question;

    static void askNext(const std::shared_ptr<State>& state);
    static void decide(
        const std::shared_ptr<State>& state, Request& request, OverwriteDecision decision);
    /// Runs askNext() on the prompt's thread. The mutex is held.
    static void scheduleNext(const std::shared_ptr<State>& state);
};

namespace {

/// Answers when the last copy of an Answer goes without having been called.
template <typename Callback> class AnswerOnce {
public:
    explicit AnswerOnce(Callback callback)
        : m_callback(std::move(callback))
    {
    }
    ~AnswerOnce() { give(OverwriteDecision::skip); }
    AnswerOnce(const AnswerOnce&) = delete;
    AnswerOnce& operator=(const AnswerOnce&) = delete;

    void give(OverwriteDecision decision)
    {
        if (!std::exchange(m_given, true)) {
            m_callback(decision);
        }
    }

private:
    Callback m_callback;
    bool m_given = false;
};

} // namespace

void OverwritePrompt::State::scheduleNext(const std::shared_ptr<State>& state)
{
    if (state->context && !state->isAsking && !state->waiting.empty()) {
        state->isAsking = true;
        QMetaObject::invokeMethod(
            state->context.get(), [state] { askNext(state); }, Qt::QueuedConnection);
    }
}

void OverwritePrompt::State::askNext(const std::shared_ptr<State>& state)
{
    std::shared_ptr<Request> request;
    {
        const std::lock_guard lock(state->mutex);
        if (state->waiting.empty()) {
            return;
        }
        request = state->waiting.front();
        state->waiting.pop_front();
    }
    const auto callback
        = [state, request](OverwriteDecision decision) { decide(state, *request, decision); };
    const auto once = std::make_shared<AnswerOnce<decltype(callback)>>(callback);
    state->question(request->url, [once](OverwriteDecision decision) { once->give(decision); });
}

void OverwritePrompt::State::decide(
    const std::shared_ptr<State>& state, Request& request, OverwriteDecision decision)
{
    {
        const std::lock_guard lock(state->mutex);
        request.decision = decision;
        state->isAsking = false;
        scheduleNext(state);
    }
    state->answered.notify_all();
}

OverwritePrompt::OverwritePrompt(Question question)
    : m_state(std::make_shared<State>())
{
    m_state->context = std::make_unique<QObject>();
    m_state->question = std::move(question);
}

OverwritePrompt::~OverwritePrompt()
{
    close();
}

OverwriteDecision OverwritePrompt::ask(const QUrl& url) const
{
    const std::shared_ptr<State> state = m_state;
    const auto request = std::make_shared<State::Request>(State::Request { url, std::nullopt });
    std::unique_lock lock(state->mutex);
    if (!state->isClosed) {
        state->waiting.push_back(request);
        State::scheduleNext(state);
        state->answered.wait(lock, [&] { return request->decision || state->isClosed; });
    }
    return request->decision.value_or(OverwriteDecision::skip);
}

void OverwritePrompt::close()
{
    std::unique_ptr<QObject> context;
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->isClosed = true;
        m_state->waiting.clear();
        context = std::move(m_state->context);
    }
    m_state->answered.notify_all();
    // Outside the lock: with the context go its undelivered events, and what they hold.
    context.reset();
}

} // namespace vellumine
