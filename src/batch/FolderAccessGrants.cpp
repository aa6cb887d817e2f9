#include "batch/FolderAccessGrants.h"

#include "platform/FileOperations.h"
#include "platform/FilePath.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSet>

#include <utility>

namespace vellumine {

struct FolderAccessGrants::Request {
    QList<QUrl> folders;
    qsizetype next = 0; ///< index of the folder that is up
    QList<QUrl> grants;
    Done done;
    std::stop_token stop;
};

namespace {

struct Translated {
    Q_DECLARE_TR_FUNCTIONS(FolderAccessGrants)
};

/// Answers once, at the latest with its end.
class AnswerOnce {
public:
    explicit AnswerOnce(FolderAccessGrants::PanelAnswer answer)
        : m_answer(std::move(answer))
    {
    }
    ~AnswerOnce() { give(std::nullopt); }
    AnswerOnce(const AnswerOnce&) = delete;
    AnswerOnce& operator=(const AnswerOnce&) = delete;

    void give(std::optional<QUrl> folder)
    {
        if (const auto answer = std::exchange(m_answer, nullptr)) {
            answer(std::move(folder));
        }
    }

private:
    FolderAccessGrants::PanelAnswer m_answer;
};

} // namespace

FolderAccessGrants::FolderAccessGrants(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(std::move(dependencies))
{
}

QList<QUrl> FolderAccessGrants::uniqueParentFolders(const QList<QUrl>& urls)
{
    QList<QUrl> folders;
    QSet<QByteArray> seen;
    std::optional<QString> last;
    for (const QUrl& url : urls) {
        // The files of one folder mostly come one after the other. Encoded, as names that are not
        // UTF-8 are the same decoded.
        const QString path = url.path(QUrl::FullyEncoded);
        const QStringView parent = QStringView(path).left(path.lastIndexOf(u'/') + 1);
        if (parent != path) {
            if (last == parent) {
                continue;
            }
            last = parent.toString();
        }
        const QUrl folder = platform::parentFolder(url);
        const QByteArray key = platform::standardizedPath(folder);
        if (!seen.contains(key)) {
            seen.insert(key);
            folders.append(platform::standardized(folder));
        }
    }
    return folders;
}

void FolderAccessGrants::requestOriginalLocationAccessIfNeeded(
    const QList<QUrl>& urls, const OptimizerSettings& settings, Done done, std::stop_token stop)
{
    if (settings.destinationMode != DestinationMode::originalLocation) {
        done(QList<QUrl>());
        return;
    }
    proceed(std::make_shared<Request>(Request { .folders = uniqueParentFolders(urls),
        .grants = {},
        .done = std::move(done),
        .stop = std::move(stop) }));
}

void FolderAccessGrants::proceed(const std::shared_ptr<Request>& request)
{
    while (request->next < request->folders.size()) {
        const QUrl folder = request->folders.at(request->next);
        const std::optional<QUrl> known = knownGrant(folder);
        if (!known && request->stop.stop_requested()) {
            request->done(std::nullopt);
            return;
        }
        if (!known) {
            requestSaveAccess(folder,
                [self = QPointer(this), request, folder](const std::optional<QUrl>& chosen) {
                    if (!self) {
                        return;
                    }
                    if (!chosen) {
                        request->done(std::nullopt);
                        return;
                    }
                    self->m_dependencies.rememberOriginalLocationFolder(*chosen);
                    self->m_originalLocationAccessFolders.insert(
                        platform::standardizedPath(folder), *chosen);
                    request->grants.append(*chosen);
                    ++request->next;
                    self->proceed(request);
                });
            return;
        }
        request->grants.append(*known);
        ++request->next;
    }
    request->done(request->grants);
}

std::optional<QUrl> FolderAccessGrants::knownGrant(const QUrl& folder)
{
    const QByteArray key = platform::standardizedPath(folder);
    const auto cached = m_originalLocationAccessFolders.constFind(key);
    if (cached != m_originalLocationAccessFolders.constEnd()) {
        if (isUsable(*cached)) {
            return *cached;
        }
        m_originalLocationAccessFolders.erase(cached);
    }
    std::optional<QUrl> grant = m_dependencies.rememberedOriginalLocationFolder(folder);
    if (!grant || !isUsable(*grant)) {
        // What needs no grant is one to itself: outside a sandbox nobody is asked for anything.
        grant = isUsable(folder) ? std::optional(folder) : std::nullopt;
    }
    if (grant) {
        m_originalLocationAccessFolders.insert(key, *grant);
    }
    return grant;
}

void FolderAccessGrants::requestSaveAccess(const QUrl& folder, PanelAnswer answer) const
{
    const QString name = platform::lastPathComponent(folder);
    const SaveAccessPanel panel {
        .message = Translated::tr("Allow Vellumine to save converted images in %1.")
                       .arg(name.isEmpty() ? folder.toLocalFile() : name),
        .prompt = Translated::tr("Allow Save Access"),
        .folder = folder,
    };
    const auto once = std::make_shared<AnswerOnce>(std::move(answer));
    m_dependencies.showSaveAccessPanel(
        panel, [once](std::optional<QUrl> chosen) { once->give(std::move(chosen)); });
}

bool FolderAccessGrants::isUsable(const QUrl& grant) const
{
    if (m_dependencies.securityScope->startAccessing(grant)) {
        m_dependencies.securityScope->stopAccessing(grant);
        return true;
    }
    return platform::checkWritableFolder(platform::toPath(grant)).has_value();
}

} // namespace vellumine
