#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>

class QTcpSocket;

namespace vellumine::test {

/// A proxy on 127.0.0.1 that connects to whom it is asked for and passes on what is said.
class ConnectProxy {
public:
    ConnectProxy();

    /// Answers with these bytes in place of connecting.
    void refuse(const QByteArray& response) { m_refusal = response; }

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }
    /// The first line of every request so far, in order.
    [[nodiscard]] const QList<QByteArray>& requests() const { return m_requests; }

private:
    void serve(QTcpSocket* client);
    void connectThrough(QTcpSocket* client, const QByteArray& address);

    QTcpServer m_server;
    QByteArray m_refusal;
    QList<QByteArray> m_requests;
};

} // namespace vellumine::test
