#include "ui/comparison/ImageComparisonPresenter.h"

#include "platform/FilePath.h"
#include "ui/comparison/ComparisonPresenter.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace vellumine {
namespace {

/// In the middle of the screen, and no larger than what is free of it.
void centre(QQuickWindow& window)
{
    const QRect free = window.screen()->availableGeometry();
    QRect place({}, window.size().boundedTo(free.size()).expandedTo(window.minimumSize()));
    place.moveCenter(free.center());
    window.setGeometry(place);
}

std::unique_ptr<QQuickWindow> makeWindow(
    QQmlEngine& engine, std::unique_ptr<ComparisonPresenter> presenter)
{
    QQmlComponent component(&engine,
        QUrl(QStringLiteral("qrc:/qt-project.org/imports/Vellumine/ComparisonWindow.qml")));
    std::unique_ptr<QObject> root(component.createWithInitialProperties(
        { { QStringLiteral("presenter"), QVariant::fromValue(presenter.get()) } }));
    auto* window = qobject_cast<QQuickWindow*>(root.get());
    if (window == nullptr) {
        qFatal("%s", qPrintable(component.errorString())); // a file of ours
    }
    presenter.release()->setParent(window);
    (void)root.release();
    return std::unique_ptr<QQuickWindow>(window);
}

} // namespace

ImageComparisonPresenter::ImageComparisonPresenter(
    QQmlEngine& engine, Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_dependencies(std::move(dependencies))
{
}

ImageComparisonPresenter::~ImageComparisonPresenter()
{
    // Windows that go are hidden first, and then have themselves removed from a list.
    const auto closing = std::exchange(m_openWindows, {});
}

void ImageComparisonPresenter::show(const ProcessingResult& result, const QUrl& outputURL)
{
    auto sample = result.comparisonPreview
        ? ComparisonSample::fromPreview(*result.comparisonPreview)
        : ComparisonSample::fromFiles(result.sourceURL, outputURL, *m_dependencies.securityScope,
            m_dependencies.openImage, m_dependencies.limits);
    if (!sample) {
        m_dependencies.reveal(outputURL);
        return;
    }
    auto window = makeWindow(m_engine,
        std::make_unique<ComparisonPresenter>(
            std::move(*sample), tr("Review %1").arg(platform::lastPathComponent(outputURL))));
    // A closed window is a hidden one; the argument of its own signal is private to Qt.
    connect(window.get(), &QWindow::visibleChanged, this,
        [this, changed = window.get()](bool isVisible) {
            if (!isVisible) {
                remove(changed);
            }
        });
    // QML's own signals have no C++ to name them by
    connect(window.get(), SIGNAL(preferencesRequested()), this, SIGNAL(preferencesRequested()));
    connect(window.get(), SIGNAL(quitRequested()), this, SIGNAL(quitRequested()));
    m_dependencies.prepare(*window);
    centre(*window);
    window->show();
    window->raise();
    window->requestActivate();
    m_openWindows.push_back(std::move(window));
}

void ImageComparisonPresenter::remove(const QQuickWindow* window)
{
    const auto place = std::find_if(m_openWindows.begin(), m_openWindows.end(),
        [window](const auto& open) { return open.get() == window; });
    if (place != m_openWindows.end()) {
        place->release()->deleteLater(); // it may be in the middle of closing
        m_openWindows.erase(place);
    }
}

} // namespace vellumine
