#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// What the messages of an account can carry besides text, as its engine said last.
struct ChannelFeatures {
    bool files = false;
    std::optional<qint64> maxBytes; ///< of all files of one message together; no limit is known where it is missing
    bool subject = false;

    bool operator==(const ChannelFeatures&) const = default;
};

/// Text alone where the account's engine never said. Known, too, before the engine has started.
ChannelFeatures fetchFeatures(LocalDB& db, const QString& accountSlug);

/// True where they are not what was remembered.
bool rememberFeatures(LocalDB& db, const QString& accountSlug, const ChannelFeatures& features);

}
