#pragma once

#include <QList>
#include <QString>
#include <optional>

namespace corvane {

/// A copy of a file that a person picked, kept unchanged until the message with it has ended.
struct OutgoingFile {
    QString path; ///< absolute, in the outbox
    QString name; ///< as the recipient gets it
    qint64 bytes = 0;
    QString sha256; ///< of its content as it was picked, in hexadecimal digits

    bool operator==(const OutgoingFile&) const = default;
};

/// What goes out: a text, and with it what the account's channel carries (see `ChannelFeatures`).
struct OutgoingMessage {
    QString text; ///< may be empty where there are files
    QString subject = {};
    QList<OutgoingFile> files = {}; ///< in the order in which they are sent

    bool operator==(const OutgoingMessage&) const = default;
};

qint64 totalBytes(const QList<OutgoingFile>& files);

/// The files as one text, for a column or a file; empty for none.
QString filesText(const QList<OutgoingFile>& files);

/// Nothing where the text is not one of `filesText`.
std::optional<QList<OutgoingFile>> filesFromText(const QString& text);

}
