#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace vellumine {

/// A file's name in its two parts. A dot at the very front or the very end divides nothing:
/// ".hidden" and "name." have no extension.
struct SourceName {
    /// "holiday.photo" of "holiday.photo.jpg", in the file system's encoding: two files whose names
    /// are no text must not get the same output.
    QByteArray base;
    QString extension; ///< "jpg", as written; empty when there is none

    [[nodiscard]] static SourceName of(const QUrl& url);
};

} // namespace vellumine
