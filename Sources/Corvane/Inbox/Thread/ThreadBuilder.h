#pragma once

#include "Store/Messages/ThreadQueries.h"

#include <variant>

namespace corvane {

/// A message with its place in a run of bubbles.
struct ThreadMsg {
    UnifiedMsgRow row;
    bool grouped = false; ///< continues the bubble above
    bool showTime = false; ///< the last bubble of its run

    bool operator==(const ThreadMsg&) const = default;
};

/// A day's label, or a message.
using ThreadItem = std::variant<QString, ThreadMsg>;

namespace ThreadBuilder {

/// Rows oldest first; `nowMs` tells which day is today. Bubbles of one direction and sender run together while they
/// follow each other in less than three minutes; a run ends, to the eye, at the next day.
QList<ThreadItem> build(const QList<UnifiedMsgRow>& rows, qint64 nowMs);

}

}
