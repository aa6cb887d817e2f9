#pragma once

#include "core/ProcessingResult.h"
#include "imaging/Limits.h"
#include "pipeline/ConversionEnvironment.h"
#include "platform/SecurityScope.h"

#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <vector>

class QQmlEngine;
class QQuickWindow;

namespace vellumine {

/// Opens comparison windows and keeps them until they are closed.
class ImageComparisonPresenter : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        /// For a result that cannot be compared: shows its output in the file manager.
        std::function<void(const QUrl& file)> reveal;
        /// Called with each window before it is shown.
        std::function<void(QQuickWindow& window)> prepare = [](QQuickWindow&) {};
        std::shared_ptr<platform::SecurityScope> securityScope
            = std::make_shared<platform::DesktopSecurityScope>();
        OpenImage openImage = openHere;
        imaging::Limits limits = imaging::Limits::forThisMachine();
    };

    /// The engine must outlive the presenter.
    ImageComparisonPresenter(
        QQmlEngine& engine, Dependencies dependencies, QObject* parent = nullptr);
    ~ImageComparisonPresenter() override;

    /// Opens one more window for the result, also where it has one already. The pictures are the
    /// samples that the conversion wrote, or where it wrote none the files themselves. Where there
    /// is nothing to compare, the output is revealed instead.
    void show(const ProcessingResult& result, const QUrl& outputURL);

    /// Lets go of a window; it is gone once the event loop runs. Called when it closes.
    void remove(const QQuickWindow* window);

    [[nodiscard]] const std::vector<std::unique_ptr<QQuickWindow>>& openWindows() const
    {
        return m_openWindows;
    }

Q_SIGNALS:
    /// Asked for by the menu or the keys of any of the windows.
    void preferencesRequested();
    void quitRequested();

private:
    QQmlEngine& m_engine;
    Dependencies m_dependencies;
    std::vector<std::unique_ptr<QQuickWindow>> m_openWindows;
};

} // namespace vellumine
