#pragma once

#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QStringList>

#include <gtest/gtest.h>

#include <cstdint>

namespace vellumine::platform {

/// A file manager that remembers what it was asked for.
class FakeFileManager : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    enum class Answer : std::uint8_t { shown, refused };

    explicit FakeFileManager(Answer answer)
        : m_answer(answer)
    {
    }

    [[nodiscard]] const QList<QStringList>& shown() const { return m_shown; }

    // NOLINTNEXTLINE(readability-identifier-naming): the bus's own name
    Q_SLOT void ShowItems(const QStringList& uris, const QString& startupId)
    {
        EXPECT_TRUE(startupId.isEmpty());
        m_shown.append(uris);
        if (m_answer == Answer::refused) {
            sendErrorReply(QDBusError::Failed, QStringLiteral("not today"));
        }
    }

private:
    Answer m_answer;
    QList<QStringList> m_shown;
};

} // namespace vellumine::platform
