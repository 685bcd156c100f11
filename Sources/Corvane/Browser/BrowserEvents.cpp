#include "Browser/BrowserEvents.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"

#include <QHash>
#include <QJsonArray>

namespace corvane {

namespace {

constexpr qsizetype longestText = 8000; // a page may log without limit
constexpr qsizetype mostRequests = 300;
constexpr qsizetype requestsLeft = 160;

QString cut(const QString& text)
{
    return text.size() > longestText ? text.first(longestText) + u"…"_s : text;
}

template <typename Event> void keepNewest(QList<Event>& events, const Event& event)
{
    events.append(event);
    if (events.size() > BrowserEvents::kept)
        events.removeFirst();
}

QString argumentText(const QJsonValue& argument)
{
    const QJsonValue value = argument["value"_L1];
    return value.isUndefined() || value.isObject() || value.isArray() ? argument["description"_L1].toString()
                                                                      : value.toVariant().toString();
}

}

QString placeOfEvent(const BrowserConsoleEvent& event)
{
    return event.line > 0 && !event.url.isEmpty() ? event.url + u':' + QString::number(event.line + 1) : event.url;
}

bool BrowserEvents::take(const QString& method, const QJsonObject& parameters, qint64 nowMs)
{
    if (method == "Network.requestWillBeSent"_L1) {
        m_requestUrls.insert(parameters["requestId"_L1].toString(), cut(parameters["request"_L1]["url"_L1].toString()));
        if (m_requestUrls.size() > mostRequests) {
            while (m_requestUrls.size() > requestsLeft)
                m_requestUrls.erase(m_requestUrls.cbegin());
        }
        return false;
    }
    const qint64 before = m_added;
    if (method == "Runtime.consoleAPICalled"_L1) {
        const QString type = parameters["type"_L1].toString(u"log"_s).toLower();
        if (type != "error"_L1 && type != "warning"_L1 && type != "assert"_L1)
            return false;
        QStringList texts;
        for (const QJsonValue& argument : parameters["args"_L1].toArray())
            texts.append(argumentText(argument));
        const QJsonValue frame = parameters["stackTrace"_L1]["callFrames"_L1][0];
        addConsole(nowMs, type, texts.join(u' '), frame["url"_L1].toString(), frame["lineNumber"_L1].toInt());
    } else if (method == "Runtime.exceptionThrown"_L1) {
        const QJsonValue details = parameters["exceptionDetails"_L1];
        const QString description = details["exception"_L1]["description"_L1].toString();
        addConsole(nowMs, u"error"_s, description.isEmpty() ? details["text"_L1].toString() : description,
            details["url"_L1].toString(), details["lineNumber"_L1].toInt());
    } else if (method == "Log.entryAdded"_L1) {
        const QJsonValue entry = parameters["entry"_L1];
        const QString level = entry["level"_L1].toString(u"log"_s).toLower();
        if (level == "error"_L1 || level == "warning"_L1)
            addConsole(
                nowMs, level, entry["text"_L1].toString(), entry["url"_L1].toString(), entry["lineNumber"_L1].toInt());
    } else if (method == "Network.loadingFailed"_L1) {
        addNetwork(nowMs, u"failed"_s, m_requestUrls.value(parameters["requestId"_L1].toString()),
            parameters["errorText"_L1].toString(u"request failed"_s));
    } else if (method == "Network.responseReceived"_L1) {
        const QJsonValue response = parameters["response"_L1];
        const int status = response["status"_L1].toInt();
        if (status >= 400)
            addNetwork(nowMs, u"http"_s, response["url"_L1].toString(),
                u"HTTP %1 %2"_s.arg(status).arg(response["statusText"_L1].toString()), status);
    }
    return m_added != before;
}

void BrowserEvents::addConsole(qint64 nowMs, const QString& level, const QString& text, const QString& url, int line)
{
    ++m_added;
    keepNewest(m_console, { uuidText(), nowMs, level, cut(text), cut(url), line });
}

void BrowserEvents::addNetwork(
    qint64 nowMs, const QString& kind, const QString& url, const QString& detail, std::optional<int> status)
{
    ++m_added;
    keepNewest(m_network, { uuidText(), nowMs, kind, cut(url), cut(detail), status });
}

}
