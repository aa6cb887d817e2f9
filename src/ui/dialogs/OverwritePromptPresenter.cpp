#include "ui/dialogs/OverwritePromptPresenter.h"

#include "platform/FilePath.h"

#include <utility>

namespace vellumine {

OverwritePromptPresenter::OverwritePromptPresenter(QObject* parent)
    : QObject(parent)
{
}

void OverwritePromptPresenter::ask(const QUrl& url, OverwritePrompt::Answer answer)
{
    skip();
    m_message = tr("Replace %1?").arg(platform::lastPathComponent(url));
    m_answer = std::move(answer);
    Q_EMIT changed();
    Q_EMIT asked();
}

QString OverwritePromptPresenter::informativeText()
{
    return tr("A file with this name already exists.");
}

QString OverwritePromptPresenter::replaceTitle()
{
    return tr("Replace");
}

QString OverwritePromptPresenter::skipTitle()
{
    return tr("Skip");
}

void OverwritePromptPresenter::replace()
{
    decide(OverwriteDecision::replace);
}

void OverwritePromptPresenter::skip()
{
    decide(OverwriteDecision::skip);
}

void OverwritePromptPresenter::decide(OverwriteDecision decision)
{
    if (!m_answer) {
        return;
    }
    // The answer may bring the next question before it returns.
    const OverwritePrompt::Answer answer = std::exchange(m_answer, {});
    Q_EMIT changed();
    answer(decision);
}

} // namespace vellumine
