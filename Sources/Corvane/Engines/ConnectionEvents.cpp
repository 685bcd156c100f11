#include "Engines/ConnectionEvents.h"

#include "Foundation/Json.h"

namespace corvane {

namespace {

const QString qrType = QStringLiteral("qr");
const QString statusType = QStringLiteral("status");
const QString mcpType = QStringLiteral("mcp");
const QString logType = QStringLiteral("log");

QString stateWord(const QJsonObject& event)
{
    return textValue(event, QLatin1StringView("state")).value_or(QString());
}

void applyStatus(RuntimeState& state, const QJsonObject& event)
{
    const QString word = stateWord(event);
    if (word == u"connecting") {
        state.status = WAStatus::Connecting;
    } else if (word == u"open") {
        state.status = WAStatus::Connected;
        state.qr.reset();
        state.userName = textValue(event, QLatin1StringView("user"));
    } else if (word == u"close") {
        // The code stays valid on the screen while the engine's socket cycles.
        if (state.status != WAStatus::NeedsQR)
            state.status = WAStatus::Connecting;
    } else if (word == u"logged_out") {
        state.status = WAStatus::LoggedOut;
        state.qr.reset();
    }
}

}

bool isConnectionEvent(const QString& type)
{
    return type == qrType || type == statusType || type == mcpType || type == logType;
}

RuntimeState afterConnectionEvent(RuntimeState state, const QString& type, const QJsonObject& event)
{
    if (type == qrType) {
        state.qr = textValue(event, QLatin1StringView("qr"));
        state.status = WAStatus::NeedsQR;
    } else if (type == statusType) {
        applyStatus(state, event);
    } else if (type == mcpType && stateWord(event) == u"listening") {
        state.mcpURL = textValue(event, QLatin1StringView("url"));
    } else if (type == logType) {
        state.lastLog = textValue(event, QLatin1StringView("msg")).value_or(QString());
    }
    return state;
}

bool reportsOpen(const QString& type, const QJsonObject& event)
{
    return type == statusType && stateWord(event) == u"open";
}

}
