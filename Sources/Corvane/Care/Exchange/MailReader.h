#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

class QIODevice;

namespace corvane {

/// What the inbox keeps of an e-mail.
struct ReadMail {
    QString messageId; ///< without angle brackets; empty if there is none
    QString from; ///< the address in lower case
    QString fromName;
    QString to; ///< the first recipient
    QString toName;
    QString subject;
    QString body; ///< the first plain text part, else the text of the first HTML part
    qint64 atMs = 0; ///< 0 if the date cannot be read
};

/// Nothing if the text has neither a sender nor a recipient.
std::optional<ReadMail> readMail(const QByteArray& text);

/// The messages of an mbox file one by one; of any other file, the whole of it as one message.
class MailboxReader {
public:
    explicit MailboxReader(QIODevice& device) ///< open, and outlives this
        : m_device(device)
    {
    }

    /// Nothing at the end. A message of more than 64 MiB is cut off there.
    std::optional<QByteArray> next();

private:
    QIODevice& m_device;
    std::optional<bool> m_isMailbox; ///< known from the first line on
};

}
