#pragma once

#include "Foundation/Result.h"

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <functional>

namespace corvane {

/// A connection to one page of a browser by the DevTools protocol: sends calls, receives answers and events.
/// Messages that are not JSON objects are ignored.
class DevToolsConnection : public QObject {
    Q_OBJECT
public:
    using Answer = std::function<void(const Result<QJsonObject>& result)>;

    /// Longer messages close the connection: no page needs them, and they could exhaust the memory.
    static constexpr qsizetype longestMessage = 64 * 1024 * 1024;

    using QObject::QObject;

    /// `answer` is called once, at the latest when the connection closes; never after this object is destroyed. Calls
    /// are numbered from 1, except those with a number of their own.
    void call(const QString& method, const QJsonObject& parameters = {}, Answer answer = {}, int ownNumber = 0);

    /// Runs a script in the page. `take` receives its value, undefined on failure; it is called like an answer.
    void evaluate(const QString& script, std::function<void(const QJsonValue& value)> take);

    /// Sends calls to this page; for connections to the browser as a whole.
    void setSession(const QString& id) { m_session = id; }

    static constexpr int titleNumber = 1697; ///< of the call that asks for the page's title

Q_SIGNALS:
    void told(const QString& method, const QJsonObject& parameters);
    void closed(const QString& reason); ///< once; the reason is empty if the other side closed it normally

protected:
    virtual void write(const QByteArray& message) = 0;
    void receive(const QByteArray& message);
    void fail(const QString& reason);

private:
    QHash<int, Answer> m_answers;
    QString m_session;
    int m_nextNumber = 1;
    bool m_isClosed = false;
};

}
