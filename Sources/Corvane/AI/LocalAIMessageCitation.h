#pragma once

#include "Store/Messages/ThreadQueries.h"

#include <QStringList>

namespace corvane {

/// A local message that a generated text may rest on.
struct LocalAIMessageCitation {
    QString id; ///< of the message
    QString label; ///< "M1", "M2", ...
    QString platform;
    QString direction;
    qint64 timestamp = 0; ///< milliseconds since the epoch
    QString excerpt;

    bool operator==(const LocalAIMessageCitation&) const = default;
};

/// The last 80 messages that have a text, oldest first. `messages` are in the thread's order.
QList<LocalAIMessageCitation> citationMessages(const QList<UnifiedMsgRow>& messages);

/// One line a citation, as prompts show a thread.
QString renderThread(const QList<LocalAIMessageCitation>& citations);

QStringList labels(const QList<LocalAIMessageCitation>& citations);

/// A time as prompts show it: "2026-03-01T09:30:00Z".
QString promptTime(qint64 timestampMs);

}
