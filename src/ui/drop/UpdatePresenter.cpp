#include "ui/drop/UpdatePresenter.h"

#include "core/Product.h"

namespace vellumine {

UpdatePresenter::UpdatePresenter(UpdateChecker& checker, QObject* parent)
    : UpdatePresenter([&checker] { checker.checkForUpdates(); }, parent)
{
    connect(&checker, &UpdateChecker::statusChanged, this,
        [this, &checker] { show(checker.status()); });
    show(checker.status());
}

UpdatePresenter::UpdatePresenter(std::function<void()> checkForUpdates, QObject* parent)
    : QObject(parent)
    , m_checkForUpdates(std::move(checkForUpdates))
{
}

void UpdatePresenter::show(const UpdateChecker::Status& status)
{
    if (status != m_status) {
        m_status = status;
        Q_EMIT changed();
    }
}

bool UpdatePresenter::canRetry() const
{
    return std::holds_alternative<UpdateChecker::Failed>(m_status);
}

QString UpdatePresenter::retryHelpText()
{
    return tr("Check for updates");
}

bool UpdatePresenter::isAvailable() const
{
    return std::holds_alternative<UpdateChecker::UpdateAvailable>(m_status);
}

QString UpdatePresenter::updateText() const
{
    const auto* update = std::get_if<UpdateChecker::UpdateAvailable>(&m_status);
    return update == nullptr ? QString() : tr("Update %1").arg(update->version);
}

QString UpdatePresenter::updateHelpText()
{
    return tr("Download the latest Vellumine");
}

QUrl UpdatePresenter::downloadUrl()
{
    return QUrl(QString(product::downloadUrl));
}

void UpdatePresenter::retry() const
{
    m_checkForUpdates();
}

} // namespace vellumine
