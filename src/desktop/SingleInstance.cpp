// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/SingleInstance.h"

#include "foundation/Directories.h"
#include "foundation/Folder.h"

#include <QLocalSocket>

namespace tomelet::desktop {

bool SingleInstance::handedOverTo(const QString &path)
{
    makeFolder(workingDirectory());
    const QString name = joinPath(workingDirectory(), QStringLiteral("desktop.socket"));
    QLocalSocket socket;
    socket.connectToServer(name);
    if (socket.waitForConnected(300)) {
        socket.write(path.toUtf8() + '\n');
        // After a crash the engine's processes hold the socket for a moment, and nobody reads there.
        if (socket.waitForReadyRead(5000)) return true;
    }
    // Nobody answers there, so what lies there is left over.
    QLocalServer::removeServer(name);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::receive);
    m_server.listen(name);
    return false;
}

void SingleInstance::receive()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine()) return;
            const QString path = QString::fromUtf8(socket->readLine().trimmed());
            socket->write("\n");
            socket->flush();
            // Showing a document may wait for another one's page, which is no place to be in a signal of the socket.
            QMetaObject::invokeMethod(
                this, [this, path] { Q_EMIT handedOver(path); }, Qt::QueuedConnection);
        });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    }
}

} // namespace tomelet::desktop
