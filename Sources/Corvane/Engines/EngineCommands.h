#pragma once

#include "Store/Approvals/OutgoingMessage.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace corvane {

struct ChannelFeatures;

enum class Acknowledges { Draft, DirectSend };

/// The command that sends a message, with the parts that the channel supports. The acknowledgment refers to the id;
/// without one the engine sends none.
QJsonObject sendCommand(const QString& chatId, const OutgoingMessage& message, const ChannelFeatures& features,
    Acknowledges kind, const QString& id);

/// The command that puts a draft's text into the message box of a thread.
QJsonObject placeCommand(const QString& threadId, const QString& text, const QString& draftId);

/// Serialises a command as a line for the engine.
QByteArray commandLine(const QJsonObject& command);

}
