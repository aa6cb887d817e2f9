#pragma once

#include <QList>
#include <QUrl>

class QMimeData;

namespace vellumine {

/// The file URLs that a drag or the clipboard carries, in its order. Their bytes are kept as they
/// are, whatever the encoding of the names. Anything else in it is left out.
[[nodiscard]] QList<QUrl> fileUrls(const QMimeData& data);

/// Those of them that the window takes: by the extension of a picture, whatever its case, or
/// because a folder stands there.
[[nodiscard]] QList<QUrl> acceptedUrls(const QList<QUrl>& urls);

} // namespace vellumine
