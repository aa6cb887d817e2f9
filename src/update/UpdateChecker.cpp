#include "update/UpdateChecker.h"

#include "core/Product.h"
#include "update/PageVersion.h"
#include "update/VersionText.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRunnable>

#include <utility>

namespace vellumine {
namespace {

/// Whether the server's page arrived whole. A status such as 404 is reported as an error too, but
/// its page is a page like any other.
bool hasPage(const QNetworkReply& reply)
{
    const QNetworkReply::NetworkError error = reply.error();
    if (error == QNetworkReply::NoError) {
        return true;
    }
    const bool isStatus = error == QNetworkReply::ProtocolInvalidOperationError // 400, 418
        || error == QNetworkReply::ProxyAuthenticationRequiredError // 407
        || (error >= QNetworkReply::ContentAccessDenied
            && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError
            && error <= QNetworkReply::UnknownServerError);
    return isStatus && reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= 400;
}

} // namespace

QNetworkProxy UpdateChecker::systemProxy(const QUrl& page)
{
    for (const QNetworkProxy& proxy :
        QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(page))) {
        // TLS is spoken with the page's server alone.
        if (proxy.capabilities().testFlag(QNetworkProxy::TunnelingCapability)) {
            return proxy;
        }
    }
    return QNetworkProxy::NoProxy;
}

UpdateChecker::Source UpdateChecker::productHomePage()
{
    return { .homePage = QUrl(QString(product::homePageUrl)) };
}

UpdateChecker::UpdateChecker(Source source, QString currentVersion, QObject* parent)
    : QObject(parent)
    , m_source(std::move(source))
    , m_currentVersion(std::move(currentVersion))
{
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, &UpdateChecker::giveUp);
}

UpdateChecker::~UpdateChecker()
{
    if (m_way) {
        m_way->giveUp();
    }
}

void UpdateChecker::checkForUpdates()
{
    if (std::holds_alternative<Checking>(m_status)) {
        return;
    }
    setStatus(Checking {});
    if (m_source.homePage.scheme() == QStringLiteral("https")) {
        m_deadline.start(m_source.timeout);
        m_way = ProxyAnswer::to(m_source.proxy, m_source.homePage);
        m_thread.start(QRunnable::create([this, source = m_source, way = m_way] {
            const auto proxy = way->wait();
            QMetaObject::invokeMethod(
                this, [this, tls = source.tls(), proxy] { load(tls, proxy); },
                Qt::QueuedConnection);
        }));
    } else {
        setStatus(Failed {});
    }
}

void UpdateChecker::giveUp()
{
    if (m_reply != nullptr) {
        m_reply->abort();
    } else {
        m_way->giveUp();
    }
}

void UpdateChecker::load(const QSslConfiguration& tls, const std::optional<QNetworkProxy>& proxy)
{
    if (!proxy || m_way->isGivenUp()) {
        m_deadline.stop();
        setStatus(Failed {});
        return;
    }
    // One for each check: it takes its connections, cookies and cache with it.
    m_network = new QNetworkAccessManager(this);
    m_network->setProxy(*proxy); // of redirects as well

    QNetworkRequest request(m_source.homePage);
    request.setSslConfiguration(tls);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
        QNetworkRequest::NoLessSafeRedirectPolicy); // from https to https only
    request.setMaximumRedirectsAllowed(maximumRedirects);
    m_reply = m_network->get(request);
    connect(m_reply, &QNetworkReply::downloadProgress, this, &UpdateChecker::stopWhenTooLarge);
    connect(m_reply, &QNetworkReply::finished, this, &UpdateChecker::finish);
}

void UpdateChecker::stopWhenTooLarge()
{
    if (m_reply->bytesAvailable() > m_source.maximumPageBytes) {
        m_reply->abort();
    }
}

void UpdateChecker::finish()
{
    m_deadline.stop();
    const Status status = outcome();
    // The reply, which goes with its manager, is still at work on this call's stack.
    m_network->deleteLater();
    m_network = nullptr;
    m_reply = nullptr;
    setStatus(status);
}

UpdateChecker::Status UpdateChecker::outcome() const
{
    if (!hasPage(*m_reply)) {
        return Failed {};
    }
    const QByteArray page = m_reply->readAll();
    if (page.size() > m_source.maximumPageBytes) {
        return Failed {};
    }
    const std::optional<QString> version = versionOnPage(page);
    if (!version) {
        return Failed {};
    }
    if (isNewer(*version, m_currentVersion)) {
        return UpdateAvailable { *version };
    }
    return Current {};
}

void UpdateChecker::setStatus(Status status)
{
    m_status = std::move(status);
    Q_EMIT statusChanged();
}

} // namespace vellumine
