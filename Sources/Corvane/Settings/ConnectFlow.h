#pragma once

#include "Foundation/Channel.h"
#include "Presentation/FormField.h"

#include <QHash>
#include <QList>
#include <QObject>

namespace corvane {

/// How a channel is connected: the sheet with its fields, or, without fields, one button.
class ConnectFlow {
    Q_GADGET
    Q_PROPERTY(QString channel READ channelWord)
    Q_PROPERTY(QString label READ label)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString hint MEMBER hint)
    Q_PROPERTY(QString buttonLabel MEMBER buttonLabel)
public:
    Channel channel = Channel::WhatsApp;
    QString title; ///< of the sheet, or the label of the button
    QString hint; ///< Markdown
    QString buttonLabel;
    QList<FieldSpec> fields;

    QString channelWord() const; ///< such as "WHATSAPP"
    QString label() const; ///< of the channel
    bool operator==(const ConnectFlow&) const = default;
};

/// One flow per channel, in the order of the channels.
const QList<ConnectFlow>& connectFlows();

// The texts of a sheet that changes an account.
QString editTitle(const QString& accountName);
QString saveLabel();

/// What a filled sheet asks for.
struct ConnectRequest {
    QString name;
    std::optional<QString> email;
    std::optional<QString> secret;
};

using ConnectValues = QHash<QString, QString>; ///< by the id of the field

/// Nothing while the values are invalid. They are trimmed first. E-mail has a form of its own.
std::optional<ConnectRequest> connectRequest(Channel channel, const ConnectValues& values);

/// The values from which `connectRequest` made this secret.
ConnectValues valuesOf(Channel channel, const QString& secret);

}
