#include "Browser/DevToolsConnection.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

namespace corvane {

void DevToolsConnection::call(const QString& method, const QJsonObject& parameters, Answer answer, int ownNumber)
{
    if (m_isClosed) {
        if (answer)
            answer(failure(u"The browser is gone."_s));
        return;
    }
    if (m_nextNumber == titleNumber)
        ++m_nextNumber;
    const int number = ownNumber ? ownNumber : m_nextNumber++;
    QJsonObject message { { u"id"_s, number }, { u"method"_s, method } };
    if (!parameters.isEmpty())
        message.insert(u"params"_s, parameters);
    if (!m_session.isEmpty())
        message.insert(u"sessionId"_s, m_session);
    if (answer)
        m_answers.insert(number, std::move(answer));
    write(compactJson(message));
}

void DevToolsConnection::evaluate(const QString& script, std::function<void(const QJsonValue& value)> take)
{
    call(u"Runtime.evaluate"_s, { { u"expression"_s, script }, { u"returnByValue"_s, true } },
        [take = std::move(take)](
            const Result<QJsonObject>& result) { take(result.value_or(QJsonObject())["result"_L1]["value"_L1]); });
}

void DevToolsConnection::receive(const QByteArray& text)
{
    const std::optional<QJsonObject> message = jsonObject(text);
    if (!message || m_isClosed)
        return;
    const QJsonValue method = message->value("method"_L1);
    if (method.isString())
        return Q_EMIT told(method.toString(), message->value("params"_L1).toObject());
    const Answer answer = m_answers.take(message->value("id"_L1).toInt());
    if (!answer)
        return;
    const QJsonValue error = message->value("error"_L1);
    if (error.isObject())
        answer(failure(error["message"_L1].toString()));
    else
        answer(message->value("result"_L1).toObject());
}

void DevToolsConnection::fail(const QString& reason)
{
    if (std::exchange(m_isClosed, true))
        return;
    const QHash<int, Answer> waiting = std::exchange(m_answers, {});
    for (const Answer& answer : waiting)
        answer(failure(reason));
    Q_EMIT closed(reason);
}

}
