#pragma once

#include "Foundation/Channel.h"

#include <QHash>
#include <QList>

namespace corvane {

struct ConnectField {
    QString id;
    QString label;
    QString placeholder;
    bool masked = false;
};

/// How a channel is connected: the sheet with its fields, or, without fields, one button.
struct ConnectFlow {
    Channel channel = Channel::WhatsApp;
    QString title; ///< of the sheet, or the label of the button
    QString hint; ///< Markdown
    QString buttonLabel;
    QList<ConnectField> fields;
};

/// One flow a channel, in the channels' order.
const QList<ConnectFlow>& connectFlows();

/// What a filled sheet asks for.
struct ConnectRequest {
    QString name;
    std::optional<QString> email;
    std::optional<QString> secret;
};

using ConnectValues = QHash<QString, QString>; ///< by the id of the field

/// Nothing while the sheet's rule does not hold. The values are trimmed first.
std::optional<ConnectRequest> connectRequest(Channel channel, const ConnectValues& values);

}
