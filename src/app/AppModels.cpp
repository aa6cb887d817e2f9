#include "app/AppModels.h"
#include "app/ConfinementSentence.h"

#include "ui/dialogs/FolderPanelPresenter.h"
#include "update/VersionText.h"

#include <QThread>

#include <utility>

namespace vellumine {

AppModels::AppModels(Surroundings surroundings, Questions questions)
    : m_settingsStore(std::move(surroundings.preferences), m_bookmarks)
    , m_statsStore(surroundings.statsFolder)
    , m_updateChecker(std::move(surroundings.updateSource), currentVersionText())
    , m_temporaryFolder(std::move(surroundings.temporaryFolder))
    , m_executableFolder(std::move(surroundings.executableFolder))
    , m_decoders(confined::ConfinedDecoders::ofProgram(m_executableFolder))
    , m_securityScope(std::move(surroundings.securityScope))
    , m_showFolderPanel(std::move(questions.showFolderPanel))
    , m_samples(m_temporaryFolder)
    , m_overwritePrompt(std::move(questions.askOverwrite))
{
}

AppModels::~AppModels()
{
    // Conversions that wait for an answer would be waited for by the model for ever.
    m_overwritePrompt.close();
}

ProcessingModel& AppModels::processingModel()
{
    if (!m_processingModel) {
        m_processingModel.emplace(ProcessingModel::Dependencies {
            .snapshot = [this] { return m_settingsStore.snapshot(); },
            .record =
                [this](const ProcessingResult& result) {
                    m_samples.add(result);
                    m_statsStore.record(result);
                },
            .optimize = optimizeIn(conversionEnvironment()),
            .folderAccess = folderAccess(),
            .activeProcessorCount = QThread::idealThreadCount(),
        });
        QObject::connect(&*m_processingModel, &ProcessingModel::isProcessingChanged,
            &*m_processingModel, [this] { releaseIdleDecoders(); });
    }
    return *m_processingModel;
}

ConversionEnvironment AppModels::conversionEnvironment()
{
    // The memory budget that it comes with is that of this machine.
    ConversionEnvironment environment;
    environment.confirmOverwrite = [this](const QUrl& url) { return m_overwritePrompt.ask(url); };
    environment.securityScope = m_securityScope;
    environment.temporaryFolder = m_temporaryFolder;
    environment.executableFolder = m_executableFolder;
    environment.openImage = openImage();
    return environment;
}

OpenImage AppModels::openImage() const
{
    return m_decoders ? confined::opener(m_decoders) : OpenImage(openHere);
}

void AppModels::releaseIdleDecoders()
{
    if (m_decoders && !(m_processingModel && m_processingModel->isProcessing())) {
        m_decoders->releaseIdle();
    }
}

QString AppModels::confinementText() const
{
    return confinementSentence(m_decoders ? m_decoders->confinement() : std::nullopt);
}

FolderAccessGrants::Dependencies AppModels::folderAccess()
{
    return {
        .securityScope = m_securityScope,
        .rememberedOriginalLocationFolder =
            [this](const QUrl& folder) {
                return m_settingsStore.rememberedOriginalLocationFolder(folder);
            },
        .rememberOriginalLocationFolder
        = [this](const QUrl& folder) { m_settingsStore.rememberOriginalLocationFolder(folder); },
        .showSaveAccessPanel =
            [this](const SaveAccessPanel& panel, const FolderAccessGrants::PanelAnswer& answer) {
                m_showFolderPanel(folderPanel(panel), answer);
            },
    };
}

} // namespace vellumine
