#include "app/AppDelegate.h"

#include "app/tray/StatusItem.h"
#include "app/x11/XcbConnection.h"
#include "core/Product.h"
#include "ui/frame/GlobalMenu.h"
#include "ui/frame/WindowCorners.h"
#include "ui/theme/Motion.h"
#include "ui/theme/Palette.h"
#include "ui/theme/ProductInfo.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QSessionManager>

#include <utility>

namespace vellumine {

AppDelegate::AppDelegate(Surroundings surroundings)
    : m_quit(std::move(surroundings.quit))
    , m_reveal(std::move(surroundings.reveal))
    , m_openPage(std::move(surroundings.openPage))
    , m_bus(surroundings.bus)
    , m_motion(surroundings.bus)
    , m_menuRegistrar(surroundings.bus)
    , m_windowGrowingTime(surroundings.windowGrowingTime)
    , m_models(std::move(surroundings.models), questions())
    , m_settings(m_models.settings(), m_models.bookmarks(), m_models.showFolderPanel())
    , m_stats(m_models.statsStore())
    , m_updates(m_models.updateChecker())
    , m_windowGround(palette::bg.toQColor())
    , m_comparison(std::make_unique<ImageComparisonPresenter>(m_engine,
          ImageComparisonPresenter::Dependencies { .reveal = m_reveal,
              .prepare = [this](QQuickWindow& window) { prepare(window); },
              .openImage = m_models.openImage() }))
    , m_mainWindow([this] { return makeMainWindow(); })
    , m_preferencesWindow([this] { return makePreferencesWindow(); })
{
    connect(&m_overwritePrompt, &OverwritePromptPresenter::asked, this,
        &AppDelegate::showOverwritePrompt);
    // Its window comes to the front, whichever other one of ours the user is in.
    connect(&m_folderPanel, &FolderPanelPresenter::asked, this, [this] { showMainWindow(); });
    connect(&m_preferencesFolderPanel, &FolderPanelPresenter::asked, this,
        [this] { showPreferences(); });
    connect(m_comparison.get(), &ImageComparisonPresenter::preferencesRequested, this,
        &AppDelegate::openPreferencesFromMenu);
    connect(m_comparison.get(), &ImageComparisonPresenter::quitRequested, this,
        &AppDelegate::quitFromMenu);
    connect(&m_mainWindow, &ReusableWindow::made, this, [this](QQuickWindow* window) {
        m_heightFollower.emplace(*window, m_models.processingModel(), m_windowGrowingTime);
        applyMotion();
    });
    connect(&m_motion, &platform::DesktopMotion::changed, this, &AppDelegate::applyMotion);
    connect(&m_menuRegistrar, &platform::MenuRegistrar::changed, this,
        &AppDelegate::applyMenuRegistrar);
}

AppDelegate::~AppDelegate() = default;

AppModels::Questions AppDelegate::questions()
{
    return {
        .askOverwrite
        = [this](const QUrl& url,
              const OverwritePrompt::Answer& answer) { m_overwritePrompt.ask(url, answer); },
        .showFolderPanel
        = [this](const FolderPanel& panel,
              const FolderPanelAnswer& answer) { folderPanels(panel.window).show(panel, answer); },
    };
}

FolderPanelPresenter& AppDelegate::folderPanels(FolderPanel::Window window)
{
    return window == FolderPanel::Window::preferences ? m_preferencesFolderPanel : m_folderPanel;
}

void AppDelegate::launch(const ActivationToken& token)
{
    // The program never comes back by itself with the next session.
    connect(qGuiApp, &QGuiApplication::saveStateRequest, this,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
    m_statusItem = std::make_unique<StatusItem>(
        StatusMenuActions {
            .openWindow = [this] { showMainWindow(); },
            .openPreferences = [this] { showPreferences(); },
            .openWebsite = [this] { m_openPage(QUrl(QString(product::makerUrl))); },
            .quit = m_quit,
        },
        [this](const QList<QUrl>& urls) { process(urls); }, m_bus);
    showMainWindow(token);
    m_models.updateChecker().checkForUpdates();
}

void AppDelegate::process(const QList<QUrl>& urls)
{
    m_models.processingModel().process(urls);
    if (m_models.settings().exitWhenComplete()) {
        m_models.processingModel().setOnComplete(m_quit);
    }
}

void AppDelegate::open(const QList<QUrl>& urls, const ActivationToken& token)
{
    showMainWindow(token);
    process(urls);
}

void AppDelegate::showMainWindow(const ActivationToken& token)
{
    applyCorners();
    m_mainWindow.show(token);
}

void AppDelegate::showPreferences(const ActivationToken& token)
{
    applyCorners();
    m_preferencesWindow.show(token);
}

void AppDelegate::openPreferencesFromMenu()
{
    showPreferences();
}

void AppDelegate::quitFromMenu()
{
    m_quit();
}

void AppDelegate::showOverwritePrompt()
{
    // It stands in the main window, which may have been closed or minimised. Where that is in sight
    // it stays where it is: the user may be typing elsewhere, and Return would replace the file.
    const QQuickWindow* window = mainWindow();
    if (!window || !window->isVisible() || window->windowStates().testFlag(Qt::WindowMinimized)) {
        showMainWindow();
    }
}

void AppDelegate::applyMotion()
{
    if (!m_heightFollower) {
        return; // with the main window
    }
    const bool isReduced = m_motion.isReduced();
    m_engine.singletonInstance<Motion*>(qmlTypeId("Vellumine", 1, 0, "Motion"))
        ->setReduced(isReduced);
    m_heightFollower->setTime(isReduced ? std::chrono::milliseconds(0) : m_windowGrowingTime);
}

void AppDelegate::applyMenuRegistrar()
{
    auto* menu
        = m_engine.singletonInstance<GlobalMenu*>(qmlTypeId("Vellumine", 1, 0, "GlobalMenu"));
    if (menu) { // with the first window
        menu->setPresent(m_menuRegistrar.isPresent());
    }
}

/// Somebody who blends windows may begin or cease to do so; it is seen when one is shown.
void AppDelegate::applyCorners()
{
    auto* corners
        = m_engine.singletonInstance<WindowCorners*>(qmlTypeId("Vellumine", 1, 0, "WindowCorners"));
    if (corners) { // with the first window
        corners->setRounded(!xcb::connection() || xcb::isComposited());
    }
}

void AppDelegate::prepare(QQuickWindow& window)
{
    applyMenuRegistrar();
    applyCorners();
    window.installEventFilter(&m_windowGround);
    // By which window managers and their users' rules know it.
    window.setProperty("_q_xcb_wm_window_role", window.objectName().toLatin1());
}

std::unique_ptr<QQuickWindow> AppDelegate::makeWindow(
    const char* type, const QVariantMap& properties)
{
    QQmlComponent component(&m_engine);
    component.setData(
        "import Vellumine\n" + QByteArray(type) + " {}", QUrl(QStringLiteral("qrc:/windows")));
    std::unique_ptr<QObject> made(component.createWithInitialProperties(properties));
    auto* window = qobject_cast<QQuickWindow*>(made.get());
    if (!window) {
        qFatal("%s: %s", type, qPrintable(component.errorString()));
    }
    (void)made.release();
    m_engine.singletonInstance<ProductInfo*>(qmlTypeId("Vellumine", 1, 0, "ProductInfo"))
        ->setConfinementText([this] { return m_models.confinementText(); });
    prepare(*window);
    connect(window, SIGNAL(preferencesRequested()), this, SLOT(openPreferencesFromMenu()));
    connect(window, SIGNAL(quitRequested()), this, SLOT(quitFromMenu()));
    return std::unique_ptr<QQuickWindow>(window);
}

std::unique_ptr<QQuickWindow> AppDelegate::makeMainWindow()
{
    m_processing.emplace(m_models.processingModel());
    m_results = std::make_unique<ResultsListModel>(ResultsListModel::Actions {
        .reveal = m_reveal,
        .compare =
            [this](const ProcessingResult& result, const QUrl& output) {
                m_comparison->show(result, output);
                m_models.releaseIdleDecoders();
            },
    });
    m_results->follow(m_models.processingModel());
    return makeWindow("DropWindow",
        {
            { QStringLiteral("settings"), QVariant::fromValue(&m_settings) },
            { QStringLiteral("processing"), QVariant::fromValue(&*m_processing) },
            { QStringLiteral("results"), QVariant::fromValue(m_results.get()) },
            { QStringLiteral("stats"), QVariant::fromValue(&m_stats) },
            { QStringLiteral("updates"), QVariant::fromValue(&m_updates) },
            { QStringLiteral("overwritePrompt"), QVariant::fromValue(&m_overwritePrompt) },
            { QStringLiteral("folderPanel"), QVariant::fromValue(&m_folderPanel) },
        });
}

std::unique_ptr<QQuickWindow> AppDelegate::makePreferencesWindow()
{
    return makeWindow("PreferencesWindow",
        {
            { QStringLiteral("settings"), QVariant::fromValue(&m_settings) },
            { QStringLiteral("stats"), QVariant::fromValue(&m_stats) },
            { QStringLiteral("folderPanel"), QVariant::fromValue(&m_preferencesFolderPanel) },
        });
}

} // namespace vellumine
