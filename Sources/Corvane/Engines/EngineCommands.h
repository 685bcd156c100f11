#pragma once

#include "Store/Approvals/OutgoingMessage.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace corvane {

struct ChannelFeatures;

enum class Acknowledges { Draft, DirectSend };

/// The command that sends a message, with as much of it as the channel carries. The acknowledgment names the id;
/// without one the engine owes none.
QJsonObject sendCommand(const QString& chatId, const OutgoingMessage& message, const ChannelFeatures& features,
    Acknowledges kind, const QString& id);

/// The command that puts a draft's text into the box of a thread.
QJsonObject placeCommand(const QString& threadId, const QString& text, const QString& draftId);

/// The line that an engine gets for it.
QByteArray commandLine(const QJsonObject& command);

}
