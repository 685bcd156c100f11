#pragma once

#include "Web/SyncClient.h"
#include "Web/WebSync.h"

namespace corvane {

/// What the web account is used for, both ways.
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
