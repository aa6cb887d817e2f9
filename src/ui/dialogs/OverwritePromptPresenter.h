#pragma once

#include "pipeline/OverwritePrompt.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace vellumine {

/// The question whether a file may be replaced, as the main window puts it. One at a time: the
/// OverwritePrompt, whose questions ask() takes, keeps the queue.
class OverwritePromptPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one presenter of its questions.")
    Q_PROPERTY(bool isAsking READ isAsking NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(QString informativeText READ informativeText CONSTANT)
    Q_PROPERTY(QString replaceTitle READ replaceTitle CONSTANT)
    Q_PROPERTY(QString skipTitle READ skipTitle CONSTANT)

public:
    explicit OverwritePromptPresenter(QObject* parent = nullptr);

    /// Shows a question until it is answered. A question that is still open counts as "Skip".
    void ask(const QUrl& url, OverwritePrompt::Answer answer);

    [[nodiscard]] bool isAsking() const { return static_cast<bool>(m_answer); }
    /// "Replace " + the file's name + "?"; the last one asked stays while the question disappears.
    [[nodiscard]] const QString& message() const { return m_message; }
    [[nodiscard]] static QString informativeText();
    [[nodiscard]] static QString replaceTitle();
    [[nodiscard]] static QString skipTitle();

    /// Answer the open question; without one they do nothing.
    Q_INVOKABLE void replace();
    Q_INVOKABLE void skip();

Q_SIGNALS:
    void changed();
    /// A question waits: its window has to be seen.
    void asked();

private:
    void decide(OverwriteDecision decision);

    QString m_message;
    OverwritePrompt::Answer m_answer;
};

} // namespace vellumine
