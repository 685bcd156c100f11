#pragma once

#include "Foundation/Literals.h"

#include <QString>

namespace corvane {

/// Where the program's files live. Every path is absolute.
struct AppPaths {
    QString home; ///< the user's home directory
    QString applicationSupport; ///< ".../Corvane": database, accounts, token file, media
    QString defaultsFile; ///< the ini file of the user defaults
    QString resources; ///< the folder that holds "local-schema/" and "engine/"

    QString database() const { return applicationSupport + u"/nimblocal.db"_s; }

    QString secretsFile() const { return applicationSupport + u"/secrets/secrets.json"_s; }

    /// From the environment: XDG_DATA_HOME, XDG_CONFIG_HOME, CORVANE_RESOURCES, HOME.
    static AppPaths fromEnvironment();
};

}
