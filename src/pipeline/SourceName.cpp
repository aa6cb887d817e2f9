#include "pipeline/SourceName.h"

#include "platform/FilePath.h"

namespace vellumine {

SourceName SourceName::of(const QUrl& url)
{
    const QString name = platform::lastPathComponent(url);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0 || dot == name.size() - 1) {
        return { name, {} };
    }
    return { name.first(dot), name.sliced(dot + 1) };
}

} // namespace vellumine
