#include "update/ConnectProxy.h"

#include <QTcpSocket>

namespace vellumine::test {
namespace {

void passOn(QTcpSocket* from, QTcpSocket* to)
{
    QObject::connect(from, &QTcpSocket::readyRead, to, [from, to] { to->write(from->readAll()); });
    QObject::connect(from, &QTcpSocket::disconnected, to, [to] { to->disconnectFromHost(); });
}

} // namespace

ConnectProxy::ConnectProxy()
{
    if (!m_server.listen(QHostAddress::LocalHost)) {
        qFatal("no port to listen on");
    }
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
        while (QTcpSocket* client = m_server.nextPendingConnection()) {
            QObject::connect(
                client, &QTcpSocket::readyRead, &m_server, [this, client] { serve(client); });
        }
    });
}

void ConnectProxy::serve(QTcpSocket* client)
{
    if (!client->peek(client->bytesAvailable()).contains("\r\n\r\n")) {
        return;
    }
    const QByteArray request = client->readAll();
    m_requests.append(request.left(request.indexOf("\r\n")));
    client->disconnect(&m_server);
    if (!m_refusal.isEmpty()) {
        client->write(m_refusal);
        client->disconnectFromHost();
        return;
    }
    connectThrough(client, m_requests.back().split(' ').value(1));
}

void ConnectProxy::connectThrough(QTcpSocket* client, const QByteArray& address)
{
    auto* server = new QTcpSocket(client);
    const QList<QByteArray> hostAndPort = address.split(':');
    QObject::connect(server, &QTcpSocket::connected, client,
        [client] { client->write("HTTP/1.1 200 Connected\r\n\r\n"); });
    passOn(server, client);
    passOn(client, server);
    server->connectToHost(
        QString::fromLatin1(hostAndPort.value(0)), hostAndPort.value(1).toUShort());
}

} // namespace vellumine::test
