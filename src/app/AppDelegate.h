#pragma once

#include "app/AppModels.h"
#include "app/instance/ActivationToken.h"
#include "app/windows/HeightFollower.h"
#include "app/windows/ReusableWindow.h"
#include "app/windows/WindowGround.h"
#include "platform/DesktopMotion.h"
#include "platform/MenuRegistrar.h"
#include "ui/comparison/ImageComparisonPresenter.h"
#include "ui/dialogs/FolderPanelPresenter.h"
#include "ui/dialogs/OverwritePromptPresenter.h"
#include "ui/drop/ProcessingPresenter.h"
#include "ui/drop/UpdatePresenter.h"
#include "ui/results/ResultsListModel.h"
#include "ui/results/StatsPresenter.h"
#include "ui/settings/SettingsPresenter.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QQmlEngine>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vellumine {

class StatusItem;

/// The root of the program: owns the models, makes the windows and the status item, and brings
/// opened and dropped files into processing. Closing windows only hides them; the program ends by
/// one of its quit items, or after a batch when the user asked for that. Main thread only.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    /// What the program needs from the world.
    struct Surroundings {
        AppModels::Surroundings models;
        /// Where trays that show StatusNotifier items, and menu bars for all programs, are found.
        QDBusConnection bus;
        std::function<void(const QUrl& file)> reveal;
        std::function<void(const QUrl& page)> openPage;
        std::function<void()> quit;
        std::chrono::milliseconds windowGrowingTime = HeightFollower::growingTime;
    };

    /// Reads what is stored. Nothing is shown yet and no batch can run.
    explicit AppDelegate(Surroundings surroundings);
    /// Ends conversions in flight.
    ~AppDelegate() override;

    /// The status item, the main window, and a check for updates. Once.
    void launch(const ActivationToken& token = {});

    /// Converts the files and folders. If the user wants to quit when a batch completes, that holds
    /// for the batch that these belong to.
    void process(const QList<QUrl>& urls);

    /// Like process(), with the window in front where the results appear.
    void open(const QList<QUrl>& urls, const ActivationToken& token);

    void showMainWindow(const ActivationToken& token = {});
    void showPreferences(const ActivationToken& token = {});

    [[nodiscard]] AppModels& models() { return m_models; }
    /// Null before they were first shown.
    [[nodiscard]] QQuickWindow* mainWindow() const { return m_mainWindow.window(); }
    [[nodiscard]] QQuickWindow* preferencesWindow() const { return m_preferencesWindow.window(); }

private:
    // The items of the application menu, by the windows' signals.
    Q_SLOT void openPreferencesFromMenu();
    Q_SLOT void quitFromMenu();

    [[nodiscard]] AppModels::Questions questions();
    [[nodiscard]] std::unique_ptr<QQuickWindow> makeWindow(
        const char* type, const QVariantMap& properties);
    [[nodiscard]] std::unique_ptr<QQuickWindow> makeMainWindow();
    [[nodiscard]] std::unique_ptr<QQuickWindow> makePreferencesWindow();
    /// Tells the desktop of a window of any kind, and it of the desktop. Before it is shown.
    void prepare(QQuickWindow& window);
    [[nodiscard]] FolderPanelPresenter& folderPanels(FolderPanel::Window window);
    void showOverwritePrompt();
    void applyMotion();
    void applyMenuRegistrar();
    void applyCorners();

    // What the views hold outlives the engine, which ends before them; what conversions ask, those.
    std::function<void()> m_quit;
    std::function<void(const QUrl&)> m_reveal;
    std::function<void(const QUrl&)> m_openPage;
    QDBusConnection m_bus;
    platform::DesktopMotion m_motion;
    platform::MenuRegistrar m_menuRegistrar;
    std::chrono::milliseconds m_windowGrowingTime;
    OverwritePromptPresenter m_overwritePrompt;
    FolderPanelPresenter m_folderPanel;
    FolderPanelPresenter m_preferencesFolderPanel;
    AppModels m_models;
    SettingsPresenter m_settings;
    StatsPresenter m_stats;
    UpdatePresenter m_updates;
    std::optional<ProcessingPresenter> m_processing; ///< with the main window
    std::unique_ptr<ResultsListModel> m_results;
    WindowGround m_windowGround;
    QQmlEngine m_engine;
    std::unique_ptr<ImageComparisonPresenter> m_comparison;
    ReusableWindow m_mainWindow;
    ReusableWindow m_preferencesWindow;
    std::optional<HeightFollower> m_heightFollower;
    std::unique_ptr<StatusItem> m_statusItem;
};

} // namespace vellumine
