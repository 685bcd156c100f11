#include "Platform/Linux/Bus/LumoObject.h"

#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Bus/BusSingleInstance.h"
#include "Platform/Linux/Services.h"

#include <QDBusError>

namespace corvane {

namespace {

constexpr qsizetype longestQuestion = 65536;
constexpr int lookUpMs = 1500;
constexpr int answerMs = 300'000; // a model on a slow machine may take minutes

const QString interface = u"com.nimb.corvane"_s;

}

LumoObject::LumoObject(const QDBusConnection& bus, QObject* object)
    : QDBusAbstractAdaptor(object)
    , m_bus(bus)
{
}

QString LumoObject::AskLumo(const QString& question, const QDBusMessage& call)
{
    call.setDelayedReply(true);
    const auto reply = [bus = m_bus, call](const Result<QString>& answer) {
        bus.send(
            answer ? call.createReply(*answer) : call.createErrorReply(QDBusError::Failed, answer.error().message));
    };
    if (question.size() > longestQuestion)
        reply(failure(u"The question is too long."_s));
    else if (answerer)
        answerer(question, reply);
    else
        reply(failure(u"Corvane is starting. Try again."_s));
    return {};
}

std::optional<Result<QString>> askRunningProgram(
    const AppPaths& paths, const QDBusConnection& bus, const QString& question)
{
    const BusObject running { instanceName(paths.applicationSupport), instanceObjectPath, interface };
    const BusObject daemon { u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s };
    if (!bus.isConnected())
        return std::nullopt;
    const QDBusMessage owned = bus.call(daemon.method(u"NameHasOwner"_s, { running.service }), QDBus::Block, lookUpMs);
    if (!firstValue(owned).toBool())
        return std::nullopt;
    const QDBusMessage reply = bus.call(running.method(u"AskLumo"_s, { question }), QDBus::Block, answerMs);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return failure(reply.errorMessage());
    return firstValue(reply).toString();
}

std::optional<Result<QString>> askRunningProgram(const AppPaths& paths, const QString& question)
{
    return askRunningProgram(paths, QDBusConnection::sessionBus(), question);
}

}
