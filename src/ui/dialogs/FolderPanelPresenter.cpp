#include "ui/dialogs/FolderPanelPresenter.h"

#include <utility>

namespace vellumine {

FolderPanel folderPanel(const SaveAccessPanel& panel)
{
    return { .message = panel.message,
        .prompt = panel.prompt,
        .folder = panel.folder,
        .newFolders = FolderPanel::NewFolders::refused };
}

FolderPanelPresenter::FolderPanelPresenter(QObject* parent)
    : QObject(parent)
{
}

FolderPanelPresenter::~FolderPanelPresenter()
{
    const std::deque<Entry> open = std::exchange(m_panels, {});
    for (const Entry& entry : open) {
        entry.answer(std::nullopt);
    }
}

void FolderPanelPresenter::show(const FolderPanel& panel, FolderPanelAnswer answer)
{
    m_panels.push_back({ panel, std::move(answer) });
    if (m_panels.size() == 1) {
        Q_EMIT changed();
        Q_EMIT asked();
    }
}

void FolderPanelPresenter::choose(const QUrl& folder)
{
    answer(folder.isLocalFile() ? std::optional(folder) : std::nullopt);
}

void FolderPanelPresenter::cancel()
{
    answer(std::nullopt);
}

int FolderPanelPresenter::dialogOptions() const
{
    // Qt's option "read only", for which the dialog has no name in QML.
    constexpr int readOnly = 0x10;
    return allowsNewFolders() ? 0 : readOnly;
}

FolderPanel FolderPanelPresenter::current() const
{
    return m_panels.empty() ? FolderPanel {} : m_panels.front().panel;
}

void FolderPanelPresenter::answer(const std::optional<QUrl>& folder)
{
    if (m_panels.empty()) {
        return;
    }
    const FolderPanelAnswer answer = std::move(m_panels.front().answer);
    m_panels.pop_front();
    // Told before the next panel shows, and before the answer asks for another one.
    Q_EMIT changed();
    if (!m_panels.empty()) {
        Q_EMIT asked();
    }
    answer(folder);
}

} // namespace vellumine
