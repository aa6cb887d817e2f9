#pragma once

#include <QList>
#include <QUrl>

class QMimeData;

// What the status item takes of the things that are dragged over it.

namespace vellumine {

/// The dragged URLs in their order. None where something that is no URL was dragged along, or
/// nothing can be read.
[[nodiscard]] QList<QUrl> draggedUrls(const QMimeData& data);

/// The same for the bytes of a "text/uri-list": one URL a line, lines that begin with "#" are
/// comments.
[[nodiscard]] QList<QUrl> draggedUrls(const QByteArray& uriList);

/// A file with the name of a picture, upper and lower case alike, or a folder. The name counts
/// first: only where it is no picture's, the file system is asked; what cannot be looked at is no
/// folder.
[[nodiscard]] bool isAcceptedItem(const QUrl& url);

/// Whether one of them is accepted; looks no further than the first.
[[nodiscard]] bool hasAcceptedItem(const QList<QUrl>& urls);

/// Those that are accepted, in their order.
[[nodiscard]] QList<QUrl> acceptedItems(const QList<QUrl>& urls);

} // namespace vellumine
