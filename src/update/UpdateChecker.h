#pragma once

#include "update/ProxyLookUp.h"

#include <QNetworkProxy>
#include <QObject>
#include <QSslConfiguration>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

class QNetworkAccessManager;
class QNetworkReply;

namespace vellumine {

/// Finds out whether there is a newer version: loads the product's home page and looks for a
/// version in it. Lives on the main thread; the load does not block it. Keeps nothing from one
/// check to the next.
class UpdateChecker : public QObject {
    Q_OBJECT
    Q_PROPERTY(vellumine::UpdateChecker::Status status READ status NOTIFY statusChanged)

public:
    struct UpdateAvailable {
        QString version; ///< as the page names it
        friend bool operator==(const UpdateAvailable&, const UpdateAvailable&) = default;
    };
    /// No check has run yet.
    struct Idle {
        friend bool operator==(Idle, Idle) = default;
    };
    struct Checking {
        friend bool operator==(Checking, Checking) = default;
    };
    /// The last check found no newer version.
    struct Current {
        friend bool operator==(Current, Current) = default;
    };
    /// The last check could not load the page or found no version in it.
    struct Failed {
        friend bool operator==(Failed, Failed) = default;
    };
    using Status = std::variant<UpdateAvailable, Idle, Checking, Current, Failed>;

    /// Where a check goes and what it takes.
    struct Source {
        QUrl homePage; ///< with another scheme than https every check fails
        std::chrono::milliseconds timeout { 8000 }; ///< from the start to the page's last byte
        qint64 maximumPageBytes = qint64 { 8 } << 20U;
        /// Which certificates are trusted: by default those of the system. Called at each check, in
        /// another thread, since the library behind it takes its time to load.
        std::function<QSslConfiguration()> tls = &QSslConfiguration::defaultConfiguration;
        /// The way to the page: by default that of the system. Called at each check, in a thread
        /// that is left behind where it takes too long.
        ProxyLookUp proxy = &systemProxy;
    };

    /// Where a page sends the check on more often it fails, as in web browsers.
    static constexpr int maximumRedirects = 20;

    /// What the system says, in its settings or the environment, of the way to a page.
    [[nodiscard]] static QNetworkProxy systemProxy(const QUrl& page);

    /// The product's own home page.
    [[nodiscard]] static Source productHomePage();

    UpdateChecker(Source source, QString currentVersion, QObject* parent = nullptr);
    ~UpdateChecker() override;

    [[nodiscard]] const Status& status() const { return m_status; }

    /// Starts a check unless one is running. Returns at once; the outcome arrives as `status`.
    Q_INVOKABLE void checkForUpdates();

Q_SIGNALS:
    void statusChanged();

private:
    void giveUp();
    void load(const QSslConfiguration& tls, const std::optional<QNetworkProxy>& proxy);
    void stopWhenTooLarge();
    void finish();
    [[nodiscard]] Status outcome() const;
    void setStatus(Status status);

    Source m_source;
    QString m_currentVersion;
    Status m_status = Idle {};
    QTimer m_deadline;
    std::shared_ptr<ProxyAnswer> m_way; ///< of the running check
    /// Of the running check; our child, as the reply is the manager's.
    QNetworkAccessManager* m_network = nullptr;
    QNetworkReply* m_reply = nullptr;
    QThreadPool m_thread; ///< ends before the rest, and when what runs there is done
};

} // namespace vellumine
