#pragma once

#include "Browser/BrowserEvents.h"
#include "Store/Work/BrowserSessions.h"

#include <QObject>

namespace corvane {

/// Something that went wrong in the page.
class BrowserIssue {
    Q_GADGET
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(bool isError MEMBER isError)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString place MEMBER place)
    Q_PROPERTY(QString time MEMBER time)
public:
    QString id;
    QString kind; ///< such as "Console error" or "HTTP 404"
    bool isError = false;
    QString text;
    QString place; ///< the address, with the line if it is known
    QString time;

    static constexpr const char* role = "issue";
    QString key() const { return id; }
    bool operator==(const BrowserIssue&) const = default;
};

/// An earlier browser session.
class BrowserSession {
    Q_GADGET
    Q_PROPERTY(QString sessionId MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString facts MEMBER facts)
    Q_PROPERTY(QString problem MEMBER problem)
    Q_PROPERTY(bool hasEvidence MEMBER hasEvidence)
public:
    QString id;
    QString title;
    QString facts;
    QString problem; ///< empty for none
    bool hasEvidence = false;

    static constexpr const char* role = "session";
    QString key() const { return id; }
    bool operator==(const BrowserSession&) const = default;
};

/// Newest first.
QList<BrowserIssue> browserIssues(const QList<BrowserConsoleEvent>& console, const QList<BrowserNetworkEvent>& network);
QList<BrowserSession> browserSessions(const QList<DevBrowserSessionRow>& rows, qint64 nowMs);

/// Counts and the newest events, or a sentence that there are none.
QString browserEvidencePreview(
    const QList<BrowserConsoleEvent>& console, const QList<BrowserNetworkEvent>& network, qsizetype newest);

}
