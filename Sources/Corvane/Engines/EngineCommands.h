#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace corvane {

/// The command that sends a text. With a draft's id the engine owes an acknowledgment.
QJsonObject sendCommand(const QString& chatId, const QString& text, const QString& draftId = {});

/// The command that puts a draft's text into the box of a thread.
QJsonObject placeCommand(const QString& threadId, const QString& text, const QString& draftId);

/// The line that an engine gets for it.
QByteArray commandLine(const QJsonObject& command);

}
