#include "pipeline/SourceName.h"

#include "platform/FilePath.h"

namespace vellumine {

SourceName SourceName::of(const QUrl& url)
{
    const QByteArray name = platform::lastPathComponentBytes(url);
    const qsizetype dot = name.lastIndexOf('.');
    if (dot <= 0 || dot == name.size() - 1) {
        return { name, {} };
    }
    return { name.first(dot), QString::fromUtf8(name.sliced(dot + 1)) };
}

} // namespace vellumine
