#pragma once

#include "Foundation/Result.h"

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <functional>

namespace corvane {

/// A conversation with one page of a browser by the DevTools protocol: calls go there, answers and events come back.
/// A message that is no JSON object is passed over.
class DevToolsConnection : public QObject {
    Q_OBJECT
public:
    using Answer = std::function<void(const Result<QJsonObject>& result)>;

    /// Longer messages end the conversation: no page needs them, and one would fill the memory.
    static constexpr qsizetype longestMessage = 64 * 1024 * 1024;

    using QObject::QObject;

    /// `answer` is called once, at the latest when the conversation ends; never after this object is gone. Calls are
    /// numbered from 1, but for those that bring a number of their own.
    void call(const QString& method, const QJsonObject& parameters = {}, Answer answer = {}, int ownNumber = 0);

    /// `take` gets the value of a script that runs in the page; undefined where it fails. Called as an answer is.
    void evaluate(const QString& script, std::function<void(const QJsonValue& value)> take);

    /// Calls go to this page of the browser; for a line that leads to the browser as a whole.
    void setSession(const QString& id) { m_session = id; }

    static constexpr int titleNumber = 1697; ///< of the call that asks for the page's title

Q_SIGNALS:
    void told(const QString& method, const QJsonObject& parameters);
    void closed(const QString& reason); ///< once; the reason is empty where the other side just ended

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
