#pragma once

#include <QList>
#include <QString>
#include <optional>

namespace corvane {

/// A copy of a file that the user picked, kept unchanged until its message is done.
struct OutgoingFile {
    QString path; ///< absolute, in the outbox
    QString name; ///< as the recipient sees it
    qint64 bytes = 0;
    QString sha256; ///< of the content when it was picked, in hexadecimal digits

    bool operator==(const OutgoingFile&) const = default;
};

/// An outgoing message: a text, and whatever else the account's channel supports (see `ChannelFeatures`).
struct OutgoingMessage {
    QString text; ///< may be empty if there are files
    QString subject = {};
    QList<OutgoingFile> files = {}; ///< in sending order

    bool operator==(const OutgoingMessage&) const = default;
};

qint64 totalBytes(const QList<OutgoingFile>& files);

/// The files as one text, for a column or a file; empty for none.
QString filesText(const QList<OutgoingFile>& files);

/// Nothing if the text was not made by `filesText`.
std::optional<QList<OutgoingFile>> filesFromText(const QString& text);

}
