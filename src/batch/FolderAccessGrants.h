#pragma once

#include "core/OptimizerSettings.h"
#include "platform/SecurityScope.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace vellumine {

/// What the panel says that asks for access to a folder. It lets the user choose one existing
/// folder, no file, and make no new one.
struct SaveAccessPanel {
    QString message;
    QString prompt; ///< title of the confirming button
    QUrl folder; ///< where the panel opens
};

/// Makes sure that the program may write where its outputs go. A grant comes from those known since
/// launch, else from the remembered ones, else from the user. A folder that can be written to
/// without one is a grant to itself. Main thread only.
class FolderAccessGrants final : public QObject {
    Q_OBJECT

public:
    /// Takes the chosen folder, or none when the user cancelled; dropped without a call it counts
    /// as cancelled. Calls after the first have no effect.
    using PanelAnswer = std::function<void(std::optional<QUrl>)>;
    /// Takes the URLs to open for the batch, or none when the user refused.
    using Done = std::function<void(std::optional<QList<QUrl>>)>;

    struct Dependencies {
        std::shared_ptr<platform::SecurityScope> securityScope;
        std::function<std::optional<QUrl>(const QUrl& folder)> rememberedOriginalLocationFolder
            = [](const QUrl&) { return std::nullopt; };
        std::function<void(const QUrl& folder)> rememberOriginalLocationFolder = [](const QUrl&) {};
        /// Shows the panel; answers now or later.
        std::function<void(const SaveAccessPanel&, PanelAnswer)> showSaveAccessPanel
            = [](const SaveAccessPanel&, const PanelAnswer& answer) { answer(std::nullopt); };
    };

    explicit FolderAccessGrants(Dependencies dependencies, QObject* parent = nullptr);

    /// The standardised folders that hold the files, each once, in order of first appearance.
    [[nodiscard]] static QList<QUrl> uniqueParentFolders(const QList<QUrl>& urls);

    /// Finds a grant for every folder that holds one of the files, if outputs go beside them, and
    /// calls `done` once, now or later; never once this object is gone. Asks folder by folder; the
    /// first refusal ends the asking, and so does `stop`, which counts as one.
    void requestOriginalLocationAccessIfNeeded(const QList<QUrl>& urls,
        const OptimizerSettings& settings, Done done, std::stop_token stop = {});

    /// Asks the user for access to the folder. The answer may be another folder: it is trusted.
    void requestSaveAccess(const QUrl& folder, PanelAnswer answer) const;

private:
    struct Request;

    void proceed(const std::shared_ptr<Request>& request);
    [[nodiscard]] std::optional<QUrl> knownGrant(const QUrl& folder);
    [[nodiscard]] bool isUsable(const QUrl& grant) const;

    Dependencies m_dependencies;
    /// Grants since launch by the standardised path of the folder that they were needed for.
    QHash<QByteArray, QUrl> m_originalLocationAccessFolders;
};

} // namespace vellumine
