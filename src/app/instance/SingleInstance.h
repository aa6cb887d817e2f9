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
/// A call that was answered well has been followed; one that comes when the first process is about
/// to end is refused, and the later process takes its place.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    enum class Role : std::uint8_t {
        first, ///< run, and listen to the signals
        handedOver, ///< the first process has everything; end
        alone, ///< run; there is no bus, or nobody answers on it
    };

    /// How long a first process that may hang is waited for before it gets anything.
    static constexpr std::chrono::milliseconds answerTime { 10000 };

    explicit SingleInstance(QDBusConnection bus, QObject* parent = nullptr);
    ~SingleInstance() override;

    [[nodiscard]] static QString busName();
    [[nodiscard]] static QString objectPath();

    /// Takes the name, or else hands the files over and waits until they have arrived: a process
    /// that ended before could take its message with it. What a process has that answered a moment
    /// ago stays with it for as long as it lives: it will see to the files when it wakes up.
    [[nodiscard]] Role start(const QList<QUrl>& files, const ActivationToken& token,
        std::chrono::milliseconds patience = answerTime);

    /// Gives the name away. Calls that are still on their way are refused; when this returns, no
    /// more will come. For a process that is about to end.
    void leave();
    [[nodiscard]] bool isLeaving() const { return m_isLeaving; }

    /// The bus that this process is on.
    [[nodiscard]] QDBusConnection bus() const { return m_bus; }

Q_SIGNALS:
    // What others ask the first process for.
    void activationRequested(const vellumine::ActivationToken& token);
    void openRequested(const QList<QUrl>& files, const vellumine::ActivationToken& token);
    void preferencesRequested(const vellumine::ActivationToken& token);
    void quitRequested();

private:
    [[nodiscard]] Role takeNameOrHandOver(
        const QList<QUrl>& files, const ActivationToken& token, std::chrono::milliseconds patience);
    [[nodiscard]] bool takeName();
    [[nodiscard]] bool isAwake(std::chrono::milliseconds patience) const;
    [[nodiscard]] bool handOver(const QList<QUrl>& files, const ActivationToken& token) const;

    QDBusConnection m_bus;
    bool m_ownsName = false;
    bool m_isLeaving = false;
};

} // namespace vellumine
