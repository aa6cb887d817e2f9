#pragma once

#include "update/TestCertificates.h"

#include <QHash>
#include <QList>
#include <QSslServer>
#include <QUrl>

namespace vellumine::test {

/// An HTTPS server on 127.0.0.1 that answers each path with bytes given beforehand.
class HomePageServer {
public:
    explicit HomePageServer(const TestCertificates& certificates);

    /// What the server sends for the path, header and all; the connection ends with it.
    void answer(const QString& path, const QByteArray& response) { m_answers[path] = response; }
    /// The same for a page with a status and further header lines.
    void answerPage(const QString& path, const QByteArray& body,
        const QByteArray& statusLine = "200 OK", const QByteArray& headerLines = {});
    /// The server takes the request for the path and never says anything.
    void keepSilent(const QString& path) { m_answers.remove(path); }

    [[nodiscard]] QUrl url(const QString& path) const;
    /// The header of every request so far, in order.
    [[nodiscard]] const QList<QByteArray>& requests() const { return m_requests; }
    [[nodiscard]] int connectionCount() const { return m_connectionCount; }

private:
    void serve(QTcpSocket* socket);

    QSslServer m_server;
    QHash<QString, QByteArray> m_answers;
    QList<QByteArray> m_requests;
    int m_connectionCount = 0;
};

} // namespace vellumine::test
