#pragma once

#include "app/instance/ActivationToken.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>
#include <cstdint>

namespace vellumine {

/// Keeps one process per session. The first one owns the program's name on the session bus and
/// answers to org.freedesktop.Application there; later ones hand it what they were started with.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    enum class Role : std::uint8_t {
        first, ///< run, and listen to the signals
        handedOver, ///< the first process has everything; end
        alone, ///< run; there is no bus, or nobody answers on it
    };

    /// How long a first process that does not answer is waited for.
    static constexpr std::chrono::milliseconds answerTime { 10000 };

    explicit SingleInstance(QDBusConnection bus, QObject* parent = nullptr);
    ~SingleInstance() override;

    [[nodiscard]] static QString busName();
    [[nodiscard]] static QString objectPath();

    /// Takes the name, or else hands the files over and waits until they have arrived: a process
    /// that ended before could take its message with it.
    [[nodiscard]] Role start(const QList<QUrl>& files, const ActivationToken& token,
        std::chrono::milliseconds patience = answerTime);

Q_SIGNALS:
    // What others ask the first process for.
    void activationRequested(const vellumine::ActivationToken& token);
    void openRequested(const QList<QUrl>& files, const vellumine::ActivationToken& token);
    void preferencesRequested(const vellumine::ActivationToken& token);
    void quitRequested();

private:
    [[nodiscard]] bool takeName();
    [[nodiscard]] bool handOver(const QList<QUrl>& files, const ActivationToken& token,
        std::chrono::milliseconds patience) const;

    QDBusConnection m_bus;
    bool m_ownsName = false;
};

} // namespace vellumine
