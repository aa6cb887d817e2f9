#pragma once

#include <QByteArray>
#include <QSizeF>
#include <QString>
#include <QUrl>

#include <ostream>

// What GoogleTest prints for Qt's types when an expectation fails. GoogleTest finds these by
// argument-dependent lookup, which looks where the types live: in the global namespace.

inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* stream)
{
    *stream << '"' << bytes.toStdString() << '"';
}

inline void PrintTo(const QUrl& url, std::ostream* stream)
{
    *stream << url.toEncoded().toStdString();
}

inline void PrintTo(const QSizeF& size, std::ostream* stream)
{
    *stream << size.width() << " x " << size.height();
}
