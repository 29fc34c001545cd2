// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTcpServer>
#include <QTcpSocket>

namespace mossbank::test {

/// Serves a page for whatever is asked, on this machine alone. Its title is the first part of the
/// path: /Kingfisher/a?b has the title "Kingfisher". /Kingfisher/sounding plays a tone for as long
/// as it is open.
class PageServer final : public QTcpServer {
public:
    PageServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* const socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                connect(socket, &QTcpSocket::readyRead, socket, [socket] { answer(*socket); });
            }
        });
    }

    QString address(const QString& rest) const
    {
        return QStringLiteral("http://127.0.0.1:%1/%2").arg(QString::number(serverPort()), rest);
    }

private:
    static void answer(QTcpSocket& socket)
    {
        if (!socket.peek(16 * 1024).contains("\r\n\r\n"))
            return;
        const QByteArray path = socket.readAll().split(' ').value(1);
        const QByteArray title = path.split('/').value(1).split('?').value(0);
        QByteArray page = "<!doctype html><title>" + title + "</title><p>" + title;
        if (path.endsWith("/sounding"))
            page += "<script>const sound = new AudioContext(), tone = sound.createOscillator();"
                    "tone.connect(sound.destination); tone.start();</script>";
        socket.write("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n"
                     "Content-Length: " +
                     QByteArray::number(page.size()) + "\r\n\r\n" + page);
        socket.disconnectFromHost();
    }
};

} // namespace mossbank::test
