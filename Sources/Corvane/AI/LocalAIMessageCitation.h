#pragma once

#include "Store/Messages/ThreadQueries.h"

#include <QStringList>

namespace corvane {

/// A local message that a generated text can cite.
struct LocalAIMessageCitation {
    QString id; ///< of the message
    QString label; ///< "M1", "M2", ...
    QString platform;
    QString direction;
    qint64 timestamp = 0; ///< milliseconds since the epoch
    QString excerpt;

    bool operator==(const LocalAIMessageCitation&) const = default;
};

/// The last 80 messages with text, oldest first. `messages` are in thread order.
QList<LocalAIMessageCitation> citationMessages(const QList<UnifiedMsgRow>& messages);

/// One line per citation, in the format of the prompts.
QString renderThread(const QList<LocalAIMessageCitation>& citations);

QStringList labels(const QList<LocalAIMessageCitation>& citations);

/// A time in the format of the prompts: "2026-03-01T09:30:00Z".
QString promptTime(qint64 timestampMs);

}
