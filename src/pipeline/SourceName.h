#pragma once

#include <QString>
#include <QUrl>

namespace vellumine {

/// A file's name in its two parts. A dot at the very front or the very end divides nothing:
/// ".hidden" and "name." have no extension.
struct SourceName {
    QString base; ///< "holiday.photo" of "holiday.photo.jpg"
    QString extension; ///< "jpg", as written; empty when there is none

    [[nodiscard]] static SourceName of(const QUrl& url);
};

} // namespace vellumine
