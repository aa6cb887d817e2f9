#include "ui/fakes/ProcessingFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace vellumine {

ProcessingFixture::ProcessingFixture(QObject* parent)
    : QObject(parent)
{
}

ProcessingFixture::~ProcessingFixture()
{
    m_scope->letGo();
    m_optimizer.letAllGo();
}

ProcessingModel::Dependencies ProcessingFixture::dependencies()
{
    return {
        .snapshot = [] { return OptimizerSettings(); },
        .record = [](const ProcessingResult&) {},
        .optimize = [this](const QUrl& url, const OptimizerSettings& settings,
                        const BatchTerms& terms) { return m_optimizer(url, settings, terms); },
        .folderAccess = { .securityScope = m_scope },
        .activeProcessorCount = 4,
        .debounce = std::chrono::milliseconds(0),
    };
}

void ProcessingFixture::dropPhotos(int count)
{
    QList<QUrl> urls;
    for (int number = 1; number <= count; ++number) {
        urls.append(platform::fileUrl(QStringLiteral("/pictures/photo-%1.jpg").arg(number)));
    }
    m_presenter.loadDroppedFiles(urls);
}

void ProcessingFixture::copyUris(const QStringList& uris)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(QStringLiteral("text/uri-list"), uris.join(QStringLiteral("\r\n")).toLatin1());
    QGuiApplication::clipboard()->setMimeData(data.release());
}

void ProcessingFixture::copyText(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace vellumine
