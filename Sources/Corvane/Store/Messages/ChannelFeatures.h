#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// What messages of an account can contain besides text, as its engine last reported.
struct ChannelFeatures {
    bool files = false;
    std::optional<qint64> maxBytes; ///< of all files of one message together; missing: no known limit
    bool subject = false;

    bool operator==(const ChannelFeatures&) const = default;
};

/// Text only if the account's engine never reported. Known even before the engine has started.
ChannelFeatures fetchFeatures(LocalDB& db, const QString& accountSlug);

/// True if they changed.
bool rememberFeatures(LocalDB& db, const QString& accountSlug, const ChannelFeatures& features);

}
