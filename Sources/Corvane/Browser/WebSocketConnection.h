#pragma once

#include "Browser/DevToolsConnection.h"

#include <QWebSocket>

namespace corvane {

/// Uses the WebSocket of one page.
class WebSocketConnection final : public DevToolsConnection {
    Q_OBJECT
public:
    /// `opened` is called once, with the error if it could not be opened.
    WebSocketConnection(const QUrl& url, std::function<void(const QString& reason)> opened, QObject* parent);
    ~WebSocketConnection() override;

protected:
    void write(const QByteArray& message) override;

private:
    void end(const QString& reason);

    std::function<void(const QString&)> m_opened;
    QWebSocket m_socket;
};

}
