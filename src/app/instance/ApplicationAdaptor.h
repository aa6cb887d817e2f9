#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace vellumine {

class SingleInstance;

/// org.freedesktop.Application, as launchers and second starts call it. Refuses what comes once the
/// process is about to end.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance* instance);

    // The names are those of the interface. NOLINTBEGIN(readability-identifier-naming)
    Q_SLOT void Activate(const QVariantMap& platformData, const QDBusMessage& call);
    Q_SLOT void Open(
        const QStringList& uris, const QVariantMap& platformData, const QDBusMessage& call);
    Q_SLOT void ActivateAction(const QString& name, const QVariantList& parameter,
        const QVariantMap& platformData, const QDBusMessage& call);
    // NOLINTEND(readability-identifier-naming)

private:
    /// Answers the call with an error if the process is about to end.
    [[nodiscard]] bool refuses(const QDBusMessage& call) const;

    SingleInstance& m_instance;
};

} // namespace vellumine
