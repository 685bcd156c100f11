#pragma once

#include "Web/SyncClient.h"
#include "Web/WebSync.h"

namespace corvane {

/// The services that use the web account: pulling and pushing.
struct WebServices {
    /// All references outlive the services.
    WebServices(SessionStore& session, LocalDB& db, Scheduler& scheduler)
        : sync(session, db, scheduler)
        , push(session, db, scheduler)
    {
    }

    WebSync sync;
    SyncClient push;
};

}
