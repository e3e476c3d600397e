#pragma once
// Servers that misbehave, for the client's limits: one that accepts and never answers, one that
// trickles a byte at a time, one that sends more than it should.

#include <QByteArray>
#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

class MisbehavingServer : public QTcpServer {
public:
    enum class Kind { Silent, Trickle, Flood };
    explicit MisbehavingServer(Kind kind) : m_kind(kind) {
        listen(QHostAddress::LocalHost, 0);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *s = nextPendingConnection()) {
                m_sockets << s;
                if (m_kind == Kind::Flood) {
                    // No length: the body just keeps coming until the connection closes.
                    s->write("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\n\r\n");
                    s->write(QByteArray(64 * 1024, 'z'));
                    s->disconnectFromHost();
                } else if (m_kind == Kind::Trickle) {
                    s->write(
                        "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 1000000\r\n\r\n");
                    auto *t = new QTimer(s);
                    QPointer<QTcpSocket> socket(s);
                    connect(t, &QTimer::timeout, s, [socket] {
                        if (socket)
                            socket->write("a");
                    });
                    t->start(100);
                }
            }
        });
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(serverPort())); }

private:
    Kind m_kind;
    QList<QTcpSocket *> m_sockets;
};
