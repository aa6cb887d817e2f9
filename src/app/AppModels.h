#pragma once

#include "batch/PreviewSamples.h"
#include "batch/ProcessingModel.h"
#include "confined/client/ConfinedDecoders.h"
#include "core/SettingsStore.h"
#include "pipeline/ConversionEnvironment.h"
#include "pipeline/OverwritePrompt.h"
#include "platform/FolderBookmarks.h"
#include "platform/SecurityScope.h"
#include "stats/StatsStore.h"
#include "ui/settings/FolderPanel.h"
#include "update/UpdateChecker.h"

#include <QSettings>
#include <QString>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace vellumine {

/// The long-lived objects of the program and how they are wired. Every view shares them.
class AppModels {
public:
    /// What they need from the world.
    struct Surroundings {
        std::unique_ptr<QSettings> preferences;
        QString statsFolder;
        UpdateChecker::Source updateSource;
        /// For work files and preview samples.
        std::filesystem::path temporaryFolder;
        /// Where the WebP encoder and the decoder are looked for.
        std::filesystem::path executableFolder;
        std::shared_ptr<platform::SecurityScope> securityScope
            = std::make_shared<platform::DesktopSecurityScope>();
    };

    /// What they ask the user, who answers in the windows.
    struct Questions {
        OverwritePrompt::Question askOverwrite;
        ShowFolderPanel showFolderPanel;
    };

    /// Reads the statistics, and removes preview samples that a crashed run left.
    AppModels(Surroundings surroundings, Questions questions);
    /// Ends the conversions in flight, and removes this run's preview samples.
    ~AppModels();
    AppModels(const AppModels&) = delete;
    AppModels& operator=(const AppModels&) = delete;

    [[nodiscard]] platform::FolderBookmarks& bookmarks() { return m_bookmarks; }
    [[nodiscard]] SettingsStore& settingsStore() { return m_settingsStore; }
    [[nodiscard]] VellumineSettings& settings() { return m_settingsStore.settings(); }
    [[nodiscard]] StatsStore& statsStore() { return m_statsStore; }
    [[nodiscard]] UpdateChecker& updateChecker() { return m_updateChecker; }
    /// Made when it is first asked for; the same from then on.
    [[nodiscard]] ProcessingModel& processingModel();
    [[nodiscard]] bool hasProcessingModel() const { return m_processingModel.has_value(); }
    /// A sentence on what holds the decoding of pictures back; starts a decoder to ask it.
    [[nodiscard]] QString confinementText() const;
    /// How pictures are opened: by decoders in processes of their own, where the program has them.
    [[nodiscard]] OpenImage openImage() const;
    /// Ends decoders that nobody needs at the moment.
    void releaseIdleDecoders();
    [[nodiscard]] const ShowFolderPanel& showFolderPanel() const { return m_showFolderPanel; }

private:
    [[nodiscard]] ConversionEnvironment conversionEnvironment();
    [[nodiscard]] FolderAccessGrants::Dependencies folderAccess();

    platform::DesktopFolderBookmarks m_bookmarks;
    SettingsStore m_settingsStore;
    StatsStore m_statsStore;
    UpdateChecker m_updateChecker;
    std::filesystem::path m_temporaryFolder;
    std::filesystem::path m_executableFolder;
    /// Null where the decoder is missing: pictures are decoded in this process then.
    std::shared_ptr<confined::ConfinedDecoders> m_decoders;
    std::shared_ptr<platform::SecurityScope> m_securityScope;
    ShowFolderPanel m_showFolderPanel;
    PreviewSamples m_samples;
    OverwritePrompt m_overwritePrompt;
    std::optional<ProcessingModel> m_processingModel;
};

} // namespace vellumine
