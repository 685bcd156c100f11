#pragma once

#include "AI/AIRequestWatcher.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineProcesses.h"
#include "Engines/Ingest.h"
#include "Engines/LineGroup.h"
#include "Engines/Outbox.h"
#include "Engines/RuntimeStates.h"
#include "Engines/ToolServer.h"
#include "Engines/UnreadCount.h"
#include "Foundation/Coalescer.h"
#include "Store/Core/LocalDB.h"

#include <QPointer>

namespace corvane {

/// The parts of the manager, in construction order.
struct EngineManager::State {
    State(EngineManager& manager, const Surroundings& surroundings, std::unique_ptr<LocalDB> database);

    const AppPaths& paths;
    Scheduler& scheduler;
    Desktop& desktop;
    Notifier& notifier;
    QPointer<AccountStore> accounts;
    std::unique_ptr<LocalDB> db;
    LineGroup lines;
    RuntimeStates runtime;
    EngineProcesses processes;
    Outbox outbox;
    ToolServer toolServer;
    Ingest ingest;
    std::unique_ptr<AIRequestWatcher> aiRequests; ///< null until it is started
    UnreadCount unread;
    Coalescer badge;
    QSet<QString> bumped; ///< contacts since unread messages were last counted; the empty id stands for all of them
    QHash<QString, MediaDownloadStatus> mediaDownloads;
    QHash<QString, std::weak_ptr<ChildProcess>> mediaAskedOf; ///< the engine that is downloading a message's file
};

}
