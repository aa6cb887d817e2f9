#pragma once

#include "platform/FilePath.h"
#include "ui/dialogs/FolderPanelPresenter.h"
#include "ui/dialogs/OverwritePromptPresenter.h"

#include <QDir>
#include <QObject>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>
#include <qqmlregistration.h>

namespace vellumine {

/// Questions as conversions ask them, and the answers that they got.
class DialogFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::OverwritePromptPresenter* overwritePrompt READ overwritePrompt CONSTANT)
    Q_PROPERTY(vellumine::FolderPanelPresenter* folderPanel READ folderPanel CONSTANT)
    Q_PROPERTY(QStringList answers MEMBER m_answers NOTIFY answered)

public:
    using QObject::QObject;

    [[nodiscard]] OverwritePromptPresenter* overwritePrompt() { return &m_overwritePrompt; }
    [[nodiscard]] FolderPanelPresenter* folderPanel() { return &m_folderPanel; }

    Q_INVOKABLE void askOverwrite(const QString& path)
    {
        m_overwritePrompt.ask(platform::fileUrl(path), [this](OverwriteDecision decision) {
            m_answers.append(decision == OverwriteDecision::replace ? QStringLiteral("replace")
                                                                    : QStringLiteral("skip"));
            Q_EMIT answered();
        });
    }

    /// A folder of this fixture, with those on the way to it.
    Q_INVOKABLE QUrl makeFolder(const QString& path)
    {
        QDir(m_folder.path()).mkpath(path);
        return platform::fileUrl(m_folder.filePath(path));
    }

    Q_INVOKABLE void askFolder(
        const QString& message, const QUrl& folder, const QString& prompt = {})
    {
        m_folderPanel.show({ .message = message, .prompt = prompt, .folder = folder },
            [this](const std::optional<QUrl>& chosen) {
                m_answers.append(chosen ? chosen->toString() : QStringLiteral("cancelled"));
                Q_EMIT answered();
            });
    }

Q_SIGNALS:
    void answered();

private:
    QTemporaryDir m_folder;
    QStringList m_answers;
    OverwritePromptPresenter m_overwritePrompt;
    FolderPanelPresenter m_folderPanel;
};

} // namespace vellumine
