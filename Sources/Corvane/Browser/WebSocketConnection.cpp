#include "Browser/WebSocketConnection.h"

#include "Foundation/Literals.h"

namespace corvane {

WebSocketConnection::WebSocketConnection(
    const QUrl& url, std::function<void(const QString& reason)> opened, QObject* parent)
    : DevToolsConnection(parent)
    , m_opened(std::move(opened))
{
    m_socket.setMaxAllowedIncomingMessageSize(longestMessage);
    m_socket.setMaxAllowedIncomingFrameSize(longestMessage);
    connect(&m_socket, &QWebSocket::connected, this, [this] {
        if (const auto told = std::exchange(m_opened, {}))
            told({});
    });
    connect(&m_socket, &QWebSocket::textMessageReceived, this, [this](const QString& text) { receive(text.toUtf8()); });
    connect(&m_socket, &QWebSocket::binaryMessageReceived, this, &WebSocketConnection::receive);
    // Also emitted for a normal close.
    connect(&m_socket, qOverload<QAbstractSocket::SocketError>(&QWebSocket::error), this, [this] {
        end(m_socket.error() == QAbstractSocket::RemoteHostClosedError ? QString() : m_socket.errorString());
    });
    connect(&m_socket, &QWebSocket::disconnected, this, [this] {
        end(m_socket.closeCode() == QWebSocketProtocol::CloseCodeTooMuchData
                ? u"The browser sent a message that is too large."_s
                : QString());
    });
    // Without an origin: the browser rejects requests that have one.
    m_socket.open(url);
}

WebSocketConnection::~WebSocketConnection()
{
    m_socket.disconnect(this);
    if (const auto told = std::exchange(m_opened, {}))
        told(u"The connection was given up."_s);
    m_socket.close(QWebSocketProtocol::CloseCodeGoingAway);
}

void WebSocketConnection::write(const QByteArray& message)
{
    m_socket.sendTextMessage(QString::fromUtf8(message));
}

void WebSocketConnection::end(const QString& reason)
{
    if (const auto told = std::exchange(m_opened, {}))
        told(reason.isEmpty() ? u"The browser closed the connection."_s : reason);
    fail(reason);
}

}
