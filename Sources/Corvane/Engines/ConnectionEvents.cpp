#include "Engines/ConnectionEvents.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

namespace corvane {

namespace {

const QString qrType = u"qr"_s;
const QString statusType = u"status"_s;
const QString mcpType = u"mcp"_s;
const QString logType = u"log"_s;

QString stateWord(const QJsonObject& event)
{
    return textValue(event, "state"_L1).value_or(QString());
}

void applyStatus(RuntimeState& state, const QJsonObject& event)
{
    const QString word = stateWord(event);
    if (word == u"connecting") {
        state.status = WAStatus::Connecting;
    } else if (word == u"open") {
        state.status = WAStatus::Connected;
        state.qr.reset();
        state.userName = textValue(event, "user"_L1);
    } else if (word == u"close") {
        // The code on the screen stays valid while the engine reconnects.
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
        state.qr = textValue(event, "qr"_L1);
        state.status = WAStatus::NeedsQR;
    } else if (type == statusType) {
        applyStatus(state, event);
    } else if (type == mcpType && stateWord(event) == u"listening") {
        state.mcpURL = textValue(event, "url"_L1);
    } else if (type == logType) {
        state.lastLog = textValue(event, "msg"_L1).value_or(QString());
    }
    return state;
}

bool reportsOpen(const QString& type, const QJsonObject& event)
{
    return type == statusType && stateWord(event) == u"open";
}

}
