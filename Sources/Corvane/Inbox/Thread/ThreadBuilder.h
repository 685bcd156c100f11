#pragma once

#include "Store/Messages/ThreadQueries.h"

#include <variant>

namespace corvane {

/// A message with its position in a run of bubbles.
struct ThreadMsg {
    UnifiedMsgRow row;
    bool grouped = false; ///< continues the bubble above
    bool showTime = false; ///< the last bubble of its run

    bool operator==(const ThreadMsg&) const = default;
};

/// A day label, or a message.
using ThreadItem = std::variant<QString, ThreadMsg>;

namespace ThreadBuilder {

/// Rows oldest first; `nowMs` determines today. Bubbles of one direction and sender are grouped while they are less
/// than three minutes apart; a group ends visually at the next day.
QList<ThreadItem> build(const QList<UnifiedMsgRow>& rows, qint64 nowMs);

}

}
