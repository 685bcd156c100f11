#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <optional>

namespace corvane {

/// A warning, an error or a failed assertion that a page wrote to its console.
struct BrowserConsoleEvent {
    QString id; ///< a UUID
    qint64 capturedAt = 0; ///< milliseconds since the epoch
    QString level; ///< "error", "warning" or "assert"
    QString text;
    QString url;
    int line = 0; ///< 0-based; also 0 if unknown

    bool operator==(const BrowserConsoleEvent&) const = default;
};

/// Its address, with the line if that is known; empty if both are unknown.
QString placeOfEvent(const BrowserConsoleEvent& event);

/// A request that failed, or whose response has a status of 400 or more.
struct BrowserNetworkEvent {
    QString id; ///< a UUID
    qint64 capturedAt = 0; ///< milliseconds since the epoch
    QString kind; ///< "failed" or "http"
    QString url;
    QString detail;
    std::optional<int> statusCode = std::nullopt; ///< of "http"

    bool operator==(const BrowserNetworkEvent&) const = default;
};

/// What went wrong in a page, the newest 60 of each kind, gathered from the messages of the DevTools protocol. Texts
/// are stored unmasked: see BrowserMasking.h.
class BrowserEvents {
public:
    static constexpr qsizetype kept = 60;

    /// True if the message added an event.
    bool take(const QString& method, const QJsonObject& parameters, qint64 nowMs);
    void clear() { *this = {}; }

    const QList<BrowserConsoleEvent>& console() const { return m_console; }
    const QList<BrowserNetworkEvent>& network() const { return m_network; }

private:
    void addConsole(qint64 nowMs, const QString& level, const QString& text, const QString& url, int line);
    void addNetwork(qint64 nowMs, const QString& kind, const QString& url, const QString& detail,
        std::optional<int> status = std::nullopt);

    QList<BrowserConsoleEvent> m_console;
    QList<BrowserNetworkEvent> m_network;
    QHash<QString, QString> m_requestUrls; ///< by the browser's id of the request
    qint64 m_added = 0; ///< events since the start
};

}
