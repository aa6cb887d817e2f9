#pragma once

#include "ui/drop/UpdatePresenter.h"

#include <QDesktopServices>
#include <QObject>
#include <qqmlregistration.h>

namespace vellumine {

/// Updates as a test says, with the checks that were asked for.
class UpdateFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vellumine::UpdatePresenter* presenter READ presenter CONSTANT)
    Q_PROPERTY(int checkCount MEMBER m_checkCount NOTIFY checked)

public:
    using QObject::QObject;

    [[nodiscard]] UpdatePresenter* presenter() { return &m_presenter; }

    Q_INVOKABLE void showIdle() { m_presenter.show(UpdateChecker::Idle {}); }
    Q_INVOKABLE void showChecking() { m_presenter.show(UpdateChecker::Checking {}); }
    Q_INVOKABLE void showCurrent() { m_presenter.show(UpdateChecker::Current {}); }
    Q_INVOKABLE void showFailed() { m_presenter.show(UpdateChecker::Failed {}); }
    Q_INVOKABLE void showAvailable(const QString& version)
    {
        m_presenter.show(UpdateChecker::UpdateAvailable { version });
    }

Q_SIGNALS:
    void checked();

private:
    int m_checkCount = 0;
    UpdatePresenter m_presenter { [this] {
        ++m_checkCount;
        showChecking();
        Q_EMIT checked();
    } };
};

/// Takes the place of the browser while it lives, and keeps what was opened.
class BrowserFixture : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<QUrl> opened MEMBER m_opened NOTIFY changed)

public:
    explicit BrowserFixture(QObject* parent = nullptr)
        : QObject(parent)
    {
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open");
    }
    ~BrowserFixture() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }
    BrowserFixture(const BrowserFixture&) = delete;
    BrowserFixture& operator=(const BrowserFixture&) = delete;

    Q_INVOKABLE void open(const QUrl& url)
    {
        m_opened.append(url);
        Q_EMIT changed();
    }

Q_SIGNALS:
    void changed();

private:
    QList<QUrl> m_opened;
};

} // namespace vellumine
