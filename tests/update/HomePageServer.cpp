#include "update/HomePageServer.h"

#include <QSslConfiguration>
#include <QTcpSocket>

namespace vellumine::test {

HomePageServer::HomePageServer(const TestCertificates& certificates)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificates.server);
    configuration.setPrivateKey(certificates.serverKey);
    m_server.setSslConfiguration(configuration);
    if (!m_server.listen(QHostAddress::LocalHost)) {
        qFatal("no port to listen on");
    }
    QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            ++m_connectionCount;
            QObject::connect(
                socket, &QTcpSocket::readyRead, &m_server, [this, socket] { serve(socket); });
            serve(socket);
        }
    });
}

void HomePageServer::answerPage(const QString& path, const QByteArray& body,
    const QByteArray& statusLine, const QByteArray& headerLines)
{
    answer(path,
        "HTTP/1.1 " + statusLine + "\r\nConnection: close\r\n" + headerLines
            + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

QUrl HomePageServer::url(const QString& path) const
{
    QUrl url;
    url.setScheme(QStringLiteral("https"));
    url.setHost(m_server.serverAddress().toString());
    url.setPort(m_server.serverPort());
    url.setPath(path);
    return url;
}

void HomePageServer::serve(QTcpSocket* socket)
{
    const QByteArray soFar = socket->peek(socket->bytesAvailable());
    if (!soFar.contains("\r\n\r\n")) {
        return;
    }
    const QByteArray request = socket->readAll();
    m_requests.append(request);
    const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
    const auto found = m_answers.constFind(QString::fromLatin1(requestLine.value(1)));
    if (found != m_answers.constEnd()) {
        socket->write(*found);
        socket->disconnectFromHost();
    }
}

} // namespace vellumine::test
