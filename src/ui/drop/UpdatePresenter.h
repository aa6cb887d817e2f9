#pragma once

#include "update/UpdateChecker.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace vellumine {

/// What the footer says about updates.
class UpdatePresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one presenter of its updates.")
    /// The last check failed, and another one can be asked for.
    Q_PROPERTY(bool canRetry READ canRetry NOTIFY changed)
    Q_PROPERTY(QString retryHelpText READ retryHelpText CONSTANT)
    /// There is a newer version.
    Q_PROPERTY(bool isAvailable READ isAvailable NOTIFY changed)
    Q_PROPERTY(QString updateText READ updateText NOTIFY changed)
    Q_PROPERTY(QString updateHelpText READ updateHelpText CONSTANT)
    Q_PROPERTY(QUrl downloadUrl READ downloadUrl CONSTANT)

public:
    /// Shows what the checker finds; it has to outlive the presenter.
    explicit UpdatePresenter(UpdateChecker& checker, QObject* parent = nullptr);
    /// Shows what show() is given and asks for a check by the function.
    explicit UpdatePresenter(std::function<void()> checkForUpdates, QObject* parent = nullptr);

    void show(const UpdateChecker::Status& status);

    [[nodiscard]] bool canRetry() const;
    [[nodiscard]] static QString retryHelpText();
    [[nodiscard]] bool isAvailable() const;
    /// "Update " and the version; empty where there is none.
    [[nodiscard]] QString updateText() const;
    [[nodiscard]] static QString updateHelpText();
    [[nodiscard]] static QUrl downloadUrl();

    Q_INVOKABLE void retry() const;

Q_SIGNALS:
    void changed();

private:
    std::function<void()> m_checkForUpdates;
    UpdateChecker::Status m_status = UpdateChecker::Idle {};
};

} // namespace vellumine
